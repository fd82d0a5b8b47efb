"""Columns by name and by number."""

from __future__ import annotations

import difflib
from typing import Any, Iterable, List, Sequence, Union

import numpy as np

from ._errors import Error, WrongType, column_error
from ._schema import Schema

Key = Union[str, int]
Keys = Union[None, Key, Sequence[Key]]


def unique_names(schema: Schema) -> List[str]:
    """The names in order; one that stands there twice gets `#2` the second time."""
    names: List[str] = []
    for column in schema:
        name, number = column.name, 1
        while name in names:
            number += 1
            name = f"{column.name}#{number}"
        names.append(name)
    return names


def places_of(names: Sequence[str], columns: Keys) -> List[int]:
    """The columns (from 0) that are meant; None: all. Raises Error for one that is not there."""
    if columns is None:
        return list(range(len(names)))
    wanted: Any = [columns] if is_key(columns) else columns
    if not isinstance(wanted, Iterable):
        raise WrongType(f"columns are names or numbers, one or several, not {columns!r}")
    return [_place_of(names, column) for column in wanted]


def is_key(column: object) -> bool:
    """A name or a number, not several of them."""
    return isinstance(column, (str, int, np.integer))


def _place_of(names: Sequence[str], column: Any) -> int:
    if isinstance(column, str):
        if column not in names:
            raise column_error(no_such(column, names), column)
        return names.index(column)
    if not is_key(column):
        raise Error(f"a column is a name or a number, not {column!r}")
    if -len(names) <= column < len(names):
        return int(column) % len(names)
    raise Error(f"the table has {len(names)} columns, numbered from 0")


def no_such(name: str, names: Sequence[str]) -> str:
    near = [other for other in names if other.casefold() == name.casefold()]
    near = near or difflib.get_close_matches(name, names, n=1)
    return "there is no such column" + (f"; is it {near[0]}?" if near else "")
