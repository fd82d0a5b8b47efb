"""What the columns of a new table are: what the caller says, else what the values tell."""

from __future__ import annotations

from dataclasses import replace
from typing import Any, Dict, List, Mapping, NamedTuple, Optional, Protocol, Tuple, Union

import numpy as np

from ._errors import WrongType, column_error
from ._schema import NUMBER, TEXT, WIDEST_TEXT, WORD_CHARACTERS, Column, Schema, check_precision
from ._widening import by_digits

Kinds = Mapping[str, Union[str, int, Column]]
Implicit = Mapping[str, Union[float, str, None]]


class Wishes(NamedTuple):
    """What the caller says of a new table; see `write`."""

    precision: Optional[str] = None
    kinds: Optional[Kinds] = None
    implicit: Optional[Implicit] = None
    description: Optional[str] = None
    schema: Optional[Schema] = None


class Planned(Protocol):
    """Rows that are to be written."""

    @property
    def names(self) -> List[str]: ...

    def columns(self, kinds: Kinds) -> List[Column]:
        """The columns of a table that can hold the rows; `kinds` says what is not to be guessed."""


def planned_schema(rows: Planned, wishes: Wishes) -> Schema:
    """The schema of a table for the rows: that of the wishes first, then the columns that it lacks."""
    given = Schema() if wishes.schema is None else wishes.schema
    if not isinstance(given, Schema):
        raise WrongType(f"schema is a Schema, such as table.schema, not {given!r}")
    precision = wishes.precision or given.precision
    check_precision(precision)
    for what, argument in (("kinds", wishes.kinds), ("implicit", wishes.implicit)):
        if argument is not None and not isinstance(argument, Mapping):
            raise WrongType(f"{what} is a mapping of names, not {argument!r}")
    known: Dict[str, Union[str, int, Column]] = dict(wishes.kinds or {})
    for name in known:
        if name not in rows.names:
            raise column_error("kinds: there is no such column", name)
        wanted_column(name, known)
    known.update({column.name: column for column in given.columns})
    guessed = [column for column in rows.columns(known) if column.name not in given]
    added = [_implicit_column(name, value) for name, value in (wishes.implicit or {}).items()]
    description = given.description if wishes.description is None else wishes.description
    columns = columns_of(given, precision)
    return Schema(columns + tuple(guessed) + tuple(added), precision, description)


def columns_of(schema: Schema, precision: str) -> Tuple[Column, ...]:
    """Its columns. The defaults of floats become for doubles what the values of rows become."""
    if schema.precision == precision or precision != "double":
        return schema.columns
    return tuple(replace(column, default=_widened(column.default)) for column in schema.columns)


def _widened(default: Union[float, str, None]) -> Union[float, str, None]:
    if not isinstance(default, float) or abs(default) > np.finfo(np.float32).max:
        return default
    narrow = np.array([default], np.float32)
    return float(by_digits(narrow)[0]) if narrow[0] == default else default


def wanted_column(name: str, kinds: Kinds) -> Optional[Column]:
    """What the caller said of a column; width 0 where no width was given."""
    said: Any = kinds.get(name)
    if said is None or isinstance(said, Column):
        return said
    if isinstance(said, (int, np.integer)) and not isinstance(said, bool):
        return Column.text(name, _width(name, int(said)))
    kind, colon, width = said.partition(":") if isinstance(said, str) else ("", "", "")
    if kind == TEXT and not colon:
        return Column.text(name, 0)
    if kind == TEXT and width.isdecimal():
        return Column.text(name, _width(name, int(width)))
    if said == NUMBER:
        return Column.number(name)
    raise column_error(f'a kind is "number", "text", "text:WIDTH" or a width, not {said!r}', name)


def _width(name: str, width: int) -> int:
    if not 1 <= width <= WIDEST_TEXT:
        raise column_error(f"the width of a text is 1 to {WIDEST_TEXT}, not {width}", name)
    return width


def is_settled(name: str, kinds: Kinds) -> bool:
    """Whether nothing of a column is to be guessed."""
    wanted = wanted_column(name, kinds)
    return wanted is not None and bool(wanted.width or wanted.kind == NUMBER)


def planned_column(name: str, kind: str, longest: int, kinds: Kinds) -> Column:
    """A column for values of a kind, texts of which have at most `longest` characters."""
    wanted = wanted_column(name, kinds)
    if wanted is not None and is_settled(name, kinds):
        return wanted
    if kind == NUMBER and wanted is None:
        return Column.number(name)
    width = -(-max(1, longest) // WORD_CHARACTERS) * WORD_CHARACTERS
    return Column.text(name, width, wanted.default if wanted else None)  # type: ignore[arg-type]


def _implicit_column(name: str, value: Union[float, str, None]) -> Column:
    if isinstance(value, str):
        return Column.text(name, max(WORD_CHARACTERS, len(value)), value, implicit=True)
    return Column.number(name, value, implicit=True)
