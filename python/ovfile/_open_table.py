"""The life of an open table: its object, who may use it, and its end."""

from __future__ import annotations

import contextlib
import threading
import weakref
from typing import Any, Optional

from . import _interfaces as known
from ._component import Interface
from ._errors import Error
from ._schema import Schema


def _close_quietly(handle: Interface, lock: Any) -> None:
    """For a table that nobody has any more, so that nobody is there to hear of a failure."""
    if not handle.is_of_this_process():
        return
    with lock:
        with contextlib.suppress(Exception):
            handle.call("Close")
        handle.release()


def sync(handle: Interface) -> None:
    """Writes what was changed, and returns when the disk has it."""
    handle.query(known.MAINTENANCE_ID, known.MAINTENANCE).call("Sync")


def _has_table(handle: Interface) -> bool:
    """False behind a change after which the table could not be opened again."""
    try:
        handle.out_long("GetRowCount")
    except Error:
        return False
    return True


class OpenTable:
    """Holds the library's object until it is closed, dropped, or the program ends."""

    def __init__(self, handle: Interface, path: str, mode: str) -> None:
        self._handle: Optional[Interface] = handle
        self._mode = mode
        self._asked = path
        self._lock = threading.RLock()
        self._finalizer = weakref.finalize(self, _close_quietly, handle, self._lock)
        self._schema: Optional[Schema] = None

    @property
    def mode(self) -> str:
        """"r" or "r+"."""
        return self._mode

    @property
    def closed(self) -> bool:
        return self._handle is None

    def close(self) -> None:
        """Writes what is not yet written, waits until the disk has it, and closes the file; a second time does nothing.

        In a process that was forked off nothing is written: the table is the first process's to close.
        """
        handle = self._handle
        if handle is None:
            return
        if not handle.is_of_this_process():
            self._forget()
            return
        with self._lock:
            if self._handle is None:
                return
            with self._about():
                if self._mode != "r" and _has_table(handle):
                    sync(handle)
                handle.call("Close")
            self._forget()
            handle.release()

    def _forget(self) -> None:
        self._handle = None
        self._finalizer.detach()

    def __exit__(self, *failure: Any) -> None:
        self.close()

    def __reduce_ex__(self, protocol: Any) -> Any:
        raise TypeError("an open table cannot be copied or pickled: open its path where it is needed")

    def _open_handle(self) -> Interface:
        if self._handle is None:
            raise Error("the table is closed", file=self._asked)
        if not self._handle.is_of_this_process():
            problem = "the table was opened in another process; open it here"
            raise Error(problem, file=self._asked)
        return self._handle

    def _about(self) -> "_About":
        return _About(self, False)

    def _changing(self) -> "_About":
        return _About(self, True)


class _About:
    """The table's object, for a call of one thread; errors that come out tell the file."""

    def __init__(self, table: OpenTable, changing: bool) -> None:
        self._table, self._changing = table, changing

    def __enter__(self) -> Interface:
        # First of all, as another process may have had the lock at the time of the fork.
        self._table._open_handle()
        self._table._lock.acquire()
        try:
            handle = self._table._open_handle()
            if self._changing and self._table._mode == "r":
                problem = 'the table was opened for reading; open it with mode="r+"'
                raise Error(problem, file=self._table._asked)
            return handle
        except BaseException:
            self._table._lock.release()
            raise

    def __exit__(self, kind: Any, failure: Any, trace: Any) -> None:
        if self._changing:
            self._table._schema = None
        self._table._lock.release()
        if isinstance(failure, Error) and failure.file is None:
            failure.file = self._table._asked
