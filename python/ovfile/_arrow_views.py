"""Texts as views: 16 bytes for each text, which hold a short one, or say where a longer one lies.

Some libraries hand all their texts out in this form. The library below takes texts that lie one behind the
other, so they are laid so here, batch by batch.
"""

from __future__ import annotations

from typing import List, Tuple

import numpy as np

from ._arrays import Array
from ._arrow_export import ArrayParts, validity
from ._arrow_import import ColumnView, view
from ._arrow_remaking import Remake
from ._errors import column_error

_VIEW = np.dtype([("length", "=i4"), ("start", "u1", 4), ("buffer", "=i4"), ("offset", "=i4")])
_LONGEST_INSIDE = 12
_ROWS_AT_ONCE = 65536


def _texts(column: ColumnView) -> ArrayParts:
    name, nulls = column.field.name, column.nulls()
    views, buffers = _memory(column, name)
    lengths = views["length"].astype(np.int64)
    if nulls is not None:
        lengths[nulls] = 0
    ends = np.zeros(len(views) + 1, np.int64)
    np.cumsum(lengths, out=ends[1:])
    _check(views, lengths, buffers, name)
    data = np.empty(int(ends[-1]), np.uint8)
    for start in range(0, len(views), _ROWS_AT_ONCE):
        rows = slice(start, start + _ROWS_AT_ONCE)
        end = min(start + _ROWS_AT_ONCE, len(views))
        _lay(views[rows], lengths[rows], buffers, data[ends[start] : ends[end]])
    bits, count = validity(nulls)
    return ArrayParts(column.length, [bits, ends, data], count)


def _memory(column: ColumnView, name: str) -> Tuple[Array, List[Array]]:
    """The views, and the buffers where longer texts lie; the sizes of these stand in the last buffer."""
    array, owner = column.array, column.owner
    many = int(array.n_buffers) - 3
    if many < 0:
        raise column_error("the texts' buffers are missing", name)
    sizes = view(owner, array.buffers[2 + many], many, np.int64)
    buffers = [view(owner, array.buffers[2 + i], int(size), np.uint8) for i, size in enumerate(sizes)]
    end = int(array.offset) + column.length
    return view(owner, array.buffers[1], end, _VIEW.str).view(_VIEW)[array.offset :], buffers


def _check(views: Array, lengths: Array, buffers: List[Array], name: str) -> None:
    """Raises Error for a text that would lie outside its buffer."""
    wrong = lengths < 0
    longer = lengths > _LONGEST_INSIDE
    sizes = np.array([len(buffer) for buffer in buffers], np.int64)
    known = (views["buffer"] >= 0) & (views["buffer"] < len(sizes))
    wrong |= longer & ~known
    inside = np.flatnonzero(longer & known)
    offsets = views["offset"][inside].astype(np.int64)
    ends = offsets + lengths[inside]
    wrong[inside] |= (offsets < 0) | (ends > sizes[views["buffer"][inside]])
    if wrong.any():
        raise column_error("a text lies outside its memory", name, row=int(wrong.argmax()))


def _lay(views: Array, lengths: Array, buffers: List[Array], out: Array) -> None:
    """Lays texts one behind the other."""
    row_of = np.repeat(np.arange(len(views)), lengths)  # of each byte
    begun = np.cumsum(lengths) - lengths
    within = np.arange(len(row_of)) - begun[row_of]
    longer = lengths > _LONGEST_INSIDE
    inside = ~longer[row_of]
    raw = np.ascontiguousarray(views).view(np.uint8).reshape(len(views), _VIEW.itemsize)
    out[inside] = raw[row_of[inside], 4 + within[inside]]
    for number, buffer in enumerate(buffers):
        there = (longer & (views["buffer"] == number))[row_of]
        if there.any():
            out[there] = buffer[views["offset"][row_of[there]].astype(np.int64) + within[there]]


PLAIN_TEXTS = {"vu": Remake("U", _texts)}
