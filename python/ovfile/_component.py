"""The component runtime, by its binary rules alone: texts, variants, statuses, interface pointers.

An interface is a pointer to a table of plain functions, object first. On Windows the functions have the
system's calling convention and texts belong to the system; elsewhere libovfile brings both. A text handed
out is the caller's to free, one handed in stays the caller's.
"""

from __future__ import annotations

import ctypes
import os
import sys
import uuid
from ctypes import POINTER, byref, c_double, c_int16, c_int32, c_uint16, c_uint32, c_void_p
from typing import Any, Dict, Optional, Sequence, Tuple

from ._errors import Error

WINDOWS = sys.platform == "win32"
# The convention of interface functions and of the library's entry points.
FUNCTION: Any = getattr(ctypes, "WINFUNCTYPE", ctypes.CFUNCTYPE)
LOADER: Any = getattr(ctypes, "WinDLL", ctypes.CDLL)

S_OK = 0
E_FAIL = -0x7FFFBFFB
E_NOINTERFACE = -0x7FFFBFFE
E_ABORT = -0x7FFFBFFC
VT_R8, VT_BSTR = 5, 8


class Guid(ctypes.Structure):
    _fields_ = [("bytes", ctypes.c_uint8 * 16)]

    @classmethod
    def of(cls, text: str) -> "Guid":
        return cls.from_buffer_copy(uuid.UUID(text).bytes_le)


class Variant(ctypes.Structure):
    """The type at 0, the value at 8; two pointers long."""

    class _Value(ctypes.Union):
        _fields_ = [
            ("double", c_double),
            ("pointer", c_void_p),
            ("room", c_void_p * 2),
        ]

    _fields_ = [("type", c_uint16), ("reserved", c_uint16 * 3), ("value", _Value)]


Prototype = Tuple[int, Tuple[Any, ...]]  # the slot, the types of the arguments behind the object

UNKNOWN: Dict[str, Prototype] = {
    "QueryInterface": (0, (POINTER(Guid), POINTER(c_void_p))),
    "Release": (2, ()),
}
_CLASS_FACTORY: Dict[str, Prototype] = {
    **UNKNOWN,
    "CreateInstance": (3, (c_void_p, POINTER(Guid), POINTER(c_void_p))),
}
_ERROR_INFO: Dict[str, Prototype] = {
    **UNKNOWN,
    "GetSource": (4, (POINTER(c_void_p),)),
    "GetDescription": (5, (POINTER(c_void_p),)),
}
CLASS_FACTORY_ID = Guid.of("{00000001-0000-0000-C000-000000000046}")


class Runtime:
    """Texts, variants and error information, out of the library (or, on Windows, the system)."""

    def __init__(self, automation: Any) -> None:
        self._alloc = automation.SysAllocStringLen
        self._alloc.restype, self._alloc.argtypes = c_void_p, [c_void_p, c_uint32]
        self._free = automation.SysFreeString
        self._free.restype, self._free.argtypes = None, [c_void_p]
        self._bytes = automation.SysStringByteLen
        self._bytes.restype, self._bytes.argtypes = c_uint32, [c_void_p]
        self._clear = automation.VariantClear
        self._clear.restype, self._clear.argtypes = c_int32, [c_void_p]
        self._error = automation.GetErrorInfo
        self._error.restype, self._error.argtypes = c_int32, [c_uint32, POINTER(c_void_p)]

    def text(self, value: str) -> "Text":
        return Text(self, value)

    def take_text(self, pointer: Optional[int]) -> str:
        """A text that was handed out, which is freed."""
        if not pointer:
            return ""
        units = ctypes.string_at(pointer, self._bytes(pointer))
        self._free(pointer)
        return units.decode("utf-16-le", "surrogatepass")

    def take_value(self, variant: Variant) -> Any:
        """A variant's number or text (None for any other type); the variant is cleared."""
        value: Any = None
        if variant.type == VT_R8:
            value = variant.value.double
        elif variant.type == VT_BSTR:
            value = self.take_text(variant.value.pointer)
            variant.type = 0
        self._clear(byref(variant))
        return value

    def take_message(self) -> Optional[str]:
        """Takes the calling thread's error information; None: there is none."""
        found = c_void_p()
        if self._error(0, byref(found)) != S_OK or not found.value:
            return None
        return Interface(self, found.value, _ERROR_INFO).out_text("GetDescription")

    def failure(self, status: int) -> Error:
        """The error for a failed status, with what the library published about it."""
        message = self.take_message()
        return Error(message or f"failed with status 0x{status & 0xFFFFFFFF:08X}", status=status)


class Text:
    """Owns a text for calls that read one."""

    def __init__(self, runtime: Runtime, value: str) -> None:
        units = value.encode("utf-16-le", "surrogatepass")
        self._free = runtime._free
        self.pointer: Optional[int] = runtime._alloc(units, len(units) // 2)
        if not self.pointer:
            raise MemoryError

    def __del__(self) -> None:
        pointer, self.pointer = getattr(self, "pointer", None), None
        if pointer:
            self._free(pointer)


class Interface:
    """Owns one reference to an object's interface, with a table of the functions that are used.

    A process that was forked off has a copy of the object's memory, but shares the open files behind it: there
    the object is neither used nor destroyed, as either would move or write what the first process relies on.
    """

    def __init__(self, runtime: Runtime, pointer: int, prototypes: Dict[str, Prototype]) -> None:
        self.runtime = runtime
        self._process = os.getpid()
        self.pointer: Optional[int] = pointer
        self._prototypes = prototypes
        self._functions: Dict[str, Any] = {}
        self._release = self.function("Release")

    def function(self, name: str) -> Any:
        """The bare function, which takes `pointer` first and answers a status."""
        known = self._functions.get(name)
        if known is None:
            slot, arguments = self._prototypes[name]
            table = ctypes.cast(self.pointer or 0, POINTER(POINTER(c_void_p)))[0]
            known = FUNCTION(c_int32, c_void_p, *arguments)(table[slot])
            self._functions[name] = known
        return known

    def call(self, name: str, *arguments: Any) -> int:
        """Calls a function; `str` becomes a text. Raises Error for a failed status."""
        texts = [self.runtime.text(a) if isinstance(a, str) else None for a in arguments]
        given = [a if text is None else text.pointer for a, text in zip(arguments, texts)]
        status: int = self.function(name)(self.pointer, *given)
        if status < 0:
            raise self.runtime.failure(status)
        return status

    def _out(self, made: Any, name: str, arguments: Sequence[Any]) -> Any:
        self.call(name, *arguments, byref(made))
        return made.value

    def out_long(self, name: str, *arguments: Any) -> int:
        return int(self._out(c_int32(), name, arguments))

    def out_bool(self, name: str, *arguments: Any) -> bool:
        return bool(self._out(c_int16(), name, arguments))

    def out_double(self, name: str, *arguments: Any) -> float:
        return float(self._out(c_double(), name, arguments))

    def out_text(self, name: str, *arguments: Any) -> str:
        return self.runtime.take_text(self._out(c_void_p(), name, arguments))

    def out_variant(self, name: str, *arguments: Any) -> Any:
        made = Variant()
        self.call(name, *arguments, byref(made))
        return self.runtime.take_value(made)

    def out_interface(self, name: str, prototypes: Dict[str, Prototype]) -> Optional["Interface"]:
        found = self._out(c_void_p(), name, ())
        return Interface(self.runtime, found, prototypes) if found else None

    def query(self, identifier: Guid, prototypes: Dict[str, Prototype]) -> "Interface":
        """Another interface of the same object."""
        return Interface(
            self.runtime, self._out(c_void_p(), "QueryInterface", (byref(identifier),)), prototypes
        )

    def release(self) -> None:
        """Gives the reference back; a second time does nothing, nor does it in another process."""
        pointer, self.pointer = self.pointer, None
        if pointer and self.is_of_this_process():
            self._release(pointer)

    def is_of_this_process(self, process: Any = os.getpid) -> bool:
        # The function stands in the arguments: at the interpreter's end the module may be gone.
        return bool(self._process == process())

    def __del__(self) -> None:
        if getattr(self, "_release", None) is not None:
            self.release()


def create_instance(
    runtime: Runtime,
    get_class_object: Any,
    class_id: Guid,
    interface_id: Guid,
    prototypes: Dict[str, Prototype],
) -> Interface:
    """A new object out of a module's own class objects, whether it is registered or not."""
    found = c_void_p()
    status = get_class_object(byref(class_id), byref(CLASS_FACTORY_ID), byref(found))
    if status < 0 or not found.value:
        raise runtime.failure(status)
    factory = Interface(runtime, found.value, _CLASS_FACTORY)
    made = c_void_p()
    factory.call("CreateInstance", None, byref(interface_id), byref(made))
    if not made.value:
        raise runtime.failure(E_NOINTERFACE)
    return Interface(runtime, made.value, prototypes)
