"""Tables as Dask data frames.

    import ovfile.dask

    frame = ovfile.dask.read_table("assays/*.ovt", columns=["BHID", "CU"])
    print(frame.groupby("BHID")["CU"].mean().compute())

The partitions are ranges of rows. Whichever process computes one opens the table itself, for reading, so
the paths have to lead to the same files everywhere.
"""

from __future__ import annotations

import glob
import os
from typing import Any, Iterable, List, Optional, Sequence, Tuple, Union, cast

try:
    import dask.dataframe
    from dask.dataframe.utils import clear_known_categories
except ImportError as failure:
    raise ImportError(
        "ovfile.dask needs Dask with its data frames: install Debian's python3-dask and python3-pandas "
        '(and python3-distributed for several processes), or "dask[dataframe]" with pip '
        f"({failure})"
    ) from failure

from ._errors import Error, WrongType, column_error, number_of_rows
from ._naming import Keys, unique_names
from ._partitions import Part, PartReader, names_of, plan_file, plan_parts, rows_of_a_part
from ._schema import NUMBER, TEXT, Schema
from ._table import PathLike
from ._toplevel import open as open_table

__all__ = ["read_table"]

Paths = Union[PathLike, Iterable[PathLike]]


def read_table(
    path: Paths,
    columns: Keys = None,
    where: Optional[str] = None,
    rows_per_partition: Optional[int] = None,
    *,
    include_path_column: Union[bool, str] = False,
    categories: bool = False,
    blank: Any = "",
    widen: bool = False,
) -> Any:
    """A Dask data frame of one table or of several, one below the other.

    Nothing but the files' headers is read until something is computed, and then only the columns that the
    computation needs. The index counts the rows of all files from 0, and its divisions are known.

    Args:
        path: a file, a pattern such as ``"assays/*.ovt"`` (in the order of the names), or several of either.
            All files need the same columns, in any order; texts may differ in width.
        columns, where, categories, blank, widen: as for `Table.to_pandas`. Rows keep their numbers in the
            index whether a condition lets others through or not.
        rows_per_partition: None: as many rows as take about 64 MiB. No partition has rows of two files.
        include_path_column: True: the column "path" has each row's file, as a categorical; a name: that
            column has.

    Raises:
        Error: no file matches, a file is no table or lacks rows that its header promises, a column is
            missing, the columns of two files differ; with the file. When something is computed: a file is
            gone, was cut, or has changed in size, last write, rows or columns since the frame was made.
    """
    if rows_per_partition is not None:
        rows_per_partition = number_of_rows(rows_per_partition, "a partition")
    paths = _expand(path)
    planned = [plan_file(name) for name in paths]
    files, schemas = [file for file, _ in planned], [schema for _, schema in planned]
    names = _wanted(paths[0], schemas[0], columns)
    for name, schema in zip(paths[1:], schemas[1:]):
        _check_alike(name, schema, paths[0], schemas[0], names, every=columns is None, widen=widen)
    path_column = _path_column(include_path_column, names, paths[0])
    wanted = names if path_column is None else (*names, path_column)
    shown = tuple(paths) if path_column is not None else ()
    reader = PartReader(wanted, shown, path_column, where, categories, blank, widen)
    parts, divisions = plan_parts(files, rows_per_partition or rows_of_a_part(schemas[0], names))
    meta = _meta(reader, files, schemas[0])
    frames: Any = dask.dataframe
    return frames.from_map(
        reader, parts, meta=meta, divisions=divisions, label="read-table", enforce_metadata=False
    )


def _expand(path: Paths) -> List[str]:
    """The files that are meant, absolute."""
    several = isinstance(path, Iterable) and not isinstance(path, (str, bytes))
    given: List[Any] = list(cast(Iterable[PathLike], path)) if several else [path]
    found: List[str] = []
    for item in given:
        given_name = _text_of(item)
        name = os.path.abspath(given_name)
        # The pattern is what was given: the folder that one is in may have any name.
        if glob.has_magic(given_name) and not os.path.lexists(name):
            matching = sorted(os.path.abspath(match) for match in glob.glob(given_name, recursive=True))
            if not matching:
                raise Error("no file matches", file=name)
            found += matching
        else:
            found.append(name)
    if not found:
        raise Error("there is no file to read")
    return found


def _text_of(path: Any) -> str:
    try:
        return os.fsdecode(path)
    except TypeError:
        raise WrongType(f"a path is a text or a pathlib.Path, not {path!r}") from None


def _wanted(path: str, schema: Schema, columns: Keys) -> Tuple[str, ...]:
    try:
        return names_of(unique_names(schema), columns)
    except Error as failure:
        failure.file = path
        raise


def _check_alike(
    path: str, schema: Schema, first_path: str, first: Schema, names: Sequence[str], every: bool, widen: bool
) -> None:
    """Raises Error when a file's columns are not those of the first one; `every`: all, not `names` alone."""
    there = dict(zip(unique_names(schema), schema))
    wanted = dict(zip(unique_names(first), first))
    for name in names:
        if name not in there:
            raise column_error(f"there is no such column, but {first_path} has one", name, path)
        if there[name].kind != wanted[name].kind:
            kinds = {NUMBER: "numbers", TEXT: "texts"}
            here, before = kinds[there[name].kind], kinds[wanted[name].kind]
            raise column_error(f"it has {here}, but in {first_path} {before}", name, path)
    extra = [name for name in there if name not in wanted] if every else []
    if extra:
        raise column_error(f"{first_path} has no such column", extra[0], path)
    numbers = any(wanted[name].kind == NUMBER for name in names)
    if schema.precision != first.precision and numbers and not widen:
        raise Error(
            f"numbers have {schema.precision} precision, but in {first_path} {first.precision} precision; "
            "widen=True reads both",
            file=path,
        )


def _path_column(wanted: Union[bool, str], names: Sequence[str], path: str) -> Optional[str]:
    if not wanted:
        return None
    name = wanted if isinstance(wanted, str) else "path"
    if name in names:
        raise column_error("include_path_column: the tables have a column of that name", name, path)
    return name


def _meta(reader: PartReader, files: Sequence[Any], schema: Schema) -> Any:
    """A frame without rows that has the columns' types. Tests the condition against every file."""
    for place, file in enumerate(files):
        with open_table(file.path) as table:
            frame = reader.frame(table, Part(file, place, 0, 0, 0))
        if place == 0:
            meta = frame
        if reader.where is None:
            break
    if reader.categories:
        texts = [name for name in reader.names if str(meta.dtypes[name]) == "category"]
        meta = clear_known_categories(meta, cols=[name for name in texts if name != reader.path_column])
    return meta
