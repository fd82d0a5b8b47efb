"""Rows that are to be written: arrays, or the batches of a stream."""

from __future__ import annotations

from typing import Any, Iterator, List, Optional, Sequence, Union

from ._arrow_abi import ArrowArrayStream, take_stream
from ._arrow_doubles import DOUBLES
from ._arrow_export import Producer
from ._arrow_import import NUMBERS, Owner, Stream
from ._arrow_remaking import Remakes, producer_of, remade
from ._arrow_views import PLAIN_TEXTS
from ._columns import Source, batches_of
from ._errors import column_error
from ._interruption import Signals
from ._planning import Kinds, is_settled, planned_column, wanted_column
from ._recognizing import is_of_pandas
from ._schema import NUMBER, TEXT, Column


class ArrayRows:
    """Rows out of arrays."""

    def __init__(self, sources: Sequence[Source]) -> None:
        self.sources = list(sources)

    @property
    def names(self) -> List[str]:
        return [source.name for source in self.sources]

    def columns(self, kinds: Kinds) -> List[Column]:
        """The columns of a table that can hold the rows; `kinds` says what is not to be guessed."""
        for place, source in enumerate(self.sources):
            wanted = wanted_column(source.name, kinds)
            if wanted is not None and wanted.kind == TEXT and source.kind == NUMBER:
                self.sources[place] = source.as_texts()
            if wanted is not None and wanted.kind == NUMBER and source.kind == TEXT:
                raise column_error("the values are texts, not numbers", source.name)
        return [
            planned_column(source.name, source.kind or NUMBER, source.longest(), kinds)
            for source in self.sources
        ]

    def fit(self, precision: str) -> None:
        """For a table of this precision. Raises Error for values that its numbers would not keep."""
        for source in self.sources:
            source.fit(precision)

    def producer(self) -> Producer:
        return Producer([source.type() for source in self.sources], batches_of(self.sources))


class ArrowRows:
    """Rows out of a stream of somebody else's.

    Its batches are kept where the widths of texts are to be found out, else they go on as they come.
    """

    def __init__(self, stream: ArrowArrayStream, signals: Signals) -> None:
        self._stream = Stream(stream)
        self._signals = signals
        self._kept: Optional[List[Owner]] = None
        self._remakes: Remakes = {}

    @property
    def names(self) -> List[str]:
        return [field.name for field in self._stream.fields]

    def columns(self, kinds: Kinds) -> List[Column]:
        """As those of `ArrayRows`."""
        made = []
        for place, field in enumerate(self._stream.fields):
            if field.is_text:
                longest = 0 if is_settled(field.name, kinds) else self._longest(place)
                made.append(planned_column(field.name, TEXT, longest, kinds))
            elif field.value_format in NUMBERS or field.value_format in ("b", "n"):
                made.append(planned_column(field.name, NUMBER, 0, kinds))
            else:
                problem = f"values of the Arrow type {field.value_format!r} have no place"
                raise column_error(problem, field.name)
        return made

    def _longest(self, place: int) -> int:
        """Characters of a column's longest text."""
        if self._kept is None:
            self._kept = list(self._read())
        views = (self._stream.columns(owner)[place] for owner in self._kept)
        return max((view.longest_text() for view in views), default=0)

    def _read(self) -> Iterator[Owner]:
        for owner in iter(self._stream.next, None):
            self._signals.check()
            yield owner

    def fit(self, precision: str) -> None:
        """For a table of this precision. The library looks at the values that it is handed."""
        self._remakes = DOUBLES if precision == "double" else {}

    def producer(self) -> Producer:
        batches = self._read() if self._kept is None else iter(self._kept)
        return producer_of(self._stream, batches, self._remakes)

    def let_go(self) -> None:
        """Releases the batches that are kept."""
        self._kept = None


RowsToWrite = Union[ArrayRows, ArrowRows]


def has_stream(data: Any) -> bool:
    return not is_of_pandas(data) and getattr(data, "__arrow_c_stream__", None) is not None


def stream_of(capsule: Any) -> ArrowArrayStream:
    """The stream that `__arrow_c_stream__` answered, in a form that the library takes."""
    return remade(take_stream(capsule), PLAIN_TEXTS)


def fitting(stream: ArrowArrayStream, precision: str) -> ArrowArrayStream:
    """The stream, whose owner the caller is, for a table of this precision."""
    return remade(stream, DOUBLES) if precision == "double" else stream
