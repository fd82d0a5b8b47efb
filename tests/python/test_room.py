"""Memory and room on the disk: tables larger than memory, files that must not grow."""

import os
import subprocess

import numpy as np
import pytest
from conftest import child

import ovfile

pytestmark = pytest.mark.skipif(os.name == "nt", reason="measures and limits as Linux does")


COPY = """
import resource, sys, ovfile
import numpy
class Stream:
    def __init__(self, table): self.table = table
    def __arrow_c_stream__(self, requested_schema=None): return self.table.__arrow_c_stream__()
def most(): return resource.getrusage(resource.RUSAGE_SELF).ru_maxrss
with ovfile.open(sys.argv[1]) as table:
    ovfile.write({"A": [1.0]}, sys.argv[2])
    before = most()
    known = {"schema": {"schema": table.schema}, "kinds": {"kinds": {"T": "text:8"}}, "nothing": {}}
    rows = ovfile.write(Stream(table), sys.argv[2], **known[sys.argv[3]])
    print(rows, most() - before)
"""


@pytest.fixture(scope="module")
def long_table(tmp_path_factory):
    """Of 64 MB."""
    path = tmp_path_factory.mktemp("room") / "long.ovt"
    rows = 2_000_000
    numbers = np.arange(float(rows))
    with ovfile.create(path, ["A", "B", "C", "T:8"]) as table:
        for start in range(0, rows, 250_000):
            part = numbers[start : start + 250_000]
            texts = np.array(["north", "south"] * 125_000, object)
            table.append({"A": part, "B": part, "C": -part, "T": texts})
    return path


@pytest.mark.parametrize("known", ["schema", "kinds"])
def test_a_stream_is_not_gathered_where_its_columns_are_known(long_table, tmp_path, known):
    """It takes a few batches' memory (of 3 MB each), and not the table's."""
    rows, kilobytes = child(COPY, long_table, tmp_path / "copy.ovt", known).split()
    assert int(rows) == 2_000_000
    assert int(kilobytes) * 1024 < long_table.stat().st_size / 3
    with ovfile.open(long_table) as one, ovfile.open(tmp_path / "copy.ovt") as other:
        assert one.columns == other.columns and one.schema.columns[3].width == other.schema.columns[3].width
        for name in ("A", "C"):
            assert np.array_equal(one[name], other[name])
        assert other.read("T", rows=[0, 1_999_999])["T"].tolist() == ["north", "south"]


def test_a_stream_whose_widths_are_to_be_found(long_table, tmp_path):
    assert child(COPY, long_table, tmp_path / "copy.ovt", "nothing").split()[0] == "2000000"
    with ovfile.open(tmp_path / "copy.ovt") as table:
        assert len(table) == 2_000_000 and table.schema["T"].width == 8


def test_a_stream_that_does_not_fit_the_schema(tmp_path):
    """Found out behind rows that are written already: no file comes of it."""
    ovfile.write({"T": ["a"] * 100_000 + ["longer"]}, tmp_path / "source.ovt")
    schema = ovfile.Schema((ovfile.Column.text("T", 4),))

    class Stream:
        def __init__(self, table):
            self.table = table

        def __arrow_c_stream__(self, requested_schema=None):
            return self.table.__arrow_c_stream__()

    with ovfile.open(tmp_path / "source.ovt") as table:
        with pytest.raises(ovfile.Error, match="column T, row 100001") as caught:
            ovfile.write(Stream(table), tmp_path / "copy.ovt", schema=schema)
    assert (caught.value.column, caught.value.row) == ("T", 100_000)
    assert os.listdir(tmp_path) == ["source.ovt"]


# Files that must not grow.

LIMITED = """
import os, resource, sys
import numpy as np, ovfile
path, limit, work = sys.argv[1], int(sys.argv[2]), sys.argv[3]
resource.setrlimit(resource.RLIMIT_FSIZE, (limit, resource.RLIM_INFINITY))
rows = {"A": np.arange(4000.0), "T": ["new"] * 4000}
try:
    if work == "write":
        ovfile.write(rows, path)
    elif work == "create":
        ovfile.create(path, ["A"])
    else:
        with ovfile.open(path, "r+") as table:
            before = len(table)
            try:
                if work == "append":
                    table.append(rows)
                elif work == "add_column":
                    table.add_column("B", np.arange(before))
                elif work == "sort":
                    table.sort("A", ascending=False)
            finally:
                print(len(table) - before)
    print("done")
except ovfile.Error as failure:
    print(failure.message)
"""


@pytest.fixture
def short_table(tmp_path):
    """Of 20 KB."""
    path = tmp_path / "table.ovt"
    ovfile.write({"A": np.arange(1000.0), "T": ["a", "b"] * 500}, path)
    return path


@pytest.mark.parametrize("more", [-4096, 0, 1, 2048, 4096, 4097, 8192, 20_000, 40_000, 63_000, 100_000])
def test_appending_against_a_limit(short_table, more):
    """All rows or none, and a table without them is as it was."""
    before = short_table.read_bytes()
    said = child(LIMITED, short_table, len(before) + more, "append").split()
    if said[-1] == "done":
        assert said[0] == "4000"
    else:
        assert said[0] == "0"
        assert short_table.read_bytes() == before
    with ovfile.open(short_table) as table:
        assert len(table) == (5000 if said[-1] == "done" else 1000)
    assert (said[-1] == "done") == (more == 100_000)
    assert os.listdir(short_table.parent) == [short_table.name]


@pytest.mark.parametrize("limit", [0, 100, 4096, 9000, 24_000])
@pytest.mark.parametrize("work", ["write", "add_column", "sort"])
def test_writing_anew_against_a_limit(short_table, work, limit):
    before = short_table.read_bytes()
    if work != "write":
        limit = min(limit, len(before) - 100)
    said = child(LIMITED, short_table, limit, work).split()
    assert said[-1] != "done"
    assert "File too large" in " ".join(said)
    assert short_table.read_bytes() == before
    assert os.listdir(short_table.parent) == [short_table.name]


@pytest.mark.parametrize("limit", [0, 100, 4096])
@pytest.mark.parametrize("work", ["write", "create"])
def test_a_new_table_against_a_limit(tmp_path, work, limit):
    said = child(LIMITED, tmp_path / "table.ovt", limit, work)
    if said == "done":
        assert (work, limit) == ("create", 4096)
        return
    assert said.startswith(("Failed to create file: ", "OvFile Error: ")) and "File too large" in said
    assert os.listdir(tmp_path) == []


@pytest.fixture
def small_disk(tmp_path):
    """A file system of 1 MB."""
    folder = tmp_path / "disk"
    folder.mkdir()
    mounted = subprocess.run(
        ["mount", "-t", "tmpfs", "-o", "size=1m", "tmpfs", str(folder)], capture_output=True
    )
    if mounted.returncode != 0:
        pytest.skip("only a privileged user mounts file systems")
    yield folder
    subprocess.run(["umount", str(folder)], check=True)


@pytest.mark.parametrize(
    "work",
    [
        lambda path: ovfile.write({"A": np.arange(400_000.0)}, path),
        lambda path: changed(path, lambda table: table.append({"A": np.arange(400_000.0)})),
        lambda path: changed(path, lambda table: table.add_column("B", np.arange(len(table)))),
        lambda path: changed(path, lambda table: table.sort("A", ascending=False)),
    ],
    ids=["write", "append", "add_column", "sort"],
)
def test_a_full_disk(small_disk, work):
    path = small_disk / "table.ovt"
    ovfile.write({"A": np.arange(80_000.0)}, path)
    before = path.read_bytes()
    with pytest.raises(ovfile.Error, match="No space left"):
        work(path)
    assert path.read_bytes() == before
    assert os.listdir(small_disk) == [path.name]
    with ovfile.open(path, "r+") as table:
        table.append({"A": [1]})


def changed(path, work):
    with ovfile.open(path, "r+") as table:
        rows, columns = len(table), table.columns
        try:
            work(table)
        finally:
            assert (len(table), table.columns) == (rows, columns)
