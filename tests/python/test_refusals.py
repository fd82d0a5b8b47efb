"""Arguments that cannot be: each is an ovfile.Error, and nothing has changed."""

from decimal import Decimal

import numpy as np
import pandas as pd
import pytest
from conftest import without_new_files

import ovfile

COLUMNS = {
    "a text": ("LK9", "'LK9' is one value"),
    "bytes": (b"LK9", "is one value"),
    "a number": (1.25, "1.25 is one value"),
    "an array without dimensions": (np.array(1.25), "is one value"),
    "a dict": ({"a": 1}, "a dict has no order"),
    "a set": ({1, 2}, "a set has no order"),
    "a frame": (pd.DataFrame({"X": [1]}), "a series or an array, not DataFrame"),
    "a time": (pd.Timestamp("2024-05-01"), "a series or an array, not Timestamp"),
}


@pytest.mark.parametrize("what", COLUMNS)
def test_one_value_is_no_column(assays, what):
    values, words = COLUMNS[what]
    before = assays.read_bytes()
    other = assays.with_name("other.ovt")
    with ovfile.open(assays, "r+") as table:
        for use in (
            lambda: table.append({"BHID": values}),
            lambda: table.add_column("E", values),
            lambda: ovfile.write({"E": values}, other),
        ):
            with pytest.raises(ovfile.Error, match=words) as caught:
                use()
            assert caught.value.column in (None, "BHID", "E")
    assert assays.read_bytes() == before and not other.exists()


READS = {
    "one truth value": (lambda t: t.read(rows=True), "rows: a slice"),
    "one row": (lambda t: t.read(rows=3), "rows: a slice"),
    "rows in words": (lambda t: t.read(rows="all"), "rows: a slice"),
    "rows of rows": (lambda t: t.read(rows=[[1], [2, 3]]), "rows: a slice"),
    "rows in two dimensions": (lambda t: t.read(rows=[[0, 1]]), "rows: a slice"),
    "a slice of words": (lambda t: t.read(rows=slice("a")), "rows: slice indices"),
    "a row beyond all": (lambda t: t.read(rows=np.array([2**64 - 1], np.uint64)), "the table has 6 rows"),
    "half a column": (lambda t: t.read(1.5), "columns are names or numbers"),
    "half a column of several": (lambda t: t.read([1.5]), "a column is a name or a number"),
    "half a column in brackets": (lambda t: t[1.5], "a column is a name or a number"),
    "batches in words": (lambda t: t.batches("a"), "rows of a batch: a whole number, not 'a'"),
    "half batches": (lambda t: t.batches(2.5), "rows of a batch: a whole number, not 2.5"),
    "digits in words": (lambda t: t.signature(digits="a"), "digits: a whole number, not 'a'"),
    "fewer digits than none": (lambda t: t.signature(digits=-2), "digits: -1 or how many"),
    "a direction by number": (lambda t: t.sort("CU", ascending=1), "ascending: True, False or"),
    "directions by number": (lambda t: t.sort("CU", ascending=[1]), "ascending: True, False or"),
    "a direction in words": (lambda t: t.sort("CU", ascending="no"), "ascending: True, False or"),
}


@pytest.mark.parametrize("what", READS)
def test_reading_and_sorting(assays, what):
    use, words = READS[what]
    with ovfile.open(assays, "r+") as table, pytest.raises(ovfile.Error, match=words) as caught:
        use(table)
    assert caught.value.file == str(assays)


@pytest.mark.parametrize("rows", [6, 7, 2**31, 2**32 + 1, 10**12, 10**30])
def test_batches_larger_than_the_table(assays, rows):
    with ovfile.open(assays) as table:
        for where in (None, "FROM >= 0"):
            parts = list(table.batches(rows, columns=["FROM"], where=where))
            assert [part["FROM"].tolist() for part in parts] == [[0, 1, 2, 0, 1.5, 0]]


WRITES = {
    "precision": ({"precision": "half"}, 'precision is "single" or "double", not \'half\''),
    "precision by number": ({"precision": 4}, 'precision is "single" or "double", not 4'),
    "kinds": ({"kinds": "number"}, "kinds is a mapping"),
    "one kind": ({"kinds": {"A": 1.5}}, "a kind is"),
    "implicit": ({"implicit": ["B"]}, "implicit is a mapping"),
    "implicit value": ({"implicit": {"B": [1]}}, r"column B: the default \[1\] is no number"),
    "implicit number": ({"implicit": {"B": 10**400}}, "column B: the default 1000"),
    "schema": ({"schema": ["A"]}, "schema is a Schema"),
    "description": ({"description": 5}, "a description is a text, not 5"),
}


@pytest.mark.parametrize("what", WRITES)
@pytest.mark.parametrize("values", [[1.5, 2.5], [1, 2]])
def test_writing(path, what, values):
    arguments, words = WRITES[what]
    with pytest.raises(ovfile.Error, match=words):
        ovfile.write({"A": values}, path, **arguments)
    assert not path.exists() and without_new_files(path.parent)


@pytest.mark.parametrize(
    "columns, words",
    [
        ("CU", "columns are several"),
        (5, "columns are several"),
        ([5], "a column is a text"),
        ([ovfile.Column("T", "text", "8")], "the width of a text is 1 to 1024, not 8"),
    ],
)
def test_creating(path, columns, words):
    with pytest.raises(ovfile.Error, match=words):
        ovfile.create(path, columns)
    assert not path.exists()


@pytest.mark.parametrize("path", [5, None, 1.5])
def test_paths(path):
    for use in (ovfile.open, lambda wrong: ovfile.write({"A": [1]}, wrong)):
        with pytest.raises(ovfile.Error, match="a path is a text"):
            use(path)


def test_what_python_would_raise_is_caught_by_its_own_names_too(assays):
    with pytest.raises(TypeError), ovfile.open(assays) as table:
        table.batches("a")
    with pytest.raises(ValueError):
        ovfile.open(assays, "w")


LOST = {
    "a long number among floats": ([0.5, 2**60 + 1], "double", 1),
    "one of numpy's": ([0.5, np.int64(2**60 + 1)], "double", 1),
    "the first that is lost": ([2**53, 0.5, -(2**53) - 1], "double", 2),
    "one too long for single": ([0.5, 2**24 + 1], "single", 1),
    "a decimal of many digits": ([Decimal("0.1"), Decimal("0.12345678901234567890")], "double", 1),
    "a long whole decimal": ([Decimal(2**60 + 1)], "double", 0),
    "a whole decimal too long for single": ([Decimal(2**24 + 1)], "single", 0),
    "a decimal too small": ([None, Decimal("1E-400")], "double", 1),
}


@pytest.mark.parametrize("what", LOST)
def test_numbers_whose_digits_would_be_lost(path, what):
    values, precision, row = LOST[what]
    for data in ({"A": values}, pd.DataFrame({"A": pd.Series(values, dtype=object)})):
        with pytest.raises(ovfile.Error, match=f"column A, row {row + 1}: .* more digits than {precision}"):
            ovfile.write(data, path, precision)
        assert not path.exists()


def test_numbers_whose_digits_are_kept(path):
    given = [2**53, -(2**53), 0.5, True, Decimal("0.1"), Decimal("123.456"), Decimal("1E+3"), None]
    ovfile.write({"A": given, "B": [Decimal("NaN"), *given[:6], 0.1]}, path)
    with ovfile.open(path) as table:
        assert table["A"].tolist()[:7] == [9007199254740992.0, -9007199254740992.0, 0.5, 1, 0.1, 123.456, 1000]
        assert np.isnan([table["A"][7], table["B"][0]]).all()


def test_categories_of_numbers(path):
    frame = pd.DataFrame(
        {
            "I": pd.Categorical([10, 20, None, 10]),
            "F": pd.Categorical([0.5, None, 0.25, 0.5]),
            "UNUSED": pd.Categorical([1, None, 1, 1], categories=[2**60 + 1, 1]),
        }
    )
    ovfile.write_pandas(frame, path)
    with ovfile.open(path) as table:
        read = table.read(absent="value")
    assert read["I"].tolist() == [10, 20, -1e30, 10]
    assert read["F"].tolist() == [0.5, -1e30, 0.25, 0.5]
    assert read["UNUSED"].tolist() == [1, -1e30, 1, 1]


def test_sparse_numbers_are_checked(path):
    kept = pd.DataFrame({"A": pd.arrays.SparseArray([5, 0, 0, 7])})
    ovfile.write_pandas(kept, path)
    with ovfile.open(path) as table:
        assert table["A"].tolist() == [5, 0, 0, 7]
    with pytest.raises(ovfile.Error, match="row 1: 1152921504606846977 has more digits"):
        ovfile.write_pandas(pd.DataFrame({"A": pd.arrays.SparseArray([2**60 + 1, 0])}), path)
