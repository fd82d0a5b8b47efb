"""Columns that are to be written: arrays of numbers and of texts, as parts of an Arrow stream."""

from __future__ import annotations

import sys
from decimal import Decimal
from typing import Any, Iterable, Iterator, List, Mapping, Optional, Sequence, Tuple

import numpy as np

from ._arrays import Array
from ._arrow_export import FORMATS, ArrayParts, Batch, SchemaParts
from ._errors import Error, column_error
from ._schema import NUMBER, TEXT

ROWS_PER_BATCH = 65536
# Whole numbers up to these come back as they were.
_EXACT = {"double": 2**53, "single": 2**24}
_FLOATS = (float, np.floating)
_DATES = "dates have no place in a table; write them as text (.astype(str)) or as numbers"


def _bitmap(nulls: Optional[Array], start: int, stop: int) -> Tuple[Optional[Array], int]:
    """The validity bits of some rows, and how many are null; no bits where none is."""
    part = None if nulls is None else nulls[start:stop]
    count = 0 if part is None else int(np.count_nonzero(part))
    return (np.packbits(~part, bitorder="little") if part is not None and count else None), count


class Source:
    """A column. `kind` is "number", "text", or None where nothing tells: every value is absent."""

    kind: Optional[str] = None

    def __init__(self, name: str, length: int, nulls: Optional[Array] = None) -> None:
        self.name, self.length, self.nulls = name, length, nulls

    def type(self) -> SchemaParts:
        return SchemaParts(self.name, "n")

    def part(self, start: int, stop: int) -> ArrayParts:
        return ArrayParts(stop - start, [], stop - start)

    def longest(self) -> int:
        """Characters of the longest text."""
        return 0

    def as_texts(self) -> "Source":
        """The same as texts. Raises Error for values of which there is more than one way to write them."""
        return self

    def check(self, precision: str) -> None:
        """Raises Error for values that numbers of this precision would not keep."""


class Numbers(Source):
    """Numbers of one type; NaN is absent."""

    kind = NUMBER

    def __init__(self, name: str, values: Array, nulls: Optional[Array] = None) -> None:
        super().__init__(name, len(values), nulls)
        self._whole = values.dtype.kind in "iu"
        if values.dtype.kind == "f":
            wide = values.dtype.itemsize
            values = values.astype(np.float32 if wide < 4 else f"=f{min(wide, 8)}", copy=False)
            missing = np.isnan(values)
            if missing.any():
                self.nulls = missing if nulls is None else missing | nulls
        elif values.dtype.kind == "b":
            values = values.view(np.uint8)
        self._values = values.astype(values.dtype.newbyteorder("="), copy=False)

    def type(self) -> SchemaParts:
        return SchemaParts(self.name, FORMATS[self._values.dtype])

    def part(self, start: int, stop: int) -> ArrayParts:
        bits, count = _bitmap(self.nulls, start, stop)
        return ArrayParts(stop - start, [bits, self._values[start:stop]], count)

    def as_texts(self) -> "Texts":
        if not self._whole:
            raise column_error(
                "only whole numbers become texts in one way; make texts of the others first", self.name
            )
        return Texts(self.name, self._values.astype(str).astype(object), self.nulls)

    def check(self, precision: str) -> None:
        if not self._whole or self._values.dtype.itemsize < 4:
            return
        limit = _EXACT[precision]
        wrong = (self._values > limit) | (self._values < -limit)
        if self.nulls is not None:
            wrong &= ~self.nulls
        if wrong.any():
            row = int(wrong.argmax())
            raise column_error(
                f"{self._values[row]} has more digits than {precision} precision keeps; write the column "
                "as text, or as floats",
                self.name,
                row=row,
            )


class Converted(Numbers):
    """Numbers that were objects: some of these may have more digits than floats, which the others are."""

    def __init__(self, name: str, values: Array, nulls: Optional[Array], objects: Array) -> None:
        super().__init__(name, values, nulls)
        self._objects = objects

    def check(self, precision: str) -> None:
        limit = _EXACT[precision]
        for row, value in enumerate(self._objects):
            if self.nulls is not None and self.nulls[row]:
                continue
            if isinstance(value, (int, np.integer)):
                lost = abs(int(value)) > limit
            else:
                lost = isinstance(value, Decimal) and value.is_finite() and _is_cut(value, limit)
            if lost:
                raise column_error(
                    f"{value} has more digits than {precision} precision keeps; write the column as text, or "
                    "as floats",
                    self.name,
                    row=row,
                )


def _is_cut(value: Decimal, limit: int) -> bool:
    """Whether a decimal does not come back from the float that is nearest to it."""
    if value == value.to_integral_value():
        return abs(value) > limit
    return Decimal(repr(float(value))) != value


class Texts(Source):
    """Texts, `str` objects."""

    kind = TEXT

    def __init__(self, name: str, values: Array, nulls: Optional[Array] = None) -> None:
        super().__init__(name, len(values), nulls)
        if nulls is not None and nulls.any():
            values = values.copy()
            values[nulls] = ""
        self._values = values

    def type(self) -> SchemaParts:
        return SchemaParts(self.name, "u")

    def part(self, start: int, stop: int) -> ArrayParts:
        bits, count = _bitmap(self.nulls, start, stop)
        ends, data = encode(self._values[start:stop].tolist(), self.name, start)
        return ArrayParts(stop - start, [bits, ends, data], count)

    def longest(self) -> int:
        return _longest(self._values)


class Codes(Source):
    """Texts of a few, by number; a negative number is absent."""

    kind = TEXT

    def __init__(self, name: str, codes: Array, texts: Sequence[str]) -> None:
        nulls = codes < 0
        super().__init__(name, len(codes), nulls if nulls.any() else None)
        self._codes = codes.astype(np.int32)
        self._texts = list(texts)

    def type(self) -> SchemaParts:
        return SchemaParts(self.name, "i", SchemaParts("", "u"))

    def part(self, start: int, stop: int) -> ArrayParts:
        bits, count = _bitmap(self.nulls, start, stop)
        codes = np.maximum(self._codes[start:stop], 0)
        texts = self._texts or [""]
        dictionary = ArrayParts(len(texts), [None, *encode(texts, self.name, None)])
        return ArrayParts(stop - start, [bits, codes], count, dictionary)

    def longest(self) -> int:
        return _longest(self._texts)


def _longest(texts: Any) -> int:
    """Characters of the longest text, without the blanks at its end, which a table does not keep."""
    most = max(map(len, texts), default=0)
    if most == 0 or any(len(text) == most and text[-1] not in " \t" for text in texts):
        return most
    return max(len(text.rstrip(" \t")) for text in texts)


def encode(texts: List[str], column: str, start: Optional[int]) -> Tuple[Array, Array]:
    """The texts' bounds and bytes, UTF-8. `start` is the row of the first one, for messages."""
    joined = "".join(texts)
    if joined.isascii():
        lengths, data = list(map(len, texts)), joined.encode("ascii")
    else:
        try:
            parts = [text.encode("utf-8") for text in texts]
        except UnicodeEncodeError:
            bad = next(i for i, text in enumerate(texts) if not _is_encodable(text))
            row = None if start is None else start + bad
            raise column_error("the text has half a character", column, row=row) from None
        lengths, data = list(map(len, parts)), b"".join(parts)
    ends = np.zeros(len(texts) + 1, np.int32)
    np.cumsum(lengths, out=ends[1:])
    return ends, np.frombuffer(data, np.uint8)


def _is_encodable(text: str) -> bool:
    return not any("\ud800" <= c <= "\udfff" for c in text)


def array_source(name: str, values: Any) -> Source:
    """A column out of an array, a masked array or a sequence. Raises Error for types without a place."""
    nulls = None
    if isinstance(values, np.ma.MaskedArray):
        nulls = np.ma.getmaskarray(values)
        values = values.data
    elif not isinstance(values, np.ndarray):
        values = _array_of(values)
    if values.ndim != 1:
        raise column_error(f"the values have {values.ndim} dimensions instead of one", name)
    kind = values.dtype.kind
    if kind in "biuf":
        return Numbers(name, values, nulls)
    if kind == "U":
        return Texts(name, values.astype(object), nulls)
    if kind == "O":
        missing = missing_in(values)
        return object_source(name, values, missing if nulls is None else missing | nulls)
    raise column_error(_DATES if kind in "mM" else f"values of type {values.dtype} have no place", name)


def _check_several(name: str, values: Any) -> None:
    """Raises Error for a single value, and for what has no order. A text is one value, not its letters."""
    try:
        single = isinstance(values, (str, bytes, bytearray)) or iter(values) is None
    except TypeError:
        single = True
    if single:
        raise column_error(f"{values!r} is one value; a column is a list or an array of values", name)
    if isinstance(values, (Mapping, set, frozenset)):
        raise column_error(f"a {type(values).__name__} has no order; a column is a list or an array", name)


def _array_of(values: Any) -> Array:
    items = list(values)
    array = np.empty(len(items), object)
    array[:] = items
    return array


def missing_in(values: Array) -> Array:
    """Where objects stand for nothing: None, NaN, and what pandas has for it."""
    pandas = sys.modules.get("pandas")
    if pandas is not None:
        return np.asarray(pandas.isna(values), bool)
    found = [v is None or (isinstance(v, (float, np.floating)) and v != v) for v in values]
    return np.array(found, bool)


def object_source(name: str, values: Array, nulls: Array) -> Source:
    """A column out of objects that are all texts, or all numbers, or missing."""
    there = values[~nulls]
    types = set(map(type, there))
    if not types:
        return Source(name, len(values), nulls)
    missing = nulls if nulls.any() else None
    if all(issubclass(kind, str) for kind in types):
        return Texts(name, values, missing)
    if all(_is_number(kind) for kind in types):
        filled = np.where(nulls, 0, values)
        try:
            converted = filled.astype(_number_type(types))
        except OverflowError:
            raise column_error("a whole number has more than 64 bits", name) from None
        except ValueError as failure:  # a decimal that signals
            raise column_error(str(failure), name) from None
        if converted.dtype == np.float64 and not all(issubclass(kind, _FLOATS) for kind in types):
            return Converted(name, converted, missing, filled)
        return Numbers(name, converted, missing)
    _refuse_objects(name, values, nulls, mixed=any(issubclass(kind, str) for kind in types))
    raise AssertionError


def _number_type(types: Iterable[type]) -> Any:
    """For objects of these types together."""
    if all(issubclass(kind, (bool, np.bool_)) for kind in types):
        return np.bool_
    whole = all(issubclass(kind, (int, np.integer, np.bool_)) for kind in types)
    return np.int64 if whole else np.float64


def _is_number(kind: type) -> bool:
    return issubclass(kind, (int, float, np.integer, np.floating, np.bool_, Decimal))


def _refuse_objects(name: str, values: Array, nulls: Array, mixed: bool) -> None:
    """Raises Error for the first value that fits neither the column's texts nor its numbers."""
    rows = np.flatnonzero(~nulls)
    for row in rows:
        value = values[row]
        if isinstance(value, str) or _is_number(type(value)):
            continue
        dated = hasattr(value, "isoformat") or isinstance(value, (np.datetime64, np.timedelta64))
        problem = _DATES if dated else f"{value!r} is neither a text nor a number"
        raise column_error(problem, name, row=int(row))
    first_is_text = isinstance(values[rows[0]], str)
    odd = next(row for row in rows if isinstance(values[row], str) != first_is_text)
    what = "a number among texts" if first_is_text else "a text among numbers"
    raise column_error(f"{values[odd]!r} is {what}", name, row=int(odd))


def is_of_pandas(data: Any) -> bool:
    return type(data).__module__.partition(".")[0] == "pandas"


def source_of(name: str, values: Any) -> Source:
    """A column out of a sequence, an array, or a series."""
    if not is_of_pandas(values):
        _check_several(name, values)
        return array_source(name, values)
    from ._pandas import series_of, series_source

    return series_source(name, series_of(values))


def sources_of(data: Mapping[str, Any]) -> List[Source]:
    """Columns out of a mapping of names to arrays or series of one length."""
    sources = []
    for name, values in data.items():
        if not isinstance(name, str):
            raise Error(f"a column's name is a text, not {name!r}")
        sources.append(source_of(name, values))
    check_lengths(sources)
    return sources


def check_lengths(sources: Sequence[Source]) -> None:
    for source in sources:
        if source.length != sources[0].length:
            raise column_error(
                f"{source.length} values, where {sources[0].name} has {sources[0].length}", source.name
            )


def batches_of(sources: Sequence[Source]) -> Iterator[Batch]:
    length = sources[0].length if sources else 0
    for start in range(0, length, ROWS_PER_BATCH):
        stop = min(start + ROWS_PER_BATCH, length)
        yield Batch(stop - start, [source.part(start, stop) for source in sources])
