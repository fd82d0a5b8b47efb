"""Sorting, added columns, signatures: changes of whole tables."""

import os
import shutil
import signal
import threading

import numpy as np
import pandas as pd
import pytest
from conftest import golden_folder, without_new_files

import ovfile
from ovfile import _interruption

NAN = float("nan")


@pytest.fixture
def mixed(path):
    ovfile.write(
        {
            "N": range(8),
            "CU": [2, None, -1, 2, 0.5, None, -0.0, 0.0],
            "ROCK": ["b", "ab", "a", "B", "", "ab", "a", "ä"],
        },
        path,
    )
    return path


def sorted_by(path, *arguments, **options):
    with ovfile.open(path, "r+") as table:
        table.sort(*arguments, **options)
        return [int(row) for row in table["N"]]


@pytest.mark.parametrize(
    "by, ascending, expected",
    [
        ("CU", True, [1, 5, 2, 6, 7, 4, 0, 3]),
        ("CU", False, [0, 3, 4, 6, 7, 2, 1, 5]),
        ("ROCK", True, [4, 3, 2, 6, 1, 5, 0, 7]),
        ("ROCK", False, [7, 0, 1, 5, 2, 6, 3, 4]),
        (["ROCK", "CU"], True, [4, 3, 2, 6, 1, 5, 0, 7]),
        (["ROCK", "CU"], [True, False], [4, 3, 6, 2, 1, 5, 0, 7]),
        ([1, "N"], [True, False], [5, 1, 2, 7, 6, 4, 3, 0]),
    ],
)
def test_sort(mixed, by, ascending, expected):
    assert sorted_by(mixed, by, ascending) == expected
    with ovfile.open(mixed) as table:
        assert table["N"].tolist() == expected
        assert table["ROCK"].tolist() == [["b", "ab", "a", "B", "", "ab", "a", "ä"][n] for n in expected]
    assert without_new_files(mixed.parent)


def test_a_sorted_table_is_left_alone(mixed):
    before = mixed.stat().st_mtime_ns, mixed.stat().st_ino
    assert sorted_by(mixed, "N") == list(range(8))
    assert (mixed.stat().st_mtime_ns, mixed.stat().st_ino) == before


def test_nan_stands_last(path):
    ovfile.create(path, ["N", "CU"]).close()
    with ovfile.open(path, "r+") as table:
        table.append({"N": [0, 2], "CU": [5, 1]})
        nan_column = table.to_pandas()
        table.add_column("V", default=NAN)
        table.append({"N": [1], "CU": [7], "V": [3]})
        table.sort("V")
        assert table["N"].tolist() == [1, 0, 2]
        assert len(nan_column) == 2


def test_sort_by_nothing_or_by_a_column_that_is_not_there(mixed):
    with pytest.raises(ovfile.Error, match="by which column"):
        sorted_by(mixed, [])
    with pytest.raises(ovfile.Error) as caught:
        sorted_by(mixed, "AU")
    assert caught.value.column == "AU"
    with pytest.raises(ovfile.Error, match="1 truth values for 2 columns"):
        sorted_by(mixed, ["N", "CU"], [True])


def test_a_sort_keeps_everything_else(tmp_path):
    """Description, owner, implicit columns and the bits of odd numbers."""
    path = tmp_path / "table.ovt"
    shutil.copy(golden_folder() / "d_bit_patterns.ovt", path)
    with ovfile.open(path, "r+") as table:
        name = table.columns[0]
        before = table.read(name, absent="value")[name].view(np.uint64).tolist()
        description = table.description
        table.sort(name, ascending=False)
        after = table.read(name, absent="value")[name].view(np.uint64).tolist()
        assert table.description == description
    assert sorted(after) == sorted(before)


def test_rows_after_a_sort(mixed):
    with ovfile.open(mixed, "r+") as table:
        table.sort("CU")
        table.append({"N": [8], "ROCK": ["z"]})
        table.sort("N", ascending=False)
        assert table["N"].tolist() == [8, 7, 6, 5, 4, 3, 2, 1, 0]
        assert table["ROCK"][0] == "z"


# Columns.


def test_a_column_of_values(assays):
    with ovfile.open(assays, "r+") as table:
        before = table.to_pandas()
        table.add_column("AU", [0.5, None, 1, 2, 3, 4])
        table.add_column("ZONE", pd.Categorical(["N", "S", "N", "N", None, "S"]))
        table.add_column("ID", [1, 2, 3, 4, 5, 6], kind="text", width=12, default="none")
        after = table.to_pandas()
        assert table.description == "assays of a test"
        assert [(c.name, c.kind, c.width, c.default) for c in table.schema.columns[5:]] == [
            ("AU", "number", 0, None),
            ("ZONE", "text", 4, None),
            ("ID", "text", 12, "none"),
        ]
        table.append({"CU": [1]})
    pd.testing.assert_frame_equal(after[before.columns.tolist()], before)
    np.testing.assert_array_equal(after["AU"], [0.5, NAN, 1, 2, 3, 4])
    assert after["ZONE"].tolist() == ["N", "S", "N", "N", "", "S"]
    assert after["ID"].tolist() == ["1", "2", "3", "4", "5", "6"]
    with ovfile.open(assays) as table:
        assert len(table) == 7 and table["ID"][6] == "none"
    assert os.listdir(assays.parent) == [assays.name]


def test_a_column_with_one_value(assays):
    with ovfile.open(assays, "r+") as table:
        table.add_column("AU")
        table.add_column("FLAG", default=0)
        table.add_column("ZONE", default="north")
        table.add_column("NOTE", width=20)
        table.add_column("LOT", default=17, implicit=True)
        table.add_column("PIT", default="west", implicit=True)
        table.add_column("GAP", implicit=True)
        found = table.read()
        kinds = [(c.name, c.kind, c.width, c.implicit) for c in table.schema.columns[5:]]
    assert np.isnan(found["AU"]).all() and found["FLAG"].tolist() == [0] * 6
    assert found["ZONE"].tolist() == ["north"] * 6 and found["NOTE"].tolist() == [""] * 6
    assert found["LOT"].tolist() == [17] * 6 and found["PIT"].tolist() == ["west"] * 6
    assert np.isnan(found["GAP"]).all()
    assert kinds == [
        ("AU", "number", 0, False),
        ("FLAG", "number", 0, False),
        ("ZONE", "text", 8, False),
        ("NOTE", "text", 20, False),
        ("LOT", "number", 0, True),
        ("PIT", "text", 4, True),
        ("GAP", "number", 0, True),
    ]


def test_a_column_in_single_precision(path):
    ovfile.write({"A": [0.1, None]}, path, "single")
    with ovfile.open(path, "r+") as table:
        table.add_column("B", [0.3, None])
        table.add_column("C", default=0.7, implicit=True)
        assert table["A"].tolist()[0] == np.float32(0.1) and np.isnan(table["A"][1])
        assert table["B"][0] == np.float32(0.3) and np.isnan(table["B"][1])
        assert table["C"].tolist() == [np.float32(0.7)] * 2
        assert table.precision == "single"


def test_a_new_column_leaves_header_and_bits_of_others(tmp_path):
    path = tmp_path / "table.ovt"
    shutil.copy(golden_folder() / "s_header_other.ovt", path)
    header = path.read_bytes()[:88]
    with ovfile.open(path, "r+") as table:
        before = {name: table.read(name, absent="value", keep_blanks=True)[name] for name in table.columns}
        table.add_column("NEW", np.arange(len(table)))
        for name, values in before.items():
            found = table.read(name, absent="value", keep_blanks=True)[name]
            assert found.tolist() == values.tolist()
        assert table["NEW"].tolist() == list(range(len(table)))
    # The two names, the description, the owner.
    assert path.read_bytes()[:88] == header


def test_odd_numbers_survive_a_new_column(tmp_path):
    path = tmp_path / "table.ovt"
    shutil.copy(golden_folder() / "d_bit_patterns.ovt", path)
    with ovfile.open(path, "r+") as table:
        names = [c.name for c in table.schema if c.kind == "number"]
        before = [table.read(n, absent="value")[n].view(np.uint64).tolist() for n in names]
        table.add_column("NEW", np.zeros(len(table)))
        assert [table.read(n, absent="value")[n].view(np.uint64).tolist() for n in names] == before


def test_a_column_for_a_table_without_stored_columns(path):
    with ovfile.create(path, [ovfile.Column.number("SG", 2.7, implicit=True)]) as table:
        table.add_column("CU", [])
        table.append({"CU": [1, 2]})
        assert table["CU"].tolist() == [1, 2] and table["SG"].tolist() == [2.7, 2.7]


def test_a_column_for_a_table_without_rows(path):
    with ovfile.create(path, ["A"]) as table:
        table.add_column("B", [])
        table.add_column("T", np.array([], str))
        assert table.columns == ["A", "B", "T"]


@pytest.mark.parametrize(
    "arguments, words",
    [
        (("CU", [1] * 6), "two columns of that name"),
        (("TOO LONG", [1] * 6), "may not hold blanks"),
        (("TOOLONG89", [1] * 6), "longer than 8 characters"),
        (("", [1] * 6), "the name is empty"),
        (("AU", [1] * 5), "5 values for 6 rows"),
        (("AU", ["a"] * 5 + [1]), "1 is a number among texts"),
        (("AU", ["Ω"] * 6), "row 1"),
    ],
)
def test_columns_that_cannot_be(assays, arguments, words):
    before = assays.read_bytes()
    with ovfile.open(assays, "r+") as table:
        with pytest.raises(ovfile.Error, match=words) as caught:
            table.add_column(*arguments)
        assert caught.value.column == arguments[0]
        assert len(table) == 6 and table.columns == ["BHID", "FROM", "CU", "ROCK", "SG"]
    assert assays.read_bytes() == before
    assert os.listdir(assays.parent) == [assays.name]


def test_contradictions_about_a_column(assays):
    with ovfile.open(assays, "r+") as table:
        with pytest.raises(ovfile.Error, match="an implicit column has one value"):
            table.add_column("AU", [1] * 6, implicit=True)
        with pytest.raises(ovfile.Error, match="the values are texts, not numbers"):
            table.add_column("AU", ["a"] * 6, kind="number")
        with pytest.raises(ovfile.Error, match="is no number"):
            table.add_column("AU", kind="number", default="a")
        with pytest.raises(ovfile.Error, match="is longer than 4 characters"):
            table.add_column("AU", default="longer", width=4)
        with pytest.raises(ovfile.Error, match="column AU, row 1"):
            table.add_column("AU", ["longer"] * 6, width=4)
        assert table.columns == ["BHID", "FROM", "CU", "ROCK", "SG"]


def test_too_many_words(path):
    with ovfile.create(path, [f"C{i}" for i in range(64)], precision="single") as table:
        with pytest.raises(ovfile.Error, match="would need 65 words; a single-precision one holds 64"):
            table.add_column("C64")
        assert len(table.columns) == 64


def test_a_table_that_is_open_elsewhere_gets_no_column(assays):
    with ovfile.open(assays, "r+") as table, ovfile.open(assays) as other:
        for values in (None, [1] * 6):
            with pytest.raises(ovfile.Error):
                table.add_column("AU", values)
        with pytest.raises(ovfile.Error):
            table.sort("CU")
        assert len(other) == len(table) == 6
        assert table.columns == other.columns
    assert without_new_files(assays.parent)


@pytest.mark.parametrize(
    "change",
    [
        lambda table: table.append({"CU": [1]}),
        lambda table: table.sort("CU"),
        lambda table: table.add_column("AU"),
        lambda table: table.add_column("AU", [1] * 6),
        lambda table: table.add_column("AU", implicit=True),
    ],
)
def test_a_table_for_reading_does_not_change(assays, change):
    before = assays.read_bytes()
    with ovfile.open(assays) as table:
        with pytest.raises(ovfile.Error, match='opened for reading; open it with mode="r\\+"') as caught:
            change(table)
        assert caught.value.file == str(assays)
    assert assays.read_bytes() == before


# Signatures.


def test_signatures(tmp_path):
    for name, description, columns in (
        ("one", "first", {"A": [1.25, 2], "B": ["x", "y"]}),
        ("two", "second", {"B": ["x", "y"], "A": [1.25, 2]}),
        ("three", "first", {"A": [1.25, 2], "B": ["x", "z"]}),
    ):
        ovfile.write(columns, tmp_path / f"{name}.ovt", description=description)
    with ovfile.open(tmp_path / "one.ovt") as one, ovfile.open(tmp_path / "two.ovt") as two:
        with ovfile.open(tmp_path / "three.ovt") as three:
            loose = {"ignore_description": True, "ignore_field_order": True, "ignore_precision": True}
            assert len(one.signature()) == 40
            assert one.signature() != two.signature()
            assert one.signature(**loose) == two.signature(**loose)
            assert one.signature(**loose) != three.signature(**loose)
            assert one.signature(digits=1) != one.signature()


# Interrupting.


@pytest.fixture
def ctrl_c():
    """The usual handler, also where the tests were started by a shell that ignores the signal."""
    before = signal.signal(signal.SIGINT, signal.default_int_handler)
    yield
    signal.signal(signal.SIGINT, before)


@pytest.mark.skipif(os.name == "nt", reason="sends itself a signal as Linux does")
@pytest.mark.parametrize("work", ["sort", "add_column", "signature"])
def test_long_calls_are_interrupted(path, monkeypatch, ctrl_c, work):
    """A signal that comes while the library works stops it, and the table is as it was."""
    ovfile.write({"N": np.arange(300_000)[::-1]}, path)
    before = path.read_bytes()
    progress = _interruption._Listener._progress

    def interrupt(listener, *arguments):
        os.kill(os.getpid(), signal.SIGINT)
        return progress(listener, *arguments)

    monkeypatch.setattr(_interruption._Listener, "_progress", interrupt)
    handler = signal.getsignal(signal.SIGINT)
    with ovfile.open(path, "r+") as table:
        arguments = {"sort": ["N"], "add_column": ["X"], "signature": []}[work]
        with pytest.raises(KeyboardInterrupt):
            getattr(table, work)(*arguments)
        assert signal.getsignal(signal.SIGINT) is handler
        assert len(table) == 300_000 and table.columns == ["N"] and table["N"][0] == 299_999
    assert path.read_bytes() == before
    assert os.listdir(path.parent) == [path.name]


@pytest.mark.skipif(os.name == "nt", reason="sends itself a signal as Linux does")
def test_a_signal_at_any_time(path, ctrl_c):
    ovfile.write({"N": np.arange(1_000_000)[::-1]}, path)
    with ovfile.open(path, "r+") as table:
        for delay in (0.05, 0.1, 0.15):
            timer = threading.Timer(delay, os.kill, (os.getpid(), signal.SIGINT))
            with pytest.raises(KeyboardInterrupt):
                timer.start()
                for digits in range(1000):
                    table.signature(digits=digits % 10)
            timer.join()
            assert len(table) == 1_000_000


@pytest.mark.skipif(os.name == "nt", reason="sends itself a signal as Linux does")
def test_a_handler_that_raises_nothing(path, monkeypatch):
    """Its program goes on, and hears from the library that the work was not done."""
    ovfile.write({"N": np.arange(300_000)[::-1]}, path)
    progress = _interruption._Listener._progress

    def interrupt(listener, *arguments):
        os.kill(os.getpid(), signal.SIGINT)
        return progress(listener, *arguments)

    monkeypatch.setattr(_interruption._Listener, "_progress", interrupt)
    heard = []
    before = signal.signal(signal.SIGINT, lambda number, frame: heard.append(number))
    try:
        with ovfile.open(path) as table, pytest.raises(ovfile.Error, match="stopped"):
            table.signature()
    finally:
        signal.signal(signal.SIGINT, before)
    assert heard == [signal.SIGINT]
