"""Dask data frames with a scheduler and worker processes of their own, on loopback."""

import contextlib
import os
import pathlib
import shutil
import signal
import sys
import time
import uuid

import numpy as np
import pytest
from test_dask import HOLES, LONGEST, cut, samples

import ovfile

pytest.importorskip("distributed", reason="python3-distributed is not installed")

import dask  # noqa: E402
import distributed  # noqa: E402
import ovfile.dask  # noqa: E402

linux = pytest.mark.skipif(not sys.platform.startswith("linux"), reason="looks into /proc")


@pytest.fixture(scope="module")
def cluster(tmp_path_factory):
    folder = tmp_path_factory.mktemp("workers")
    settings = {
        "temporary-directory": str(folder),
        "distributed.comm.timeouts.connect": "60s",
        "distributed.worker.memory.terminate": False,
        "distributed.worker.memory.pause": False,
    }
    with dask.config.set(settings), distributed.LocalCluster(
        processes=True,
        n_workers=2,
        threads_per_worker=1,
        dashboard_address=None,
        host="127.0.0.1",
        silence_logs=50,
    ) as made:
        yield made
    shutil.rmtree(folder, ignore_errors=True)


@pytest.fixture
def client(cluster):
    with distributed.Client(cluster) as made:
        made.wait_for_workers(2, timeout=LONGEST)
        yield made


def single_pass(path, column):
    """Sum and number of a column's values in each hole, without Dask."""
    with ovfile.open(path) as table:
        holes, values = table["BHID"], table[column]
    there = ~np.isnan(values)
    return {hole: (values[there & (holes == hole)].sum(), (there & (holes == hole)).sum()) for hole in HOLES}


def assert_grouped(found, expected):
    assert sorted(found.index) == sorted(expected)
    for hole, (total, count) in expected.items():
        assert found.loc[hole, "count"] == count
        assert found.loc[hole, "sum"] == pytest.approx(total, rel=1e-12)


def test_groups_are_those_of_a_single_pass(client, tmp_path):
    path = tmp_path / "t.ovt"
    ovfile.write(samples(100_000), path)
    frame = ovfile.dask.read_table(path, rows_per_partition=7_000)
    assert frame.npartitions == 15
    found = frame.groupby("BHID")["CU"].agg(["sum", "count"]).compute()
    assert_grouped(found, single_pass(path, "CU"))


def wait_until(condition, what):
    end = time.monotonic() + LONGEST
    while not condition():
        assert time.monotonic() < end, f"waited for {what}"
        time.sleep(0.02)


def leave_a_mark(rows, folder):
    """Notes that a partition is worked on; the later ones go on when they may."""
    folder = pathlib.Path(folder)
    first = int(rows.index[0])
    (folder / f"{first}-{os.getpid()}-{uuid.uuid4().hex}").touch()
    if first >= 20_000:
        wait_until((folder / "go on").exists, "the test")
    return rows


def is_gone(process):
    """Whether it runs no more; a process that nobody has asked about yet counts."""
    with contextlib.suppress(OSError):
        return pathlib.Path(f"/proc/{process}/stat").read_text().rpartition(")")[2].split()[0] == "Z"
    return True


@linux
def test_a_worker_that_is_killed(client, tmp_path):
    path, marks = tmp_path / "t.ovt", tmp_path / "marks"
    marks.mkdir()
    ovfile.write(samples(50_000), path)
    frame = ovfile.dask.read_table(path, rows_per_partition=1_000)
    marked = frame.map_partitions(leave_a_mark, str(marks), meta=frame._meta)
    running = client.compute(marked.groupby("BHID")["CU"].agg(["sum", "count"]))

    def waiting():
        """The processes that hold a partition up."""
        found = [name.name.split("-") for name in marks.iterdir()]
        return {int(process) for first, process, _ in found if int(first) >= 20_000}

    wait_until(lambda: len(waiting()) == 2, "both workers")
    victim = min(waiting())
    os.kill(victim, signal.SIGKILL)
    wait_until(lambda: is_gone(victim), "the worker's end")
    (marks / "go on").touch()
    assert_grouped(running.result(timeout=LONGEST), single_pass(path, "CU"))
    done = [name.name.split("-")[0] for name in marks.iterdir() if name.name != "go on"]
    assert len(set(done)) == 50 and len(done) > 50  # what the victim held was done again


def forget_peak():
    """Lets the system count this process's peak memory anew; bytes that it has now."""
    with contextlib.suppress(OSError):  # then an earlier peak counts too
        pathlib.Path("/proc/self/clear_refs").write_text("5")
    return memory("VmRSS")


def memory(what):
    lines = pathlib.Path("/proc/self/status").read_text().splitlines()
    return next(int(line.split()[1]) * 1024 for line in lines if line.startswith(f"{what}:"))


@linux
def test_workers_hold_their_partitions_alone(client, tmp_path):
    path = tmp_path / "t.ovt"
    rows, names = 2_000_000, [f"C{number}" for number in range(8)]
    values = np.arange(rows, dtype=float)
    with ovfile.create(path, names) as table:
        table.append({name: values + number for number, name in enumerate(names)})
    frame = ovfile.dask.read_table(path, rows_per_partition=50_000)
    frame.partitions[0].sum().compute()  # so that everything is loaded
    before = client.run(forget_peak)
    found = frame.sum().compute()
    peaks = client.run(memory, "VmHWM")
    assert found.tolist() == [values.sum() + number * rows for number in range(8)]
    size, partition = path.stat().st_size, 50_000 * 8 * 8
    assert size > 120_000_000
    for worker, peak in peaks.items():
        assert peak - before[worker] < 12 * partition < size / 3


def test_an_error_of_a_worker(client, tmp_path):
    path = tmp_path / "t.ovt"
    ovfile.write(samples(1000), path)
    frame = ovfile.dask.read_table(path, rows_per_partition=100)
    cut(path)
    with pytest.raises(ovfile.Error, match="the file has changed since the frame was made") as caught:
        frame["N"].sum().compute()
    assert caught.value.file == str(path)


def test_several_files_and_categories(client, tmp_path):
    for number in range(4):
        ovfile.write(samples(500, seed=number, first=500 * number), tmp_path / f"{number}.ovt")
    frame = ovfile.dask.read_table(
        tmp_path / "*.ovt", rows_per_partition=200, categories=True, include_path_column=True
    )
    found = frame.groupby("path", observed=True)["N"].min().compute()
    assert found.to_dict() == {str(tmp_path / f"{number}.ovt"): 500 * number for number in range(4)}
