"""Where the shared library is, and the objects that it makes.

The first of these that exists is loaded: what `OVFILE_LIBRARY` names (the library or its folder); the
library that came with the package; the one that is installed: the system's loader finds it, or on Windows the
registry names it.
"""

from __future__ import annotations

import ctypes
import importlib
import os
import threading
from ctypes import POINTER, byref, c_int32, c_uint32, c_void_p
from pathlib import Path
from typing import Any, List, Optional

from . import _interfaces as known
from ._component import CLASS_FACTORY_ID, LOADER, UNKNOWN, WINDOWS, Guid, Interface, Runtime, create_instance
from ._errors import Error

NAMES = ("OvFile.dll",) if WINDOWS else ("libovfile.so", "libovfile.so.0")
_IN_PROCESS = 1
_CONTEXT_ALL = 23
_MULTIPLE_USE = 1


def _in_folder(folder: Path) -> Optional[Path]:
    return next((folder / name for name in NAMES if (folder / name).is_file()), None)


def candidates() -> List[str]:
    """What is tried, in order. Raises Error when OVFILE_LIBRARY leads nowhere."""
    wanted = os.environ.get("OVFILE_LIBRARY")
    if wanted:
        path = _in_folder(Path(wanted)) if os.path.isdir(wanted) else Path(wanted)
        if path is None or not path.is_file():
            raise Error(f"OVFILE_LIBRARY names {wanted}, where there is no library")
        return [os.path.abspath(path)]
    package = Path(__file__).resolve().parent
    beside = [_in_folder(folder) for folder in (package / "lib", package)]
    installed = _registered() if WINDOWS else list(reversed(NAMES))
    return [str(path) for path in beside if path is not None] + installed


def _registered() -> List[str]:
    """On Windows an installed library is a registered one."""
    winreg: Any = importlib.import_module("winreg")
    key = r"CLSID\{3A9F6E21-C48B-4D07-B25E-91C7A3D0F468}\InprocServer32"
    try:
        return [winreg.QueryValue(winreg.HKEY_CLASSES_ROOT, key)]
    except OSError:
        return []


def _load() -> Any:
    reasons = []
    for name in candidates():
        try:
            return LOADER(name), name
        except OSError as failure:
            reasons.append(str(failure))
    raise Error(
        "the OvFile library was not found; install it, or let OVFILE_LIBRARY name it ("
        + "; ".join(reasons)
        + ")"
    )


class Library:
    """The loaded library: makes table and schema objects, and evaluators of filters."""

    def __init__(self) -> None:
        module, self.path = _load()
        automation: Any = ctypes.WinDLL("oleaut32") if WINDOWS else module  # type: ignore[attr-defined]
        self._classes: Any = ctypes.WinDLL("ole32") if WINDOWS else module  # type: ignore[attr-defined]
        self._get_class_object = _typed_entry_point(module)
        self.runtime = Runtime(automation)
        create = self._classes.CoCreateInstance
        create.restype = c_int32
        create.argtypes = [POINTER(Guid), c_void_p, c_uint32, POINTER(Guid), POINTER(c_void_p)]
        self._threads = threading.local()
        self._evaluator: Any = None

    def table(self) -> Interface:
        return self._create(known.TABLE_CLASS, known.TABLE_ID, known.TABLE)

    def schema(self) -> Interface:
        return self._create(known.SCHEMA_CLASS, known.SCHEMA_ID, known.SCHEMA)

    def evaluator(self) -> Optional[Interface]:
        """A new evaluator of filters; None: there is none on this system."""
        self._begin_thread()
        found = c_void_p()
        status = self._classes.CoCreateInstance(
            byref(known.FILTER_CLASS), None, _CONTEXT_ALL, byref(known.FILTER_ID), byref(found)
        )
        if status < 0 or not found.value:
            return None
        return Interface(self.runtime, found.value, known.FILTER)

    def make_evaluator_known(self) -> None:
        """On Windows without a registered evaluator: the one beside the library, for this process.

        Elsewhere the library finds it by the list of components beside itself.
        """
        if WINDOWS and self._evaluator is None:
            self._begin_thread()
            self._evaluator = _register_evaluator(self._classes, self.path) or ()

    def _create(self, class_id: Guid, interface_id: Guid, prototypes: Any) -> Interface:
        self._begin_thread()
        return create_instance(
            self.runtime, self._get_class_object, class_id, interface_id, prototypes
        )

    def _begin_thread(self) -> None:
        """Windows makes objects only on threads that have said that they want some."""
        if WINDOWS and not getattr(self._threads, "begun", False):
            self._classes.CoInitializeEx(None, 2)
            self._threads.begun = True


def _typed_entry_point(module: Any) -> Any:
    try:
        entry = module.DllGetClassObject
    except AttributeError:
        raise Error("the library has no class objects; is OVFILE_LIBRARY another library?") from None
    entry.restype = c_int32
    entry.argtypes = [POINTER(Guid), POINTER(Guid), POINTER(c_void_p)]
    return entry


def _register_evaluator(classes: Any, library: str) -> Any:
    found = c_void_p()
    classes.CoGetClassObject.argtypes = [c_void_p, c_uint32, c_void_p, c_void_p, c_void_p]
    classes.CoGetClassObject.restype = c_int32
    identifiers = byref(known.FILTER_CLASS), byref(CLASS_FACTORY_ID)
    status = classes.CoGetClassObject(
        identifiers[0], _IN_PROCESS, None, identifiers[1], byref(found)
    )
    if status >= 0:
        Interface(Runtime(LOADER("oleaut32")), found.value or 0, UNKNOWN).release()
        return None
    beside = os.path.join(os.path.dirname(library), "OvFilter.dll")
    if not os.path.isfile(beside):
        return None
    module = LOADER(beside)
    if _typed_entry_point(module)(*identifiers, byref(found)) < 0:
        return None
    cookie = c_uint32()
    classes.CoRegisterClassObject.argtypes = [c_void_p, c_void_p, c_uint32, c_uint32, c_void_p]
    classes.CoRegisterClassObject.restype = c_int32
    classes.CoRegisterClassObject(
        identifiers[0], found, _IN_PROCESS, _MULTIPLE_USE, byref(cookie)
    )
    return module


_lock = threading.Lock()
_library: Optional[Library] = None


def library() -> Library:
    """The library, loaded at the first call. Raises Error when there is none."""
    global _library
    with _lock:
        if _library is None:
            _library = Library()
        return _library
