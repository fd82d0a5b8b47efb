"""Reading columns: which rows, and what the arrays are like."""

from __future__ import annotations

import ctypes
from ctypes import byref, c_int32
from dataclasses import dataclass
from typing import Any, Callable, Dict, Iterator, List, Optional, Sequence, Tuple, Union

import numpy as np

from . import _interfaces as known
from ._arrays import Array
from ._arrow_abi import ArrowArrayStream
from ._arrow_import import ColumnView, Stream
from ._component import E_NOINTERFACE, Interface
from ._errors import Error
from ._extent import Extent
from ._widening import by_digits

_ROWS = "rows: a slice, a range, row numbers from 0, or a truth value for each row"
# Chosen rows further apart are read by themselves, and of one read no more rows than these are looked at.
_FAR_APART = 65536
_ROWS_OF_A_PART = 1 << 20

Rows = Union[None, slice, range, Sequence[int], Array]


@dataclass(frozen=True)
class Span:
    """Rows as they are read: `count` from `first` (from 0) on, of which `chosen` (None: all) count."""

    first: int
    count: int
    chosen: Optional[Array]


Passing = Callable[[Span], Array]  # which of a span's rows a condition lets through


def span_of(rows: Rows, extent: Extent) -> Span:
    """Raises Error for rows that the table or its file does not have. Slices are cut to the table as for a list."""
    total = extent.promised
    if rows is None:
        extent.require()
        return Span(0, total, None)
    if isinstance(rows, (slice, range)):
        return _span_of_range(rows, extent)
    try:
        chosen = np.asarray(rows)
    except ValueError:
        raise Error(_ROWS) from None
    if chosen.ndim != 1:
        raise Error(_ROWS)
    if chosen.dtype == bool:
        if len(chosen) != total:
            raise Error(f"rows: {len(chosen)} truth values for {total} rows")
        chosen = np.flatnonzero(chosen)
    if chosen.size == 0:
        return Span(0, 0, None)
    if chosen.dtype.kind not in "iu":
        raise Error(_ROWS)
    if chosen.max() >= total:  # while numbers without a sign have none
        raise Error(f"rows: the table has {total} rows, numbered from 0")
    chosen = np.where(chosen < 0, chosen.astype(np.int64) + total, chosen.astype(np.int64))
    if chosen.min() < 0:
        raise Error(f"rows: the table has {total} rows, numbered from 0")
    extent.require(int(chosen.max()) + 1)
    first = int(chosen.min())
    return Span(first, int(chosen.max()) - first + 1, chosen - first)


def _span_of_range(rows: Union[slice, range], extent: Extent) -> Span:
    total = extent.promised
    if isinstance(rows, slice):
        try:
            numbers = range(*rows.indices(total))
        except (TypeError, ValueError) as failure:
            raise Error(f"rows: {failure}") from None
    else:
        numbers = rows
    if len(numbers) == 0:
        return Span(0, 0, None)
    low, high = min(numbers[0], numbers[-1]), max(numbers[0], numbers[-1])
    if low < 0 or high >= total:
        raise Error(f"rows: the table has {total} rows, numbered from 0")
    extent.require(high + 1)
    chosen = None if numbers.step == 1 else np.arange(numbers.start, numbers.stop, numbers.step) - low
    return Span(low, high - low + 1, chosen)


def open_stream(
    table: Interface, columns: Sequence[int], span: Span, batch: int = 0, flags: int = 0
) -> ArrowArrayStream:
    """A stream of columns (from 0) over a span's rows, which the caller owns."""
    if not columns:
        raise Error("there is no column to read")
    numbers = (c_int32 * len(columns))(*[column + 1 for column in columns])
    request = known.StreamRequest(
        ctypes.sizeof(known.StreamRequest), len(columns), numbers, span.first + 1, span.count, batch, flags
    )
    made = ArrowArrayStream()
    streams_of(table).call("Read", byref(request), ctypes.addressof(made))
    return made


def streams_of(table: Interface) -> Interface:
    try:
        return table.query(known.STREAM_ID, known.STREAM)
    except Error as failure:
        if failure.status != E_NOINTERFACE:
            raise
        raise Error("the library is older than this package: it has no streams") from None


def number_array(view: ColumnView, absent: str) -> Tuple[Array, Optional[Array]]:
    """A column's numbers, and where they are absent; a view where nothing had to be put in."""
    values, nulls = view.numbers(), view.nulls()
    if nulls is not None and absent == "nan":
        values = values.copy()
        values[nulls] = np.nan
    return values, nulls


def text_array(view: ColumnView) -> Tuple[Array, Optional[Array]]:
    """A column's texts as `str` objects, and where they are blank."""
    nulls = view.nulls()
    if not view.field.is_dictionary:
        return view.texts(), nulls
    different = view.dictionary().texts()
    places = view.numbers()
    if nulls is None:
        return different.take(places), None
    made = np.full(view.length, "", object)
    made[~nulls] = different.take(places[~nulls])
    return made, nulls


def batch_array(view: ColumnView, absent: str, widen: bool) -> Any:
    """A column of a batch as the caller wants it."""
    values, nulls = text_array(view) if view.field.is_text else number_array(view, absent)
    if widen and values.dtype == np.float32:
        values = by_digits(values)
    if absent != "mask":
        return values
    return np.ma.MaskedArray(values, mask=np.ma.nomask if nulls is None else nulls)


class Gathered:
    """A whole column, filled batch by batch. One of doubles takes floats as what their digits say."""

    def __init__(self, dtype: Any, count: int, absent: str) -> None:
        self._values = np.empty(count, dtype)
        self._nulls: Optional[Array] = None
        self._absent = absent
        self._at = 0

    def add(self, view: ColumnView, kept: Optional[Array]) -> None:
        values, nulls = text_array(view) if view.field.is_text else number_array(view, self._absent)
        if kept is not None:
            values = values[kept]
            nulls = None if nulls is None else nulls[kept]
        end = self._at + len(values)
        is_widened = values.dtype == np.float32 and self._values.dtype == np.float64
        self._values[self._at : end] = by_digits(values) if is_widened else values
        if self._absent == "mask" and nulls is not None:
            if self._nulls is None:
                self._nulls = np.zeros(len(self._values), bool)
            self._nulls[self._at : end] = nulls
        self._at = end

    def finish(self, chosen: Optional[Array]) -> Any:
        if self._at != len(self._values):
            raise Error(f"the stream had {self._at} rows instead of {len(self._values)}")
        values, nulls = self._values, self._nulls
        if chosen is not None:
            values, nulls = values[chosen], None if nulls is None else nulls[chosen]
        if self._absent != "mask":
            return values
        return np.ma.MaskedArray(values, mask=np.ma.nomask if nulls is None else nulls)


class GatheredCodes:
    """A whole text column as numbers of the different texts, in the order in which these appear."""

    def __init__(self, count: int) -> None:
        self._codes = np.empty(count, np.int32)
        self._places: Dict[str, int] = {}
        self._at = 0

    def add(self, view: ColumnView, kept: Optional[Array]) -> None:
        codes, nulls = view.numbers(), view.nulls()
        codes = codes if nulls is None else np.where(nulls, -1, codes)
        codes = codes if kept is None else codes[kept]
        places = self._places
        seen = np.zeros(view.dictionary().length, bool)
        seen[codes[codes >= 0]] = True
        renumbered = np.full(len(seen) + 1, -1, np.int32)  # the last one for blank texts
        texts = view.dictionary().texts()
        for code in np.flatnonzero(seen):
            renumbered[code] = places.setdefault(texts[code], len(places))
        self._codes[self._at : self._at + len(codes)] = renumbered[codes]
        self._at += len(codes)

    def finish(self, chosen: Optional[Array]) -> Tuple[Array, List[str]]:
        """The numbers, -1 for blank texts, and the texts."""
        return (self._codes if chosen is None else self._codes[chosen]), list(self._places)


def gather(stream: Stream, sinks: Sequence[Any], kept: Optional[Array]) -> None:
    """Reads a stream to its end into the sinks, one for each column; `kept`: the rows that count."""
    at = 0
    for views in stream:
        length = views[0].length
        part = None if kept is None else kept[at : at + length]
        for sink, view in zip(sinks, views):
            sink.add(view, part)
        at += length


def read_columns(
    source: Callable[[Span], Stream],
    make_sinks: Callable[[int], List[Any]],
    span: Span,
    passing: Optional[Passing],
) -> List[Any]:
    """The chosen rows of a span that pass (None: all do), whole columns."""
    if span.chosen is not None:
        return _read_chosen(source, make_sinks, span, passing)
    if passing is None:
        sinks = make_sinks(span.count)
        gather(source(span), sinks, None)
        return [sink.finish(None) for sink in sinks]
    passes = passing(span)
    # Only the rows between the first and the last one that pass are looked at.
    places = np.flatnonzero(passes)
    low, high = (int(places[0]), int(places[-1]) + 1) if len(places) else (0, 0)
    sinks = make_sinks(len(places))
    gather(source(Span(span.first + low, high - low, None)), sinks, passes[low:high])
    return [sink.finish(None) for sink in sinks]


def _read_chosen(
    source: Callable[[Span], Stream],
    make_sinks: Callable[[int], List[Any]],
    span: Span,
    passing: Optional[Passing],
) -> List[Any]:
    """As `read_columns`, part by part: rows in order and each once, then in the order that was asked for."""
    rows, order = np.unique(np.asarray(span.chosen), return_inverse=True)
    if passing is not None:
        tested = [passing(part)[part.chosen] for part in _parts(rows, span.first)]
        passes = np.concatenate(tested)
        rows = rows[passes]
        order = (np.cumsum(passes) - 1)[order[passes[order]]]
    sinks = make_sinks(len(rows))
    for part in _parts(rows, span.first):
        kept = np.zeros(part.count, bool)
        kept[part.chosen] = True
        gather(source(part), sinks, kept)
    if len(rows) == 0:
        gather(source(Span(span.first, 0, None)), sinks, None)
    as_they_are = np.array_equal(order, np.arange(len(rows)))
    return [sink.finish(None if as_they_are else order) for sink in sinks]


def _parts(rows: Array, first: int) -> Iterator[Span]:
    """Spans that have rows (in order, counted from `first`) which lie near each other."""
    gaps = np.flatnonzero(np.diff(rows) > _FAR_APART) + 1
    for run in np.split(rows, gaps):
        while len(run):
            count = int(np.searchsorted(run, run[0] + _ROWS_OF_A_PART))
            part, run = run[:count], run[count:]
            yield Span(first + int(part[0]), int(part[-1] - part[0]) + 1, part - part[0])


class PassingByParts:
    """Which rows of each batch pass, tested a few batches ahead, so that a long table takes no more memory
    than a short one.
    """

    def __init__(self, passing: Passing, first: int, end: int) -> None:
        self._passing, self._first, self._end = passing, first, end
        self._passes = passing(Span(first, 0, None))  # says what is wrong with the condition

    def of(self, first: int, count: int) -> Array:
        at = first - self._first
        if at + count > len(self._passes):
            ahead = max(count, _FAR_APART // max(1, count) * count)
            self._first, at = first, 0
            self._passes = self._passing(Span(first, min(ahead, self._end - first), None))
        return self._passes[at : at + count]


def batches(
    stream: Stream, absent: str, widen: bool, passes: Optional[PassingByParts]
) -> Iterator[List[Any]]:
    """The columns of each batch; batches of which no row passes are left out."""
    at = 0
    for views in stream:
        length = views[0].length
        kept = None if passes is None else passes.of(at, length)
        at += length
        if kept is not None and not kept.any():
            continue
        arrays = [batch_array(view, absent, widen) for view in views]
        yield arrays if kept is None else [array[kept] for array in arrays]
