"""Data frames."""

from __future__ import annotations

from typing import Any, List, Sequence

import numpy as np
import pandas as pd

from ._arrays import Array
from ._columns import Codes, Numbers, Source
from ._errors import Error
from ._recognizing import array_source, check_lengths, missing_in, object_source


def frame_of(names: Sequence[str], arrays: Sequence[Any], blank: Any, rows: int) -> pd.DataFrame:
    """A frame of arrays; a pair of codes and texts becomes a categorical. Without any it has so many rows."""
    series = {i: pd.Series(_values(array, blank), copy=False) for i, array in enumerate(arrays)}
    frame = pd.DataFrame(series, index=None if series else pd.RangeIndex(rows), copy=False)
    frame.columns = pd.Index(list(names), dtype=object)
    return frame


def _values(array: Any, blank: Any) -> Any:
    if isinstance(array, tuple):
        return _categorical(array[0], array[1], blank)
    if array.dtype == object and not (isinstance(blank, str) and blank == ""):
        array[array == ""] = blank
    return array


def _categorical(codes: Array, texts: List[str], blank: Any) -> pd.Categorical:
    if isinstance(blank, str) and (codes < 0).any():
        codes = np.where(codes < 0, len(texts), codes)
        texts = [*texts, blank]
    return pd.Categorical.from_codes(codes, categories=pd.Index(texts, dtype=object))


def frame_sources(frame: Any) -> List[Source]:
    """The columns of a frame, which are to be written; the index is not one of them."""
    if not isinstance(frame, pd.DataFrame):
        raise Error(f"rows are a data frame, not a {type(frame).__name__}")
    sources: List[Source] = []
    for place, name in enumerate(frame.columns):
        if not isinstance(name, str):
            raise Error(f"a column's name is a text, not {name!r}")
        sources.append(series_source(name, frame.iloc[:, place]))
    check_lengths(sources)
    return sources


def series_of(values: Any) -> Any:
    """A series, out of one or out of an array of pandas'."""
    if isinstance(values, pd.Series):
        return values
    if isinstance(values, pd.DataFrame) or not pd.api.types.is_list_like(values):
        raise Error(f"a column is a series or an array, not {type(values).__name__}")
    return pd.Series(values)


def series_source(name: str, series: Any) -> Source:
    """A column out of a series. Raises Error for types without a place in a table."""
    dtype = series.dtype
    if isinstance(dtype, pd.CategoricalDtype):
        return _categorical_source(name, series)
    if isinstance(dtype, np.dtype):
        return array_source(name, series.to_numpy())
    if isinstance(dtype, pd.SparseDtype):
        return series_source(name, series.sparse.to_dense())
    nulls = series.isna().to_numpy()
    if pd.api.types.is_numeric_dtype(dtype):
        plain = getattr(dtype, "numpy_dtype", np.dtype(np.float64))
        filled = series.fillna(plain.type(0)) if nulls.any() else series
        return Numbers(name, filled.to_numpy(dtype=plain), nulls if nulls.any() else None)
    if pd.api.types.is_datetime64_any_dtype(dtype) or isinstance(dtype, pd.PeriodDtype):
        return array_source(name, np.empty(len(series), "M8[ns]"))  # says why not
    values = series.to_numpy(dtype=object)
    return object_source(name, values, missing_in(values))


def _categorical_source(name: str, series: Any) -> Source:
    categories = series.cat.categories
    codes = series.cat.codes.to_numpy()
    texts = categories.to_numpy(dtype=object)
    if len(texts) == 0:
        return Source(name, len(codes), np.ones(len(codes), bool))
    if all(isinstance(text, str) for text in texts):
        return Codes(name, codes, list(texts))
    missing = codes < 0
    source = series_source(name, pd.Series(categories.take(np.maximum(codes, 0))))
    source.nulls = missing if source.nulls is None else source.nulls | missing
    return source
