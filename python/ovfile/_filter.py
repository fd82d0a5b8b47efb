"""Conditions on rows, which the library's evaluator answers.

The library tests the row under its cursor, so rows are visited, two calls for each. What it answers depends
on nothing but the values of the columns that the condition names: where these repeat, as grades of a few
digits and codes of rocks do, one row of each kind is visited. This is the one place that knows; a faster way
replaces `passing_rows` and nothing else.
"""

from __future__ import annotations

from ctypes import byref, c_int16
from typing import Dict, List, Optional, Sequence, Tuple

import numpy as np

from ._arrays import Array
from ._arrow_import import ColumnView, Stream
from ._component import S_OK, Interface
from ._errors import Error, column_error
from ._interfaces import STREAM_ABSENT_AS_NULL, STREAM_DICTIONARIES, STREAM_TRAILING_BLANKS
from ._library import library
from ._reading import Span, open_stream
from ._schema import TEXT, Column

_FEW_ROWS = 1000  # not worth the search for rows alike
_SAMPLE = 32768  # rows that tell whether it is; one in 64 of a long table's


def passing_rows(
    table: Interface, columns: Sequence[Column], expression: str, first: int, count: int
) -> Array:
    """Which of `count` rows from `first` (from 0) on pass, as booleans. The cursor moves.

    Raises Error for a bad expression, with the library's words about the place, and with the column for
    one that names a column that the table lacks.
    """
    named, blanks_pass = _give(table, columns, expression)
    if count == 0:
        return np.zeros(0, bool)
    span = Span(first, count, None)
    alike = _rows_alike(table, named, span) if count > _FEW_ROWS else None
    if alike is None:
        passes = _test(table, np.arange(first + 1, first + count + 1))
    else:
        rows, kind_of = alike
        passes = _test(table, rows + first + 1)[kind_of]
    if blanks_pass:
        passes |= _blank(table, named[0], span)
    return passes


def _test(table: Interface, rows: Array) -> Array:
    """Which of the rows (from 1) pass."""
    pointer = table.pointer
    test, move, go = (table.function(name) for name in ("IsFilteredIn", "GetNextRow", "GetRowAt"))
    answer = c_int16()
    place = byref(answer)
    found = bytearray(len(rows))
    before = None
    for index, row in enumerate(rows.tolist()):
        status = move(pointer) if before == row - 1 else go(pointer, row)
        before = row
        if status == S_OK:
            status = test(pointer, 0, 0, place)
        if status != S_OK:
            raise table.runtime.failure(status)
        if answer.value:
            found[index] = 1
    return np.frombuffer(found, bool)


def _give(table: Interface, columns: Sequence[Column], expression: str) -> Tuple[List[int], bool]:
    """Hands the expression over. The columns that it names, and whether it has one alone, of texts, whose
    blank texts pass.
    """
    if not isinstance(expression, str):
        raise Error(f"where: a condition is a text, not {type(expression).__name__}")
    found = library()
    found.make_evaluator_known()
    evaluator = found.evaluator()
    if evaluator is None:
        raise Error("where: there is no evaluator for conditions (libovfilter.so or OvFilter.dll)")
    try:
        evaluator.call("SetExpression", expression)
    except Error as failure:
        raise Error(f"where: {failure.message}", status=failure.status) from None
    names = _names(evaluator)
    if not names:
        raise Error("where: the condition names no column, so no row could pass")
    known = [column.name for column in columns]
    for name in names:
        if name not in known:
            raise column_error("where: there is no such column", name)
    table.call("put_FilterString", 0, expression)
    named = [known.index(name) for name in names]
    if len(named) > 1 or columns[named[0]].kind != TEXT:
        return named, False
    # The table has no values to ask for when the only one is blank, and lets no such row through.
    answer = c_int16()
    evaluator.call("Evaluate", None, byref(answer))
    return named, bool(answer.value)


def _names(evaluator: Interface) -> List[str]:
    count = evaluator.out_long("GetVariableCount")
    return [evaluator.out_text("GetVariableName", number) for number in range(count)]


def _rows_alike(
    table: Interface, columns: List[int], span: Span
) -> Optional[Tuple[Array, Array]]:
    """One row (from 0 in the span) for each combination of values, and which combination each row has.

    None where there are so many combinations that it does not pay.
    """
    kinds = np.zeros(span.count, np.int64)
    for column in columns:
        codes = _codes(table, column, span)
        if codes is None:
            return None
        kinds = kinds * (int(codes.max()) + 1) + codes
        if _look_different(kinds):
            return None
        _, rows, kinds = np.unique(kinds, return_index=True, return_inverse=True)
        if len(rows) > span.count // 2:
            return None
    order = np.argsort(rows)
    renumbered = np.empty_like(order)
    renumbered[order] = np.arange(len(order))
    return rows[order], renumbered[kinds]


def _look_different(values: Array) -> bool:
    """Whether a sample says that more than half of the values are different, to save a sort of all.

    Among m values drawn at random there are m * m / 2k pairs alike when k are different.
    """
    count = len(values)
    drawn = max(_SAMPLE, count // 64)
    if count < 2 * drawn:
        return False
    sample = values[np.random.default_rng(count).integers(0, count, drawn)]
    return drawn - len(np.unique(sample)) < drawn * drawn // count


def _codes(table: Interface, column: int, span: Span) -> Optional[Array]:
    """A number for each row, the same where the values are the same to the last bit. None as above."""
    flags = STREAM_DICTIONARIES | STREAM_TRAILING_BLANKS
    parts: List[Array] = []
    places: Dict[str, int] = {}
    for (view,) in Stream(open_stream(table, [column], span, flags=flags)):
        if view.field.is_text:
            parts.append(_text_codes(view, places))
        else:
            values = view.numbers()
            parts.append(values.view(f"u{values.dtype.itemsize}"))
    joined = np.concatenate(parts)
    if joined.dtype == np.int64:
        return joined
    if _look_different(joined):
        return None
    return np.unique(joined, return_inverse=True)[1].astype(np.int64)


def _text_codes(view: ColumnView, places: Dict[str, int]) -> Array:
    texts = view.dictionary().texts().tolist()
    numbers = [places.setdefault(text, len(places)) for text in texts]
    return np.array(numbers, np.int64)[view.numbers()]


def _blank(table: Interface, column: int, span: Span) -> Array:
    flags = STREAM_ABSENT_AS_NULL | STREAM_DICTIONARIES
    found = np.zeros(span.count, bool)
    at = 0
    for (view,) in Stream(open_stream(table, [column], span, flags=flags)):
        nulls = view.nulls()
        if nulls is not None:
            found[at : at + view.length] = nulls
        at += view.length
    return found
