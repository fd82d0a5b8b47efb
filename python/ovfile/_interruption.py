"""Long calls of the library that Ctrl-C stops.

Python looks at signals between its own instructions only, so the library is given an object that it calls
while it works. A signal that came meanwhile is noted there, and the answer stops the library, which leaves
the table as it was; the program's own handler has its turn when the call is over.
"""

from __future__ import annotations

import contextlib
import ctypes
import signal
import threading
from ctypes import POINTER, c_int32, c_int64, c_uint32, c_void_p
from typing import Any, Iterator

from . import _interfaces as known
from ._component import E_ABORT, E_NOINTERFACE, FUNCTION, S_OK, Guid, Interface
from ._errors import Error

_UNKNOWN_ID = Guid.of("{00000000-0000-0000-C000-000000000046}")
_Query = FUNCTION(c_int32, c_void_p, POINTER(Guid), POINTER(c_void_p))
_Count = FUNCTION(c_uint32, c_void_p)
_Progress = FUNCTION(c_int32, c_void_p, c_int64, c_int64)


class _Table(ctypes.Structure):
    _fields_ = [("query", _Query), ("add", _Count), ("release", _Count), ("progress", _Progress)]


class _Object(ctypes.Structure):
    _fields_ = [("functions", POINTER(_Table))]


class _Listener:
    """An object of ours with the library's interface for progress. It lives as long as we hold it."""

    def __init__(self) -> None:
        self.stopped = False
        self._references = 1
        self._functions = _Table(
            _Query(self._query), _Count(self._add), _Count(self._release), _Progress(self._progress)
        )
        self._object = _Object(ctypes.pointer(self._functions))
        self.pointer = ctypes.addressof(self._object)

    def _query(self, this: int, identifier: Any, out: Any) -> int:
        wanted = bytes(identifier.contents.bytes)
        if wanted not in (bytes(_UNKNOWN_ID.bytes), bytes(known.PROGRESS_ID.bytes)):
            out[0] = None
            return E_NOINTERFACE
        out[0] = self.pointer
        self._references += 1
        return S_OK

    def _add(self, this: int) -> int:
        self._references += 1
        return self._references

    def _release(self, this: int) -> int:
        self._references -= 1
        return self._references

    def _progress(self, this: int, done: int, total: int) -> int:
        return E_ABORT if self.stopped else S_OK


@contextlib.contextmanager
def interruptible(table: Interface) -> Iterator[None]:
    """What the table does in here is stopped by Ctrl-C, where the program lets that interrupt it."""
    handler = signal.getsignal(signal.SIGINT)
    if threading.current_thread() is not threading.main_thread() or not callable(handler):
        yield
        return
    try:
        source = table.query(known.PROGRESS_SOURCE_ID, known.PROGRESS_SOURCE)
    except Error:
        yield  # a library that cannot be stopped
        return
    listener = _Listener()

    def note(number: int, frame: Any) -> None:
        listener.stopped = True

    # From here on no signal raises anything, so that the table never keeps a listener that is gone.
    signal.signal(signal.SIGINT, note)
    try:
        source.call("SetProgress", listener.pointer)
        yield
    finally:
        source.call("SetProgress", None)
        signal.signal(signal.SIGINT, handler)
        if listener.stopped:
            # Where it raises nothing, what the library says of the stop stands.
            handler(signal.SIGINT, None)
