"""Streams some of whose columns are made anew on their way, batch by batch; the others go on as they are."""

from __future__ import annotations

from typing import Any, Callable, Iterator, List, Mapping, NamedTuple

from ._arrow_abi import ArrowArrayStream, move
from ._arrow_export import ArrayParts, Batch, Borrowed, Producer, SchemaParts, validity
from ._arrow_import import ColumnView, Field, Owner, Stream, child_of, nulls_of
from ._errors import Error


class Remake(NamedTuple):
    """What becomes of a column: its new format, and its new values, which have the nulls of the old ones."""

    format: str
    values: Callable[[ColumnView], ArrayParts]


Remakes = Mapping[str, Remake]  # by the format of the values


def remade(stream: ArrowArrayStream, remakes: Remakes) -> ArrowArrayStream:
    """The stream, whose owner the caller is, or one with the same rows and no column to be made anew."""
    reader = Stream(stream)
    if not any(field.value_format in remakes for field in reader.fields):
        return move(stream)
    return producer_of(reader, iter(reader.next, None), remakes).stream()


def producer_of(reader: Stream, batches: Iterator[Owner], remakes: Remakes) -> Producer:
    """What hands out the stream's batches."""
    children = reader.schema.structure.children
    types: List[Any] = [
        _type(field, remakes[field.value_format].format)
        if field.value_format in remakes
        else Borrowed(children[place].contents, reader.schema)
        for place, field in enumerate(reader.fields)
    ]
    return Producer(types, (_batch(reader, owner, remakes) for owner in batches))


def _type(field: Field, code: str) -> SchemaParts:
    if field.is_dictionary:
        return SchemaParts(field.name, field.format, SchemaParts("", code))
    return SchemaParts(field.name, code)


def _batch(reader: Stream, owner: Owner, remakes: Remakes) -> Batch:
    _require_rows(owner)
    columns: List[Any] = []
    for place, column in enumerate(reader.columns(owner)):
        remake = remakes.get(column.field.value_format)
        if remake is None:
            columns.append(Borrowed(child_of(owner.structure, place), owner))
        elif column.field.is_dictionary:
            columns.append(_numbered(column, remake.values(column.dictionary())))
        else:
            columns.append(remake.values(column))
    return Batch(int(owner.structure.length), columns)


def _require_rows(owner: Owner) -> None:
    """Raises Error for a batch of whose rows some are null as a whole, whatever their columns hold."""
    if nulls_of(owner.structure, owner) is not None:
        raise Error("the stream has rows that are null as a whole")


def _numbered(column: ColumnView, dictionary: ArrayParts) -> ArrayParts:
    """A dictionary's numbers as they are, beside other values."""
    bits, count = validity(column.nulls())
    return ArrayParts(column.length, [bits, column.numbers()], count, dictionary)
