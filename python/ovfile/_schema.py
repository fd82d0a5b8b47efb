"""What a table holds: its columns, description and precision, as plain values."""

from __future__ import annotations

from dataclasses import dataclass, field
from typing import Iterable, Iterator, List, Optional, Tuple, Union

import numpy as np

from ._component import Interface
from ._errors import Error, WrongType, WrongValue, column_error
from ._interfaces import COLUMN_TEXT
from ._kinds import kind_words
from ._library import library
from ._widening import SHORT_FLOATS, by_digits

ABSENT = -1.0e30  # the number that stands for "no value"
ABSENT_NUMBERS = (ABSENT, -1.0000000150474662e30)  # in double precision, in single
NUMBER, TEXT = "number", "text"
WORD_CHARACTERS = 4
WIDEST_TEXT = 1024
_WORDS = {"single": 64, "double": 256}
_LONGEST_DESCRIPTION = 64
# Bytes without a character in Windows-1252, which stand for the control characters of their numbers.
_KEPT_AS_CONTROLS = {code: None for code in (0x81, 0x8D, 0x8F, 0x90, 0x9D)}
_NEVER = " ,!:*&=()?"
_NEVER_FIRST = ".@"


@dataclass(frozen=True)
class Column:
    """One column of a table.

    Attributes:
        name: at most 8 characters of Windows-1252 (24 in double precision where long names are switched
            on), none of them a blank or one of ``,!:*&=()?``, the first one neither ``.`` nor ``@``.
            Names that differ in case are different names.
        kind: "number" or "text".
        width: characters of a text, which the table rounds up to a multiple of 4; 0 for a number.
        default: what a row has that is given no value: a number, a text, or None (absent, blank). A float of
            4 bytes becomes the double that its digits say.
        implicit: True: all rows have the default, which stands in the table's header alone.
    """

    name: str
    kind: str = NUMBER
    width: int = 0
    default: Union[float, str, None] = None
    implicit: bool = False

    def __post_init__(self) -> None:
        if isinstance(self.default, SHORT_FLOATS):
            (default,) = by_digits(np.array([self.default], np.float32))
            object.__setattr__(self, "default", float(default))

    @classmethod
    def number(
        cls, name: str, default: Optional[float] = None, implicit: bool = False
    ) -> "Column":
        """A column of numbers."""
        return cls(name, NUMBER, 0, default, implicit)

    @classmethod
    def text(
        cls, name: str, width: int, default: Optional[str] = None, implicit: bool = False
    ) -> "Column":
        """A column of texts of at most `width` characters."""
        return cls(name, TEXT, width, default, implicit)

    @classmethod
    def parse(cls, words: str) -> "Column":
        """From ``"CU"`` (numbers) or ``"BHID:12"`` (texts of 12 characters)."""
        name, colon, width = words.partition(":")
        if not colon:
            return cls(name)
        if not width.isdecimal():
            raise column_error(f"{words!r} is neither NAME nor NAME:WIDTH", name)
        return cls.text(name, int(width))

    @property
    def words(self) -> int:
        """How many of the table's words it takes."""
        return -(-self.width // WORD_CHARACTERS) if self.kind == TEXT else 1


@dataclass(frozen=True)
class Schema:
    """The columns of a table in their order. Iterates over the columns; `schema["CU"]` is one of them.

    Attributes:
        columns: the columns.
        precision: "double" (numbers of 8 bytes) or "single" (4 bytes).
        description: at most 64 characters of Windows-1252. A new table without one gets the library's
            own, with the date.
    """

    columns: Tuple[Column, ...] = field(default=())
    precision: str = "double"
    description: str = ""

    @property
    def names(self) -> List[str]:
        return [column.name for column in self.columns]

    @property
    def type_hint(self) -> int:
        """The library's code for the kind of table that the names make out."""
        return self._object().out_long("get_TypeHint")

    @property
    def kind(self) -> str:
        """The kind of table in words, such as "assays"; "table" where the names tell none."""
        return kind_words(self.type_hint)

    def to_xml(self) -> str:
        """The library's XML form. Raises Error for a schema whose form is longer than 2047 characters."""
        try:
            return self._object().out_text("GetSchemaAsXML")
        except Error as failure:
            raise Error("the schema is too long for the XML form", status=failure.status) from None

    @classmethod
    def from_xml(cls, text: str) -> "Schema":
        """From the library's XML form, which leaves out names of more than 8 characters."""
        if "OvDefinition" not in text:
            raise Error("the text is no schema: it has no OvDefinition")
        made = library().schema()
        made.call("SetSchemaUsingXML", text)
        return read_schema(made)

    def with_columns(self, columns: Iterable[Union[Column, str]]) -> "Schema":
        """The schema with more columns behind its own."""
        return Schema(self.columns + parse_columns(columns), self.precision, self.description)

    def _object(self) -> Interface:
        return make_object(self, checked=False)

    def __iter__(self) -> Iterator[Column]:
        return iter(self.columns)

    def __len__(self) -> int:
        return len(self.columns)

    def __contains__(self, name: object) -> bool:
        return any(column.name == name for column in self.columns)

    def __getitem__(self, key: Union[str, int]) -> Column:
        if isinstance(key, int):
            return self.columns[key]
        for column in self.columns:
            if column.name == key:
                return column
        raise column_error("there is no such column", key)


def parse_columns(columns: Iterable[Union[Column, str]]) -> Tuple[Column, ...]:
    if isinstance(columns, str) or not isinstance(columns, Iterable):
        raise WrongType(f"columns are several texts or Columns, such as [\"CU\"], not {columns!r}")
    return tuple(_parsed(column) for column in columns)


def _parsed(column: Union[Column, str]) -> Column:
    if isinstance(column, Column):
        return column
    if isinstance(column, str):
        return Column.parse(column)
    raise WrongType(f"a column is a text such as \"BHID:12\" or a Column, not {column!r}")


def read_schema(source: Interface) -> Schema:
    """A schema object of the library as plain values."""
    double = source.out_bool("get_DoublePrecision")
    count = source.out_long("get_FieldCount")
    columns = tuple(_read_column(source, index) for index in range(1, count + 1))
    return Schema(columns, "double" if double else "single", source.out_text("get_Description"))


def _read_column(source: Interface, index: int) -> Column:
    name = source.out_text("GetFieldName", index)
    implicit = source.out_bool("IsFieldImplicit", index)
    default = source.out_variant("GetFieldDefault", index)
    if source.out_long("GetFieldType", index) == COLUMN_TEXT:
        width = source.out_long("GetFieldSizeChars", index)
        return Column(name, TEXT, width, (default or "").rstrip(" ") or None, implicit)
    return Column(name, NUMBER, 0, None if default in ABSENT_NUMBERS else default, implicit)


def make_object(schema: Schema, checked: bool = True) -> Interface:
    """A schema object of the library with these columns. Raises Error for what no table can have."""
    made = library().schema()
    made.call("put_DoublePrecisionFlag", int(schema.precision == "double"))
    if checked:
        check(schema, made.out_long("get_FieldNameMaxLength"))
    made.call("put_Description", schema.description)
    for column in schema.columns:
        if column.kind == TEXT:
            text = (column.name, column.width, str(column.default or ""), int(column.implicit))
            made.call("AddStringColumn", *text)
        else:
            value = ABSENT if column.default is None else float(column.default)
            made.call("AddNumericColumn", column.name, value, int(column.implicit))
    return made


def check(schema: Schema, longest_name: int) -> None:
    """Raises Error, with the column, for what the library would refuse without saying where."""
    check_precision(schema.precision)
    _check_description(schema.description)
    seen = set()
    for column in schema.columns:
        problem = _column_problem(column, longest_name)
        if column.name in seen:
            problem = "there are two columns of that name"
        if problem:
            raise column_error(problem, column.name)
        seen.add(column.name)
    words = sum(column.words for column in schema.columns)
    if words > _WORDS[schema.precision]:
        raise Error(
            f"the table would need {words} words; a {schema.precision}-precision one holds "
            f"{_WORDS[schema.precision]} (a number takes one, a text one for every 4 characters)"
        )


def check_precision(precision: str) -> None:
    if precision not in list(_WORDS):
        raise WrongValue(f'precision is "single" or "double", not {precision!r}')


def _column_problem(column: Column, longest_name: int) -> Optional[str]:
    if column.kind not in (NUMBER, TEXT):
        return f'kind is "number" or "text", not {column.kind!r}'
    if column.kind == NUMBER and not _is_number(column.default):
        return f"the default {column.default!r} is no number"
    if column.kind == TEXT:
        default = column.default or ""
        if not isinstance(default, str):
            return f"the default {default!r} is no text"
        if not isinstance(column.width, int) or not 1 <= column.width <= WIDEST_TEXT:
            return f"the width of a text is 1 to {WIDEST_TEXT}, not {column.width}"
        if len(default) > column.width:
            return f"the default {default!r} is longer than {column.width} characters"
        if not in_code_page(default):
            return f"the default {default!r} has a character that is not in Windows-1252"
    return _name_problem(column.name, longest_name)


def _is_number(default: Union[float, str, None]) -> bool:
    if default is None or isinstance(default, str):
        return default is None
    try:
        float(default)
    except (TypeError, ValueError, OverflowError):
        return False
    return True


def _name_problem(name: str, longest: int) -> Optional[str]:
    if not isinstance(name, str) or not name:
        return "the name is empty" if name == "" else "a name is a text"
    if len(name) > longest:
        return f"the name is longer than {longest} characters"
    if name[0] in _NEVER_FIRST:
        return "a name may not begin with . or @"
    if any(c in _NEVER or c < " " or c == "\x7f" for c in name):
        return "a name may not hold blanks, control characters or any of ,!:*&=()?"
    return None if in_code_page(name) else "the name has a character that is not in Windows-1252"


def _check_description(description: str) -> None:
    if not isinstance(description, str):
        raise WrongType(f"a description is a text, not {description!r}")
    if description.startswith("LINK"):
        raise Error("a description that begins with LINK would make the table a link to another file")
    if len(description) > _LONGEST_DESCRIPTION:
        raise Error(
            f"the description has {len(description)} characters; a table keeps {_LONGEST_DESCRIPTION}"
        )
    if not in_code_page(description):
        raise Error("the description has a character that is not in Windows-1252")


def in_code_page(text: str) -> bool:
    """Whether a table can keep every character."""
    try:
        text.translate(_KEPT_AS_CONTROLS).encode("cp1252")
    except UnicodeEncodeError:
        return False
    return True
