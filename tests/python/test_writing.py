"""New tables out of arrays and frames, and rows appended to tables."""

import datetime
import decimal
import os
import stat

import numpy as np
import pandas as pd
import pytest
from conftest import without_new_files

import ovfile

NAN = float("nan")


def columns_of(path):
    with ovfile.open(path) as table:
        return [(c.name, c.kind, c.width, c.implicit) for c in table.schema]


def test_a_frame_comes_back(path):
    frame = pd.DataFrame(
        {
            "BHID": ["LK001", "LK002", ""],
            "CU": [0.1, NAN, -3.5e-300],
            "DEPTH": [1.0, 2.0, 3.0],
        }
    )
    assert ovfile.write_pandas(frame, path) == 3
    pd.testing.assert_frame_equal(ovfile.read_pandas(path), frame)
    assert columns_of(path) == [
        ("BHID", "text", 8, False),
        ("CU", "number", 0, False),
        ("DEPTH", "number", 0, False),
    ]


SERIES = [
    ("int8", pd.Series([-128, 127, 0], dtype="int8"), [-128, 127, 0]),
    ("uint8", pd.Series([255, 0, 1], dtype="uint8"), [255, 0, 1]),
    ("int16", pd.Series([-32768, 1, 2], dtype="int16"), [-32768, 1, 2]),
    ("uint16", pd.Series([65535, 1, 2], dtype="uint16"), [65535, 1, 2]),
    ("int32", pd.Series([-(2**31), 1, 2], dtype="int32"), [-(2.0**31), 1, 2]),
    ("uint32", pd.Series([2**32 - 1, 1, 2], dtype="uint32"), [2.0**32 - 1, 1, 2]),
    ("int64", pd.Series([2**53, -(2**53), 2], dtype="int64"), [2.0**53, -(2.0**53), 2]),
    ("uint64", pd.Series([2**53, 1, 2], dtype="uint64"), [2.0**53, 1, 2]),
    ("float16", pd.Series([0.5, NAN, 2], dtype="float16"), [0.5, NAN, 2]),
    ("float32", pd.Series([0.1, NAN, 2], dtype="float32"), [0.1, NAN, 2]),
    ("float64", pd.Series([0.1, NAN, -1e30]), [0.1, NAN, NAN]),
    ("big endian", pd.Series(np.array([1.5, 2, 3], ">f8")), [1.5, 2, 3]),
    ("longdouble", pd.Series(np.array([1.5, 2, 3], np.longdouble)), [1.5, 2, 3]),
    ("bool", pd.Series([True, False, True]), [1, 0, 1]),
    ("boolean", pd.Series([True, pd.NA, False], dtype="boolean"), [1, NAN, 0]),
    ("Int64", pd.Series([1, pd.NA, 3], dtype="Int64"), [1, NAN, 3]),
    ("UInt8", pd.Series([1, pd.NA, 255], dtype="UInt8"), [1, NAN, 255]),
    ("Float32", pd.Series([0.1, pd.NA, 3], dtype="Float32"), [0.1, NAN, 3]),
    ("Float64", pd.Series([0.25, pd.NA, 3], dtype="Float64"), [0.25, NAN, 3]),
    ("objects", pd.Series([1, None, 2.5], dtype=object), [1, NAN, 2.5]),
    ("decimals", pd.Series([decimal.Decimal("0.1"), None, 3], dtype=object), [0.1, NAN, 3]),
    ("nothing", pd.Series([None, NAN, pd.NA], dtype=object), [NAN, NAN, NAN]),
    ("NaT", pd.Series([None, pd.NaT, 1], dtype=object), [NAN, NAN, 1]),
    ("sparse", pd.Series(pd.arrays.SparseArray([0.0, 1.0, NAN])), [0, 1, NAN]),
    ("category", pd.Series([1.5, None, 2.5], dtype="category"), [1.5, NAN, 2.5]),
]


@pytest.mark.parametrize("series, expected", [row[1:] for row in SERIES], ids=[row[0] for row in SERIES])
def test_numbers(path, series, expected):
    ovfile.write_pandas(pd.DataFrame({"V": series, "N": [1, 2, 3]}), path)
    with ovfile.open(path) as table:
        assert table.schema["V"].kind == "number"
        np.testing.assert_array_equal(table["V"], expected)


TEXTS = [
    ("objects", pd.Series(["a", None, "b"])),
    ("NaN among texts", pd.Series(["a", NAN, "b"])),
    ("string", pd.Series(["a", pd.NA, "b"], dtype="string")),
    ("category", pd.Series(["a", None, "b"], dtype="category")),
    ("blanks at the end", pd.Series(["a   ", " \t", "b\t"])),
    ("category of strings", pd.Series(["a", None, "b"], dtype="string").astype("category")),
]


@pytest.mark.parametrize("series", [row[1] for row in TEXTS], ids=[row[0] for row in TEXTS])
def test_texts(path, series):
    ovfile.write_pandas(pd.DataFrame({"T": series}), path)
    with ovfile.open(path) as table:
        assert (table.schema["T"].kind, table.schema["T"].width) == ("text", 4)
        assert table["T"].tolist() == ["a", "", "b"]


def test_an_empty_category_is_a_column_without_values(path):
    ovfile.write_pandas(pd.DataFrame({"T": pd.Categorical([None, None]), "N": [1, 2]}), path)
    with ovfile.open(path) as table:
        assert np.isnan(table["T"]).all()


def test_arrays_and_lists(path):
    ovfile.write(
        {
            "A": [1, 2],
            "B": ("x", "y"),
            "C": np.array(["left", "right"]),
            "D": np.ma.MaskedArray([1.5, 2.5], mask=[True, False]),
            "E": np.ma.MaskedArray(["q", "r"], mask=[False, True], dtype=object),
            "F": np.arange(4)[::2],
            "G": pd.Categorical(["u", None]),
            "H": pd.Series([1, None], dtype="Int64"),
        },
        path,
    )
    with ovfile.open(path) as table:
        found = table.read()
    assert found["A"].tolist() == [1, 2] and found["B"].tolist() == ["x", "y"]
    assert found["C"].tolist() == ["left", "right"] and found["F"].tolist() == [0, 2]
    np.testing.assert_array_equal(found["D"], [NAN, 2.5])
    assert found["E"].tolist() == ["q", ""]
    assert found["G"].tolist() == ["u", ""]
    np.testing.assert_array_equal(found["H"], [1, NAN])


def test_characters_of_the_code_page(path):
    texts = ["Küste", "€", "\x81", "naïve œuvre", "Å" * 12]
    ovfile.write({"T": texts}, path)
    with ovfile.open(path) as table:
        assert table["T"].tolist() == texts
        assert table.schema["T"].width == 12


REFUSED = [
    ("dates", pd.Series(pd.date_range("2024-01-01", periods=2)), "dates have no place", None),
    ("zoned dates", pd.Series(pd.date_range("2024-01-01", periods=2, tz="UTC")), "dates have", None),
    ("durations", pd.Series(pd.to_timedelta([1, 2], "s")), "dates have no place", None),
    ("periods", pd.Series(pd.period_range("2024", periods=2, freq="M")), "dates have no place", None),
    ("date objects", pd.Series(["a", datetime.date(2024, 1, 2)]), "dates have no place", 1),
    ("complex", pd.Series([1j, 2]), "complex128 have no place", None),
    ("bytes", pd.Series([b"a", b"b"]), "b'a' is neither a text nor a number", 0),
    ("lists", pd.Series([[1], [2]]), r"\[1\] is neither a text nor a number", 0),
    ("a text among numbers", pd.Series([1.5, "n/a"]), "'n/a' is a text among numbers", 1),
    ("a number among texts", pd.Series(["LK1", 7]), "7 is a number among texts", 1),
    ("too many digits", pd.Series([1, 2**53 + 1]), "9007199254740993 has more digits", 1),
    ("more than 64 bits", pd.Series([1, 2**70]), "more than 64 bits", None),
    ("another code page", pd.Series(["a", "Ω"]), "code page|Windows-1252", 1),
    ("half a character", pd.Series(["a", "\ud800"]), "half a character", 1),
    ("a long text", pd.Series(["a", "x" * 1025]), "the width of a text is 1 to 1024, not 1028", None),
]


@pytest.mark.parametrize("series, words, row", [r[1:] for r in REFUSED], ids=[r[0] for r in REFUSED])
def test_refused_values(path, series, words, row):
    """The error tells file, column and row, and no file comes out of it, whole or half."""
    with pytest.raises(ovfile.Error, match=words) as caught:
        ovfile.write_pandas(pd.DataFrame({"GOOD": ["p", "q"], "BAD": series}), path)
    failure = caught.value
    assert (failure.file, failure.column, failure.row) == (str(path), "BAD", row)
    assert str(failure).startswith(f"{path}: ")
    assert os.listdir(path.parent) == []


def test_a_failed_write_leaves_the_old_table(path):
    ovfile.write({"A": [1, 2, 3]}, path)
    before = path.read_bytes()
    with pytest.raises(ovfile.Error):
        ovfile.write({"A": ["Ω"]}, path)
    assert path.read_bytes() == before
    assert os.listdir(path.parent) == [path.name]


def test_a_table_that_is_open_is_not_replaced(path):
    ovfile.write({"A": [1]}, path)
    with ovfile.open(path) as table:
        with pytest.raises(ovfile.Error, match="open somewhere else|cannot be written"):
            ovfile.write({"A": [2]}, path)
        assert table["A"].tolist() == [1]
    assert without_new_files(path.parent)
    ovfile.write({"A": [2]}, path)
    with ovfile.open(path) as table:
        assert table["A"].tolist() == [2]


@pytest.mark.skipif(os.name == "nt", reason="permissions are Linux'")
def test_replacing_keeps_permissions_and_links(path):
    ovfile.write({"A": [1]}, path)
    path.chmod(0o640)
    link = path.with_name("link.ovt")
    link.symlink_to(path)
    ovfile.write({"A": [2]}, link)
    assert link.is_symlink()
    assert stat.S_IMODE(path.stat().st_mode) == 0o640
    with ovfile.open(path) as table:
        assert table["A"].tolist() == [2]


def test_a_folder_that_is_not_there(tmp_path):
    with pytest.raises(ovfile.Error) as caught:
        ovfile.write({"A": [1]}, tmp_path / "missing" / "table.ovt")
    assert caught.value.file == str(tmp_path / "missing" / "table.ovt")


def test_kinds(path):
    frame = pd.DataFrame({"ID": [12, 7], "NAME": ["a", "b"], "NOTE": [None, None], "X": ["p", "q"]})
    kinds = {
        "ID": "text",
        "NAME": "text:10",
        "NOTE": 20,
        "X": ovfile.Column.text("X", 6, default="none"),
    }
    ovfile.write_pandas(frame, path, kinds=kinds)
    assert columns_of(path) == [
        ("ID", "text", 4, False),
        ("NAME", "text", 12, False),
        ("NOTE", "text", 20, False),
        ("X", "text", 8, False),
    ]
    with ovfile.open(path) as table:
        assert table["ID"].tolist() == ["12", "7"] and table["NOTE"].tolist() == ["", ""]
        assert table.schema["X"].default == "none"


@pytest.mark.parametrize(
    "kinds, words, column",
    [
        ({"T": "number"}, "the values are texts, not numbers", "T"),
        ({"F": "text"}, "only whole numbers become texts in one way", "F"),
        ({"B": "text"}, "only whole numbers become texts in one way", "B"),
        ({"T": "word"}, 'a kind is "number", "text"', "T"),
        ({"T": "text:x"}, 'a kind is "number", "text"', "T"),
        ({"T": 0}, "the width of a text is 1 to 1024, not 0", "T"),
        ({"F": 0}, "the width of a text is 1 to 1024, not 0", "F"),
        ({"T": -4}, "the width of a text is 1 to 1024, not -4", "T"),
        ({"T": "text:0"}, "the width of a text is 1 to 1024, not 0", "T"),
        ({"T": True}, 'a kind is "number", "text"', "T"),
        ({"NO": "text"}, "kinds: there is no such column", "NO"),
        ({"T": "text:2"}, "column T, row 1: ", "T"),
    ],
)
def test_kinds_that_cannot_be(path, kinds, words, column):
    data = {"F": [1.5], "T": ["longer"], "B": [True]}
    with pytest.raises(ovfile.Error, match=words) as caught:
        ovfile.write(data, path, kinds=kinds)
    assert caught.value.column == column


def test_implicit_columns_description_and_schema(path, tmp_path):
    ovfile.write(
        {"CU": [1, 2]}, path, implicit={"SG": 2.7, "PIT": "north", "GAP": None}, description="two samples"
    )
    assert columns_of(path)[1:] == [
        ("SG", "number", 0, True),
        ("PIT", "text", 8, True),
        ("GAP", "number", 0, True),
    ]
    other = tmp_path / "other.ovt"
    with ovfile.open(path) as table:
        frame, schema = table.to_pandas(), table.schema
        assert table.description == "two samples"
    frame["NEW"] = ["a", "b"]
    ovfile.write_pandas(frame, other, schema=schema)
    assert columns_of(other) == [*columns_of(path), ("NEW", "text", 4, False)]
    pd.testing.assert_frame_equal(ovfile.read_pandas(other), frame)
    with ovfile.open(other) as table:
        assert table.description == "two samples"


def test_a_value_for_an_implicit_column_is_the_one_of_all_rows(path):
    with ovfile.create(path, ["CU", ovfile.Column.number("SG", 2.7, implicit=True)]) as table:
        table.append({"CU": [1], "SG": [2.7]})
        with pytest.raises(ovfile.Error) as caught:
            table.append({"CU": [1, 2], "SG": [2.7, 3]})
        assert (caught.value.column, caught.value.row) == ("SG", 1)
        assert len(table) == 1


def test_numbers_in_single_precision(path):
    ovfile.write({"ID": [2**24], "AU": [0.1]}, path, "single")
    with ovfile.open(path) as table:
        assert table.precision == "single"
        assert table["ID"][0] == 16777216 and table["AU"][0] == np.float32(0.1)
    with pytest.raises(ovfile.Error, match="16777217 has more digits than single") as caught:
        ovfile.write({"ID": [1, 2**24 + 1]}, path, "single")
    assert (caught.value.column, caught.value.row) == ("ID", 1)
    with pytest.raises(ovfile.Error) as caught:
        ovfile.write({"V": [1, 1e39]}, path, "single")
    assert (caught.value.column, caught.value.row) == ("V", 1)


def test_what_is_no_rows(path):
    with pytest.raises(ovfile.Error, match="this is list"):
        ovfile.write([1, 2], path)
    with pytest.raises(ovfile.Error, match="a data frame, not a Series"):
        ovfile.write(pd.Series([1]), path)
    with pytest.raises(TypeError, match="a data frame, not dict"):
        ovfile.write_pandas({"A": [1]}, path)
    with pytest.raises(ovfile.Error, match="a column's name is a text, not 0"):
        ovfile.write_pandas(pd.DataFrame([[1]]), path)
    with pytest.raises(ovfile.Error, match="column B: 1 values, where A has 2") as caught:
        ovfile.write({"A": [1, 2], "B": [1]}, path)
    assert caught.value.column == "B"
    with pytest.raises(ovfile.Error, match="2 dimensions") as caught:
        ovfile.write({"A": np.zeros((2, 2))}, path)
    with pytest.raises(ovfile.Error, match="two columns of that name"):
        ovfile.write_pandas(pd.DataFrame([[1, 2]], columns=["A", "A"]), path)
    assert os.listdir(path.parent) == []


def test_a_frame_without_rows(path):
    assert ovfile.write_pandas(pd.DataFrame({"A": [], "T": pd.Series([], dtype=str)}), path) == 0
    assert columns_of(path) == [("A", "number", 0, False), ("T", "number", 0, False)]


def test_no_columns(path):
    assert ovfile.write({}, path) == 0
    assert columns_of(path) == []
    assert ovfile.write_pandas(pd.DataFrame(index=[1, 2]), path) == 0


# Appending.


def test_appended_rows_stand_behind_the_others(assays):
    with ovfile.open(assays, "r+") as table:
        frame = pd.DataFrame({"CU": [9.5, NAN], "BHID": ["LK009", None]})
        assert table.append(frame) == 2
        assert len(table) == 8
        assert table["BHID"].tolist()[5:] == ["LK003", "LK009", ""]
        np.testing.assert_array_equal(table["CU"][5:], [0.125, 9.5, NAN])
        # Columns that are not there take their defaults.
        np.testing.assert_array_equal(table["FROM"][6:], [NAN, NAN])
        assert table["ROCK"].tolist()[6:] == ["", ""]
    with ovfile.open(assays) as table:
        assert len(table) == 8


def test_defaults_of_columns_that_are_not_there(path):
    columns = ["A", ovfile.Column.number("B", 7), ovfile.Column.text("C", 4, "none")]
    with ovfile.create(path, columns) as table:
        table.append({"A": [1, 2]})
        assert table["B"].tolist() == [7, 7] and table["C"].tolist() == ["none", "none"]


@pytest.mark.parametrize(
    "rows, words, column, row",
    [
        ({"cu": [1]}, "there is no such column; is it CU?", "cu", None),
        ({"ZZZ": [1]}, "there is no such column$", "ZZZ", None),
        ({"CU": ["a"]}, "texts", "CU", None),
        ({"ROCK": [1]}, "numbers", "ROCK", None),
        ({"ROCK": ["a", "a text of 17 chr"]}, "", "ROCK", 1),
        ({"ROCK": ["a", "b", "Ω"]}, "", "ROCK", 2),
        ({"ROCK": pd.Categorical(["a", "a text of 17 chr"])}, "", "ROCK", 1),
        ({"CU": np.array(["2024-01-01"], "M8[D]")}, "dates have no place", "CU", None),
        ({"CU": [1, 2], "BHID": ["a"]}, "1 values, where CU has 2", "BHID", None),
    ],
)
def test_rows_that_do_not_fit_leave_the_table(assays, rows, words, column, row):
    with ovfile.open(assays, "r+") as table:
        with pytest.raises(ovfile.Error, match=words) as caught:
            table.append(rows)
        assert (caught.value.file, caught.value.column, caught.value.row) == (str(assays), column, row)
        assert len(table) == 6
        table.append({"CU": [1]})
        assert len(table) == 7


def test_a_bad_value_behind_many_good_ones(path):
    """Rows of earlier batches go too, and the row is counted over all."""
    ovfile.write({"T": ["a"]}, path, kinds={"T": "text:4"})
    texts = ["b"] * 150_000
    texts[140_000] = "longer"
    with ovfile.open(path, "r+") as table:
        with pytest.raises(ovfile.Error) as caught:
            table.append({"T": texts})
        assert caught.value.row == 140_000
        assert table["T"].tolist() == ["a"]


def test_no_rows_appended(assays):
    with ovfile.open(assays, "r+") as table:
        assert table.append({"CU": []}) == 0
        assert table.append(pd.DataFrame({"CU": []})) == 0
        assert len(table) == 6
