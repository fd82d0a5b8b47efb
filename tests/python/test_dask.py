"""Dask data frames, computed in this process."""

import os
import pathlib
import pickle
import subprocess
import sys

import numpy as np
import pandas as pd
import pytest
from conftest import ROOT

import ovfile

pytest.importorskip("dask.dataframe", reason="Dask is not installed (python3-dask)")

import dask  # noqa: E402
import ovfile.dask  # noqa: E402
from ovfile._table import Table  # noqa: E402

LONGEST = 60  # seconds for anything that is waited for
HOLES = np.array(["LK001", "LK002", "LK003", ""], object)


def samples(rows, seed=0, first=0):
    generator = np.random.default_rng(seed)
    copper = generator.integers(0, 400, rows) / 100
    copper[generator.random(rows) < 0.1] = np.nan
    return {
        "BHID": HOLES[generator.integers(0, len(HOLES), rows)],
        "N": np.arange(first, first + rows, dtype=float),
        "CU": copper,
    }


@pytest.fixture
def here(tmp_path, monkeypatch):
    """Computed in this process, in a folder of its own."""
    monkeypatch.chdir(tmp_path)
    with dask.config.set(scheduler="synchronous"):
        yield tmp_path


@pytest.fixture
def three(here):
    """Tables of 250, 0 and 120 rows, and the numbers N of all rows."""
    for name, rows, first in (("a", 250, 0), ("b", 0, 250), ("c", 120, 250)):
        ovfile.write(samples(rows, first=first), f"{name}.ovt", kinds={"BHID": "text:8"})
    return list(range(370))


@pytest.fixture
def seen(monkeypatch):
    """The columns and the numbers of rows that were read of tables."""
    found = []
    original = Table.to_pandas

    def noted(self, columns=None, where=None, rows=None, **options):
        found.append((columns, None if rows is None else len(rows)))
        return original(self, columns, where, rows, **options)

    monkeypatch.setattr(Table, "to_pandas", noted)
    return found


# The frame.


def test_a_frame_equals_the_table(three):
    frame = ovfile.dask.read_table("a.ovt", rows_per_partition=100)
    assert frame.npartitions == 3
    assert frame.divisions == (0, 100, 200, 249)
    pd.testing.assert_frame_equal(frame.compute(), ovfile.read_pandas("a.ovt"))


def test_the_meta_is_what_is_computed(three):
    frame = ovfile.dask.read_table("a.ovt", include_path_column=True)
    computed = frame.compute()
    pd.testing.assert_series_equal(frame._meta.dtypes, computed.dtypes)
    assert frame._meta.index.dtype == computed.index.dtype == np.int64


def test_single_precision(here):
    ovfile.write({"CU": [0.1, None]}, "single.ovt", precision="single")
    assert ovfile.dask.read_table("single.ovt").dtypes["CU"] == np.float32
    widened = ovfile.dask.read_table("single.ovt", widen=True)
    assert widened.dtypes["CU"] == np.float64
    assert widened["CU"].compute().tolist()[0] == 0.1


def test_planning_reads_no_rows(three, seen):
    ovfile.dask.read_table("?.ovt")
    assert seen and all(rows == 0 for _, rows in seen)


def test_partitions_of_ordinary_size(here, monkeypatch):
    monkeypatch.setattr(ovfile._partitions, "PARTITION_BYTES", 16_000)
    ovfile.write({"A": np.arange(5000.0), "B": np.arange(5000.0)}, "t.ovt")
    assert ovfile.dask.read_table("t.ovt").npartitions == 8  # 24 bytes a row, 666 rows a partition
    assert ovfile.dask.read_table("t.ovt", columns=["A"]).npartitions == 5  # 16 bytes, 1000 rows


def test_several_tables_are_one_frame(three):
    for path in ("?.ovt", ["a.ovt", "b.ovt", "c.ovt"], ["[ab].ovt", "c.ovt"], pathlib.Path("?.ovt")):
        frame = ovfile.dask.read_table(path, rows_per_partition=100)
        assert frame.divisions == (0, 100, 200, 250, 350, 369)
        found = frame.compute()
        assert found["N"].tolist() == three
        assert found.index.tolist() == three
    assert ovfile.dask.read_table(["c.ovt", "a.ovt"])["N"].compute().tolist() == three[250:] + three[:250]


def test_a_file_whose_name_looks_like_a_pattern(here):
    ovfile.write({"A": [1.0]}, "lode[1].ovt")
    ovfile.write({"A": [2.0]}, "lode1.ovt")
    assert ovfile.dask.read_table("lode[1].ovt")["A"].compute().tolist() == [1.0]
    assert ovfile.dask.read_table("lode[12].ovt")["A"].compute().tolist() == [2.0]


def test_rows_by_their_number(three):
    frame = ovfile.dask.read_table("?.ovt", rows_per_partition=100)
    assert frame.loc[249:251].compute()["N"].tolist() == [249, 250, 251]


def test_the_path_as_a_column(three, here, seen):
    frame = ovfile.dask.read_table("?.ovt", rows_per_partition=200, include_path_column=True)
    assert list(frame.columns) == ["BHID", "N", "CU", "path"]
    assert frame["path"].value_counts().compute().to_dict() == {
        str(here / "a.ovt"): 250,
        str(here / "b.ovt"): 0,
        str(here / "c.ovt"): 120,
    }
    named = ovfile.dask.read_table("c.ovt", columns=["N"], include_path_column="FILE")
    assert list(named.columns) == ["N", "FILE"]
    assert set(named.compute()["FILE"]) == {str(here / "c.ovt")}
    with pytest.raises(ovfile.Error, match="have a column of that name") as caught:
        ovfile.dask.read_table("c.ovt", include_path_column="N")
    assert caught.value.column == "N"


def test_only_the_needed_columns_are_read(three, seen):
    frame = ovfile.dask.read_table("a.ovt", rows_per_partition=100)
    expected = ovfile.read_pandas("a.ovt")
    seen.clear()
    assert frame[["CU"]].compute()["CU"].equals(expected["CU"])
    assert seen == [(["CU"], 100), (["CU"], 100), (["CU"], 50)]
    seen.clear()
    found = frame.groupby("BHID")["CU"].sum().compute()
    assert seen == [(["BHID", "CU"], 100), (["BHID", "CU"], 100), (["BHID", "CU"], 50)]
    np.testing.assert_allclose(found.sort_index(), expected.groupby("BHID")["CU"].sum())
    seen.clear()
    assert len(frame) == 250
    assert all(len(columns) == 1 for columns, _ in seen)


def test_only_the_paths(three, here, seen):
    frame = ovfile.dask.read_table("[ac].ovt", include_path_column=True)
    seen.clear()
    assert frame[["path"]].compute()["path"].value_counts().tolist() == [250, 120]
    assert seen == []


def test_the_columns_that_a_newer_dask_asks_for(three):
    """It calls the reader with the argument `columns` and never asks for a projected one."""
    files = [ovfile._partitions.plan_file("a.ovt")[0]]
    (part,), _ = ovfile._partitions.plan_parts(files, 1000)
    reader = ovfile._partitions.PartReader(("BHID", "N", "CU"), ())
    assert list(reader(part, columns=["CU", "BHID"]).columns) == ["BHID", "CU"]
    assert reader(part, columns=[]).shape == (250, 0)


def test_texts(three):
    expected = ovfile.read_pandas("a.ovt")
    frame = ovfile.dask.read_table("a.ovt", rows_per_partition=100)
    assert frame["BHID"].compute().tolist() == expected["BHID"].tolist()
    assert frame["BHID"].nunique().compute() == 4
    missing = ovfile.dask.read_table("a.ovt", rows_per_partition=100, blank=None)
    assert missing["BHID"].isna().sum().compute() == (expected["BHID"] == "").sum() > 0


def test_texts_as_categories(three):
    expected = ovfile.read_pandas("a.ovt")
    frame = ovfile.dask.read_table("a.ovt", rows_per_partition=100, categories=True)
    assert str(frame.dtypes["BHID"]) == "category" and not frame["BHID"].cat.known
    assert frame["BHID"].compute().astype(object).tolist() == expected["BHID"].tolist()
    found = frame.groupby("BHID", observed=True)["N"].sum().compute()
    assert found.to_dict() == expected.groupby("BHID")["N"].sum().to_dict()


def test_a_condition(three):
    everything = ovfile.dask.read_table("?.ovt").compute()
    expected = everything[everything["CU"] > 3]
    frame = ovfile.dask.read_table("?.ovt", where="CU > 3", rows_per_partition=30)
    pd.testing.assert_frame_equal(frame.compute(), expected)
    assert frame.index.compute().tolist() == expected.index.tolist()
    none = ovfile.dask.read_table("?.ovt", where="CU > 300", rows_per_partition=100)
    assert len(none) == 0 and none["CU"].sum().compute() == 0


def test_a_bad_condition_is_told_at_once(three, here):
    with pytest.raises(ovfile.Error, match="where: .* at position") as caught:
        ovfile.dask.read_table("?.ovt", where="CU >")
    assert caught.value.file == str(here / "a.ovt")


def test_an_empty_table(three):
    frame = ovfile.dask.read_table("b.ovt")
    assert frame.npartitions == 1 and len(frame) == 0
    assert frame["CU"].sum().compute() == 0
    assert frame.compute().dtypes.equals(ovfile.read_pandas("b.ovt").dtypes)
    assert len(ovfile.dask.read_table(["b.ovt", "b.ovt"]).compute()) == 0


def test_implicit_columns(here):
    ovfile.write({"CU": [1.0, 2.0, 3.0]}, "t.ovt", implicit={"SG": 2.5, "LAB": "north"})
    found = ovfile.dask.read_table("t.ovt", rows_per_partition=2).compute()
    assert found["SG"].tolist() == [2.5] * 3 and found["LAB"].tolist() == ["north"] * 3


def test_a_frame_is_the_same_for_the_same_files(three):
    first = ovfile.dask.read_table("a.ovt", rows_per_partition=100)
    assert ovfile.dask.read_table("a.ovt", rows_per_partition=100)._name == first._name
    assert ovfile.dask.read_table("a.ovt", rows_per_partition=50)._name != first._name
    with ovfile.open("a.ovt", "r+") as table:
        table.append({"N": [-1]})
    assert ovfile.dask.read_table("a.ovt", rows_per_partition=100)._name != first._name


def test_several_threads(three):
    """Each opens the table for itself."""
    expected = ovfile.read_pandas("a.ovt", where="CU > 2")
    for _ in range(5):
        frame = ovfile.dask.read_table("a.ovt", where="CU > 2", rows_per_partition=10)
        found = frame.compute(scheduler="threads", num_workers=4)
        assert found["BHID"].tolist() == expected["BHID"].tolist()
        assert found["N"].tolist() == expected["N"].tolist()


def test_a_pickled_frame(three):
    frame = ovfile.dask.read_table("?.ovt", rows_per_partition=100, where="N >= 10")
    mean = frame.groupby("BHID")["CU"].mean()
    copy = pickle.loads(pickle.dumps(mean))
    pd.testing.assert_series_equal(copy.compute(), mean.compute())


# What is refused.


def test_tables_that_differ(here):
    ovfile.write({"CU": [1.0], "ROCK": ["ORE"]}, "1.ovt")
    ovfile.write({"ROCK": ["WASTE"], "CU": [2.0]}, "2.ovt", kinds={"ROCK": 20})
    assert ovfile.dask.read_table("?.ovt").compute()["CU"].tolist() == [1.0, 2.0]
    cases = [
        ({"CU": [1.0]}, {}, "ROCK", "there is no such column, but {} has one"),
        ({"CU": ["a"], "ROCK": ["b"]}, {}, "CU", "it has texts, but in {} numbers"),
        ({"CU": [1.0], "ROCK": ["b"], "AU": [1.0]}, {}, "AU", "{} has no such column"),
        ({"CU": [1.0], "ROCK": ["b"]}, {"precision": "single"}, None, "but in {} double precision"),
    ]
    for data, options, column, words in cases:
        ovfile.write(data, "3.ovt", **options)
        with pytest.raises(ovfile.Error) as caught:
            ovfile.dask.read_table("?.ovt")
        assert words.format(here / "1.ovt") in str(caught.value)
        assert (caught.value.file, caught.value.column) == (str(here / "3.ovt"), column)
    assert ovfile.dask.read_table("?.ovt", widen=True)["CU"].compute().tolist() == [1.0, 2.0, 1.0]


def test_columns_that_differ_and_are_not_asked_for(here):
    ovfile.write({"CU": [1.0], "AU": [9.0]}, "1.ovt")
    ovfile.write({"CU": [2.0], "ROCK": ["ORE"]}, "2.ovt")
    assert ovfile.dask.read_table("?.ovt", columns="CU").compute()["CU"].tolist() == [1.0, 2.0]


@pytest.mark.parametrize(
    "arguments, words",
    [
        ({"path": "none*.ovt"}, "no file matches"),
        ({"path": "none.ovt"}, "does not exist"),
        ({"path": ["a.ovt", "none.ovt"]}, "does not exist"),
        ({"path": []}, "there is no file to read"),
        ({"path": "a.ovt", "columns": ["cu"]}, "there is no such column; is it CU"),
        ({"path": "a.ovt", "columns": ["CU", "CU"]}, "CU is asked for twice"),
        ({"path": "a.ovt", "rows_per_partition": 0}, "at least one row"),
        ({"path": "a.ovt", "rows_per_partition": "64MB"}, "rows of a partition: a whole number, not '64MB'"),
        ({"path": "a.ovt", "rows_per_partition": 1.5}, "rows of a partition: a whole number, not 1.5"),
        ({"path": 5}, "a path is a text"),
    ],
)
def test_bad_arguments(three, here, arguments, words):
    with pytest.raises(ovfile.Error, match=words) as caught:
        ovfile.dask.read_table(**arguments)
    path = arguments["path"]
    if path and path != 5 and "rows_per_partition" not in arguments:
        named = path[-1] if isinstance(path, list) else path
        assert caught.value.file == str(here / named)


def test_a_file_that_is_no_table(here):
    pathlib.Path("notes.ovt").write_text("a note")
    with pytest.raises(ovfile.Error) as caught:
        ovfile.dask.read_table("*.ovt")
    assert caught.value.file == str(here / "notes.ovt")


def remade(data, **options):
    return lambda path: ovfile.write(data, path, **options)


def cut(path):
    os.truncate(path, os.path.getsize(path) // 2)


def add_a_row(path):
    with ovfile.open(path, "r+") as table:
        table.append({"N": [-1]})


def write_the_same_length(path):
    os.utime(path, ns=(1, 1))


def keep_times(change):
    """A change that leaves the file's times as they were."""

    def changed(path):
        before = os.stat(path)
        change(path)
        os.utime(path, ns=(before.st_atime_ns, before.st_mtime_ns))

    return changed


@keep_times
def put_a_copy_there(path):
    """A file that is the same in everything but that it is another one."""
    copy = path.with_name("copy.tmp")
    copy.write_bytes(path.read_bytes())
    os.replace(copy, path)


CHANGES = {
    "missing": (os.unlink, "the file was there when the frame was made; now: No such file"),
    "cut": (cut, "the file has changed since the frame was made .* bytes instead of"),
    "longer": (remade(samples(5000)), "the file has changed .* bytes instead of"),
    "written": (write_the_same_length, "the file has changed .*it was written to"),
    "rows": (keep_times(add_a_row), "the file has changed .*251 rows instead of 250"),
    "columns": (
        keep_times(remade({**samples(250), "AU": np.zeros(250)})),
        "the file has changed",
    ),
    "other columns": (
        keep_times(lambda path: remade({"HOLE": samples(250)["BHID"], **samples(250)})(path)),
        "the file has changed",
    ),
    "renamed": (
        keep_times(
            lambda path: remade({n.replace("CU", "AU"): v for n, v in samples(250).items()})(path)
        ),
        "the file has changed .*other columns",
    ),
    "another file": (put_a_copy_there, "the file has changed .*it is another file"),
    "no table": (lambda path: path.write_bytes(bytes(path.stat().st_size)), "it was written to"),
}


@pytest.mark.parametrize("what", CHANGES)
def test_a_file_that_changed_after_planning(three, here, what):
    change, words = CHANGES[what]
    frame = ovfile.dask.read_table("?.ovt", rows_per_partition=100)
    change(here / "a.ovt")
    with pytest.raises(ovfile.Error, match=words) as caught:
        frame["N"].sum().compute()
    assert caught.value.file == str(here / "a.ovt")


def test_rows_that_came_to_an_empty_file(three, here):
    frame = ovfile.dask.read_table("?.ovt", rows_per_partition=100)
    add_a_row(here / "b.ovt")
    with pytest.raises(ovfile.Error, match="has changed") as caught:
        frame["N"].sum().compute()
    assert caught.value.file == str(here / "b.ovt")


def test_a_file_that_changes_while_it_is_read(three, here, monkeypatch):
    frame = ovfile.dask.read_table("a.ovt")
    original = Table.to_pandas

    def slow(self, *arguments, **options):
        found = original(self, *arguments, **options)
        os.utime(here / "a.ovt", ns=(1, 1))
        return found

    monkeypatch.setattr(Table, "to_pandas", slow)
    with pytest.raises(ovfile.Error, match="it was written to"):
        frame.compute()


def test_a_file_that_was_cut_before(three, here):
    cut(here / "a.ovt")
    with pytest.raises(ovfile.Error) as caught:
        ovfile.dask.read_table("a.ovt").compute()
    assert caught.value.file == str(here / "a.ovt") and caught.value.message


def test_without_dask(tmp_path):
    """The package itself does not need it."""
    program = (
        "import sys; sys.modules['dask'] = None\n"
        "import ovfile\n"
        "try:\n    import ovfile.dask\n"
        "except ImportError as error: print(error)"
    )
    environment = {**os.environ, "PYTHONPATH": str(ROOT / "python")}
    command = [sys.executable, "-c", program]
    found = subprocess.run(command, env=environment, capture_output=True, text=True, timeout=LONGEST)
    assert found.stdout.startswith("ovfile.dask needs Dask") and "python3-dask" in found.stdout, found


def test_files_on_another_machine_have_other_numbers(three, monkeypatch):
    """There only what the file holds, its size and its times count."""
    import platform

    frame = ovfile.dask.read_table("?.ovt", columns=["N"])
    expected = frame["N"].sum().compute()
    monkeypatch.setattr(platform, "node", lambda: "another")
    monkeypatch.setattr(os, "stat", _numbered_otherwise(os.stat))
    assert frame["N"].sum().compute() == expected


def _numbered_otherwise(stat):
    def found(*arguments, **named):
        true = stat(*arguments, **named)
        return os.stat_result((true[0], true[1] + 1, true[2] + 1, *true[3:]), _named(true))

    return found


def _named(found):
    return {name: getattr(found, name) for name in dir(found) if name.startswith("st_")}


def test_a_pattern_in_a_folder_whose_name_looks_like_one(tmp_path, monkeypatch):
    folder = tmp_path / "x[1]"
    folder.mkdir()
    (tmp_path / "x1").mkdir()
    for number in (1, 2):
        ovfile.write({"N": [number]}, folder / f"{number}.ovt")
    ovfile.write({"N": [3]}, tmp_path / "x1" / "3.ovt")
    monkeypatch.chdir(folder)
    assert ovfile.dask.read_table("*.ovt")["N"].compute().tolist() == [1, 2]
    assert ovfile.dask.read_table(["2.ovt", "1.*"])["N"].compute().tolist() == [2, 1]
    assert ovfile.dask.read_table(str(folder / "2.ovt"))["N"].compute().tolist() == [2]
    with pytest.raises(ovfile.Error, match="no file matches"):
        ovfile.dask.read_table("none*.ovt")
