"""Columns of floats on their way into a table of doubles, which would round them to seven decimals."""

from __future__ import annotations

import numpy as np

from ._arrow_export import ArrayParts, validity
from ._arrow_import import ColumnView
from ._arrow_remaking import Remake
from ._widening import by_digits


def _doubles(column: ColumnView) -> ArrayParts:
    values, nulls = column.numbers().astype(np.float32, copy=False), column.nulls()
    if nulls is not None:  # whatever stands there
        values = np.where(nulls, np.float32(0), values)
    bits, count = validity(nulls)
    return ArrayParts(column.length, [bits, by_digits(values)], count)


DOUBLES = {"e": Remake("g", _doubles), "f": Remake("g", _doubles)}
