"""The order of rows by the values of columns."""

from __future__ import annotations

from typing import Any, Iterable, List, Sequence, Tuple, Union

import numpy as np

from ._arrays import Array
from ._errors import Error, WrongType

_TRUTH = (bool, np.bool_)

Ascending = Union[bool, Sequence[bool]]


def directions(ascending: Ascending, columns: int) -> List[bool]:
    if isinstance(ascending, _TRUTH):
        return [bool(ascending)] * columns
    found: List[Any] = list(ascending) if isinstance(ascending, Iterable) else [ascending]
    for value in found:
        if not isinstance(value, _TRUTH):
            raise WrongType(f"ascending: True, False or one of these for each column, not {value!r}")
    if len(found) != columns:
        raise Error(f"ascending: {len(found)} truth values for {columns} columns")
    return found


def order_of(keys: Sequence[Any], ascending: Sequence[bool]) -> Array:
    """The rows (from 0) in order; rows that are equal in all keys stay as they stand.

    A key is an array of numbers, or the codes and the texts of a text column. Absent numbers are -1e30
    and stand first when ascending, NaN last; texts go a, ab, b, capitals before small letters.
    """
    ranks = [_ranks(key) for key in keys]
    signed = [rank if up else -rank for rank, up in zip(ranks, ascending)]
    return np.lexsort(signed[::-1])


def _ranks(key: Union[Array, Tuple[Array, List[str]]]) -> Array:
    if not isinstance(key, tuple):
        return np.unique(key, return_inverse=True)[1].astype(np.int64)
    codes, texts = key
    order = sorted(range(len(texts)), key=texts.__getitem__)
    rank_of = np.zeros(len(texts) + 1, np.int64)  # the last one for blank texts, which stand first
    rank_of[order] = np.arange(1, len(texts) + 1)
    return rank_of[codes]
