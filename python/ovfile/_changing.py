"""Changes of an open table: rows appended, rows sorted, columns added."""

from __future__ import annotations

from typing import Any, Mapping, NamedTuple, Optional, Sequence, Union

import numpy as np

from ._choosing import Choice, Reader
from ._columns import Source
from ._component import Interface
from ._errors import Error, column_error
from ._extent import extent_of
from ._interruption import interruptible
from ._naming import no_such
from ._recognizing import is_of_pandas, source_of, sources_of
from ._rebuilding import add_default_column, add_implicit_column, rebuild, write_with_column
from ._rows import ArrayRows, fitting, has_stream, stream_of
from ._schema import ABSENT, NUMBER, TEXT, WORD_CHARACTERS, Column, Schema
from ._sorting import Ascending, directions, order_of
from ._writing import append_rows, append_stream


def rows_of(data: Any) -> ArrayRows:
    """Rows out of a data frame or a mapping of names to arrays."""
    if is_of_pandas(data):
        from ._pandas import frame_sources

        return ArrayRows(frame_sources(data))
    if isinstance(data, Mapping):
        return ArrayRows(sources_of(data))
    raise Error(
        "rows are a data frame, a mapping of names to arrays, or have __arrow_c_stream__; this is "
        f"{type(data).__name__}"
    )


def append(table: Interface, schema: Schema, data: Any) -> int:
    """Appends rows, all of them or none; how many they were."""
    if has_stream(data):
        capsule = data.__arrow_c_stream__()
        with interruptible(table):
            return append_stream(table, fitting(stream_of(capsule), schema.precision))
    rows = rows_of(data)
    for name in rows.names:
        if name not in schema:
            raise column_error(no_such(name, schema.names), name)
    rows.fit(schema.precision)
    with interruptible(table):
        return append_rows(table, rows)


def sort(table: Interface, schema: Schema, places: Sequence[int], ascending: Ascending) -> None:
    """Sorts the rows of the file; one that is sorted is left alone."""
    if not places:
        raise Error("sort: by which column?")
    ways = directions(ascending, len(places))
    keys = Reader(table, schema).arrays(Choice(list(places), absent="value", codes=True))
    order = order_of(keys, ways)
    if not np.array_equal(order, np.arange(len(order))):
        rebuild(table, rows=order)


class Wanted(NamedTuple):
    """A column as `Table.add_column` is told of it."""

    name: str
    values: Any
    kind: Optional[str]
    width: Optional[int]
    default: Union[float, str, None]
    implicit: bool


def add_column(table: Interface, schema: Schema, wanted: Wanted) -> None:
    if not wanted.implicit:
        extent_of(table).require()
    source = None
    if wanted.values is not None:
        source = _source(wanted, table.out_long("GetRowCount"))
        source.fit(schema.precision)
    column = _column(wanted, source)
    if wanted.implicit:
        add_implicit_column(table, schema, column, ABSENT if column.default is None else column.default)
    elif source is None:
        add_default_column(table, schema, column)
    else:
        write_with_column(table, schema, column, source)


def _source(wanted: Wanted, rows: int) -> Source:
    if wanted.implicit:
        raise column_error("an implicit column has one value, its default", wanted.name)
    source = source_of(wanted.name, wanted.values)
    if source.length != rows:
        raise column_error(f"{source.length} values for {rows} rows", wanted.name)
    if wanted.kind == TEXT:
        return source.as_texts()
    if wanted.kind == NUMBER and source.kind == TEXT:
        raise column_error("the values are texts, not numbers", wanted.name)
    return source


def _column(wanted: Wanted, source: Optional[Source]) -> Column:
    text_default = wanted.default if isinstance(wanted.default, str) else ""
    guessed = TEXT if text_default or wanted.width is not None else NUMBER
    kind = wanted.kind or (source.kind if source is not None else None) or guessed
    if kind != TEXT:
        return Column(wanted.name, kind, 0, wanted.default, wanted.implicit)
    longest = max(1, len(text_default), source.longest() if source is not None else 0)
    rounded = -(-longest // WORD_CHARACTERS) * WORD_CHARACTERS
    width = rounded if wanted.width is None else wanted.width
    return Column(wanted.name, TEXT, width, wanted.default, wanted.implicit)
