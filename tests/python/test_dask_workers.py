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
import pandas as pd
import pytest
from test_dask import LONGEST, cut, samples

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


ROWS, ROWS_AT_ONCE, ROWS_PER_PARTITION = 10_000_000, 1_000_000, 250_000
PARTITIONS = ROWS // ROWS_PER_PARTITION
HOLES_OF_MANY = [f"H{number:03}" for number in range(200)]


@pytest.fixture(scope="module")
def large(tmp_path_factory):
    """A table of ten million rows, 240 MB. Its grades are eighths, whose sums have no rounding errors."""
    folder = tmp_path_factory.mktemp("large")
    generator = np.random.default_rng(5)
    holes = generator.integers(0, len(HOLES_OF_MANY), ROWS_AT_ONCE, np.int16)
    copper = generator.integers(0, 4000, ROWS_AT_ONCE) / 8
    copper[::20] = np.nan
    with ovfile.create(folder / "t.ovt", ["BHID:4", "CU", "DENSITY"]) as table:
        for number in range(ROWS // ROWS_AT_ONCE):
            names = pd.Categorical.from_codes(np.roll(holes, 12_345 * number), HOLES_OF_MANY)
            table.append({"BHID": names, "CU": copper + number, "DENSITY": copper / 1000 + 2})
    yield folder / "t.ovt"
    shutil.rmtree(folder)


@pytest.fixture(scope="module")
def expected(large):
    """Sum and number of the grades in each hole, from a single pass through the table, without Dask."""
    sums, counts = np.zeros(len(HOLES_OF_MANY)), np.zeros(len(HOLES_OF_MANY), np.int64)
    places = {hole: place for place, hole in enumerate(HOLES_OF_MANY)}
    with ovfile.open(large) as table:
        assert len(table) == ROWS
        for first in range(0, ROWS, ROWS_AT_ONCE):
            part = table.to_pandas(["BHID", "CU"], rows=slice(first, first + ROWS_AT_ONCE), categories=True)
            there, holes = part["CU"].notna().to_numpy(), part["BHID"].cat
            place_of = np.array([places[hole] for hole in holes.categories])[holes.codes][there]
            sums += np.bincount(place_of, part["CU"].to_numpy()[there], len(sums))
            counts += np.bincount(place_of, minlength=len(sums))
    assert 0 < counts.sum() < ROWS
    return pd.DataFrame({"sum": sums, "count": counts}, index=pd.Index(HOLES_OF_MANY, name="BHID"))


def partitions_of(path):
    frame = ovfile.dask.read_table(path, rows_per_partition=ROWS_PER_PARTITION, categories=True)
    assert frame.npartitions == PARTITIONS
    return frame


def groups(frame):
    return frame.groupby("BHID", observed=True)["CU"].agg(["sum", "count"])


def assert_grouped(found, expected):
    found.index = found.index.astype(object)
    pd.testing.assert_frame_equal(found.sort_index(), expected, check_exact=True)


def test_groups_are_those_of_a_single_pass(client, large, expected):
    assert_grouped(groups(partitions_of(large)).compute(), expected)


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
    if first >= ROWS // 2:
        wait_until((folder / "go on").exists, "the test")
    return rows


def is_gone(process):
    """Whether it runs no more; a process that nobody has asked about yet counts."""
    with contextlib.suppress(OSError):
        return pathlib.Path(f"/proc/{process}/stat").read_text().rpartition(")")[2].split()[0] == "Z"
    return True


@linux
def test_a_worker_that_is_killed(client, large, expected, tmp_path):
    marks = tmp_path / "marks"
    marks.mkdir()
    frame = partitions_of(large)[["BHID", "CU"]]
    running = client.compute(groups(frame.map_partitions(leave_a_mark, str(marks), meta=frame._meta)))

    def waiting():
        """The processes that hold a partition up."""
        found = [name.name.split("-") for name in marks.iterdir()]
        return {int(process) for first, process, _ in found if int(first) >= ROWS // 2}

    wait_until(lambda: len(waiting()) == 2, "both workers")
    victim = min(waiting())
    os.kill(victim, signal.SIGKILL)
    wait_until(lambda: is_gone(victim), "the worker's end")
    (marks / "go on").touch()
    assert_grouped(running.result(timeout=LONGEST), expected)
    done = [name.name.split("-")[0] for name in marks.iterdir() if name.name != "go on"]
    assert len(set(done)) == PARTITIONS and len(done) > PARTITIONS  # what the victim held was done again


def forget_peak():
    """Lets the system count this process's peak memory anew; bytes that it has now."""
    with contextlib.suppress(OSError):  # then an earlier peak counts too
        pathlib.Path("/proc/self/clear_refs").write_text("5")
    return memory("VmRSS")


def memory(what):
    lines = pathlib.Path("/proc/self/status").read_text().splitlines()
    return next(int(line.split()[1]) * 1024 for line in lines if line.startswith(f"{what}:"))


@linux
def test_workers_hold_their_partitions_alone(client, large):
    frame = partitions_of(large)
    frame.partitions[:2].groupby("BHID", observed=True).sum().compute()  # so that everything is loaded
    before = client.run(forget_peak)
    found = frame.groupby("BHID", observed=True).sum().compute()
    peaks = client.run(memory, "VmHWM")
    assert len(found) == len(HOLES_OF_MANY)
    size, partition = large.stat().st_size, ROWS_PER_PARTITION * 3 * 8
    assert 240_000_000 < size < 250_000_000
    for worker, peak in peaks.items():
        assert peak - before[worker] < 8 * partition < size / 5


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
