"""print_column.py LIBRARY TABLE COLUMN: prints a column of numbers, a line for each row."""

import ctypes
import sys
import uuid

S_OK = 0
OPEN_FOR_READING = 1


def identifier(text):
    return (ctypes.c_uint8 * 16)(*uuid.UUID(text).bytes_le)


OV_TABLE = identifier("{3A9F6E21-C48B-4D07-B25E-91C7A3D0F468}")
I_OV_TABLE = identifier("{6B91F3A0-D27C-4385-A4E6-0C9B75E21D38}")
CLASS_FACTORY = identifier("{00000001-0000-0000-C000-000000000046}")


def call(pointer, slot, *arguments):
    """Calls the function in that slot of an interface; a failure is an OSError."""
    functions = ctypes.cast(pointer, ctypes.POINTER(ctypes.POINTER(ctypes.c_void_p)))[0]
    types = [ctypes.c_void_p] + [type(each) if isinstance(each, ctypes.c_int32) else ctypes.c_void_p
                                 for each in arguments]
    status = ctypes.CFUNCTYPE(ctypes.c_int32, *types)(functions[slot])(pointer, *arguments)
    if status < 0:
        raise OSError(f"slot {slot} answers {status & 0xFFFFFFFF:#010x}")
    return status


def main(library_path, table_path, column):
    library = ctypes.CDLL(library_path)
    library.SysAllocString.restype = ctypes.c_void_p
    library.SysAllocString.argtypes = [ctypes.c_char_p]
    library.SysFreeString.argtypes = [ctypes.c_void_p]

    factory, table = ctypes.c_void_p(), ctypes.c_void_p()
    library.DllGetClassObject(OV_TABLE, CLASS_FACTORY, ctypes.byref(factory))
    call(factory, 3, None, I_OV_TABLE, ctypes.byref(table))  # CreateInstance

    # Texts are UTF-16 with a zero unit behind them.
    name = library.SysAllocString((table_path + "\0").encode("utf-16-le"))
    call(table, 27, ctypes.c_void_p(name), ctypes.c_int32(OPEN_FOR_READING))  # Open
    library.SysFreeString(name)
    value = ctypes.c_double()
    moved = call(table, 22)  # GetFirstRow
    while moved == S_OK:
        call(table, 7, ctypes.c_int32(column), ctypes.byref(value))  # GetColumnAsDouble
        print(f"{value.value:g}")
        moved = call(table, 11)  # GetNextRow: S_FALSE behind the last
    call(table, 28)  # Close
    call(table, 2)  # Release
    call(factory, 2)


main(sys.argv[1], sys.argv[2], int(sys.argv[3]))
