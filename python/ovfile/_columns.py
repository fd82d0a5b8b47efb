"""Columns that are to be written: arrays of numbers and of texts, as parts of an Arrow stream."""

from __future__ import annotations

from decimal import Decimal
from typing import Any, Iterator, List, Optional, Sequence, Tuple

import numpy as np

from ._arrays import Array
from ._arrow_export import FORMATS, ArrayParts, Batch, SchemaParts, validity
from ._errors import column_error
from ._schema import NUMBER, TEXT
from ._widening import by_digits

ROWS_PER_BATCH = 65536
# Whole numbers up to these come back as they were.
_EXACT = {"double": 2**53, "single": 2**24}


class Source:
    """A column. `kind` is "number", "text", or None where nothing tells: every value is absent."""

    kind: Optional[str] = None

    def __init__(self, name: str, length: int, nulls: Optional[Array] = None) -> None:
        self.name, self.length, self.nulls = name, length, nulls

    def type(self) -> SchemaParts:
        return SchemaParts(self.name, "n")

    def part(self, start: int, stop: int) -> ArrayParts:
        return ArrayParts(stop - start, [], stop - start)

    def validity(self, start: int, stop: int) -> Tuple[Optional[Array], int]:
        """The bits that say where values are, and how many of the rows are null."""
        return validity(None if self.nulls is None else self.nulls[start:stop])

    def longest(self) -> int:
        """Characters of the longest text."""
        return 0

    def as_texts(self) -> "Source":
        """The same as texts. Raises Error for values of which there is more than one way to write them."""
        return self

    def fit(self, precision: str) -> None:
        """For a table of this precision. Raises Error for values that its numbers would not keep."""


class Numbers(Source):
    """Numbers of one type; NaN is absent. Floats go into a table of doubles as what their digits say."""

    kind = NUMBER

    def __init__(self, name: str, values: Array, nulls: Optional[Array] = None) -> None:
        super().__init__(name, len(values), nulls)
        self._whole = values.dtype.kind in "iu"
        self._widened = False
        if values.dtype.kind == "f":
            values = _floats(name, values, nulls)
            missing = np.isnan(values)
            if missing.any():
                self.nulls = missing if nulls is None else missing | nulls
        elif values.dtype.kind == "b":
            values = values.view(np.uint8)
        self._values = values.astype(values.dtype.newbyteorder("="), copy=False)

    def type(self) -> SchemaParts:
        return SchemaParts(self.name, "g" if self._widened else FORMATS[self._values.dtype])

    def part(self, start: int, stop: int) -> ArrayParts:
        bits, count = self.validity(start, stop)
        values = self._values[start:stop]
        return ArrayParts(stop - start, [bits, by_digits(values) if self._widened else values], count)

    def as_texts(self) -> "Texts":
        if not self._whole:
            raise column_error(
                "only whole numbers become texts in one way; make texts of the others first", self.name
            )
        return Texts(self.name, self._values.astype(str).astype(object), self.nulls)

    def fit(self, precision: str) -> None:
        self._widened = precision == "double" and self._values.dtype == np.float32
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


def _floats(name: str, values: Array, nulls: Optional[Array]) -> Array:
    """As floats of 4 or 8 bytes. Raises Error for a number that these cannot hold."""
    size = min(max(4, values.dtype.itemsize), 8)
    with np.errstate(over="ignore", under="ignore"):
        made = values.astype(f"=f{size}", copy=False)
    if values.dtype.itemsize > size:
        check_range(name, values, made, nulls)
    return made


def check_range(name: str, given: Array, made: Array, nulls: Optional[Array]) -> None:
    """Raises Error for a number of which an infinity was made."""
    wrong = np.flatnonzero(np.isinf(made) & (nulls is None or ~nulls))
    wrong = wrong[given[wrong] != made[wrong]]
    if len(wrong):
        raise column_error("the number is beyond what the column can hold", name, row=int(wrong[0]))


class Converted(Numbers):
    """Numbers that were objects: some of these may have more digits than floats, which the others are."""

    def __init__(self, name: str, values: Array, nulls: Optional[Array], objects: Array) -> None:
        super().__init__(name, values, nulls)
        self._objects = objects

    def fit(self, precision: str) -> None:
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
        bits, count = self.validity(start, stop)
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
        bits, count = self.validity(start, stop)
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


def batches_of(sources: Sequence[Source]) -> Iterator[Batch]:
    length = sources[0].length if sources else 0
    for start in range(0, length, ROWS_PER_BATCH):
        stop = min(start + ROWS_PER_BATCH, length)
        yield Batch(stop - start, [source.part(start, stop) for source in sources])
