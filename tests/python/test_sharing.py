"""One table and several threads; a table and a process that was forked off."""

import contextlib
import gc
import itertools
import os
import random
import sys
import threading
import time
import traceback

import numpy as np
import pytest

import ovfile

forks = pytest.mark.skipif(not hasattr(os, "fork"), reason="this system does not fork")
ELSEWHERE = "the table was opened in another process; open it here"


def in_a_child(work):
    """Whether `work` went well in a process that is forked off, which then ends as programs do."""
    return ended_well(started(work))


def started(work):
    """The number of a process that is forked off for `work`."""
    child = os.fork()
    if child == 0:
        status = 1
        try:
            work()
            status = 0
        except BaseException:
            traceback.print_exc()
        finally:
            os._exit(status)
    return child


def ended_well(child):
    return os.waitstatus_to_exitcode(os.waitpid(child, 0)[1]) == 0


@forks
def test_a_child_does_not_use_the_table(assays):
    table = ovfile.open(assays, "r+")
    batches = table.batches(rows=2)
    next(batches)
    uses = [
        lambda: table["CU"],
        lambda: len(table),
        lambda: table.columns,
        lambda: table.path,
        lambda: next(batches),
        lambda: table.to_pandas(),
        lambda: table.append({"CU": [1]}),
        lambda: table.sort("CU"),
        lambda: table.add_column("B"),
        lambda: table.flush(),
        lambda: table.signature(),
        lambda: table.__arrow_c_stream__(),
        lambda: table.__enter__(),
    ]

    def work():
        for use in uses:
            with pytest.raises(ovfile.Error) as caught:
                use()
            assert (caught.value.message, caught.value.file) == (ELSEWHERE, str(assays))
        assert repr(table) == f"<ovfile.Table {str(assays)!r}, opened in another process>"
        with ovfile.open(assays) as own:
            assert own["FROM"].tolist() == [0, 1, 2, 0, 1.5, 0]

    with table:
        assert in_a_child(work)
        assert table["FROM"].tolist() == [0, 1, 2, 0, 1.5, 0]


def close(tables):
    tables[0].close()
    assert tables[0].closed


def drop(tables):
    tables.clear()
    gc.collect()


def leave(tables):
    with pytest.raises(ovfile.Error, match="another process"), tables[0]:
        pass


def end(tables):
    """As a program ends, whatever its end has to do included."""
    import atexit

    atexit._run_exitfuncs()


@forks
@pytest.mark.parametrize("how", [close, drop, leave, end])
def test_a_child_writes_nothing(path, how):
    """What the first process appended after the fork is there, although the child ended later."""
    tables = [ovfile.create(path, ["A"])]
    tables[0].append({"A": [1, 2, 3]})
    ready, go = os.pipe(), os.pipe()

    def work():
        os.write(ready[1], b"1")
        os.read(go[0], 1)
        how(tables)

    done = []
    waiting = threading.Thread(target=lambda: done.append(in_a_child(work)))
    waiting.start()
    os.read(ready[0], 1)
    tables[0].append({"A": [4] * 5000})
    tables[0].close()
    os.write(go[1], b"1")
    waiting.join()
    for end_of_pipe in (*ready, *go):
        os.close(end_of_pipe)
    assert done == [True]
    with ovfile.open(path) as table:
        assert table["A"].tolist() == [1, 2, 3] + [4] * 5000


@forks
def test_a_child_is_told_although_the_table_was_busy(assays):
    """The thread that used it does not exist there."""
    with ovfile.open(assays) as table:
        busy, enough = threading.Event(), threading.Event()

        def hold():
            with table._about():
                busy.set()
                enough.wait()

        thread = threading.Thread(target=hold)
        thread.start()
        busy.wait()

        def work():
            with pytest.raises(ovfile.Error, match="another process"):
                len(table)
            table.close()

        try:
            assert in_a_child(work)
        finally:
            enough.set()
            thread.join()


@pytest.fixture(scope="module")
def numbered(tmp_path_factory):
    path = tmp_path_factory.mktemp("sharing") / "numbered.ovt"
    count = np.arange(200_000, dtype=float)
    ovfile.write({"A": count, "B": -count}, path)
    return path


def together(*works):
    """Runs them at the same time. What they raise."""
    wrong = []

    def guarded(work):
        try:
            work()
        except BaseException as failure:
            wrong.append(failure)

    interval = sys.getswitchinterval()
    sys.setswitchinterval(1e-5)
    try:
        threads = [threading.Thread(target=guarded, args=[work]) for work in works]
        for thread in threads:
            thread.start()
        for thread in threads:
            thread.join()
    finally:
        sys.setswitchinterval(interval)
    return wrong


def test_threads_that_read_one_table(numbered):
    with ovfile.open(numbered) as table:

        def columns():
            for _ in range(10):
                assert np.array_equal(table["A"], np.arange(200_000.0))
                assert np.array_equal(table["B"], -np.arange(200_000.0))

        def condition(low):
            for _ in range(3):
                found = table.read("A", where=f"A >= {low}", rows=slice(low - 500, low + 500))["A"]
                assert np.array_equal(found, np.arange(low, low + 500.0))

        def batches():
            for _ in range(3):
                parts = [batch["A"].copy() for batch in table.batches(rows=9999)]
                assert np.array_equal(np.concatenate(parts), np.arange(200_000.0))

        assert together(columns, columns, lambda: condition(1000), lambda: condition(150_000), batches) == []


def test_threads_that_append_to_one_table(path):
    with ovfile.create(path, ["A"]) as table:

        def append(value):
            for _ in range(20):
                table.append({"A": [value] * 50})

        assert together(*[lambda value=value: append(value) for value in range(4)]) == []
        rows = table["A"].reshape(80, 50)
    assert (rows == rows[:, :1]).all()  # nothing came between the rows of one call
    assert sorted(rows[:, 0].tolist()) == [0] * 20 + [1] * 20 + [2] * 20 + [3] * 20


def test_a_table_that_another_thread_closes(numbered):
    for _ in range(10):
        table = ovfile.open(numbered)

        def read():
            for _ in range(3):
                assert np.array_equal(table["A"], np.arange(200_000.0))

        failures = together(read, table.close, table.close)
        assert all(isinstance(f, ovfile.Error) and f.message == "the table is closed" for f in failures)
        assert table.closed


def test_a_failure_leaves_the_table_to_other_threads(assays):
    with ovfile.open(assays) as table:
        for _ in range(2):
            with pytest.raises(ovfile.Error):
                table["NONE"]
            with pytest.raises(ovfile.Error, match="for reading"):
                table.append({})
        assert together(lambda: len(table)) == []


# What several processes do to one table at once.


def append_until(path, end, first, journal):
    """Appends rows until the time is over, and notes each that was accepted."""
    number = first
    while time.monotonic() < end:
        try:
            with ovfile.open(path, "r+") as table:
                table.append({"ID": [number, number + 1]})
        except ovfile.Error:
            continue  # it is being replaced
        with open(journal, "a") as noted:
            noted.write(f"{number}\n{number + 1}\n")
        number += 2
        time.sleep(random.uniform(0, 0.03))


def make_anew_until(path, end, journal):
    """Makes the table anew, each time in another way."""
    for step in itertools.count():
        if time.monotonic() > end:
            return
        with contextlib.suppress(ovfile.Error):
            with ovfile.open(path, "r+") as table:
                if step % 3 == 0:
                    table.sort("ID", ascending=step % 2 == 0)
                elif "V" in table.columns:
                    table.sort("V")
                else:
                    table.add_column("V", np.arange(len(table)))
            with open(journal, "a") as noted:
                noted.write(f"{step}\n")


@forks
def test_no_accepted_row_is_lost_while_others_make_the_table_anew(tmp_path):
    """OVFILE_SOAK_SECONDS says for how long."""
    path = tmp_path / "table.ovt"
    ovfile.write({"ID": [0.0]}, path)
    end = time.monotonic() + float(os.environ.get("OVFILE_SOAK_SECONDS", 3))
    journals = [tmp_path / name for name in ("first", "second", "anew")]
    works = [
        lambda: append_until(path, end, 1_000_000, journals[0]),
        lambda: append_until(path, end, 2_000_000, journals[1]),
        lambda: make_anew_until(path, end, journals[2]),
    ]
    assert all([ended_well(child) for child in [started(work) for work in works]])
    accepted = [float(line) for name in journals[:2] for line in name.read_text().split()]
    with ovfile.open(path) as table:
        found = table["ID"].tolist()
    assert len(set(found)) == len(found)
    assert set(accepted) <= set(found)
    assert len(accepted) > 20
    assert len(journals[2].read_text().split()) > 2
    assert sorted(os.listdir(tmp_path)) == sorted(["table.ovt", "first", "second", "anew"])
