"""Files that end before the rows that their headers promise: what they hold decides, not the promise."""

import os
import struct

import numpy as np
import pytest
from conftest import child

import ovfile
from ovfile import _filter

HELD = 254  # rows of a page
PROMISED = 7_874_000 * HELD
PAGES_WORD = 26

PAGE = {"double": 4096, "single": 2048}
WORD = {"double": "<d", "single": "<f"}


def words_of(held, promised):
    return f"the file ends behind row {held}; its header promises {promised}"


def refusal(work):
    with pytest.raises(ovfile.Error) as caught:
        work()
    return str(caught.value)


def write_rows(path, rows, precision="double"):
    """A number and a text: two words of a row, 254 rows of a page."""
    numbers = np.arange(float(rows))
    ovfile.write({"A": numbers, "T": np.where(numbers % 2, "x", "y")}, path, precision)


@pytest.fixture
def promising(path):
    """A page of rows, of which three are written, and a header that promises many pages."""
    write_rows(path, 3)
    table = bytearray(path.read_bytes())
    struct.pack_into("<2d", table, PAGES_WORD * 8, 1 + PROMISED // HELD, HELD)  # the rows of the last page
    path.write_bytes(table)
    with ovfile.open(path) as opened:
        assert len(opened) == PROMISED
    return path


def opened(work, mode="r"):
    def run(path):
        with ovfile.open(path, mode) as table:
            work(table)

    return run


def copied(path):
    with ovfile.open(path) as table:
        ovfile.write(table, path.with_name("copy.ovt"), schema=table.schema)


def appended(path):
    other = path.with_name("other.ovt")
    write_rows(other, 1)
    with ovfile.open(path) as table, ovfile.open(other, "r+") as grown:
        grown.append(table)


def dask_frame(path):
    pytest.importorskip("dask.dataframe", reason="Dask is not installed (python3-dask)")
    import ovfile.dask

    ovfile.dask.read_table(path, rows_per_partition=1)


WHOLE = {
    "a column": opened(lambda table: table["A"]),
    "all columns": opened(lambda table: table.read()),
    "texts": opened(lambda table: table.read("T", absent="value", keep_blanks=True)),
    "masked": opened(lambda table: table.read(absent="mask")),
    "a condition": opened(lambda table: table.read("A", where="A > 1")),
    "every other row": opened(lambda table: table.read("A", rows=slice(None, None, 2))),
    "backwards": opened(lambda table: table.read("A", rows=slice(None, None, -1))),
    "a range": opened(lambda table: table.read("A", rows=range(1, PROMISED, 3))),
    "the last rows": opened(lambda table: table.read("A", rows=slice(-5, None))),
    "row numbers": opened(lambda table: table.read("A", rows=[0, -1])),
    "one row too many": opened(lambda table: table.read("A", rows=slice(0, HELD + 1))),
    "batches": opened(lambda table: table.batches(rows=10)),
    "batches that pass": opened(lambda table: table.batches(where="A > 1")),
    "a stream": opened(lambda table: table.__arrow_c_stream__()),
    "a frame": opened(lambda table: table.to_pandas()),
    "a frame without columns": opened(lambda table: table.to_pandas([])),
    "a frame of categories": opened(lambda table: table.to_pandas(categories=True, where="T = 'x'")),
    "a frame of a file": ovfile.read_pandas,
    "what passes": opened(lambda table: table._passing("A > 1", 0, PROMISED)),
    "a signature": opened(lambda table: table.signature()),
    "a sort": opened(lambda table: table.sort("A", ascending=False), "r+"),
    "a sort by texts": opened(lambda table: table.sort(["T", "A"]), "r+"),
    "a column of values": opened(lambda table: table.add_column("B", [1.0]), "r+"),
    "a column of defaults": opened(lambda table: table.add_column("B", default=1.0), "r+"),
    "a copy": copied,
    "rows for another table": appended,
    "a frame of Dask": dask_frame,
}


def needs_pandas(road):
    if "frame" in road:
        pytest.importorskip("pandas", reason="pandas is not installed")


@pytest.mark.parametrize("road", WHOLE)
def test_rows_that_are_not_there_are_refused(promising, road):
    needs_pandas(road)
    before = promising.read_bytes()
    assert refusal(lambda: WHOLE[road](promising)) == f"{promising}: {words_of(HELD, PROMISED)}"
    assert promising.read_bytes() == before
    assert not promising.with_name("copy.ovt").exists()


MEMORY = """
import pathlib, resource, sys, traceback
sys.path.insert(0, sys.argv[2])
import test_bounds as bounds
import ovfile
path = pathlib.Path(sys.argv[1])
for name in ("pandas", "ovfile.dask"):
    try:
        __import__(name)
    except ImportError:
        pass
with ovfile.open(path) as table:  # what the roads load once
    table.read(where="A > 1", rows=slice(0, 10))
def kilobytes(of):  # resource's own number has the size of the program that started this one in it
    lines = pathlib.Path("/proc/self/status").read_text().splitlines()
    return next(int(line.split()[1]) for line in lines if line.startswith(of + ":"))
resource.setrlimit(resource.RLIMIT_AS, ((kilobytes("VmSize") << 10) + (256 << 20), resource.RLIM_INFINITY))
before = kilobytes("VmHWM")
for road, work in bounds.WHOLE.items():
    try:
        work(path)
    except ovfile.Error as failure:
        words = failure.message
    except BaseException as failure:
        if type(failure).__name__ == "Skipped":
            continue
        words = repr(failure)
    else:
        words = "read"
    assert words == bounds.words_of(bounds.HELD, bounds.PROMISED), road + ": " + words
print(kilobytes("VmHWM") - before)
"""


@pytest.mark.skipif(os.name == "nt", reason="measures and limits as Linux does")
def test_what_is_refused_takes_no_memory(promising):
    pytest.importorskip("pandas", reason="pandas is not installed")
    kilobytes = child(MEMORY, promising, os.path.dirname(__file__))
    assert int(kilobytes) < 32 << 10


@pytest.mark.parametrize("few", [0, 1000], ids=["rows alike", "row by row"])
def test_rows_that_are_there_are_read(promising, monkeypatch, few):
    monkeypatch.setattr(_filter, "_FEW_ROWS", few)
    with ovfile.open(promising) as table:
        assert table.read("A", rows=slice(0, 3))["A"].tolist() == [0, 1, 2]
        assert len(table.read(rows=range(HELD))["T"]) == HELD
        assert table.read("A", rows=[2, 0, 2])["A"].tolist() == [2, 0, 2]
        assert table.read("A", rows=slice(2, None, -1))["A"].tolist() == [2, 1, 0]
        assert table.read("A", where="A > 0", rows=slice(0, HELD))["A"].tolist() == [1, 2]
        assert table.read("T", rows=[])["T"].tolist() == []
        assert table._passing("A > 0", 0, HELD).sum() == 2
        table.__arrow_c_schema__()


def test_frames_of_rows_that_are_there(promising):
    pytest.importorskip("pandas", reason="pandas is not installed")
    assert ovfile.read_pandas(promising, rows=slice(0, 100))["A"].sum() == 3
    with ovfile.open(promising) as table:
        assert table.to_pandas([], rows=range(2)).shape == (2, 0)
        assert list(table.to_pandas("T", rows=[1, 0], categories=True)["T"]) == ["x", "y"]


def test_a_column_for_all_rows_stands_in_the_header(promising):
    with ovfile.open(promising, "r+") as table:
        table.add_column("SG", default=2.5, implicit=True)
        assert table.read("SG", rows=[0, 1])["SG"].tolist() == [2.5, 2.5]
        assert refusal(lambda: table["SG"]).endswith(words_of(HELD, PROMISED))


@pytest.mark.parametrize("precision", ["double", "single"])
def test_a_file_that_was_cut(path, precision):
    """Of 600 rows: two pages of 254 and one of 92."""
    write_rows(path, 600, precision)
    page, record = PAGE[precision], 2 * struct.calcsize(WORD[precision])
    whole = path.read_bytes()
    for size, held, readable in [
        (3 * page, 508, 508),
        (3 * page + 50 * record + record - 1, 558, 558),
        (3 * page + 10 * record + 1, 518, 508),
        (2 * page + 100 * record, 354, 254),
        (page, 0, 0),
    ]:
        path.write_bytes(whole[:size])
        words = words_of(held, 600)
        with ovfile.open(path) as table:
            assert refusal(lambda: table["A"]) == f"{path}: {words}"
            assert refusal(lambda: table.read("A", rows=[held])) == f"{path}: {words}"
            assert table.read("A", rows=slice(0, readable))["A"].tolist() == list(range(readable))
            if readable:
                found = table.read("A", where="A >= 0", rows=slice(0, readable))["A"]
                assert found.tolist() == list(range(readable))
            if held > readable:
                assert refusal(lambda: table.read("A", rows=[held - 1])) == (
                    f"{path}: {words}; behind row {readable}, in the page in which it ends, none is read"
                )


@pytest.mark.parametrize("precision", ["double", "single"])
def test_a_file_that_ends_with_its_rows_is_whole(path, precision):
    write_rows(path, 600, precision)
    record = 2 * struct.calcsize(WORD[precision])
    os.truncate(path, 3 * PAGE[precision] + 92 * record)
    with ovfile.open(path, "r+") as table:
        assert table["A"].tolist() == list(range(600))
        assert [len(batch["A"]) for batch in table.batches(rows=300)] == [300, 300]
        table.sort("A", ascending=False)
        assert table["A"].tolist() == list(range(599, -1, -1))


@pytest.mark.parametrize("precision", ["double", "single"])
@pytest.mark.parametrize("first", [0, 1, 253, 254, 255, 508])
def test_appended_rows_are_read_before_they_are_flushed(path, precision, first):
    write_rows(path, first, precision)
    with ovfile.open(path, "r+") as table:
        rows = first
        for more in (1, 252, 1, 254, 1, 1000):
            table.append({"A": np.arange(rows, rows + more), "T": ["x"] * more})
            rows += more
            assert table["A"].tolist() == list(range(rows))
            assert sum(len(batch["A"]) for batch in table.batches(rows=100)) == rows
            assert len(table.read("A", where="A >= 0")["A"]) == rows
            table.__arrow_c_stream__()
        table.sort("A", ascending=False)
        table.append({"A": [-1], "T": ["x"]})
        table.add_column("B", np.arange(rows + 1))
        assert table["A"].tolist() == list(range(rows - 1, -2, -1))


APPEND = """
import sys
import numpy as np
import ovfile
table = ovfile.open(sys.argv[1], "r+")
for _ in range(int(sys.argv[2])):
    table.append({"A": np.arange(100.0), "T": ["x"] * 100})
table.close()
"""


def test_rows_that_another_program_appends_do_not_hinder(path):
    write_rows(path, 500)
    with ovfile.open(path) as before:
        child(APPEND, path, 7)
        assert before["A"].tolist() == list(range(500))
        with ovfile.open(path) as after:
            assert len(after["A"]) == 1200


def test_rows_that_another_table_has_not_flushed_do_not_hinder(path):
    write_rows(path, 500)
    with ovfile.open(path, "r+") as writer, ovfile.open(path) as before:
        for _ in range(7):
            writer.append({"A": np.zeros(100), "T": ["x"] * 100})
            with ovfile.open(path) as reader:
                assert len(reader["A"]) == len(reader)
            assert before["A"].tolist() == list(range(500))
        assert len(writer["A"]) == 1200


@pytest.mark.skipif(os.name == "nt", reason="an open file is not cut there")
def test_a_table_that_becomes_shorter_while_it_is_open(path):
    write_rows(path, 600)
    with ovfile.open(path) as table:
        assert len(table["A"]) == 600
        os.truncate(path, 2 * PAGE["double"])
        assert refusal(lambda: table["A"]) == f"{path}: {words_of(254, 600)}"


def test_a_table_without_rows(path):
    write_rows(path, 0)
    with ovfile.open(path, "r+") as table:
        assert table["A"].tolist() == []
        assert list(table.batches()) == []
        table.sort("A")
        table.add_column("B", default=1.0)
        assert table["B"].tolist() == []
