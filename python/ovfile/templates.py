"""Schemas with the standard columns of the common kinds of table.

Each function answers a `Schema` for `ovfile.create(path, template=…)`; `Schema.with_columns` adds grades
and whatever else a table is to hold. Defaults are 0, as the library's own templates have them.
"""

from __future__ import annotations

from typing import Any, Tuple

from ._library import library
from ._schema import Schema, read_schema

Triple = Tuple[float, float, float]
Counts = Tuple[int, int, int]


def _from(method: str, precision: str, *arguments: Any) -> Schema:
    made = library().schema()
    made.call("put_DoublePrecisionFlag", int(precision == "double"))
    made.call(method, *arguments)
    schema = read_schema(made)
    return Schema(schema.columns, precision, schema.description)


def block_model(
    origin: Triple, size: Triple, blocks: Counts, precision: str = "double"
) -> Schema:
    """A block model: IJK, centres XC YC ZC and sizes XINC YINC ZINC in every row; the rest implicit.

    Args:
        origin: XMORIG, YMORIG, ZMORIG, the model's lowest corner.
        size: XINC, YINC, ZINC, the sizes of a block, the default of each row's.
        blocks: NX, NY, NZ, how many blocks there are in each direction.
    """
    last = [count - 1 for count in blocks]
    limits = [0, last[0], 0, last[1], 0, last[2]]
    return _from("CreateModelFile", precision, *map(float, size), *map(float, origin), *limits)


def regular_grid(
    origin: Triple, size: Triple, blocks: Counts, ijk: bool = True, precision: str = "double"
) -> Schema:
    """A regular grid: IJK in every row (unless `ijk` is False), everything else implicit.

    Args:
        origin: XMORIG, YMORIG, ZMORIG.
        size: XINC, YINC, ZINC.
        blocks: NX, NY, NZ.
    """
    grid = (*map(float, size), *map(float, origin), *blocks, -int(ijk))
    return _from("CreateRegularGrid", precision, *grid)


def points(precision: str = "double") -> Schema:
    """Points: XPT, YPT, ZPT."""
    return _from("CreatePointsFile", precision)


def strings(precision: str = "double") -> Schema:
    """Strings: XP, YP, ZP, the point's number PTN, the string's number PVALUE."""
    return _from("CreateStringsFile", precision)


def wireframe_triangles(precision: str = "double") -> Schema:
    """Triangles of a wireframe: the points PID1, PID2, PID3 and the number TRIANGLE."""
    return _from("CreateWfTriangleFile", precision)


def wireframe_points(precision: str = "double") -> Schema:
    """Points of a wireframe: XP, YP, ZP and the number PID."""
    return _from("CreateWfPointFile", precision)
