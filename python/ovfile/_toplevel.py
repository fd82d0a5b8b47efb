"""Opening, creating and writing tables."""

from __future__ import annotations

import contextlib
import os
from typing import TYPE_CHECKING, Any, Iterable, Optional, Union

from ._changing import rows_of
from ._component import Interface
from ._errors import Error, WrongType, WrongValue
from ._interruption import held_signals
from ._library import library
from ._planning import Implicit, Kinds, Wishes, columns_of, planned_schema
from ._reading import Rows
from ._recognizing import is_of_pandas
from ._replacement import require_file
from ._rows import ArrowRows, has_stream, stream_of
from ._schema import Column, Schema, parse_columns
from ._naming import Keys
from ._table import PathLike, Table
from ._writing import create_file, write_new

if TYPE_CHECKING:
    import pandas

_MODES = {"r": 1, "r+": 0}


def open(path: PathLike, mode: str = "r") -> Table:
    """Opens a table file.

    Args:
        path: the file; a link file opens the table that it names.
        mode: "r" to read, "r+" to change. New tables are made by `create`.

    Returns:
        The table, to be used in a `with` statement.

    Raises:
        Error: there is no such file, it is not a table, or it cannot be opened.
    """
    if not isinstance(mode, str) or mode not in _MODES:
        hint = "; ovfile.create makes a new table" if mode in ["w", "x", "w+", "x+"] else ""
        raise WrongValue(f'mode is "r" or "r+", not {mode!r}{hint}')
    name = _absolute(path)
    handle = library().table()
    _about(name, handle, "Open", name, _MODES[mode])
    return Table(handle, name, mode)


def create(
    path: PathLike,
    columns: Iterable[Union[Column, str]] = (),
    *,
    template: Optional[Schema] = None,
    precision: Optional[str] = None,
    description: Optional[str] = None,
    overwrite: bool = False,
) -> Table:
    """Makes a new table without rows and opens it for changes.

    Args:
        path: the file.
        columns: `Column` objects, or words: ``"CU"`` for numbers, ``"BHID:12"`` for texts.
        template: columns that come first, such as `ovfile.templates.points()` or another table's schema.
        precision: "double" or "single"; None: the template's, else double.
        description: None: the template's; where that is empty the library writes one with the date.
        overwrite: False: a file of that name is an error; True: it is emptied at once. To replace a
            table by another one in one step use `write`.

    Raises:
        Error: the file exists or cannot be made, or no table can have these columns.
    """
    name = _absolute(path)
    base = template or Schema()
    precision = precision or base.precision
    schema = Schema(
        columns_of(base, precision) + parse_columns(columns),
        precision,
        base.description if description is None else description,
    )
    try:
        require_file(name)
        own = not (overwrite and os.path.lexists(name))
        if own:
            _reserve(name)
        handle = _created(name, schema, own)
    except Error as failure:
        failure.file = failure.file or name
        raise
    return Table(handle, name, "r+")


def _created(name: str, schema: Schema, own: bool) -> Interface:
    try:
        return create_file(name, schema, own)
    except BaseException:
        if own:
            with contextlib.suppress(FileNotFoundError):
                os.unlink(name)
        raise


def read_pandas(
    path: PathLike,
    columns: Keys = None,
    where: Optional[str] = None,
    rows: Rows = None,
    *,
    categories: bool = False,
    blank: Any = "",
    widen: bool = False,
) -> "pandas.DataFrame":
    """A table file as a data frame: `open`, `Table.to_pandas`, `close`."""
    with open(path) as table:
        return table.to_pandas(columns, where, rows, categories=categories, blank=blank, widen=widen)


def write(
    data: Any,
    path: PathLike,
    precision: Optional[str] = None,
    kinds: Optional[Kinds] = None,
    *,
    implicit: Optional[Implicit] = None,
    description: Optional[str] = None,
    schema: Optional[Schema] = None,
) -> int:
    """Writes a table file that has these rows. It appears whole or, after a failure, not at all.

    A file of that name is replaced in one step and keeps its rights; after a failure or Ctrl-C it stands as
    it was. What is no regular file is not replaced, nor is a table that somebody has open.

    A stream is written batch by batch where `schema` or `kinds` name the widths of all its texts; else its
    batches are kept until they are known.

    Args:
        data: a data frame (its index is not written), a mapping of names to arrays or sequences, or
            anything with `__arrow_c_stream__`.
        path: the file.
        precision: "double" or "single"; None: the schema's, else double.
        kinds: what a column is to be where that is not to be guessed from its values: "number", "text",
            "text:WIDTH", a width in characters, or a `Column`. Whole numbers may become texts.
        implicit: columns with one value for all rows, which stand in the table's header alone.
        description: None: the schema's; where that is empty the library writes one with the date.
        schema: columns with their kinds, widths and defaults, such as another table's; `data` may lack
            some of them, and others of it follow behind.

    Returns:
        The number of rows.

    Raises:
        Error: as `Table.append` and `create` do.
    """
    name = _absolute(path)
    try:
        require_file(name)
        wishes = Wishes(precision, kinds, implicit, description, schema)
        if has_stream(data):
            return _write_stream(name, data.__arrow_c_stream__(), wishes)
        rows = rows_of(data)
        return write_new(name, rows, planned_schema(rows, wishes))
    except Error as failure:
        failure.file = failure.file or name  # a table that is the source names itself
        raise


def _write_stream(name: str, capsule: Any, wishes: Wishes) -> int:
    with held_signals() as signals:
        rows = ArrowRows(stream_of(capsule), signals)
        try:
            return write_new(name, rows, planned_schema(rows, wishes))
        finally:
            rows.let_go()


def write_pandas(
    df: "pandas.DataFrame",
    path: PathLike,
    precision: Optional[str] = None,
    kinds: Optional[Kinds] = None,
    *,
    implicit: Optional[Implicit] = None,
    description: Optional[str] = None,
    schema: Optional[Schema] = None,
) -> int:
    """Writes a data frame as a table file; see `write`."""
    if not is_of_pandas(df):
        raise WrongType(f"a data frame, not {type(df).__name__}; ovfile.write takes more")
    return write(
        df, path, precision, kinds, implicit=implicit, description=description, schema=schema
    )


def _absolute(path: PathLike) -> str:
    try:
        name = os.path.abspath(os.fsdecode(path))
    except TypeError:
        raise WrongType(f"a path is a text or a pathlib.Path, not {path!r}") from None
    if "\0" in name:
        raise WrongValue("a path has no null characters")
    return name


def _about(file: str, handle: Interface, method: str, *arguments: Any) -> None:
    try:
        handle.call(method, *arguments)
    except Error as failure:
        failure.file = file
        raise


def _reserve(name: str) -> None:
    try:
        os.close(os.open(name, os.O_CREAT | os.O_EXCL | os.O_WRONLY, 0o666))
    except FileExistsError:
        raise Error("the file exists", file=name) from None
    except OSError as failure:
        raise Error(f"the file cannot be made: {failure.strerror}", file=name) from failure
