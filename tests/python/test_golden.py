"""Every golden file reads as its expectation says."""

import gzip
import json
import math
import os
import pathlib
import shutil
import struct

import numpy as np
import pytest
from conftest import ROOT, golden_folder

import ovfile

_FOLDER = pathlib.Path(os.environ.get("OVFILE_SHARED") or ROOT.parent / "shared") / "golden"
_LISTINGS = [path for path in _FOLDER.rglob("*.json") if path.name != "bad.json"]
_MISSING = pytest.param(
    None, id="missing", marks=pytest.mark.skip(reason="OVFILE_SHARED does not lead to the golden files")
)
NAMES = sorted(str(path.relative_to(_FOLDER).with_suffix("")) for path in _LISTINGS) or [_MISSING]
ABSENT = -1e30


def bits(value, single):
    return struct.pack("<f" if single else "<d", value)


def number(text):
    return float.fromhex(text) if isinstance(text, str) else float(text)


@pytest.fixture(scope="module")
def folder(tmp_path_factory):
    """The files, where they may be opened and links find their neighbours."""
    made = tmp_path_factory.mktemp("files") / "golden"
    shutil.copytree(golden_folder(), made)
    return made


def expectation(folder, name):
    return json.loads((folder / f"{name}.json").read_text(encoding="utf-8"))


def file_of(folder, name, expected):
    path = folder / pathlib.Path(name).parent / pathlib.Path(expected["file"]).name
    if path.suffix == ".gz":
        unpacked = path.with_suffix("")
        unpacked.write_bytes(gzip.decompress(path.read_bytes()))
        return unpacked
    packed = path.with_name(path.name + ".gz")
    if not path.exists() and packed.exists():
        path.write_bytes(gzip.decompress(packed.read_bytes()))
    return path


@pytest.mark.parametrize("name", NAMES)
def test_golden_file(folder, name):
    link = expectation(folder, name)
    path, expected = file_of(folder, name, link), link
    if link.get("link"):
        if link["link"].get("fails"):
            with pytest.raises(ovfile.Error) as caught:
                ovfile.open(path)
            assert caught.value.message == link["link"]["fails"]
            return
        expected = expectation(folder, link["link"]["reads_as"])
    before = path.read_bytes()
    with ovfile.open(path) as table:
        assert table.is_linked == bool(link.get("is_link"))
        check_definition(table, expected)
        check_rows(table, expected)
        check_signatures(table, expected)
    assert path.read_bytes() == before


def check_definition(table, expected):
    assert table.precision == expected["precision"]
    assert len(table) == expected["row_count"]
    assert table.description == expected["header"]["schema_description"]
    if "type_hint" in expected:
        assert table.schema.type_hint == expected["type_hint"]
    assert [column.name for column in table.schema] == [field["name"] for field in expected["fields"]]
    for column, field in zip(table.schema, expected["fields"]):
        assert column.implicit == field["implicit"]
        assert (column.kind == "text") == (field["type"] == 3)
        if column.kind == "text":
            assert column.width == field["width_chars"]
        if "default" in field:
            check_default(column, field["default"])


def check_default(column, expected):
    if column.kind == "text":
        assert (column.default or "") == expected.rstrip(" ")
    elif number(expected) in (ABSENT, float(np.float32(ABSENT))):
        assert column.default is None
    elif math.isnan(number(expected)):
        assert math.isnan(column.default)
    else:
        assert bits(column.default, False) == bits(number(expected), False)


def check_rows(table, expected):
    if "rows" not in expected or not expected["fields"]:
        return
    single = expected["precision"] == "single"
    plain = table.read(absent="value", keep_blanks=True)
    wide = table.read(absent="value", keep_blanks=True, widen=True)
    missing = table.read()
    for place, name in enumerate(table.columns):
        for row, cells in enumerate(expected["rows"]):
            cell, found = cells[place], plain[name][row]
            where = f"{name}, row {row}"
            if cell is None or isinstance(cell, str):
                assert found == (cell or ""), where
                continue
            value = number(cell["f" if single else "d"])
            if math.isnan(value):
                assert math.isnan(found), where
                if "bits" in cell:
                    kind = np.uint32 if single else np.uint64
                    assert plain[name][row : row + 1].view(kind)[0] == int(cell["bits"], 16), where
                continue
            assert bits(found, single) == bits(value, single), where
            assert np.isnan(missing[name][row]) == (value in (ABSENT, float(np.float32(ABSENT)))), where
            # A float as the double that its shortest digits say.
            digits = float(np.format_float_scientific(np.float32(value))) if single else value
            assert bits(wide[name][row], False) == bits(digits, False), where


def check_signatures(table, expected):
    for key, digits in expected.get("signatures", {}).items():
        if key in ("loose", "tight"):
            flags, count = [key == "loose"] * 3, -1
        else:
            *words, last = key.split(",")
            flags, count = [word == "true" for word in words], int(last)
        names = ("ignore_description", "ignore_field_order", "ignore_precision")
        assert table.signature(**dict(zip(names, flags)), digits=count) == digits, key


def bad_cases():
    listing = _FOLDER / "bad.json"
    if not listing.is_file():
        return [_MISSING]
    cases = json.loads(listing.read_text(encoding="utf-8"))
    return [pytest.param(case, id=case["file"]) for case in cases]


@pytest.mark.parametrize("case", bad_cases())
def test_bad_file(folder, case):
    """Opens or is refused as expected; whatever reads is read, and nothing worse than Error comes out."""
    path, expect = folder / "bad" / case["file"], case["expect"]
    if not path.exists():
        path.write_bytes(gzip.decompress(path.with_name(path.name + ".gz").read_bytes()))
    try:
        table = ovfile.open(path)
    except ovfile.Error as failure:
        assert expect["open"] in ("fails", "either")
        if "message" in expect:
            assert failure.message == expect["message"]
        return
    with table:
        assert expect["open"] in ("opens", "either")
        if "row_count" in expect:
            assert len(table) == expect["row_count"]
        if "field_count" in expect:
            assert len(table.schema) == expect["field_count"]
        for name in table.columns:
            try:
                assert len(table.read(name, rows=slice(0, 300))[name]) == min(len(table), 300)
            except ovfile.Error as failure:
                assert failure.message and failure.file
