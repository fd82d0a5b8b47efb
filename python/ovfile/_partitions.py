"""Tables cut into partitions: ranges of rows, each of which any process can read by itself.

Whoever plans looks at each file's header alone. Whoever reads a partition opens the table anew and holds it
against the plan, before and after, so that rows of another state of the file never pass for the planned ones.
"""

from __future__ import annotations

import contextlib
import hashlib
import os
import platform
from dataclasses import astuple, dataclass, replace
from typing import Any, Iterator, List, Optional, Sequence, Tuple

import numpy as np
import pandas as pd

from ._errors import Error
from ._naming import Keys, places_of, unique_names
from ._schema import TEXT, Schema
from ._table import Table
from ._toplevel import open as open_table

PARTITION_BYTES = 64 << 20
_BYTES_OF_TEXT = 64  # of a `str` object in a frame, its place in the column included


@dataclass(frozen=True)
class PlannedFile:
    """A table's file as it was when the partitions were planned. Sizes in bytes, times in nanoseconds.

    The numbers of the file and of its device count on the machine that made the plan alone: another one may
    have others for the same file.
    """

    path: str
    size: int
    last_write: int
    rows: int
    definition: str
    file: int = 0
    device: int = 0
    machine: str = ""

    @contextlib.contextmanager
    def opened(self) -> Iterator[Table]:
        """The table, open for reading. Raises Error when the file is not as it was planned."""
        self._stat()
        try:
            with open_table(self.path) as table:
                self._check_table(table)
                self.check_file()
                yield table
        except Error:
            self._stat()  # a change explains more than what came of it
            raise
        self.check_file()

    def check_file(self) -> None:
        found = self._stat()
        numbers = (found.st_ino, found.st_dev)
        if self.machine == platform.node() and numbers != (self.file, self.device):
            raise self._changed("it is another file")

    def _stat(self) -> os.stat_result:
        try:
            found = os.stat(self.path)
        except OSError as failure:
            problem = f"the file was there when the frame was made; now: {failure.strerror}"
            raise Error(problem, file=self.path) from None
        if found.st_size != self.size:
            raise self._changed(f"{found.st_size} bytes instead of {self.size}")
        if found.st_mtime_ns != self.last_write:
            raise self._changed("it was written to")
        return found

    def _check_table(self, table: Table) -> None:
        if len(table) != self.rows:
            raise self._changed(f"{len(table)} rows instead of {self.rows}")
        if _digest(table.schema) != self.definition:
            raise self._changed("other columns")

    def _changed(self, how: str) -> Error:
        return Error(
            f"the file has changed since the frame was made ({how}); make the frame again", file=self.path
        )


def plan_file(path: str) -> Tuple[PlannedFile, Schema]:
    """A file as it is now, and its columns. Raises Error."""
    with open_table(path) as table:
        target = table.path
    try:
        found = os.stat(target)
    except OSError as failure:
        raise Error(f"the file cannot be read: {failure.strerror}", file=target) from None
    with open_table(target) as table:
        table._require_whole()
        schema, rows = table.schema, len(table)
    numbers = (found.st_ino, found.st_dev, platform.node())
    planned = PlannedFile(target, found.st_size, found.st_mtime_ns, rows, _digest(schema), *numbers)
    return planned, schema


def _digest(schema: Schema) -> str:
    columns = [astuple(column) for column in schema.columns]
    return hashlib.sha256(repr((schema.precision, columns)).encode("utf-8")).hexdigest()


@dataclass(frozen=True)
class Part:
    """`count` rows of a file from `first` (from 0) on; `number` is the first one's number in the frame.

    `path` is the file's place in the list of paths. `beside` are files without rows, which have no part of
    their own and are looked at together with this one.
    """

    file: PlannedFile
    path: int
    first: int
    count: int
    number: int
    beside: Tuple[PlannedFile, ...] = ()

    def __dask_tokenize__(self) -> Any:
        return type(self).__name__, astuple(self)


def plan_parts(files: Sequence[PlannedFile], rows_per_part: int) -> Tuple[List[Part], Tuple[Any, ...]]:
    """The partitions, and the frame's row number at which each begins, followed by the last one's."""
    parts: List[Part] = []
    empty = tuple(file for file in files if file.rows == 0)
    total = 0
    for path, file in enumerate(files):
        for first in range(0, file.rows, rows_per_part):
            count = min(rows_per_part, file.rows - first)
            parts.append(Part(file, path, first, count, total, () if parts else empty))
            total += count
    if not parts:
        return [Part(files[0], 0, 0, 0, 0, empty[1:])], (None, None)
    return parts, (*(part.number for part in parts), total - 1)


def rows_of_a_part(schema: Schema, columns: Sequence[str]) -> int:
    """How many rows make a partition of ordinary size in memory."""
    kinds = dict(zip(unique_names(schema), (column.kind for column in schema)))
    texts = sum(kinds[name] == TEXT for name in columns)
    return PARTITION_BYTES // (8 * (len(columns) - texts) + _BYTES_OF_TEXT * texts + 8)


@dataclass(frozen=True)
class PartReader:
    """Reads partitions as data frames, whose index is the row's number in the whole frame.

    `names` are the columns in order, `path_column` one of them or None. With `columns` and
    `project_columns` Dask asks for fewer columns than there are; versions that know no such methods use the
    argument `columns`.
    """

    names: Tuple[str, ...]
    paths: Tuple[str, ...]
    path_column: Optional[str] = None
    where: Optional[str] = None
    categories: bool = False
    blank: Any = ""
    widen: bool = False

    @property
    def columns(self) -> List[str]:
        return list(self.names)

    def project_columns(self, columns: Sequence[str]) -> "PartReader":
        wanted = set(columns)
        names = tuple(name for name in self.names if name in wanted)
        return replace(self, names=names)

    def __dask_tokenize__(self) -> Any:
        return type(self).__name__, astuple(self)

    def __call__(self, part: Part, columns: Optional[Sequence[str]] = None) -> pd.DataFrame:
        if columns is not None:
            return self.project_columns(columns)(part)
        for file in part.beside:
            file.check_file()
        with part.file.opened() as table:
            return self.frame(table, part)

    def frame(self, table: Table, part: Part) -> pd.DataFrame:
        rows, index = self._rows(table, part)
        read = [name for name in self.names if name != self.path_column]
        if read:
            frame = table.to_pandas(
                read, rows=rows, categories=self.categories, blank=self.blank, widen=self.widen
            )
            frame.index = index
        else:
            frame = pd.DataFrame(index=index, columns=pd.Index([], dtype=object))
        if self.path_column in self.names:
            different = list(dict.fromkeys(self.paths))
            codes = np.full(len(index), different.index(self.paths[part.path]))
            frame[self.path_column] = pd.Categorical.from_codes(codes, categories=different)
        return frame

    def _rows(self, table: Table, part: Part) -> Tuple[Any, pd.Index]:
        """The part's rows in the table, and their numbers in the frame."""
        if self.where is None:
            end = part.first + part.count
            return range(part.first, end), pd.RangeIndex(part.number, part.number + part.count)
        passing = np.flatnonzero(table._passing(self.where, part.first, part.count))
        return part.first + passing, pd.Index(part.number + passing, dtype=np.int64)


def names_of(names: Sequence[str], columns: Keys) -> Tuple[str, ...]:
    """The names of the wanted columns; each may be wanted once."""
    found = [names[place] for place in places_of(names, columns)]
    for place, name in enumerate(found):
        if name in found[:place]:
            raise Error(f"column {name} is asked for twice", column=name)
    return tuple(found)
