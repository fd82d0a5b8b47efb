"""Reading Arrow streams: batches as they come, their columns as numpy arrays.

An array is a view of the batch's memory, which lives as long as any array over it, and is not writeable.
"""

from __future__ import annotations

import ctypes
from typing import Any, Iterator, List, Optional, Tuple

import numpy as np

from ._arrays import Array
from ._arrow_abi import ArrowArray, ArrowArrayStream, ArrowSchema, GetStructure, last_error, release
from ._arrow_check import check_batch, check_bounds
from ._errors import Error, column_error

NUMBERS = {
    "c": np.int8,
    "C": np.uint8,
    "s": np.int16,
    "S": np.uint16,
    "i": np.int32,
    "I": np.uint32,
    "l": np.int64,
    "L": np.uint64,
    "e": np.float16,
    "f": np.float32,
    "g": np.float64,
}
OFFSETS = {"u": np.int32, "U": np.int64}


class Owner:
    """Owns a structure and releases it when nothing needs it any more."""

    def __init__(self, structure: Any) -> None:
        self.structure = structure

    def __del__(self, let_go: Any = release) -> None:
        let_go(self.structure)


class _Memory:
    """Lends memory to an array and keeps its owner alive."""

    def __init__(self, owner: Owner, address: int, count: int, typestr: str) -> None:
        self.owner = owner
        self.__array_interface__ = {
            "data": (address, True),
            "shape": (count,),
            "typestr": typestr,
            "version": 3,
        }


def view(owner: Owner, address: Optional[int], count: int, kind: Any) -> Array:
    """An array of `count` values over memory of the owner's."""
    dtype = np.dtype(kind)
    if count == 0 or not address:
        return np.empty(0, dtype)
    return np.asarray(_Memory(owner, address, count, dtype.str))


class Field:
    """A column's name and type. `text` is None for numbers, else the format of the texts."""

    def __init__(self, schema: ArrowSchema) -> None:
        self.name = (schema.name or b"").decode("utf-8", "replace")
        self.format = (schema.format or b"").decode("ascii", "replace")
        values = schema.dictionary.contents if schema.dictionary else schema
        self.is_dictionary = bool(schema.dictionary)
        self.value_format = (values.format or b"").decode("ascii", "replace")
        self.is_text = self.value_format in OFFSETS


def nulls_of(array: ArrowArray, owner: Owner) -> Optional[Array]:
    """Where an array's bitmap says that nothing is, as booleans; None: nowhere."""
    if array.null_count == 0 or array.n_buffers == 0 or not array.buffers or not array.buffers[0]:
        return None
    end = array.offset + array.length
    bits = np.unpackbits(view(owner, array.buffers[0], (end + 7) // 8, np.uint8), bitorder="little")
    nulls = bits[array.offset : end] == 0
    return nulls if nulls.any() else None


class ColumnView:
    """One column of a batch."""

    def __init__(self, field: Field, array: ArrowArray, owner: Owner) -> None:
        self.field = field
        self.length = int(array.length)
        self.array = array
        self.owner = owner

    def nulls(self) -> Optional[Array]:
        """Where nothing is, as booleans; None: there is something everywhere."""
        if self.field.format == "n":
            return np.ones(self.length, bool)
        return nulls_of(self.array, self.owner)

    def numbers(self) -> Array:
        """The values of a numeric column, or the indexes of a dictionary's; a view."""
        array, offset = self.array, self.array.offset
        kind = NUMBERS[self.field.format]
        return view(self.owner, array.buffers[1], offset + self.length, kind)[offset:]

    def dictionary(self) -> "ColumnView":
        plain = object.__new__(Field)
        plain.__dict__.update(self.field.__dict__)
        plain.format, plain.is_dictionary = self.field.value_format, False
        return ColumnView(plain, self.array.dictionary.contents, self.owner)

    def encoded(self) -> Tuple[Array, Array]:
        """A text column's bounds (one more than rows) and the bytes between them, UTF-8."""
        array, offset = self.array, self.array.offset
        if self.length == 0:  # there may be no bounds at all
            return np.zeros(1, np.int64), np.empty(0, np.uint8)
        bounds = view(
            self.owner, array.buffers[1], offset + self.length + 1, OFFSETS[self.field.format]
        )[offset:]
        check_bounds(bounds, self.field.name)
        end = int(bounds[-1])
        if end > 0 and not array.buffers[2]:
            raise column_error("the batch lacks the texts' characters", self.field.name)
        return bounds, view(self.owner, array.buffers[2], end, np.uint8)

    def texts(self) -> Array:
        """The values of a text column, str objects; nulls are empty texts."""
        bounds, data = self.encoded()
        made = np.empty(self.length, object)
        raw = data.tobytes()
        ends = bounds.tolist()
        whole = raw.decode("utf-8") if raw.isascii() else None
        if whole is not None:
            made[:] = [whole[a:b] for a, b in zip(ends, ends[1:])]
        else:
            made[:] = [raw[a:b].decode("utf-8") for a, b in zip(ends, ends[1:])]
        nulls = self.nulls()
        if nulls is not None:
            made[nulls] = ""
        return made

    def longest_text(self) -> int:
        """Characters of the longest text; a dictionary's texts count whether they are used or not."""
        if self.field.is_dictionary:
            return self.dictionary().longest_text()
        bounds, data = self.encoded()
        if len(bounds) < 2:
            return 0
        begun = np.concatenate(([0], np.cumsum((data & 0xC0) != 0x80)))
        return int(np.diff(begun[bounds]).max())


def child_of(batch: ArrowArray, index: int) -> ArrowArray:
    """A column of a batch, which has been checked, with the rows that the batch counts; its memory is the
    batch's.
    """
    child: ArrowArray = batch.children[index].contents
    if batch.offset == 0 and batch.length == child.length:
        return child
    part = ArrowArray()
    ctypes.memmove(ctypes.byref(part), ctypes.byref(child), ctypes.sizeof(part))
    part.offset, part.length = child.offset + batch.offset, batch.length
    part.null_count = -1
    return part


class Stream:
    """Owns an Arrow stream; iterates over its batches, each a list of ColumnView."""

    def __init__(self, stream: ArrowArrayStream) -> None:
        self._owner = Owner(stream)
        self._stream = stream
        schema = ArrowSchema()
        self._get(stream.get_schema, schema)
        self.schema = Owner(schema)
        if schema.format != b"+s":
            raise Error("the stream has no columns: it is not one of structures")
        children = range(schema.n_children)
        self.fields: List[Field] = [Field(schema.children[i].contents) for i in children]

    def next(self) -> Optional[Owner]:
        """The next batch's structure; None behind the last. Raises Error for one that cannot be read."""
        batch = ArrowArray()
        self._get(self._stream.get_next, batch)
        if not batch.release:
            return None
        owner = Owner(batch)
        check_batch(batch, self.fields)
        return owner

    def __iter__(self) -> Iterator[List[ColumnView]]:
        for owner in iter(self.next, None):
            yield self.columns(owner)

    def columns(self, owner: Owner) -> List[ColumnView]:
        children = enumerate(self.fields)
        return [ColumnView(field, child_of(owner.structure, i), owner) for i, field in children]

    def _get(self, function: int, out: Any) -> None:
        stream = self._stream
        code = GetStructure(function)(ctypes.addressof(stream), ctypes.addressof(out))
        if code != 0:
            raise Error(last_error(stream) or f"the stream failed with code {code}")
