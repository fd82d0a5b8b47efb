"""What has to hold of a batch before its memory is looked at.

A batch comes from somebody else and tells lengths and offsets, but no sizes of memory: what contradicts itself
is refused, before anything is read that is not there.
"""

from __future__ import annotations

from typing import Any, Sequence

import numpy as np

from ._arrays import Array
from ._arrow_abi import ArrowArray
from ._errors import Error, column_error

_MOST = 2**63 - 1
_BUFFERS_OF = {"n": 0, "u": 3, "U": 3, "vu": 3}
_NUMBERS = "bcCsSiIlLefg"


def check_batch(batch: ArrowArray, fields: Sequence[Any]) -> None:
    """Raises Error for a batch that does not fit the stream's columns, or that its columns do not fill."""
    if batch.length < 0 or batch.offset < 0 or batch.offset + batch.length > _MOST:
        raise Error("a batch has a length or offset that cannot be")
    if batch.n_children != len(fields) or (fields and not batch.children):
        raise Error("a batch has another number of columns than the stream")
    for place, field in enumerate(fields):
        if not batch.children[place]:
            raise column_error("the batch lacks the column", field.name)
        child = batch.children[place].contents
        _check_column(child, field.format, field.name)
        if child.length < batch.offset + batch.length:
            what = f"{child.length} values for {batch.offset + batch.length} rows of a batch"
            raise column_error(what, field.name)
        if bool(child.dictionary) != field.is_dictionary:
            raise column_error("the batch has a dictionary where the stream has none, or none", field.name)
        if field.is_dictionary:
            _check_column(child.dictionary.contents, field.value_format, field.name)


def _check_column(array: ArrowArray, code: str, name: str) -> None:
    if array.length < 0 or array.offset < 0 or array.offset + array.length > _MOST:
        raise column_error("the batch has a length or offset that cannot be", name)
    buffers = _BUFFERS_OF.get(code, 2 if code and code in _NUMBERS else 0)
    if array.n_buffers < buffers or (buffers and not array.buffers):
        raise column_error("the batch lacks some of the column's memory", name)
    if buffers and array.length and not array.buffers[1]:
        raise column_error("the batch lacks the column's values", name)


def check_bounds(bounds: Array, name: str) -> None:
    """Raises Error for texts that begin before their memory does, or end before they begin."""
    wrong = bounds[1:] < bounds[:-1]
    wrong[:1] |= bounds[0] < 0
    if wrong.any():
        row = int(np.argmax(wrong))
        raise column_error("a text lies outside its memory", name, row=row)
