"""dask_group.py [ROWS]: groups of a large table on two worker processes, held against a single pass.

The table has 10 million rows unless ROWS says otherwise (750 MB in TMPDIR). The groups are made once
undisturbed and once with a worker that is killed in the middle; both have to give what the single pass gives.
Then it prints how much memory the workers took, beside the size of a partition and of the table. Nothing but
loopback is used. Needs python3-dask, python3-distributed and python3-pandas.
"""

import os
import pathlib
import signal
import sys
import tempfile
import time
import uuid

import measuring
import numpy as np
import pandas as pd

import ovfile

HOLES = [f"LK{number:04}" for number in range(200)]
ROWS_PER_PARTITION = 250_000
ROWS_AT_ONCE = 500_000
LONGEST = 300


def make(path, rows):
    generator = np.random.default_rng(1)
    numbers = ["X", "Y", "Z", "CU", "AU", "DENSITY", "ZONE"]
    with ovfile.create(path, ["BHID:8", *numbers]) as table:
        for first in range(0, rows, ROWS_AT_ONCE):
            count = min(ROWS_AT_ONCE, rows - first)
            holes = pd.Categorical.from_codes(generator.integers(0, len(HOLES), count), HOLES)
            values = {name: generator.integers(0, 4000, count) / 8 for name in numbers}
            values["CU"][generator.random(count) < 0.05] = np.nan
            table.append({"BHID": holes, **values})


def single_pass(path):
    """Sum and number of the values of CU in each hole, by numpy."""
    sums, counts = np.zeros(len(HOLES)), np.zeros(len(HOLES), np.int64)
    with ovfile.open(path) as table:
        for first in range(0, len(table), ROWS_AT_ONCE):
            rows = slice(first, first + ROWS_AT_ONCE)
            frame = table.to_pandas(["BHID", "CU"], rows=rows, categories=True)
            holes = frame["BHID"].cat
            places = np.array([HOLES.index(hole) for hole in holes.categories])[holes.codes]
            there = frame["CU"].notna().to_numpy()
            values = frame["CU"].to_numpy()
            sums += np.bincount(places[there], values[there], len(HOLES))
            counts += np.bincount(places[there], minlength=len(HOLES))
    return pd.DataFrame({"sum": sums, "count": counts}, index=HOLES)


def groups(frame):
    return frame.groupby("BHID")["CU"].agg(["sum", "count"])


def compare(what, found, expected):
    found = found.sort_index()
    same = found["count"].equals(expected["count"].rename_axis("BHID"))
    same &= bool(np.allclose(found["sum"], expected["sum"], rtol=1e-12, atol=0))
    print(f"{what}: {'as the single pass' if same else 'NOT as the single pass'}", flush=True)
    return same


def note(rows, folder):
    """Leaves a file for a partition that is worked on, with the process."""
    (pathlib.Path(folder) / f"{rows.index[0]}-{os.getpid()}-{uuid.uuid4().hex}").touch()
    return rows


def kill_in_the_middle(marks, partitions):
    """Kills the process that works on a partition once a third of them are begun."""
    end = time.monotonic() + LONGEST
    while len(begun := list(marks.iterdir())) < partitions // 3:
        assert time.monotonic() < end, "no partition is worked on"
        time.sleep(0.01)
    victim = int(begun[0].name.split("-")[1])
    os.kill(victim, signal.SIGKILL)
    return victim


def disturbed(client, frame, marks):
    noted = frame[["BHID", "CU"]].map_partitions(note, str(marks), meta=frame._meta[["BHID", "CU"]])
    start = time.perf_counter()
    running = client.compute(groups(noted))
    victim = kill_in_the_middle(marks, frame.npartitions)
    unfinished = not running.done()
    found = running.result(timeout=LONGEST)
    print(
        f"process {victim} killed in the middle: {time.perf_counter() - start:.2f} s, "
        f"{len(list(marks.iterdir()))} partitions read for {frame.npartitions}"
    )
    assert unfinished, "the kill came too late; take more rows"
    return found


def measure(client, path, folder):
    from ovfile.dask import read_table

    frame = read_table(path, rows_per_partition=ROWS_PER_PARTITION)
    start = time.perf_counter()
    expected = single_pass(path)
    print(f"single pass: {time.perf_counter() - start:.2f} s")

    groups(frame.partitions[:2]).compute()  # so that everything is loaded
    before = client.run(measuring.forget_peak)
    start = time.perf_counter()
    found = groups(frame).compute()
    print(f"two workers: {time.perf_counter() - start:.2f} s")
    good = compare("two workers", found, expected)
    show_memory("two columns", client, before, path)

    before = client.run(measuring.forget_peak)
    frame[["X", "Y", "Z", "CU", "AU", "DENSITY", "ZONE"]].sum().compute()
    show_memory("all numbers", client, before, path)

    marks = pathlib.Path(folder) / "marks"
    marks.mkdir()
    good &= compare("one worker killed", disturbed(client, frame, marks), expected)
    return good


def show_memory(what, client, before, path):
    peaks = client.run(measuring.peak)
    grown = ", ".join(f"{(peak - before[worker]) / measuring.MB:.0f}" for worker, peak in peaks.items())
    whole = ", ".join(f"{peak / measuring.MB:.0f}" for peak in peaks.values())
    size = os.path.getsize(path) / measuring.MB
    partition = ROWS_PER_PARTITION * 8 * 8 / measuring.MB
    print(
        f"memory, {what}: the workers grew by {grown} MB at most (to {whole} MB); a partition with all "
        f"columns has {partition:.0f} MB, the table {size:.0f} MB"
    )


def main():
    import dask
    import distributed

    rows = int(sys.argv[1]) if len(sys.argv) > 1 else 10_000_000
    with tempfile.TemporaryDirectory() as folder:
        path = os.path.join(folder, "table.ovt")
        start = time.perf_counter()
        make(path, rows)
        print(f"{rows} rows appended in {time.perf_counter() - start:.1f} s", flush=True)
        with dask.config.set({"temporary-directory": folder}), distributed.LocalCluster(
            processes=True, n_workers=2, threads_per_worker=1, dashboard_address=None, host="127.0.0.1",
            silence_logs=50,
        ) as cluster, distributed.Client(cluster) as client:
            return 0 if measure(client, path, folder) else 1


if __name__ == "__main__":
    sys.exit(main())
