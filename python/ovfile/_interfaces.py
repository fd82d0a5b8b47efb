"""Identifiers of the library's classes and interfaces, and the slots of the functions used here."""

from __future__ import annotations

import ctypes
from ctypes import POINTER, c_double, c_float, c_int16, c_int32, c_int64, c_uint16, c_uint32, c_void_p
from typing import Dict

from ._component import UNKNOWN, Guid, Prototype, Variant

TABLE_CLASS = Guid.of("{3A9F6E21-C48B-4D07-B25E-91C7A3D0F468}")
SCHEMA_CLASS = Guid.of("{5C1E0A37-7D42-4E91-A3B6-2F8D64C09E15}")
FILTER_CLASS = Guid.of("{4F18D7B2-93E6-4A01-BC57-E26A08F3D914}")
TABLE_ID = Guid.of("{6B91F3A0-D27C-4385-A4E6-0C9B75E21D38}")
SCHEMA_ID = Guid.of("{C05B2E96-A831-47D4-95F2-1D6E8B37A0C2}")
FILTER_ID = Guid.of("{8E27B4C1-0F63-4A5D-9C18-73D2E5A94B06}")
MAINTENANCE_ID = Guid.of("{9A0C47E2-5D3B-4F81-B6C9-27E4D8105F6A}")
STREAM_ID = Guid.of("{D84B1C6F-20E7-4A95-8F3D-6C5A91E0B724}")
PROGRESS_ID = Guid.of("{5E0C93B1-7A24-4D68-913F-C208B65DE47A}")
PROGRESS_SOURCE_ID = Guid.of("{C7418F2A-1B96-4E03-A56D-39F082CB17D4}")

COLUMN_TEXT = 3  # of the column types; the others are numbers

_TEXT = c_void_p
_OBJECT = c_void_p
_OUT_TEXT = POINTER(c_void_p)
_OUT_OBJECT = POINTER(c_void_p)
_OUT_LONG = POINTER(c_int32)
_OUT_BOOL = POINTER(c_int16)
_LONGS = POINTER(c_int32)


def _methods(**own: Prototype) -> Dict[str, Prototype]:
    return {**UNKNOWN, **own}


TABLE = _methods(
    GetRowCount=(10, (_OUT_LONG,)),
    GetNextRow=(11, ()),
    get_Schema=(13, (_OUT_OBJECT,)),
    get_Name=(15, (_OUT_TEXT,)),
    GetRowAt=(26, (c_int32,)),
    Open=(27, (_TEXT, c_int32)),
    Close=(28, ()),
    Create=(29, (_TEXT, _OBJECT)),
    IsFilteredIn=(36, (c_int32, c_int32, _OUT_BOOL)),
    put_FilterString=(39, (c_int32, _TEXT)),
    FlushChanges=(42, ()),
    get_IsLinked=(43, (_OUT_BOOL,)),
    GetSignature=(49, (c_int16, c_int16, c_int16, c_int32, _OUT_TEXT)),
    AddImplicitNumericColumnFloat=(54, (_TEXT, c_float)),
    AddImplicitNumericColumnDouble=(55, (_TEXT, c_double)),
    AddImplicitStringColumn=(56, (_TEXT, c_int32, _TEXT)),
)

SCHEMA = _methods(
    get_TypeHint=(7, (_OUT_LONG,)),
    GetFieldDefault=(8, (c_int32, POINTER(Variant))),
    get_FieldCount=(14, (_OUT_LONG,)),
    GetFieldName=(16, (c_int32, _OUT_TEXT)),
    GetFieldType=(18, (c_int32, _OUT_LONG)),
    get_Description=(21, (_OUT_TEXT,)),
    put_Description=(22, (_TEXT,)),
    AddStringColumn=(26, (_TEXT, c_int32, _TEXT, c_int32)),
    AddNumericColumn=(27, (_TEXT, c_double, c_int32)),
    put_DoublePrecisionFlag=(29, (c_int32,)),
    CreateModelFile=(30, (c_double,) * 6 + (c_int32,) * 6),
    CreatePointsFile=(31, ()),
    CreateStringsFile=(32, ()),
    CreateWfTriangleFile=(33, ()),
    CreateWfPointFile=(34, ()),
    IsFieldImplicit=(35, (c_int32, _OUT_BOOL)),
    GetFieldSizeChars=(36, (c_int32, _OUT_LONG)),
    CreateRegularGrid=(41, (c_double,) * 6 + (c_int32,) * 3 + (c_int16,)),
    get_DoublePrecision=(42, (_OUT_BOOL,)),
    GetSchemaAsXML=(44, (_OUT_TEXT,)),
    SetSchemaUsingXML=(45, (_TEXT,)),
    get_FieldNameMaxLength=(47, (_OUT_LONG,)),
)

FILTER = _methods(
    SetExpression=(3, (_TEXT,)),
    Evaluate=(4, (_TEXT, POINTER(c_int16))),
    GetVariableName=(6, (c_int32, _OUT_TEXT)),
    GetVariableCount=(7, (_OUT_LONG,)),
)


class TableFacts(ctypes.Structure):
    """What an open table's file looks like."""

    _fields_ = [
        ("cbSize", c_uint32),
        ("wordBytes", c_int32),
        ("byteOrder", c_int32),
        ("atoms", c_int32),
        ("headerPages", c_int32),
        ("recordWords", c_int32),
        ("recordsPerPage", c_int32),
        ("recordsInLastPage", c_int32),
        ("reserved", c_int32),
        ("pages", c_int64),
        ("rows", c_int64),
        ("fileBytes", c_int64),
        ("firstName", c_uint16 * 9),
        ("secondName", c_uint16 * 9),
        ("description", c_uint16 * 65),
        ("owner", c_uint16 * 9),
    ]


MAINTENANCE = _methods(
    GetFacts=(3, (POINTER(TableFacts),)),
    Rebuild=(4, (_OBJECT, c_int32, _LONGS, c_int32, _LONGS)),
    Sync=(5, ()),
)


class StreamRequest(ctypes.Structure):
    """Which rows and columns a stream hands out, both counted from 1."""

    _fields_ = [
        ("cbSize", c_uint32),
        ("nColumns", c_int32),
        ("pColumns", _LONGS),
        ("firstRow", c_int32),
        ("nRows", c_int32),
        ("rowsPerBatch", c_int32),
        ("flags", c_uint32),
    ]


STREAM_ABSENT_AS_NULL = 1
STREAM_TRAILING_BLANKS = 2
STREAM_DICTIONARIES = 4

STREAM = _methods(Read=(3, (POINTER(StreamRequest), c_void_p)), Append=(4, (c_void_p, _OUT_LONG)))

PROGRESS_SOURCE = _methods(SetProgress=(3, (_OBJECT,)))
