"""Long work that Ctrl-C stops.

Python looks at signals between its own instructions, also in the functions that the library calls back, and
what is raised there goes nowhere. So a signal is noted while the library works, and the answer that it gets
when it tells of its progress stops it, which leaves the table as it was; the program's own handler has its
turn when the work is over.
"""

from __future__ import annotations

import contextlib
import ctypes
import signal
import threading
from ctypes import POINTER, c_int32, c_int64, c_uint32, c_void_p
from typing import Any, Callable, Dict, Iterator, List, Optional

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


class Signals:
    """What came while signals raise nothing. `stopped`: the work at hand is to end."""

    def __init__(self) -> None:
        self.stopped = False
        self._handlers: Dict[int, Callable[[int, Any], Any]] = {}
        self._interrupted = False
        self._failure: Optional[BaseException] = None

    def check(self) -> None:
        """Raises Error where the work is to end."""
        if self.stopped:
            raise Error("stopped, nothing was written", status=E_ABORT)

    @property
    def are_held(self) -> bool:
        return bool(self._handlers)

    def hold(self) -> None:
        found = {number: signal.getsignal(number) for number in signal.valid_signals()}
        for number, handler in found.items():
            if callable(handler):
                self._handlers[number] = handler
                try:
                    signal.signal(number, self._note)
                except ValueError:
                    # `threading` takes another thread for the main one than the interpreter does.
                    del self._handlers[number]
                    return

    def let_go(self) -> None:
        """The program's handlers are back, and have their say."""
        # That of Ctrl-C comes last, as it may raise something at once.
        numbers = sorted(self._handlers, key=lambda each: each == signal.SIGINT)
        while numbers:
            try:
                while numbers:
                    self._restore(numbers[0])
                    del numbers[0]
            except BaseException as failure:  # a handler's that is back already; the others shall be, too
                self._failure = self._failure or failure
        try:
            if self._failure is not None:
                raise self._failure
        finally:
            if self._interrupted:
                # Where it raises nothing, what was said of the stop stands.
                self._handlers[signal.SIGINT](signal.SIGINT, None)

    def _restore(self, number: int) -> None:
        """Where a handler has put another one in its own place, that one stays."""
        if signal.getsignal(number) == self._note:
            signal.signal(number, self._handlers[number])

    def _note(self, number: int, frame: Any) -> None:
        if number == signal.SIGINT:
            self._interrupted = self.stopped = True
            return
        try:
            self._handlers[number](number, frame)
        except BaseException as failure:
            self._failure, self.stopped = self._failure or failure, True


class _Listener:
    """An object of ours with the library's interface for progress. It lives as long as we hold it."""

    def __init__(self, signals: Signals) -> None:
        self._signals = signals
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
        return E_ABORT if self._signals.stopped else S_OK


_held: List[Signals] = []  # those of the main thread, at most one


@contextlib.contextmanager
def held_signals() -> Iterator[Signals]:
    """In here no signal raises anything; what it would have raised comes at the end of the outermost one."""
    signals = Signals()
    if threading.current_thread() is not threading.main_thread():
        yield signals  # none are handled there
        return
    if _held:
        yield _held[0]
        return
    try:
        signals.hold()
        _held.append(signals)
        yield signals
    finally:
        _held.clear()
        signals.let_go()


@contextlib.contextmanager
def stoppable(table: Interface, signals: Signals) -> Iterator[None]:
    """The table's work in here ends when signals say so."""
    if not signals.are_held:
        yield
        return
    try:
        source = table.query(known.PROGRESS_SOURCE_ID, known.PROGRESS_SOURCE)
    except Error:
        yield  # a library that cannot be stopped
        return
    listener = _Listener(signals)
    source.call("SetProgress", listener.pointer)
    try:
        yield
    finally:
        source.call("SetProgress", None)


@contextlib.contextmanager
def interruptible(table: Interface) -> Iterator[None]:
    """What the table does in here is stopped by Ctrl-C, where the program lets that interrupt it."""
    with held_signals() as signals, stoppable(table, signals):
        yield
