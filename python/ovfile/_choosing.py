"""What is to be read of a table, and reading it."""

from __future__ import annotations

from dataclasses import dataclass
from typing import Any, Iterator, List, Optional

import numpy as np

from . import _interfaces as known
from ._arrow_import import Stream
from ._component import Interface
from ._errors import Error, number_of_rows
from ._extent import extent_of
from ._filter import passing_rows
from ._reading import (
    Gathered,
    GatheredCodes,
    Passing,
    PassingByParts,
    Rows,
    Span,
    batches,
    open_stream,
    read_columns,
    span_of,
)
from ._schema import TEXT, Schema

_ABSENT_CHOICES = ("nan", "mask", "value")


@dataclass(frozen=True)
class Choice:
    """Columns (from 0), rows, and what the arrays are like; see `Table.read`.

    `codes`: texts as numbers and the different texts.
    """

    places: List[int]
    where: Optional[str] = None
    rows: Rows = None
    absent: str = "nan"
    widen: bool = False
    keep_blanks: bool = False
    codes: bool = False

    def flags(self) -> int:
        if self.absent not in _ABSENT_CHOICES:
            raise Error(f'absent: one of "nan", "mask", "value", not {self.absent!r}')
        flags = known.STREAM_DICTIONARIES
        flags |= known.STREAM_ABSENT_AS_NULL if self.codes or self.absent != "value" else 0
        return flags | (known.STREAM_TRAILING_BLANKS if self.keep_blanks else 0)


class Reader:
    """Reads an open table. Raises Error."""

    def __init__(self, table: Interface, schema: Schema) -> None:
        self._table, self._schema = table, schema
        self._extent = extent_of(table)

    def arrays(self, choice: Choice) -> List[Any]:
        """One array for each column."""
        flags = choice.flags()
        span = span_of(choice.rows, self._extent)
        if not choice.places:
            return []

        def source(part: Span) -> Stream:
            return Stream(open_stream(self._table, choice.places, part, flags=flags))

        def sinks(count: int) -> List[Any]:
            return [self._sink(choice, place, count) for place in choice.places]

        return read_columns(source, sinks, span, self._passing(choice.where))

    def count(self, choice: Choice) -> int:
        """How many rows are chosen."""
        span, passing = span_of(choice.rows, self._extent), self._passing(choice.where)
        if passing is None:
            return span.count if span.chosen is None else len(span.chosen)
        passes = passing(span)
        return int(np.count_nonzero(passes if span.chosen is None else passes[span.chosen]))

    def batches(self, choice: Choice, rows: int) -> Iterator[List[Any]]:
        """The arrays of each batch. Whatever is wrong with the choice is told before the first one."""
        rows = number_of_rows(rows, "a batch")
        span = span_of(None, self._extent)
        most = max(1, min(rows, span.count))
        stream = Stream(open_stream(self._table, choice.places, span, most, choice.flags()))
        passing = self._passing(choice.where)
        passes = None if passing is None else PassingByParts(passing, 0, span.count)
        return batches(stream, choice.absent, choice.widen, passes)

    def _sink(self, choice: Choice, place: int, count: int) -> Any:
        if self._schema.columns[place].kind == TEXT:
            return GatheredCodes(count) if choice.codes else Gathered(object, count, choice.absent)
        single = self._schema.precision == "single" and not choice.widen
        return Gathered(np.float32 if single else np.float64, count, choice.absent)

    def _passing(self, where: Optional[str]) -> Optional[Passing]:
        if where is None:
            return None
        columns, expression = self._schema.columns, where
        return lambda span: passing_rows(self._table, columns, expression, span.first, span.count)
