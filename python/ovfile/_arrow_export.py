"""Handing out Arrow streams made of numpy arrays and of batches that came from other streams.

What a structure points to is kept in `_alive` under the number in its `private_data`, until its `release`
is called: no array is collected while somebody else reads it. The functions that others call are made once
and live as long as the process.
"""

from __future__ import annotations

import contextlib
import ctypes
import errno
import itertools
from ctypes import POINTER, c_void_p, pointer
from typing import Any, Dict, Iterator, List, Optional, Sequence, Tuple

import numpy as np

from ._arrays import Array
from ._arrow_abi import (
    NULLABLE,
    ArrowArray,
    ArrowArrayStream,
    ArrowSchema,
    GetLastError,
    GetStructure,
    Release,
    release,
)
from ._arrow_import import NUMBERS, Owner

FORMATS = {np.dtype(kind): code for code, kind in NUMBERS.items()}

_alive: Dict[int, Any] = {}
_numbers = itertools.count(1)


def _keep(structure: Any, what: Any, let_go: Any) -> None:
    number = next(_numbers)
    _alive[number] = what
    structure.private_data = number
    structure.release = ctypes.cast(let_go, c_void_p).value


def _release(kind: Any, address: int) -> None:
    """Releases the children that nobody moved away, then lets go of what the structure points to.

    One that fails keeps none of the others from it.
    """
    structure = kind.from_address(address)
    with contextlib.ExitStack() as rest:
        rest.callback(_forget, structure)
        if structure.dictionary:
            rest.callback(release, structure.dictionary.contents)
        for index in range(structure.n_children):
            rest.callback(release, structure.children[index].contents)


def _forget(structure: Any) -> None:
    structure.release = None
    _alive.pop(structure.private_data, None)


@Release
def _release_schema(address: int) -> None:
    _release(ArrowSchema, address)


@Release
def _release_array(address: int) -> None:
    _release(ArrowArray, address)


@Release
def _let_go_of_array(address: int) -> None:
    """For a copy of a structure whose children and dictionary belong to somebody else."""
    _forget(ArrowArray.from_address(address))


@Release
def _let_go_of_schema(address: int) -> None:
    _forget(ArrowSchema.from_address(address))


def validity(nulls: Optional[Array]) -> Tuple[Optional[Array], int]:
    """The bits that say where values are, and how many are null; no bits where none is."""
    count = 0 if nulls is None else int(np.count_nonzero(nulls))
    return (np.packbits(~nulls, bitorder="little") if nulls is not None and count else None), count


class SchemaParts:
    """A type: a format, and for a dictionary the type of its values."""

    def __init__(self, name: str, code: str, dictionary: Optional["SchemaParts"] = None) -> None:
        self.name, self.code, self.dictionary = name.encode(), code.encode(), dictionary

    def fill(self, out: ArrowSchema, children: Sequence[Any] = ()) -> None:
        made, pointers = _children(ArrowSchema, children)
        found = ArrowSchema() if self.dictionary else None
        out.format, out.name, out.metadata, out.flags = self.code, self.name, None, NULLABLE
        out.n_children, out.children = len(made), pointers
        out.dictionary = pointer(found) if found is not None else None
        if self.dictionary and found is not None:
            self.dictionary.fill(found)
        _keep(out, (self, made, pointers, found), _release_schema)


class ArrayParts:
    """Values: buffers as numpy arrays (None: a null pointer), and for a dictionary its values."""

    def __init__(
        self,
        length: int,
        buffers: Sequence[Optional[Array]],
        null_count: int = 0,
        dictionary: Optional["ArrayParts"] = None,
    ) -> None:
        self.length, self.null_count, self.dictionary = length, null_count, dictionary
        self.buffers = [None if b is None else np.ascontiguousarray(b) for b in buffers]

    def fill(self, out: ArrowArray, children: Sequence[Any] = ()) -> None:
        made, pointers = _children(ArrowArray, children)
        found = ArrowArray() if self.dictionary else None
        addresses = [None if b is None else b.ctypes.data for b in self.buffers]
        buffers = (c_void_p * max(1, len(addresses)))(*addresses)
        out.length, out.null_count, out.offset = self.length, self.null_count, 0
        out.n_buffers, out.buffers = len(addresses), ctypes.cast(buffers, POINTER(c_void_p))
        out.n_children, out.children = len(made), pointers
        out.dictionary = pointer(found) if found is not None else None
        if self.dictionary and found is not None:
            self.dictionary.fill(found)
        _keep(out, (self, buffers, made, pointers, found), _release_array)


class Borrowed:
    """A structure (type or values) that belongs to somebody else's, which it keeps alive."""

    def __init__(self, source: Any, owner: Owner) -> None:
        self.source, self.owner = source, owner

    def fill(self, out: Any) -> None:
        ctypes.memmove(ctypes.byref(out), ctypes.byref(self.source), ctypes.sizeof(out))
        schema = isinstance(out, ArrowSchema)
        _keep(out, self, _let_go_of_schema if schema else _let_go_of_array)


def _children(kind: Any, parts: Sequence[Any]) -> Any:
    made = [kind() for _ in parts]
    for part, structure in zip(parts, made):
        part.fill(structure)
    pointers = (POINTER(kind) * max(1, len(made)))(*[pointer(structure) for structure in made])
    return made, ctypes.cast(pointers, POINTER(POINTER(kind)))


class Batch:
    """Rows: the values of each column."""

    def __init__(self, length: int, columns: Sequence[Any]) -> None:
        self.length, self.columns = length, columns

    def fill(self, out: ArrowArray) -> None:
        ArrayParts(self.length, [None]).fill(out, self.columns)


class Producer:
    """What a stream hands out: types, then batches, which are made when they are asked for.

    `failure` is the exception that a batch could not be made for, or None.
    """

    def __init__(self, types: Sequence[Any], batches: Iterator[Batch]) -> None:
        self.types = types
        self.batches = batches
        self.failure: Optional[BaseException] = None
        self.words: Any = None

    def stream(self) -> ArrowArrayStream:
        """A new stream over it. Whoever gets it calls its `release`."""
        made = ArrowArrayStream()
        made.get_schema = ctypes.cast(_get_schema, c_void_p).value
        made.get_next = ctypes.cast(_get_next, c_void_p).value
        made.get_last_error = ctypes.cast(_get_last_error, c_void_p).value
        _keep(made, self, _release_stream)
        return made

    def attempt(self, work: Any) -> int:
        try:
            work()
            return 0
        except BaseException as failure:
            # Its frames would keep alive whoever is to release the stream, and so this producer.
            self.failure = failure.with_traceback(None)
            self.words = ctypes.create_string_buffer(str(failure).encode("utf-8", "replace"))
            return errno.EINVAL


def _producer(address: int) -> Producer:
    found: Producer = _alive[ArrowArrayStream.from_address(address).private_data]
    return found


@GetStructure
def _get_schema(stream: int, out: int) -> int:
    producer = _producer(stream)
    root = SchemaParts("", "+s")
    return producer.attempt(lambda: root.fill(ArrowSchema.from_address(out), producer.types))


@GetStructure
def _get_next(stream: int, out: int) -> int:
    producer = _producer(stream)
    target = ArrowArray.from_address(out)
    target.release = None

    def work() -> None:
        batch = next(producer.batches, None)
        if batch is not None:
            batch.fill(target)

    return producer.attempt(work)


@GetLastError
def _get_last_error(stream: int) -> Optional[int]:
    words = _producer(stream).words
    return None if words is None else ctypes.addressof(words)


@Release
def _release_stream(address: int) -> None:
    _forget(ArrowArrayStream.from_address(address))


# A structure may be released after the module has gone.
_FUNCTIONS: List[Any] = [
    _get_schema,
    _get_next,
    _get_last_error,
    _release_stream,
    _release_schema,
    _release_array,
    _let_go_of_array,
    _let_go_of_schema,
]
for _function in _FUNCTIONS:
    ctypes.pythonapi.Py_IncRef(ctypes.py_object(_function))
