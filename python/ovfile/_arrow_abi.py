"""The structures of the Arrow C data and stream interfaces, and the capsules that carry them.

A structure is alive while its `release` is not null; it is moved by copying it and setting the source's
`release` to null.
"""

from __future__ import annotations

import ctypes
from ctypes import CFUNCTYPE, POINTER, c_char_p, c_int, c_int64, c_void_p, py_object
from typing import Any, Dict, Optional

from ._errors import WrongValue

STREAM_CAPSULE = b"arrow_array_stream"
SCHEMA_CAPSULE = b"arrow_schema"
NULLABLE = 2


class ArrowSchema(ctypes.Structure):
    pass


class ArrowArray(ctypes.Structure):
    pass


class ArrowArrayStream(ctypes.Structure):
    _fields_ = [
        ("get_schema", c_void_p),
        ("get_next", c_void_p),
        ("get_last_error", c_void_p),
        ("release", c_void_p),
        ("private_data", c_void_p),
    ]


ArrowSchema._fields_ = [
    ("format", c_char_p),
    ("name", c_char_p),
    ("metadata", c_void_p),
    ("flags", c_int64),
    ("n_children", c_int64),
    ("children", POINTER(POINTER(ArrowSchema))),
    ("dictionary", POINTER(ArrowSchema)),
    ("release", c_void_p),
    ("private_data", c_void_p),
]
ArrowArray._fields_ = [
    ("length", c_int64),
    ("null_count", c_int64),
    ("offset", c_int64),
    ("n_buffers", c_int64),
    ("n_children", c_int64),
    ("buffers", POINTER(c_void_p)),
    ("children", POINTER(POINTER(ArrowArray))),
    ("dictionary", POINTER(ArrowArray)),
    ("release", c_void_p),
    ("private_data", c_void_p),
]

GetStructure = CFUNCTYPE(c_int, c_void_p, c_void_p)
GetLastError = CFUNCTYPE(c_void_p, c_void_p)
Release = CFUNCTYPE(None, c_void_p)


def release(structure: Any) -> None:
    """Calls a structure's `release`; a released one stays as it is."""
    if structure.release:
        Release(structure.release)(ctypes.addressof(structure))


def move(source: Any) -> Any:
    """A structure of one's own with what `source` holds, which is empty afterwards."""
    moved = type(source)()
    ctypes.memmove(ctypes.byref(moved), ctypes.byref(source), ctypes.sizeof(moved))
    source.release = None
    return moved


_api = ctypes.pythonapi
_new = _api.PyCapsule_New
_new.restype, _new.argtypes = py_object, [c_void_p, c_char_p, c_void_p]
_pointer = _api.PyCapsule_GetPointer
_pointer.restype, _pointer.argtypes = c_void_p, [py_object, c_char_p]
_bare_pointer = ctypes.PYFUNCTYPE(c_void_p, c_void_p, c_char_p)(("PyCapsule_GetPointer", _api))
_name_of = ctypes.PYFUNCTYPE(c_char_p, c_void_p)(("PyCapsule_GetName", _api))
_held: Dict[int, Any] = {}


@ctypes.PYFUNCTYPE(None, c_void_p)
def _destroy(
    capsule: int,
    held: Dict[int, Any] = _held,
    pointer_of: Any = _bare_pointer,
    name_of: Any = _name_of,
    let_go: Any = release,
) -> None:
    # What it needs stands in its arguments: at the interpreter's end the module may be gone.
    structure = held.pop(pointer_of(capsule, name_of(capsule)), None)
    if structure is not None:
        let_go(structure)


# A capsule may outlive the module.
_api.Py_IncRef(py_object(_destroy))


def make_capsule(structure: Any, name: bytes) -> Any:
    """A capsule that owns the structure and releases what nobody took out of it."""
    address = ctypes.addressof(structure)
    _held[address] = structure
    return _new(address, name, ctypes.cast(_destroy, c_void_p))


def take_stream(capsule: Any) -> ArrowArrayStream:
    """Moves the stream out of a capsule. Raises Error for another capsule or an empty one."""
    try:
        address = _pointer(capsule, STREAM_CAPSULE)
    except (ValueError, TypeError):
        raise WrongValue(f"__arrow_c_stream__ answered no stream, but {type(capsule).__name__}") from None
    source = ArrowArrayStream.from_address(address)
    if not source.release:
        raise WrongValue("the stream has been taken already")
    return move(source)


def last_error(stream: ArrowArrayStream) -> Optional[str]:
    if not stream.get_last_error:
        return None
    words = GetLastError(stream.get_last_error)(ctypes.addressof(stream))
    return ctypes.string_at(words).decode("utf-8", "replace") if words else None
