"""What goes wrong, as one exception."""

from __future__ import annotations

import operator
from typing import Any, Optional


class Error(Exception):
    """A refusal or failure, with the library's message where the library spoke.

    `str(error)` is one line: the file, then the message.

    Attributes:
        message: what went wrong, without the file.
        file: the table's path, or None where no table is concerned.
        column: the column's name, or None.
        row: the row of the table, or of the rows that were to be written, or None. It counts from 0 as
            arrays do; the message counts rows from 1 as every text of the library does.
        status: the library's status code (negative), or None where the package itself refused.
    """

    def __init__(
        self,
        message: str,
        file: Optional[str] = None,
        column: Optional[str] = None,
        row: Optional[int] = None,
        status: Optional[int] = None,
    ) -> None:
        super().__init__(message, file, column, row, status)
        self.message = message
        self.file = file
        self.column = column
        self.row = row
        self.status = status

    def __str__(self) -> str:
        return f"{self.file}: {self.message}" if self.file else self.message

    def __reduce__(self) -> Any:
        return type(self), (self.message, self.file, self.column, self.row, self.status)


class WrongValue(Error, ValueError):
    """An argument with a value that it cannot have."""


class WrongType(Error, TypeError):
    """An argument of a type that it cannot have."""


def column_error(
    problem: str, column: str, file: Optional[str] = None, row: Optional[int] = None
) -> Error:
    """An error about a column, or about its value in a row counted from 0."""
    place = f"column {column}" if row is None else f"column {column}, row {row + 1}"
    return Error(f"{place}: {problem}", file=file, column=column, row=row)


def whole_number(value: Any, what: str) -> int:
    """An argument that is a whole number. Raises Error for anything else."""
    try:
        return operator.index(value)
    except TypeError:
        raise WrongType(f"{what}: a whole number, not {value!r}") from None


def number_of_rows(value: Any, what: str) -> int:
    """An argument that says how many rows a part of a table has; `what` is the part."""
    rows = whole_number(value, f"rows of {what}")
    if rows < 1:
        raise WrongValue(f"{what} has at least one row, not {rows}")
    return rows
