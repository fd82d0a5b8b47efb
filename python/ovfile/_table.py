"""An open table."""

from __future__ import annotations

import os
from typing import TYPE_CHECKING, Any, Dict, Iterator, List, Optional, Sequence, Union

from . import _interfaces as known
from ._arrays import Array
from ._arrow_abi import SCHEMA_CAPSULE, STREAM_CAPSULE, ArrowArrayStream, ArrowSchema, make_capsule, move
from ._arrow_import import Stream
from ._changing import Wanted, add_column, append, sort
from ._choosing import Choice, Reader
from ._component import Interface
from ._errors import WrongType, WrongValue, whole_number
from ._extent import extent_of
from ._filter import passing_rows
from ._interruption import interruptible
from ._naming import Key, Keys, is_key, places_of, unique_names
from ._open_table import OpenTable, sync
from ._reading import Rows, Span, open_stream
from ._schema import Schema, read_schema
from ._sorting import Ascending

if TYPE_CHECKING:
    import pandas

PathLike = Union[str, bytes, "os.PathLike[str]", "os.PathLike[bytes]"]


class Table(OpenTable):
    """An open table file, as `ovfile.open` and `ovfile.create` answer it.

    Columns go by name, rows by number from 0. `len(table)` is the number of rows, `for name in table` and
    `name in table` are about columns. Use it in a `with` statement; one that is merely dropped is closed
    too, but its failures are lost. Every method raises `Error`, and so does every use after `close`.

    A file may end before the last one of the rows that its header promises and `len(table)` counts. What
    reads them all is an error then, before there is room made for any; `rows` of `read` and `to_pandas`
    reads those that the file has.

    Several threads may use a table: each call waits for the one before it. A process that is forked off opens
    its own: there every use of this one raises `Error`, and closing or dropping it does nothing.
    """

    def __enter__(self) -> "Table":
        self._open_handle()
        return self

    # What it is.

    @property
    def path(self) -> str:
        """The file, absolute; where a link file was opened, the file that it led to."""
        with self._about() as handle:
            return handle.out_text("get_Name")

    @property
    def is_linked(self) -> bool:
        """Whether the file that was opened is a link to another."""
        with self._about() as handle:
            return handle.out_bool("get_IsLinked")

    @property
    def schema(self) -> Schema:
        """The columns with kinds, widths and defaults; the precision; the description."""
        with self._about() as handle:
            if self._schema is None:
                found = handle.out_interface("get_Schema", known.SCHEMA)
                self._schema = Schema() if found is None else read_schema(found)
            return self._schema

    @property
    def columns(self) -> List[str]:
        """The names in the file's order. A name that stands in the file twice gets ``#2`` there."""
        return unique_names(self.schema)

    @property
    def kind(self) -> str:
        """The kind of table in words, such as "assays" or "block model"; "table" for no known one."""
        return self.schema.kind

    @property
    def description(self) -> str:
        return self.schema.description

    @property
    def precision(self) -> str:
        """"double" (numbers are float64) or "single" (float32)."""
        return self.schema.precision

    def __len__(self) -> int:
        with self._about() as handle:
            return handle.out_long("GetRowCount")

    def __iter__(self) -> Iterator[str]:
        return iter(self.columns)

    def __contains__(self, name: object) -> bool:
        return name in self.columns

    def __array__(self, *arguments: Any, **named: Any) -> Array:
        """Raises TypeError: what takes a table for a list of its columns' names would go on with those alone."""
        raise TypeError("a table is not one array: table[NAME] is a column's, table.to_pandas() makes a DataFrame")

    def __repr__(self) -> str:
        if self._handle is None:
            return f"<ovfile.Table {self._asked!r}, closed>"
        if not self._handle.is_of_this_process():
            return f"<ovfile.Table {self._asked!r}, opened in another process>"
        return f"<ovfile.Table {self.path!r}, {len(self)} rows, {len(self.schema)} columns>"

    # Reading.

    def __getitem__(self, column: Key) -> Array:
        """One column: float64 or float32 with NaN where numbers are absent, or `str` objects."""
        if not is_key(column):
            problem = "a column is a name or a number; table.read(columns=[…]) answers several"
            raise WrongType(problem, file=self._asked)
        (values,) = self.read(column).values()
        return values

    def read(
        self,
        columns: Keys = None,
        where: Optional[str] = None,
        rows: Rows = None,
        *,
        absent: str = "nan",
        widen: bool = False,
        keep_blanks: bool = False,
    ) -> Dict[str, Array]:
        """Whole columns, implicit ones included.

        Args:
            columns: names (or numbers from 0) in any order; None: all.
            where: a condition such as ``"CU > 0.5 AND ROCK = 'ORE'"``; rows that it lets through.
            rows: a slice or range, row numbers from 0 in any order, or a truth value for each row. A
                condition is tested on these alone.
            absent: "nan": absent numbers are NaN; "mask": arrays are masked arrays, absent numbers and
                blank texts are masked; "value": absent numbers are -1e30 as in the file.
            widen: single precision as float64: the numbers that the shortest digits of the floats say, so
                that 0.1 is 0.1 and not 0.10000000149.
            keep_blanks: texts keep the blanks that fill them up to the column's width; those of blanks
                alone do with `absent="value"`, and are empty otherwise.

        Returns:
            One array for each column, all of one length: float64 (float32 in single precision without
            `widen`) for numbers, object arrays of `str` for texts.
        """
        with self._about() as handle:
            places = places_of(self.columns, columns)
            choice = Choice(places, where, rows, absent, widen, keep_blanks)
            arrays = Reader(handle, self.schema).arrays(choice)
            return dict(zip(self._names(places), arrays))

    def batches(
        self,
        rows: int = 65536,
        columns: Keys = None,
        where: Optional[str] = None,
        *,
        absent: str = "nan",
        widen: bool = False,
        keep_blanks: bool = False,
    ) -> Iterator[Dict[str, Array]]:
        """The rows in portions of at most `rows`, each as `read` answers them, for long tables.

        Arrays of numbers may be read-only views: copy what you want to change. A batch of which no row
        passes `where` is left out. The table must stay open and unchanged as long as it is read.
        """
        with self._about() as handle:
            places = places_of(self.columns, columns)
            choice = Choice(places, where, None, absent, widen, keep_blanks)
            found = Reader(handle, self.schema).batches(choice, rows)
            return self._each_batch(found, self._names(places))

    def _each_batch(self, found: Iterator[List[Any]], names: List[str]) -> Iterator[Dict[str, Array]]:
        while True:
            with self._about():
                arrays = next(found, None)
            if arrays is None:
                return
            yield dict(zip(names, arrays))

    def to_pandas(
        self,
        columns: Keys = None,
        where: Optional[str] = None,
        rows: Rows = None,
        *,
        categories: bool = False,
        blank: Any = "",
        widen: bool = False,
    ) -> "pandas.DataFrame":
        """A data frame, absent numbers as NaN.

        Args:
            columns, where, rows, widen: as for `read`.
            categories: texts as categoricals, which take less memory where few texts repeat.
            blank: what stands for a blank text: "" (as the file has it), None, or `pandas.NA`. Blank
                texts in categoricals are missing where `blank` is not "".
        """
        from ._pandas import frame_of

        with self._about() as handle:
            places = places_of(self.columns, columns)
            choice = Choice(places, where, rows, widen=widen, codes=categories)
            reader = Reader(handle, self.schema)
            arrays = reader.arrays(choice)
            return frame_of(self._names(places), arrays, blank, 0 if places else reader.count(choice))

    def _passing(self, where: str, first: int, count: int) -> Array:
        """Which of `count` rows from `first` (from 0) on a condition lets through, as booleans."""
        with self._about() as handle:
            extent_of(handle).require(first + count)
            return passing_rows(handle, self.schema.columns, where, first, count)

    def _require_whole(self) -> None:
        """Raises Error where the file lacks rows that its header promises."""
        with self._about() as handle:
            extent_of(handle).require()

    def _names(self, places: Sequence[int]) -> List[str]:
        names = self.columns
        return [names[place] for place in places]

    # Changing.

    def append(self, rows: Any) -> int:
        """Appends rows; the table then has all of them, or after a failure none.

        Args:
            rows: a data frame, a mapping of names to arrays or sequences, or anything with
                `__arrow_c_stream__`. Columns go by name, those that are not there take their defaults.
                None, NaN and `pandas.NA` are absent. A value for an implicit column has to be the one
                that all rows have.

        Returns:
            How many rows there were.

        Raises:
            Error: for a column that the table lacks, values of another kind, texts that are too long or
                have characters that are not in Windows-1252, dates; with the column, and the row.
        """
        with self._changing() as handle:
            return append(handle, self.schema, rows)

    def sort(self, by: Union[Key, Sequence[Key]], ascending: Ascending = True) -> None:
        """Sorts the file's rows by a column, by the next one where those are equal, and so on.

        Rows that are equal in all keep their order. Absent numbers stand first; texts go a, ab, b,
        capitals before small letters. The table is written anew and takes the old one's place in one
        step.

        Args:
            by: a column or several.
            ascending: for all of them, or for each.
        """
        with self._changing() as handle:
            sort(handle, self.schema, places_of(self.columns, by), ascending)

    def add_column(
        self,
        name: str,
        values: Any = None,
        *,
        kind: Optional[str] = None,
        width: Optional[int] = None,
        default: Union[float, str, None] = None,
        implicit: bool = False,
    ) -> None:
        """Adds a column behind the others.

        Args:
            name: see `Column`.
            values: one for each row, as `append` takes them; None: every row has the default.
            kind: "number" or "text"; None: what the values or the default are, else numbers.
            width: characters of a text; None: of the longest one.
            default: the column's default.
            implicit: one value for all rows, the default, which the table keeps in its header alone.

        The table is written anew and takes the old one's place in one step, with its rights; after a failure
        or Ctrl-C the old one stands as it was. One that somebody else has open, or has changed since it was
        opened here, is not replaced: that is an error.
        """
        with self._changing() as handle:
            wanted = Wanted(name, values, kind, width, default, implicit)
            add_column(handle, self.schema, wanted)

    def flush(self) -> None:
        """Writes all changes, and returns when the disk has them."""
        with self._about() as handle:
            sync(handle)

    def signature(
        self,
        *,
        ignore_description: bool = False,
        ignore_field_order: bool = False,
        ignore_precision: bool = False,
        digits: int = -1,
    ) -> str:
        """40 hexadecimal digits that are the same for tables with the same definition and values.

        Args:
            ignore_description, ignore_field_order, ignore_precision: what may differ. All three is the
                library's loose signature, none its tight one.
            digits: digits behind the point that count; -1: six, without zeros at the end.
        """
        flags = [-int(bool(flag)) for flag in (ignore_description, ignore_field_order, ignore_precision)]
        with self._about() as handle, interruptible(handle):
            digits = min(whole_number(digits, "digits"), 2**31 - 1)
            if digits < -1:
                raise WrongValue(f"digits: -1 or how many there are, not {digits}")
            extent_of(handle).require()
            return handle.out_text("GetSignature", *flags, digits)

    # Arrow.

    def __arrow_c_stream__(self, requested_schema: Any = None) -> Any:
        """The table as an Arrow stream (a capsule): absent numbers and blank texts are null.

        The requested schema is not looked at. The stream must be read before the table is closed or
        changed.
        """
        with self._about() as handle:
            extent = extent_of(handle)
            extent.require()
            return make_capsule(self._arrow_stream(handle, extent.promised), STREAM_CAPSULE)

    def __arrow_c_schema__(self) -> Any:
        """The types of `__arrow_c_stream__` (a capsule)."""
        with self._about() as handle:
            schema: ArrowSchema = move(Stream(self._arrow_stream(handle, 0)).schema.structure)
            return make_capsule(schema, SCHEMA_CAPSULE)

    def _arrow_stream(self, handle: Interface, rows: int) -> ArrowArrayStream:
        places = list(range(len(self.schema)))
        return open_stream(handle, places, Span(0, rows, None), flags=known.STREAM_ABSENT_AS_NULL)
