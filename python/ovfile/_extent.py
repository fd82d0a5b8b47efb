"""How far a table's rows reach in its file, which may be shorter than its header promises."""

from __future__ import annotations

import ctypes
from ctypes import byref
from typing import NamedTuple, Optional

from . import _interfaces as known
from ._component import Interface
from ._errors import Error

_PAGE_WORDS = 512


class Extent(NamedTuple):
    """Numbers of rows. Whoever makes room for rows looks here first: a header may promise any number."""

    promised: int
    readable: int  # of these by the library
    held: int  # with those of a page in which the file ends, of which the library reads none

    def require(self, end: Optional[int] = None) -> None:
        """Raises Error where not all rows before `end` (from 0; None: all) can be read."""
        end = self.promised if end is None else end
        if end <= self.readable:
            return
        problem = f"the file ends behind row {self.held}; its header promises {self.promised}"
        if end <= self.held < self.promised:
            problem += f"; behind row {self.readable}, in the page in which it ends, none is read"
        raise Error(problem)


def extent_of(table: Interface) -> Extent:
    """As of now: the file has every row that was appended, flushed or not, and its header alone may lag."""
    facts = known.TableFacts(ctypes.sizeof(known.TableFacts))
    table.query(known.MAINTENANCE_ID, known.MAINTENANCE).call("GetFacts", byref(facts))
    rows = int(facts.rows)
    readable = _readable_rows(facts, rows)
    return Extent(rows, readable, _held_rows(facts, rows, readable))


def _readable_rows(facts: known.TableFacts, rows: int) -> int:
    page_bytes = _PAGE_WORDS * facts.wordBytes
    record_bytes = facts.recordWords * facts.wordBytes
    in_last_page = facts.recordsInLastPage
    # The last page may end with its rows.
    of_last_page = facts.fileBytes - (facts.pages - 1) * page_bytes
    if rows == 0 or of_last_page >= record_bytes * in_last_page:
        return rows
    # The library takes one of as many bytes as its rows have words, and makes up the rest.
    if of_last_page >= facts.recordWords * in_last_page:
        return int(rows - in_last_page + of_last_page // record_bytes)
    return min(rows, max(facts.fileBytes // page_bytes - facts.headerPages, 0) * facts.recordsPerPage)


def _held_rows(facts: known.TableFacts, rows: int, readable: int) -> int:
    if readable == rows or facts.wordBytes <= 0 or facts.recordWords <= 0:
        return readable
    page_bytes = _PAGE_WORDS * facts.wordBytes
    pages = facts.fileBytes // page_bytes - facts.headerPages
    if pages < 0 or pages * facts.recordsPerPage != readable:
        return readable
    of_cut_page = facts.fileBytes % page_bytes // (facts.recordWords * facts.wordBytes)
    return min(rows, readable + min(of_cut_page, facts.recordsPerPage))
