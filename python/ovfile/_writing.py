"""Appending rows, and making new tables that appear whole or not at all."""

from __future__ import annotations

import contextlib
import ctypes
import os
import re
from ctypes import byref, c_int32
from typing import Iterator, Optional

from ._arrow_abi import ArrowArrayStream, release
from ._arrow_export import Producer
from ._component import Interface
from ._errors import Error
from ._interruption import held_signals, stoppable
from ._library import library
from ._reading import streams_of
from ._replacement import replacement
from ._rows import RowsToWrite
from ._schema import Schema, make_object

_NOT_CREATED = "Failed to create file"
_PROBE_BYTES = 1 << 16


def append_stream(
    table: Interface, stream: ArrowArrayStream, producer: Optional[Producer] = None
) -> int:
    """Appends a stream's rows, which are the library's from here on. The number of rows."""
    rows = c_int32()
    try:
        streams_of(table).call("Append", ctypes.addressof(stream), byref(rows))
    except Error as failure:
        _raise_own(producer)
        raise _with_place(failure) from None
    finally:
        release(stream)
    return rows.value


def _raise_own(producer: Optional[Producer]) -> None:
    """Raises what a batch could not be made for. Nothing here keeps it, as it keeps the batches alive."""
    if producer is None or producer.failure is None:
        return
    failure, producer.failure = producer.failure, None
    try:
        raise failure from None
    finally:
        del failure


def _with_place(failure: Error) -> Error:
    """Takes the column and the row out of a message of the library's. No name has a comma or a colon."""
    found = re.search(r"column ([^,:]+)(?:, row (\d+))?: ", failure.message)
    if found:
        failure.column = found.group(1)
        failure.row = int(found.group(2)) - 1 if found.group(2) else None
    return failure


def append_rows(table: Interface, rows: RowsToWrite) -> int:
    producer = rows.producer()
    return append_stream(table, producer.stream(), producer)


def create_file(path: str, schema: Schema, own: bool = True) -> Interface:
    """A table object with a new table open. What has the name is overwritten; `own`: nobody else needs it."""
    definition = make_object(schema)
    made = library().table()
    try:
        made.call("Create", path, definition.pointer)
    except Error as failure:
        if failure.message == _NOT_CREATED:
            failure.message += _why_not(path, own)
        raise
    return made


def _why_not(path: str, own: bool) -> str:
    """The system's reason why a file cannot be made or written, which the library does not tell."""
    try:
        with open(path, "wb" if own else "rb+", buffering=0) as file:
            if own:
                # Of the first one, a part may have been written.
                file.write(bytes(_PROBE_BYTES))
                file.write(bytes(_PROBE_BYTES))
                os.fsync(file.fileno())
    except OSError as failure:
        return f": {failure.strerror}"
    return ""


@contextlib.contextmanager
def closing(table: Interface) -> Iterator[Interface]:
    """The table is closed at the end. After a failure this is told of that alone."""
    try:
        yield table
    except BaseException:
        with contextlib.suppress(Error):
            table.call("Close")
        raise
    table.call("Close")


def write_new(path: str, rows: RowsToWrite, schema: Schema) -> int:
    """A new table of these rows in the place of whatever has the name. The number of rows."""
    rows.fit(schema.precision)
    with held_signals() as signals, replacement(path) as new:
        new.require_closed()
        with closing(create_file(new.beside, schema)) as table, stoppable(table, signals):
            written = append_rows(table, rows)
        signals.check()
        new.take_place()
    return written
