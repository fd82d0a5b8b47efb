"""Opening, closing, and what is left behind."""

import copy
import ctypes
import gc
import os
import pathlib
import pickle
import subprocess
import sys
import threading

import pytest
from conftest import ROOT

import ovfile
from ovfile._library import library


def objects_are_left():
    """Whether the library still has objects, as it tells whoever wants to unload it."""
    module = ctypes.CDLL(library().path)
    return module.DllCanUnloadNow() != 0


@pytest.mark.parametrize("kind", [str, pathlib.Path, os.fsencode])
@pytest.mark.parametrize("name", ["plain.ovt", "Bohrlöcher Süd.ovt", "钻孔.ovt", "no extension"])
def test_paths(tmp_path, kind, name):
    path = kind(tmp_path / name)
    ovfile.write({"A": [1]}, path)
    with ovfile.open(path, "r+") as table:
        table.append({"A": [2]})
        table.sort("A", ascending=False)
        assert table["A"].tolist() == [2, 1]
        assert table.path == str(tmp_path / name)
    assert os.listdir(tmp_path) == [name]


def test_a_relative_path_is_of_the_folder_when_it_was_opened(tmp_path, monkeypatch):
    monkeypatch.chdir(tmp_path)
    ovfile.write({"A": [2, 1]}, "table.ovt")
    with ovfile.open("table.ovt", "r+") as table:
        monkeypatch.chdir("/")
        table.sort("A")
        table.add_column("B", [1, 2])
    assert os.listdir(tmp_path) == ["table.ovt"]


def test_missing_files_and_files_that_are_no_tables(tmp_path):
    with pytest.raises(ovfile.Error) as caught:
        ovfile.open(tmp_path / "none.ovt")
    failure = caught.value
    assert (failure.message, failure.file) == ("File does not exist", str(tmp_path / "none.ovt"))
    assert failure.status == -0x7FFFBFFB
    assert str(failure) == f"{tmp_path / 'none.ovt'}: File does not exist"
    other = tmp_path / "notes.txt"
    other.write_text("no table")
    for wrong in (other, tmp_path):
        with pytest.raises(ovfile.Error) as caught:
            ovfile.open(wrong)
        assert caught.value.message == "Not a valid orvexa table"
    with pytest.raises(ovfile.Error):
        ovfile.read_pandas(tmp_path / "none.ovt")


def test_errors_travel_between_processes(tmp_path):
    with pytest.raises(ovfile.Error) as caught:
        ovfile.open(tmp_path / "none.ovt")
    copied = pickle.loads(pickle.dumps(caught.value))
    assert str(copied) == str(caught.value) and copied.status == caught.value.status


@pytest.mark.parametrize("mode", ["w", "x", "a", "rb", ""])
def test_modes(tmp_path, mode):
    with pytest.raises(ValueError, match='mode is "r" or "r\\+"') as caught:
        ovfile.open(tmp_path / "table.ovt", mode)
    assert ("ovfile.create" in str(caught.value)) == (mode in ("w", "x"))
    assert os.listdir(tmp_path) == []


def test_a_path_with_a_null_character():
    with pytest.raises(ValueError, match="null characters"):
        ovfile.open("a\0b")


def test_closing_twice(assays):
    table = ovfile.open(assays)
    table.close()
    table.close()
    assert table.closed
    assert repr(table) == f"<ovfile.Table {str(assays)!r}, closed>"


USES = [
    lambda table: len(table),
    lambda table: table["CU"],
    lambda table: table.columns,
    lambda table: table.schema,
    lambda table: table.read(),
    lambda table: list(table.batches()),
    lambda table: table.to_pandas(),
    lambda table: table.append({"CU": [1]}),
    lambda table: table.sort("CU"),
    lambda table: table.add_column("AU"),
    lambda table: table.signature(),
    lambda table: table.flush(),
    lambda table: table.__arrow_c_stream__(),
    lambda table: table.__enter__(),
]


@pytest.mark.parametrize("use", USES)
def test_use_after_close(assays, use):
    table = ovfile.open(assays, "r+")
    table.close()
    with pytest.raises(ovfile.Error, match="the table is closed") as caught:
        use(table)
    assert caught.value.file == str(assays)


def test_batches_after_close(assays):
    with ovfile.open(assays) as table:
        batches = table.batches(2)
        next(batches)
    with pytest.raises(ovfile.Error, match="closed"):
        next(batches)


def test_batches_after_a_change(assays):
    with ovfile.open(assays, "r+") as table:
        batches = table.batches(2)
        next(batches)
        table.append({"CU": [1]})
        with pytest.raises(ovfile.Error, match="changed|closed"):
            next(batches)


def test_a_table_that_is_dropped_is_closed(path):
    ovfile.write({"A": [1]}, path)
    table = ovfile.open(path, "r+")
    table.append({"A": [2]})
    del table
    gc.collect()
    with ovfile.open(path) as again:
        assert again["A"].tolist() == [1, 2]


def test_nothing_is_left(assays):
    """Every object of the library is given back, after failures too."""
    gc.collect()
    assert not objects_are_left()
    with ovfile.open(assays, "r+") as table:
        assert objects_are_left()
        table.read(where="CU > 0")
        list(table.batches(2))
        table.append({"CU": [1]})
        table.sort("CU")
        table.add_column("AU", range(7))
        with pytest.raises(ovfile.Error):
            table.append({"CU": ["a"]})
        with pytest.raises(ovfile.Error):
            table.read(where="(")
        table.__arrow_c_stream__()
    for broken in (assays.with_name("none"), __file__):
        with pytest.raises(ovfile.Error):
            ovfile.open(broken)
    del table
    gc.collect()
    assert not objects_are_left()


@pytest.mark.skipif(not os.path.isdir("/proc/self/fd"), reason="counts open files as Linux shows them")
def test_no_file_stays_open(assays, tmp_path):
    before = len(os.listdir("/proc/self/fd"))
    for number in range(20):
        ovfile.write(ovfile.read_pandas(assays, where="CU > 0"), tmp_path / "other.ovt")
        with ovfile.open(tmp_path / "other.ovt", "r+") as table:
            table.add_column("A", range(len(table)))
            table.sort("CU")
        for wrong in (lambda: ovfile.open(__file__), lambda: ovfile.write({"A": ["Ω"]}, tmp_path / "x")):
            with pytest.raises(ovfile.Error):
                wrong()
        ovfile.open(assays)
    gc.collect()
    assert len(os.listdir("/proc/self/fd")) == before


def test_a_table_open_at_the_end_of_the_program(path):
    program = f"""
import ovfile
ovfile.write({{"A": [1]}}, {str(path)!r})
table = ovfile.open({str(path)!r}, "r+")
table.append({{"A": [2]}})
capsule = table.__arrow_c_stream__()
batches = table.batches(1)
next(batches)
"""
    run = subprocess.run(
        [sys.executable, "-c", program],
        capture_output=True,
        text=True,
        env={**os.environ, "PYTHONPATH": str(ROOT / "python")},
    )
    assert (run.returncode, run.stdout, run.stderr) == (0, "", "")
    with ovfile.open(path) as table:
        assert table["A"].tolist() == [1, 2]


@pytest.mark.parametrize("duplicate", [copy.copy, copy.deepcopy, pickle.dumps])
def test_tables_are_not_copied(assays, duplicate):
    with ovfile.open(assays) as table, pytest.raises(TypeError, match="cannot be copied or pickled"):
        duplicate(table)


def test_schemas_are_values(assays):
    with ovfile.open(assays) as table:
        schema = table.schema
    assert pickle.loads(pickle.dumps(schema)) == schema
    assert schema["CU"].kind == "number"


def test_different_tables_on_different_threads(tmp_path):
    wrong = []

    def work(number):
        try:
            path = tmp_path / f"{number}.ovt"
            for _ in range(5):
                ovfile.write({"A": [number] * 1000, "T": [str(number)] * 1000}, path)
                with ovfile.open(path, "r+") as table:
                    table.add_column("B", [number] * 1000)
                    assert table.read(where=f"A = {number}")["B"].tolist() == [number] * 1000
                with pytest.raises(ovfile.Error, match=f"{number}.none"):
                    ovfile.open(tmp_path / f"{number}.none")
        except BaseException as failure:
            wrong.append(failure)

    threads = [threading.Thread(target=work, args=[number]) for number in range(4)]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    assert wrong == []


def test_creating(path):
    with ovfile.create(path, ["A"]) as table:
        assert table.mode == "r+" and not table.closed
        table.append({"A": [1]})
    before = path.read_bytes()
    with pytest.raises(ovfile.Error, match="the file exists"):
        ovfile.create(path, ["B"])
    assert path.read_bytes() == before
    with ovfile.create(path, ["B"], overwrite=True) as table:
        assert table.columns == ["B"] and len(table) == 0


def test_creating_what_cannot_be(path):
    with pytest.raises(ovfile.Error, match="two columns") as caught:
        ovfile.create(path, ["A", "A"])
    assert (caught.value.file, caught.value.column) == (str(path), "A")
    with pytest.raises(ovfile.Error, match="cannot be made"):
        ovfile.create(path / "table.ovt", ["A"])
    assert os.listdir(path.parent) == []


def test_flushed_rows_are_seen_by_others(path):
    with ovfile.create(path, ["A"]) as table:
        table.append({"A": [1, 2]})
        table.flush()
        with ovfile.open(path) as other:
            assert other["A"].tolist() == [1, 2]
