"""A host that has nothing of ours but the contract: binary rules, slots, identifiers, names.

python_client.py LIBRARY runs it over that library, with a registry and a folder of its own.
"""

import ctypes
import os
import re
import sys
import tempfile
import unittest
import uuid
from ctypes import byref, c_double, c_int16, c_int32, c_uint16, c_uint32, c_void_p

LIBRARY = sys.argv[1] if len(sys.argv) > 1 else ""

S_OK, S_FALSE = 0, 1
E_FAIL = -0x7FFFBFFB
DISP_E_TYPEMISMATCH, DISP_E_EXCEPTION = -0x7FFDFFFB, -0x7FFDFFF7
VT_EMPTY, VT_I4, VT_R8, VT_BSTR, VT_DISPATCH, VT_BOOL = 0, 3, 5, 8, 9, 11
METHOD, PROPERTY_GET, PROPERTY_PUT, PROPERTY_PUT_REFERENCE = 1, 2, 4, 8
PUT_NAME = -3


class Variant(ctypes.Structure):
    """24 bytes, the type at 0, the value at 8."""

    class Value(ctypes.Union):
        _fields_ = [("long", c_int32), ("double", c_double), ("bool", c_int16), ("pointer", c_void_p),
                    ("room", ctypes.c_uint8 * 16)]

    _fields_ = [("type", c_uint16), ("reserved", c_uint16 * 3), ("value", Value)]


class Arguments(ctypes.Structure):
    _fields_ = [("values", ctypes.POINTER(Variant)), ("names", ctypes.POINTER(c_int32)),
                ("count", c_uint32), ("named", c_uint32)]


class ExceptionRecord(ctypes.Structure):
    _fields_ = [("code", c_uint16), ("reserved", c_uint16), ("source", c_void_p), ("description", c_void_p),
                ("help_file", c_void_p), ("help_context", c_uint32), ("pointer", c_void_p),
                ("fill_in", c_void_p), ("status", c_int32)]


def identifier(text):
    return (ctypes.c_uint8 * 16)(*uuid.UUID(text).bytes_le)


UNKNOWN = identifier("{00000000-0000-0000-C000-000000000046}")
CLASS_FACTORY = identifier("{00000001-0000-0000-C000-000000000046}")
DISPATCH = identifier("{00020400-0000-0000-C000-000000000046}")
I_TABLE = identifier("{6B91F3A0-D27C-4385-A4E6-0C9B75E21D38}")
I_SCHEMA = identifier("{C05B2E96-A831-47D4-95F2-1D6E8B37A0C2}")
NOTHING = identifier("{00000000-0000-0000-0000-000000000000}")


def slot(pointer, number, *arguments):
    """Calls an interface's function by its number, the object first."""
    functions = ctypes.cast(pointer, ctypes.POINTER(ctypes.POINTER(c_void_p)))[0]
    types = [c_void_p] + [type(argument) if isinstance(argument, (c_int32, c_double, c_int16)) else c_void_p
                          for argument in arguments]
    return ctypes.CFUNCTYPE(c_int32, *types)(functions[number])(pointer, *arguments)


def registered_module(name):
    """The class of that name and the module that has it, as the registry's file tells."""
    with open(os.environ["OVFILE_REGISTRY"], encoding="utf-8") as file:
        keys = dict(re.findall(r'^\[HKEY_CLASSES_ROOT\\([^\]]*)\]\n@="([^"]*)"', file.read(), re.M))
    class_id = keys[name + r"\CLSID"]
    return class_id, keys[rf"CLSID\{class_id}\InprocServer32"]


class Host:
    def __init__(self):
        for entry in ("DllRegisterServer", "DllUnregisterServer", "DllCanUnloadNow"):
            getattr(ctypes.CDLL(LIBRARY), entry).restype = c_int32
        self.register = ctypes.CDLL(LIBRARY).DllRegisterServer
        assert self.register() == S_OK
        self.library = ctypes.CDLL(registered_module("OvFile.OvTable")[1])
        self.library.SysAllocStringLen.restype = c_void_p
        self.library.SysFreeString.argtypes = [c_void_p]
        self.library.SysStringLen.argtypes = [c_void_p]

    def text(self, value):
        units = value.encode("utf-16-le")
        return c_void_p(self.library.SysAllocStringLen(units, len(units) // 2))

    def take(self, pointer):
        """A text that was handed out."""
        address = pointer.value if isinstance(pointer, c_void_p) else pointer
        if not address:
            return ""
        value = ctypes.string_at(address, 2 * self.library.SysStringLen(address)).decode("utf-16-le")
        self.library.SysFreeString(address)
        return value

    def create(self, name, interface):
        class_id, _ = registered_module(name)
        factory, made = c_void_p(), c_void_p()
        status = self.library.DllGetClassObject(identifier(class_id), CLASS_FACTORY, byref(factory))
        assert status == S_OK, status
        assert slot(factory, 3, None, interface, byref(made)) == S_OK
        slot(factory, 2)
        return made

    def error(self):
        """Takes the thread's error information: description and source."""
        info, description, source = c_void_p(), c_void_p(), c_void_p()
        if self.library.GetErrorInfo(0, byref(info)) != S_OK:
            return None
        slot(info, 5, byref(description))
        slot(info, 4, byref(source))
        slot(info, 2)
        return self.take(description), self.take(source)

    def number_of(self, pointer, *names):
        texts = [ctypes.create_string_buffer(name.encode("utf-16-le") + b"\0\0") for name in names]
        pointers = (c_void_p * len(names))(*[ctypes.addressof(text) for text in texts])
        numbers = (c_int32 * len(names))()
        status = slot(pointer, 5, NOTHING, pointers, c_int32(len(names)), c_int32(0), numbers)
        return status, list(numbers)

    def variant(self, value):
        made = Variant()
        if isinstance(value, bool):
            made.type, made.value.bool = VT_BOOL, -int(value)
        elif isinstance(value, int):
            made.type, made.value.long = VT_I4, value
        elif isinstance(value, float):
            made.type, made.value.double = VT_R8, value
        elif isinstance(value, str):
            made.type, made.value.pointer = VT_BSTR, self.text(value).value
        else:
            made.type, made.value.pointer = VT_DISPATCH, value.value
        return made

    def invoke(self, pointer, name, flags, *values):
        """Calls by name. The status, the result, and the exception record's texts and status."""
        status, (number,) = self.number_of(pointer, name)
        assert status == S_OK, name
        given = (Variant * max(1, len(values)))(*[self.variant(value) for value in reversed(values)])
        puts = flags in (PROPERTY_PUT, PROPERTY_PUT_REFERENCE)
        names = (c_int32 * 1)(PUT_NAME)
        arguments = Arguments(given, names if puts else None, len(values), int(puts))
        result, record, bad = Variant(), ExceptionRecord(), c_uint32()
        status = slot(pointer, 6, c_int32(number), NOTHING, c_int32(0), c_int16(flags), byref(arguments),
                      byref(result), byref(record), byref(bad))
        for variant in given:
            if variant.type == VT_BSTR:
                self.library.VariantClear(byref(variant))
        self.take(record.help_file)
        return status, self.value_of(result), (self.take(record.source), self.take(record.description),
                                               record.status)

    def value_of(self, variant):
        if variant.type == VT_BSTR:
            return self.take(variant.value.pointer)
        if variant.type == VT_DISPATCH:
            return c_void_p(variant.value.pointer)
        return {VT_EMPTY: None, VT_I4: variant.value.long, VT_R8: variant.value.double,
                VT_BOOL: variant.value.bool}[variant.type]


class Client(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.host = Host()

    def setUp(self):
        self.folder = tempfile.TemporaryDirectory()
        self.path = os.path.join(self.folder.name, "grades.ovt")
        self.library = self.host.library
        self.assertEqual(S_OK, self.library.DllCanUnloadNow())

    def tearDown(self):
        self.folder.cleanup()
        self.assertEqual(S_OK, self.library.DllCanUnloadNow(), "everything was released")

    def make_table(self):
        """Three rows of a number and a text, by slots."""
        schema = self.host.create("OvFile.OvSchema", I_SCHEMA)
        number, word, default = (self.host.text(text) for text in ("AU", "ROCK", "ORE"))
        self.assertEqual(S_OK, slot(schema, 27, number, c_double(0.25), c_int32(0)))
        self.assertEqual(S_OK, slot(schema, 26, word, c_int32(8), default, c_int32(0)))
        table = self.host.create("OvFile.OvTable", I_TABLE)
        path = self.host.text(self.path)
        self.assertEqual(S_OK, slot(table, 29, path, schema))
        for value in (3.5, 1.5, 2.5):
            self.assertEqual(S_OK, slot(table, 17))
            self.assertEqual(S_OK, slot(table, 19, c_int32(1), c_double(value)))
        for text in (number, word, default, path):
            self.library.SysFreeString(text)
        slot(schema, 2)
        return table

    def test_slots(self):
        table = self.make_table()
        self.assertEqual(S_OK, slot(table, 44, c_int32(1), c_int16(-1)))
        self.assertEqual(S_OK, slot(table, 22))
        rows, value, text = c_int32(), c_double(), c_void_p()
        self.assertEqual(S_OK, slot(table, 10, byref(rows)))
        self.assertEqual(3, rows.value)
        for expected in (1.5, 2.5, 3.5):
            self.assertEqual(S_OK, slot(table, 7, c_int32(1), byref(value)))
            self.assertEqual(expected, value.value)
            self.assertEqual(S_OK, slot(table, 9, c_int32(2), byref(text)))
            self.assertEqual("ORE     ", self.host.take(text))
            self.assertEqual(S_FALSE if expected == 3.5 else S_OK, slot(table, 11))
        self.assertEqual(S_OK, slot(table, 28))
        slot(table, 2)

    def test_error_information(self):
        table = self.host.create("OvFile.OvTable.1", I_TABLE)
        path = self.host.text(self.path)
        self.library.SetErrorInfo(0, None)
        self.assertEqual(E_FAIL, slot(table, 27, path, c_int32(1)))
        self.assertEqual(("File does not exist", "OvFile.OvTable.1"), self.host.error())
        self.assertIsNone(self.host.error(), "it is taken once")
        self.library.SysFreeString(path)
        slot(table, 2)

    def test_late_binding(self):
        slot(self.make_table(), 2)
        host = self.host
        table = host.create("OvFile.OvTable", DISPATCH)
        self.assertEqual((S_OK, [19, 1]), host.number_of(table, "OPEN", "readonly"))
        self.assertEqual(S_OK, host.invoke(table, "open", METHOD, self.path, 1)[0])
        self.assertEqual((S_OK, 3), host.invoke(table, "GetRowCount", METHOD)[:2])
        self.assertEqual((S_OK, 3.5), host.invoke(table, "GetColumnAsDouble", METHOD, "1")[:2])
        self.assertEqual(DISP_E_TYPEMISMATCH, host.invoke(table, "GetColumnAsDouble", METHOD, "first")[0])
        self.assertEqual((S_OK, 0), host.invoke(table, "EOF", PROPERTY_GET)[:2])
        status, _, record = host.invoke(table, "AddRow", METHOD)
        self.assertEqual(DISP_E_EXCEPTION, status)
        self.assertEqual(("OvFile.OvTable.1", "AddRow failed, current row is not valid", E_FAIL), record)
        self.assertEqual(S_OK, host.invoke(table, "Close", METHOD)[0])
        slot(table, 2)

    def test_a_schema_goes_from_table_to_table(self):
        host = self.host
        first, second = (host.create("OvFile.OvTable", DISPATCH) for _ in range(2))
        schema = host.create("OvFile.OvSchema", DISPATCH)
        self.assertEqual(S_OK, host.invoke(schema, "CreatePointsFile", METHOD)[0])
        self.assertEqual(S_OK, host.invoke(first, "Schema", PROPERTY_PUT_REFERENCE, schema)[0])
        slot(schema, 2)
        _, held, _ = host.invoke(first, "Schema", PROPERTY_GET)
        slot(first, 2)
        self.assertEqual(S_OK, host.invoke(second, "Schema", PROPERTY_PUT, held)[0])
        slot(held, 2)
        _, held, _ = host.invoke(second, "Schema", PROPERTY_GET)
        self.assertEqual((S_OK, "ZPT"), host.invoke(held, "GetFieldName", METHOD, 3)[:2])
        slot(held, 2)
        slot(second, 2)

    def test_merge_is_an_exception_record(self):
        schema = self.host.create("OvFile.OvSchema", DISPATCH)
        status, _, record = self.host.invoke(schema, "Merge", METHOD, c_void_p(), 0)
        self.assertEqual(DISP_E_EXCEPTION, status)
        self.assertEqual(("OvFile.OvSchema.1", "Merge failed, invalid input", E_FAIL), record)
        slot(schema, 2)

    def test_filters_come_from_the_other_module(self):
        host = self.host
        table = self.make_table()
        slot(table, 22)
        self.assertEqual(S_OK, host.invoke(table, "FilterString", PROPERTY_PUT, 0, "AU > 3 AND ROCK = 'ORE'")[0])
        self.assertEqual((S_OK, 1), host.invoke(table, "IsFilteredIn", METHOD, 0, 0)[:2])
        slot(table, 11)
        self.assertEqual((S_OK, 0), host.invoke(table, "IsFilteredIn", METHOD, 0, 0)[:2])
        slot(table, 2)

    def test_runtime_finds_classes_by_name(self):
        found = (ctypes.c_uint8 * 16)()
        made = c_void_p()
        name = ctypes.create_string_buffer("OvFile.OvTableADO".encode("utf-16-le") + b"\0\0")
        self.assertEqual(S_OK, self.library.CLSIDFromProgID(name, found))
        self.assertEqual(bytes(identifier("{E2086A4D-57B3-4C19-9F7E-3B51C8D06A24}")), bytes(found))
        self.assertEqual(S_OK, self.library.CoCreateInstance(found, None, 1, UNKNOWN, byref(made)))
        self.assertEqual(0, slot(made, 2))


if __name__ == "__main__":
    with tempfile.TemporaryDirectory() as settings:
        os.environ["OVFILE_REGISTRY"] = os.path.join(settings, "registry.reg")
        os.environ["OVFILE_ATOMS"] = os.path.join(settings, "atoms")
        unittest.main(argv=sys.argv[:1])
