"""Appending rows, and making new tables that appear whole or not at all."""

from __future__ import annotations

import contextlib
import ctypes
import os
import re
import secrets
import shutil
from ctypes import byref, c_int32
from typing import Any, Dict, Iterator, List, Mapping, Optional, Sequence, Union

from ._arrow_abi import ArrowArrayStream, release, take_stream
from ._arrow_export import Batch, Borrowed, Producer
from ._arrow_import import NUMBERS, Owner, Stream, child_of
from ._arrow_views import without_views
from ._columns import Source, batches_of
from ._component import Interface
from ._errors import Error, WrongType, column_error
from ._library import library
from ._reading import streams_of
from ._schema import NUMBER, TEXT, WORD_CHARACTERS, Column, Schema, check_precision, make_object

try:
    import fcntl
except ImportError:  # Windows refuses to replace an open file by itself
    fcntl = None  # type: ignore[assignment]

Kinds = Mapping[str, Union[str, int, Column]]


class Rows:
    """Rows to be written, out of arrays."""

    def __init__(self, sources: Sequence[Source]) -> None:
        self.sources = list(sources)

    @property
    def names(self) -> List[str]:
        return [source.name for source in self.sources]

    def columns(self, kinds: Kinds) -> List[Column]:
        """The columns of a table that can hold the rows; `kinds` says what is not to be guessed."""
        for place, source in enumerate(self.sources):
            wanted = _wanted(source.name, kinds)
            if wanted is not None and wanted.kind == TEXT and source.kind == NUMBER:
                self.sources[place] = source.as_texts()
            if wanted is not None and wanted.kind == NUMBER and source.kind == TEXT:
                raise column_error("the values are texts, not numbers", source.name)
        return [
            _column(source.name, source.kind or NUMBER, source.longest(), kinds)
            for source in self.sources
        ]

    def check(self, precision: str) -> None:
        for source in self.sources:
            source.check(precision)

    def producer(self) -> Producer:
        return Producer([source.type() for source in self.sources], batches_of(self.sources))


class ArrowRows:
    """Rows to be written, out of a stream of somebody else's, whose batches are kept."""

    def __init__(self, stream: ArrowArrayStream) -> None:
        self._stream = Stream(stream)
        self._batches: List[Owner] = list(iter(self._stream.next, None))
        if any(owner.structure.null_count > 0 for owner in self._batches):
            raise Error("the stream has rows that are null as a whole")

    @property
    def names(self) -> List[str]:
        return [field.name for field in self._stream.fields]

    def columns(self, kinds: Kinds) -> List[Column]:
        made = []
        for place, field in enumerate(self._stream.fields):
            if field.is_text:
                views = (self._stream.columns(owner)[place] for owner in self._batches)
                longest = max((view.longest_text() for view in views), default=0)
                made.append(_column(field.name, TEXT, longest, kinds))
            elif field.value_format in NUMBERS or field.value_format in ("b", "n"):
                made.append(_column(field.name, NUMBER, 0, kinds))
            else:
                problem = f"values of the Arrow type {field.value_format!r} have no place"
                raise column_error(problem, field.name)
        return made

    def check(self, precision: str) -> None:
        """The library checks what it is handed."""

    def producer(self) -> Producer:
        schema = self._stream.schema
        places = range(len(self._stream.fields))
        types = [Borrowed(schema.structure.children[i].contents, schema) for i in places]
        return Producer(types, self._handed_out())

    def _handed_out(self) -> Iterator[Batch]:
        for owner in self._batches:
            batch = owner.structure
            children = [Borrowed(child_of(batch, i), owner) for i in range(batch.n_children)]
            yield Batch(batch.length, children)


def _wanted(name: str, kinds: Kinds) -> Optional[Column]:
    """What the caller said of a column; width 0 where no width was given."""
    said = kinds.get(name)
    if said is None:
        return None
    if isinstance(said, Column):
        return said
    if isinstance(said, int):
        return Column.text(name, said)
    kind, colon, width = said.partition(":") if isinstance(said, str) else ("", "", "")
    if kind == TEXT and (not colon or width.isdecimal()):
        return Column.text(name, int(width or 0))
    if said == NUMBER:
        return Column.number(name)
    raise column_error(f'a kind is "number", "text", "text:WIDTH" or a width, not {said!r}', name)


def _column(name: str, kind: str, longest: int, kinds: Kinds) -> Column:
    wanted = _wanted(name, kinds)
    if wanted is not None and (wanted.width or wanted.kind == NUMBER):
        return wanted
    if kind == NUMBER and wanted is None:
        return Column.number(name)
    width = -(-max(1, longest) // WORD_CHARACTERS) * WORD_CHARACTERS
    return Column.text(name, width, wanted.default if wanted else None)  # type: ignore[arg-type]


def append_stream(
    table: Interface, stream: ArrowArrayStream, producer: Optional[Producer] = None
) -> int:
    """Appends a stream's rows, which are the library's from here on. The number of rows."""
    rows = c_int32()
    try:
        streams_of(table).call("Append", ctypes.addressof(stream), byref(rows))
    except Error as failure:
        if producer is not None and producer.failure is not None:
            raise producer.failure from None
        raise _with_place(failure) from None
    finally:
        release(stream)
    return rows.value


def _with_place(failure: Error) -> Error:
    """Takes the column and the row out of a message of the library's. No name has a comma or a colon."""
    found = re.search(r"column ([^,:]+)(?:, row (\d+))?: ", failure.message)
    if found:
        failure.column = found.group(1)
        failure.row = int(found.group(2)) - 1 if found.group(2) else None
    return failure


def append_rows(table: Interface, rows: Union[Rows, ArrowRows]) -> int:
    producer = rows.producer()
    return append_stream(table, producer.stream(), producer)


def create_file(path: str, schema: Schema) -> Interface:
    """A table object with a new table open. Whatever has the name is overwritten."""
    definition = make_object(schema)
    made = library().table()
    made.call("Create", path, definition.pointer)
    return made


@contextlib.contextmanager
def replacement(path: str) -> Iterator[str]:
    """A name beside `path`, where links lead to, for a file that takes its place when all went well."""
    target = os.path.realpath(path)
    folder, name = os.path.split(target)
    beside = os.path.join(folder, f".NEW{secrets.token_hex(6)}{os.path.splitext(name)[1]}")
    try:
        yield beside
        with open(beside, "rb+") as file:
            os.fsync(file.fileno())
        _take_place(beside, target)
    except OSError as failure:
        raise Error(f"the file cannot be written: {failure.strerror}", file=path) from failure
    finally:
        with contextlib.suppress(OSError):
            os.unlink(beside)


def _take_place(beside: str, target: str) -> None:
    """As the library replaces a table: not while anybody has the old one open, and with its permissions."""
    if not os.path.exists(target):
        os.replace(beside, target)
        return
    shutil.copymode(target, beside)
    with open(target, "rb") as old:
        if fcntl is not None:
            try:
                fcntl.flock(old, fcntl.LOCK_EX | fcntl.LOCK_NB)
            except BlockingIOError:
                raise Error("the table is open somewhere else and cannot be replaced") from None
            os.replace(beside, target)
            return
    os.replace(beside, target)


def write_new(
    path: str,
    rows: Union[Rows, ArrowRows],
    schema: Schema,
) -> int:
    """A new table of these rows in the place of whatever has the name. The number of rows."""
    rows.check(schema.precision)
    with replacement(path) as beside:
        table = create_file(beside, schema)
        written = append_rows(table, rows)
        table.call("Close")
        table.release()
    return written


def planned_schema(
    rows: Union[Rows, ArrowRows],
    precision: Optional[str],
    kinds: Optional[Kinds],
    implicit: Optional[Mapping[str, Union[float, str, None]]],
    description: Optional[str],
    schema: Optional[Schema],
) -> Schema:
    """The schema of a table for the rows: `schema`'s own columns first, then those that it lacks."""
    given = Schema() if schema is None else schema
    if not isinstance(given, Schema):
        raise WrongType(f"schema is a Schema, such as table.schema, not {schema!r}")
    check_precision(precision or given.precision)
    for what, argument in (("kinds", kinds), ("implicit", implicit)):
        if argument is not None and not isinstance(argument, Mapping):
            raise WrongType(f"{what} is a mapping of names, not {argument!r}")
    known: Dict[str, Union[str, int, Column]] = dict(kinds or {})
    for name in known:
        if name not in rows.names:
            raise column_error("kinds: there is no such column", name)
    known.update({column.name: column for column in given.columns})
    guessed = [column for column in rows.columns(known) if column.name not in given]
    added = [_implicit_column(name, value) for name, value in (implicit or {}).items()]
    return Schema(
        given.columns + tuple(guessed) + tuple(added),
        precision or given.precision,
        given.description if description is None else description,
    )


def _implicit_column(name: str, value: Union[float, str, None]) -> Column:
    if isinstance(value, str):
        return Column.text(name, max(WORD_CHARACTERS, len(value)), value, implicit=True)
    return Column.number(name, value, implicit=True)


def arrow_stream_of(data: Any) -> Optional[ArrowArrayStream]:
    """The stream of an object that has one, in a form that the library takes."""
    made = getattr(data, "__arrow_c_stream__", None)
    return None if made is None else without_views(take_stream(made()))
