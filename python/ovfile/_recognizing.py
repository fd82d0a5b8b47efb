"""Which kind of column a sequence, an array or a series makes."""

from __future__ import annotations

import sys
from decimal import Decimal
from typing import Any, Iterable, List, Mapping, Sequence

import numpy as np

from ._arrays import Array
from ._columns import Converted, Numbers, Source, Texts, check_range
from ._errors import Error, column_error
from ._widening import SHORT_FLOATS, by_digits

_FLOATS = (float, np.floating)
_DATES = "dates have no place in a table; write them as text (.astype(str)) or as numbers"


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
            with np.errstate(over="ignore", under="ignore"):
                kind = _number_type(types)
                if kind is np.float64 and any(issubclass(each, SHORT_FLOATS) for each in types):
                    filled = _widened(filled)
                converted = filled.astype(kind)
        except OverflowError:
            raise column_error("a whole number has more than 64 bits", name) from None
        except ValueError as failure:  # a decimal that signals
            raise column_error(str(failure), name) from None
        if converted.dtype == np.float64:
            check_range(name, filled, converted, missing)
        if converted.dtype == np.float64 and not all(issubclass(kind, _FLOATS) for kind in types):
            return Converted(name, converted, missing, filled)
        return Numbers(name, converted, missing)
    _refuse_objects(name, values, nulls, mixed=any(issubclass(kind, str) for kind in types))
    raise AssertionError


def _widened(values: Array) -> Array:
    """Floats among other numbers as the doubles that their digits say."""
    made = values.copy()
    places = np.flatnonzero([isinstance(value, SHORT_FLOATS) for value in values])
    made[places] = by_digits(values[places].astype(np.float32))
    return made


def _number_type(types: Iterable[type]) -> Any:
    """For objects of these types together."""
    if all(issubclass(kind, (bool, np.bool_)) for kind in types):
        return np.bool_
    if all(issubclass(kind, np.float32) for kind in types):
        return np.float32  # its digits count, as those of an array do
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
