"""Tables made anew: rows in another order, columns that were not there."""

from __future__ import annotations

import contextlib
import ctypes
import errno
import os
import pathlib
from ctypes import POINTER, c_int32
from typing import Any, Iterator, Optional, Sequence

import numpy as np

from . import _interfaces as known
from ._arrays import Array
from ._arrow_export import Batch, Borrowed, Producer
from ._arrow_import import Stream, child_of
from ._columns import Source
from ._component import WINDOWS, Interface
from ._errors import Error
from ._interruption import held_signals, interruptible, stoppable
from ._library import library
from ._reading import Span, open_stream
from ._replacement import (
    CHANGED_ELSEWHERE,
    OPEN_ELSEWHERE,
    HeldFile,
    Replacement,
    Stamp,
    private_folder,
    replacement,
    stamp_of,
    write_file,
)
from ._schema import Column, Schema, make_object, read_schema
from ._writing import append_stream, closing

_LONGS = POINTER(c_int32)
_TO_CHANGE, _TO_READ = 0, 1
_SHARING_VIOLATION = 32
# Of 256 columns' words in double precision.
_MOST_HEADER_BYTES = 4 * 4096


def rebuild(
    table: Interface,
    schema: Optional[Schema] = None,
    column_of: Optional[Sequence[int]] = None,
    rows: Optional[Array] = None,
) -> None:
    """Puts the table with these rows (from 0; None: all) and columns in its own file's place.

    `column_of` has for each column of `schema` the old one (from 1) whose values it takes, or 0.
    """
    definition = make_object(schema) if schema is not None else None
    columns = (c_int32 * max(1, len(column_of or ())))(*(column_of or ()))
    numbers = None if rows is None else np.ascontiguousarray(np.append(rows, 0) + 1, np.int32)
    with interruptible(table), _in_plain_words():
        table.query(known.MAINTENANCE_ID, known.MAINTENANCE).call(
            "Rebuild",
            definition.pointer if definition is not None else None,
            len(column_of or ()),
            columns if column_of is not None else None,
            0 if rows is None else len(rows),
            None if numbers is None else numbers.ctypes.data_as(_LONGS),
        )


@contextlib.contextmanager
def _in_plain_words() -> Iterator[None]:
    """The library gives the system's reason why an open table is not replaced, which does not tell it."""
    try:
        yield
    except Error as failure:
        if "cannot replace" in failure.message and failure.message.endswith(_in_use()):
            failure.message = OPEN_ELSEWHERE
        raise


def _in_use() -> str:
    if WINDOWS:
        return ctypes.FormatError(_SHARING_VIOLATION)  # type: ignore[attr-defined]
    return os.strerror(errno.EAGAIN)


def wider(schema: Schema, column: Column) -> Schema:
    """The schema with the column; without a description the table keeps its own."""
    return Schema(schema.columns + (column,), schema.precision, "")


def add_default_column(table: Interface, schema: Schema, column: Column) -> None:
    """A stored column whose default every row has."""
    rebuild(table, wider(schema, column), [*range(1, len(schema) + 1), 0])


def add_implicit_column(table: Interface, schema: Schema, column: Column, value: Any) -> None:
    """A column in the header alone. A file that somebody else changed meanwhile stays as it is."""
    make_object(wider(schema, column))  # says what is wrong with it
    path, rows = table.out_text("get_Name"), table.out_long("GetRowCount")
    table.call("FlushChanges")
    with closing(_opened(path, _TO_READ)) as now:
        _require_same(now, schema, rows)
    if column.kind == "text":
        table.call("AddImplicitStringColumn", column.name, column.width, str(column.default or ""))
    elif schema.precision == "single":
        table.call("AddImplicitNumericColumnFloat", column.name, value)
    else:
        table.call("AddImplicitNumericColumnDouble", column.name, value)


def write_with_column(table: Interface, schema: Schema, column: Column, source: Source) -> None:
    """The table with one column more and its values, in a new file that takes the place of its own.

    The new file begins with the table's own header, so that what that holds besides columns stays. The rows come
    out of the file as it stands, and what somebody else writes to it meanwhile is not lost: then it stays as it is.
    """
    path, rows = table.out_text("get_Name"), table.out_long("GetRowCount")
    table.call("FlushChanges")
    with held_signals() as signals, replacement(path) as new:
        with contextlib.closing(HeldFile(path)) as file:
            before = file.stamp()
            with closing(_opened(file.name, _TO_READ)) as old:
                _require_same(old, schema, rows)
                new.fill(_without_rows(file, schema, column))
                with closing(_opened(new.beside, _TO_CHANGE)) as made, stoppable(made, signals):
                    producer = _merged(old, schema, source, rows)
                    append_stream(made, producer.stream(), producer)
        signals.check()
        if stamp_of(path) != before:
            raise Error(CHANGED_ELSEWHERE)
        _put_in_place(table, path, new, before)


def _without_rows(file: HeldFile, schema: Schema, column: Column) -> bytes:
    """A table of the same header and one column more, made where nobody else can reach it."""
    with private_folder() as folder:
        name = os.path.join(folder, "header.ovt")
        write_file(name, file.beginning(_MOST_HEADER_BYTES))
        with closing(_opened(name, _TO_CHANGE)) as table:
            rebuild(table, wider(schema, column), [*range(1, len(schema) + 1), 0], np.empty(0, np.int64))
        return pathlib.Path(name).read_bytes()


def _opened(path: str, mode: int) -> Interface:
    made = library().table()
    made.call("Open", path, mode)
    return made


def _require_same(found: Interface, schema: Schema, rows: int) -> None:
    """Raises Error where the file is no longer what the open table knows of it."""
    own = found.out_interface("get_Schema", known.SCHEMA)
    columns = () if own is None else read_schema(own).columns
    if columns != schema.columns or found.out_long("GetRowCount") != rows:
        raise Error(CHANGED_ELSEWHERE)


def _put_in_place(table: Interface, path: str, new: Replacement, before: Stamp) -> None:
    """The table is closed meanwhile, and open behind it whatever happens, as far as that can be."""
    try:
        table.call("Close")
        new.take_place(before)
    except Error as failure:
        try:
            table.call("Open", path, _TO_CHANGE)
        except Error as second:
            failure.message += f"; the table cannot be opened again: {second.message}"
        raise
    try:
        table.call("Open", path, _TO_CHANGE)
    except Error as failure:
        failure.message = f"the column was added, but the table cannot be opened again: {failure.message}"
        raise


def _merged(table: Interface, schema: Schema, source: Source, rows: int) -> Producer:
    """The table's stored columns and the new one, side by side."""
    stored = [place for place, column in enumerate(schema.columns) if not column.implicit]
    if not stored:
        return Producer([source.type()], iter([Batch(rows, [source.part(0, rows)])] if rows else []))
    flags = known.STREAM_TRAILING_BLANKS
    stream = Stream(open_stream(table, stored, Span(0, rows, None), flags=flags))
    children = stream.schema.structure.children
    types = [Borrowed(children[i].contents, stream.schema) for i in range(len(stored))]
    return Producer([*types, source.type()], _merged_batches(stream, source))


def _merged_batches(stream: Stream, source: Source) -> Iterator[Batch]:
    at = 0
    for owner in iter(stream.next, None):
        batch = owner.structure
        children = [Borrowed(child_of(batch, i), owner) for i in range(batch.n_children)]
        end = at + int(batch.length)
        yield Batch(int(batch.length), [*children, source.part(at, end)])
        at = end
