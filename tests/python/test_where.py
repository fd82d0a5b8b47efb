"""Conditions on rows."""

import numpy as np
import pytest

import ovfile
from ovfile import _filter


def passing(path, where, **options):
    with ovfile.open(path) as table:
        return [int(row) for row in table.read("N", where=where, **options)["N"]]


@pytest.fixture(params=["row by row", "rows alike"])
def numbered(request, path, monkeypatch):
    """Tested by both roads."""
    if request.param == "rows alike":
        monkeypatch.setattr(_filter, "_FEW_ROWS", 0)
    ovfile.write(
        {
            "N": range(10),
            "CU": [0, 1, 2, None, 0, 1, 2, None, 0.0, -0.0],
            "ROCK": ["ORE", "WASTE", "", "ore", "ORE", "WASTE", "", "ore", "ORE ", "0012"],
        },
        path,
    )
    return path


CONDITIONS = [
    ("CU > 0.5", [1, 2, 5, 6]),
    ("CU = 0", [0, 4, 8, 9]),
    ("CU IS ABSENT", [3, 7]),
    ("ROCK = 'ORE'", [0, 4, 8]),
    ("ROCK IN ('ORE', 'WASTE') AND CU < 1", [0, 4, 8]),
    ("ROCK IS ABSENT", [2, 6]),
    ("ROCK <> 'ORE' AND CU = 1", [1, 5]),
    ("ROCK IS ABSENT AND CU > 1", [2, 6]),
    ("mod(N, 3) = 0", [0, 3, 6, 9]),
    ("N < 0", []),
    ("N >= 0", list(range(10))),
]


@pytest.mark.parametrize("where, expected", CONDITIONS, ids=[where for where, _ in CONDITIONS])
def test_conditions(numbered, where, expected):
    assert passing(numbered, where) == expected


def test_a_condition_on_chosen_rows(numbered):
    assert passing(numbered, "CU > 0.5", rows=slice(2, 7)) == [2, 5, 6]
    assert passing(numbered, "CU > 0.5", rows=[6, 0, 1, 1]) == [6, 1, 1]
    assert passing(numbered, "CU > 0.5", rows=slice(None, None, -1)) == [6, 5, 2, 1]
    assert passing(numbered, "CU > 0.5", rows=[]) == []


def test_a_condition_on_an_implicit_column(path):
    ovfile.write({"N": range(3)}, path, implicit={"SG": 2.5})
    assert passing(path, "SG > 2") == [0, 1, 2]
    assert passing(path, "SG > 3") == []


def test_both_roads_agree_on_many_rows(path, monkeypatch):
    generator = np.random.default_rng(1)
    data = {
        "N": np.arange(5000),
        "CU": generator.integers(0, 40, 5000) / 10,
        "ROCK": generator.choice(["A", "B", "C", ""], 5000),
    }
    ovfile.write(data, path)
    where = "CU > 1.5 AND ROCK IN ('A', 'C')"
    expected = np.flatnonzero((data["CU"] > 1.5) & np.isin(data["ROCK"], ["A", "C"])).tolist()
    assert passing(path, where) == expected
    monkeypatch.setattr(_filter, "_FEW_ROWS", 5000)
    assert passing(path, where) == expected


@pytest.mark.parametrize("different", [200_000, 150_000, 70_000, 1000])
def test_a_sample_tells_whether_rows_are_alike(different):
    generator = np.random.default_rng(2)
    values = generator.permutation(np.arange(200_000) % different)
    assert _filter._look_different(values) == (different > 100_000)
    assert not _filter._look_different(values[:1000])  # too few for a sample


def test_the_sample_changes_no_answer(path, monkeypatch):
    generator = np.random.default_rng(3)
    values = generator.random(20_000)
    ovfile.write({"N": range(20_000), "CU": values}, path)
    expected = np.flatnonzero(values > 0.75).tolist()
    for size in (100, 20_000):
        monkeypatch.setattr(_filter, "_SAMPLE", size)
        assert passing(path, "CU > 0.75") == expected
        assert passing(path, "CU > 0.75 AND N < 5000") == [row for row in expected if row < 5000]


def test_rows_of_which_none_are_alike(path):
    ovfile.write({"N": range(3000)}, path)
    assert passing(path, "N >= 2998") == [2998, 2999]


@pytest.mark.parametrize(
    "where, words",
    [
        ("CU >", "where: .* at position "),
        ("ROCK = ''", "where: .* at position 6"),
        ("", "names no column"),
        ("1 = 1", "names no column"),
    ],
)
def test_bad_conditions(numbered, where, words):
    with pytest.raises(ovfile.Error, match=words) as caught:
        passing(numbered, where)
    assert caught.value.file == str(numbered)


def test_a_condition_on_a_column_that_is_not_there(numbered):
    with pytest.raises(ovfile.Error) as caught:
        passing(numbered, "AU > 1")
    assert caught.value.column == "AU"
    assert str(caught.value) == f"{numbered}: column AU: where: there is no such column"


def test_a_condition_that_is_no_text(numbered):
    with pytest.raises(ovfile.Error, match="a condition is a text, not int"):
        passing(numbered, 1)
