"""Tables made anew: rows in another order, columns that were not there."""

from __future__ import annotations

import shutil
from ctypes import POINTER, c_int32
from typing import Any, Iterator, Optional, Sequence

import numpy as np

from . import _interfaces as known
from ._arrays import Array
from ._arrow_export import Batch, Borrowed, Producer
from ._arrow_import import Stream, child_of
from ._columns import Source
from ._component import Interface
from ._errors import Error
from ._interruption import interruptible
from ._library import library
from ._reading import Span, open_stream
from ._schema import Column, Schema, make_object
from ._writing import append_stream, replacement

_LONGS = POINTER(c_int32)


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
    with interruptible(table):
        table.query(known.MAINTENANCE_ID, known.MAINTENANCE).call(
            "Rebuild",
            definition.pointer if definition is not None else None,
            len(column_of or ()),
            columns if column_of is not None else None,
            0 if rows is None else len(rows),
            None if numbers is None else numbers.ctypes.data_as(_LONGS),
        )


def wider(schema: Schema, column: Column) -> Schema:
    """The schema with the column; without a description the table keeps its own."""
    return Schema(schema.columns + (column,), schema.precision, "")


def add_default_column(table: Interface, schema: Schema, column: Column) -> None:
    """A stored column whose default every row has."""
    rebuild(table, wider(schema, column), [*range(1, len(schema) + 1), 0])


def add_implicit_column(table: Interface, schema: Schema, column: Column, value: Any) -> None:
    """A column in the header alone."""
    make_object(wider(schema, column))  # says what is wrong with it
    if column.kind == "text":
        table.call("AddImplicitStringColumn", column.name, column.width, str(column.default or ""))
    elif schema.precision == "single":
        table.call("AddImplicitNumericColumnFloat", column.name, value)
    else:
        table.call("AddImplicitNumericColumnDouble", column.name, value)


def write_with_column(
    table: Interface, path: str, schema: Schema, column: Column, source: Source
) -> None:
    """The table with one column more and its values, in a new file that takes the place of `path`.

    The new file begins as a copy, so that what a header holds besides columns stays.
    """
    rows = table.out_long("GetRowCount")
    table.call("FlushChanges")
    with replacement(path) as beside:
        try:
            shutil.copyfile(path, beside)
        except OSError as failure:
            raise Error(f"the file cannot be copied: {failure.strerror}") from failure
        made = library().table()
        made.call("Open", beside, 0)
        add_default = [*range(1, len(schema) + 1), 0]
        rebuild(made, wider(schema, column), add_default, np.empty(0, np.int64))
        producer = _merged(table, schema, source, rows)
        append_stream(made, producer.stream(), producer)
        made.call("Close")
        made.release()
        table.call("Close")


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
