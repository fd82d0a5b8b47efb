"""Ctrl-C while tables are written: the program hears of it, the table is as it was, nothing else is left."""

import ctypes
import os
import signal
import subprocess
import sys
import time

import numpy as np
import pytest
from conftest import ROOT

import ovfile
from ovfile import _arrow_export, _writing
from ovfile._arrow_abi import ArrowArray

pytestmark = pytest.mark.skipif(os.name == "nt", reason="sends signals as Linux does")

ROWS = 1_000_000
PROGRAM = """
import os, signal, sys
import numpy as np
import ovfile
from ovfile import _arrow_export, _interruption, _rebuilding, _replacement, _writing

signal.signal(signal.SIGINT, signal.default_int_handler)
work, path, at, number = sys.argv[1:5]
rows = int(sys.argv[5])


class Stream:
    "Rows of another table's, as somebody else's object hands them out."
    def __init__(self, table): self.table = table
    def __arrow_c_stream__(self, requested_schema=None): return self.table.__arrow_c_stream__()


def interrupted(function):
    "Before its call of that number the signal comes."
    calls = [0]
    def both(*arguments, **options):
        calls[0] += 1
        if calls[0] == int(number):
            os.kill(os.getpid(), signal.SIGINT)
        return function(*arguments, **options)
    return both


PLACES = {
    "release": (_arrow_export, "_release"),
    "letting go": (_arrow_export, "_forget"),
    "next batch": (_arrow_export, "_producer"),
    "progress": (_interruption._Listener, "_progress"),
    "copying": (_rebuilding, "_without_rows"),
    "taking the place": (_replacement.Replacement, "take_place"),
    "sync": (os, "fsync"),
    "making": (_writing, "create_file"),
    "removing": (_replacement, "_remove"),
}
data = {"A": np.arange(float(rows)), "T": np.array(["a", "b"] * (rows // 2), object)}
source = ovfile.open(sys.argv[6])
if at in PLACES:
    where, name = PLACES[at]
    setattr(where, name, interrupted(getattr(where, name)))
print("ready", flush=True)
if work == "write":
    ovfile.write(data, path)
elif work == "stream":
    ovfile.write(Stream(source), path)
elif work == "stream with schema":
    ovfile.write(Stream(source), path, schema=source.schema)
elif work == "append":
    with ovfile.open(path, "r+") as table:
        table.append(data)
elif work == "append stream":
    with ovfile.open(path, "r+") as table:
        table.append(Stream(source))
elif work == "add_column":
    with ovfile.open(path, "r+") as table:
        table.add_column("B", np.arange(len(table)))
# The interpreter's own end is not looked at. One that came just now still raises here.
signal.pthread_sigmask(signal.SIG_BLOCK, [signal.SIGINT])
os._exit(0)
"""
WORKS = ["write", "stream", "stream with schema", "append", "append stream", "add_column"]


@pytest.fixture(scope="module")
def source(tmp_path_factory):
    path = tmp_path_factory.mktemp("interrupting") / "source.ovt"
    texts = np.array(["a", "b"] * (ROWS // 2), object)
    ovfile.write({"A": np.arange(float(ROWS)), "T": texts}, path)
    return path


def start(work, path, at, number, source, rows=ROWS):
    arguments = [work, path, at, number, rows, source]
    environment = {**os.environ, "PYTHONPATH": str(ROOT / "python")}
    return subprocess.Popen(
        [sys.executable, "-c", PROGRAM, *map(str, arguments)],
        env=environment,
        stdout=subprocess.PIPE,
        stderr=subprocess.PIPE,
        text=True,
    )


def prepared(tmp_path, source):
    path = tmp_path / "table.ovt"
    path.write_bytes(source.read_bytes())
    return path


def require_interrupted(run, path, before):
    words = run.communicate(timeout=120)[1]
    assert words.rstrip().endswith("KeyboardInterrupt"), words
    assert "ignored" not in words
    assert run.returncode == -signal.SIGINT
    assert path.read_bytes() == before
    assert os.listdir(path.parent) == [path.name]


AT = [
    ("write", "making", 1),
    ("write", "next batch", 1),
    ("write", "next batch", 3),
    ("write", "release", 1),
    ("write", "release", 2),
    ("write", "release", 9),
    ("write", "letting go", 4),
    ("write", "progress", 1),
    ("write", "progress", 5),
    ("stream", "next batch", 2),
    ("stream", "letting go", 3),
    ("stream", "progress", 4),
    ("stream with schema", "next batch", 2),
    ("stream with schema", "letting go", 2),
    ("append", "next batch", 1),
    ("append", "release", 1),
    ("append", "release", 7),
    ("append", "letting go", 5),
    ("append", "progress", 4),
    ("append stream", "progress", 4),
    ("add_column", "copying", 1),
    ("add_column", "next batch", 3),
    ("add_column", "release", 2),
    ("add_column", "letting go", 6),
    ("add_column", "progress", 1),
    ("add_column", "progress", 6),
]


@pytest.mark.parametrize("work, at, number", AT)
def test_in_the_middle(tmp_path, source, work, at, number):
    path = prepared(tmp_path, source)
    run = start(work, path, at, number, source)
    require_interrupted(run, path, source.read_bytes())


@pytest.mark.parametrize("work", ["write", "add_column"])
@pytest.mark.parametrize("at", ["taking the place", "sync", "removing"])
def test_when_it_is_as_good_as_done(tmp_path, source, work, at):
    """The new table stands there whole, and the program hears of the signal."""
    path = prepared(tmp_path, source)
    run = start(work, path, at, 1, source, rows=1000)
    words = run.communicate(timeout=120)[1]
    assert words.rstrip().endswith("KeyboardInterrupt") and "ignored" not in words
    with ovfile.open(path) as table:
        assert (len(table), table.columns) in [(1000, ["A", "T"]), (ROWS, ["A", "T", "B"])]
    assert os.listdir(path.parent) == [path.name]


@pytest.mark.parametrize("work", WORKS)
def test_at_any_time(tmp_path, source, work):
    """Whenever it comes: the old table or the new one, whole, and nothing beside it."""
    path = prepared(tmp_path, source)
    before = path.read_bytes()
    for delay in (0.01, 0.08, 0.2):
        run = start(work, path, "any time", 0, source)
        assert run.stdout.readline() == "ready\n"
        time.sleep(delay)
        run.send_signal(signal.SIGINT)
        words = run.communicate(timeout=120)[1]
        assert run.returncode == 0 or words.rstrip().endswith("KeyboardInterrupt"), words
        assert "ignored" not in words
        assert os.listdir(tmp_path) == [path.name]
        if path.read_bytes() != before:
            with ovfile.open(path) as table:
                assert len(table) in (ROWS, 2 * ROWS)
            path.write_bytes(before)


def test_other_signals_that_raise(tmp_path, source):
    """As of a program that gives its work so much time."""
    path = prepared(tmp_path, source)
    program = PROGRAM.replace("SIGINT)", "SIGALRM)").replace(
        'print("ready"',
        'def late(*arguments): raise TimeoutError("too late")\n'
        'signal.signal(signal.SIGALRM, late)\nprint("ready"',
    )
    arguments = ["write", str(path), "release", "5", str(ROWS), str(source)]
    environment = {**os.environ, "PYTHONPATH": str(ROOT / "python")}
    command = [sys.executable, "-c", program, *arguments]
    run = subprocess.run(command, env=environment, capture_output=True, text=True, timeout=120)
    assert run.returncode == 1
    assert run.stderr.rstrip().endswith("TimeoutError: too late") and "ignored" not in run.stderr
    assert path.read_bytes() == source.read_bytes()
    assert os.listdir(tmp_path) == [path.name]


@pytest.fixture
def handlers():
    """What the test sets is not there for others."""
    numbers = (signal.SIGINT, signal.SIGALRM, signal.SIGTERM, signal.SIGUSR1, signal.SIGUSR2)
    found = {number: signal.getsignal(number) for number in numbers}
    yield found
    for number, handler in found.items():
        signal.signal(number, handler)


def raising(failure):
    def handler(number, frame):
        raise failure

    return handler


@pytest.mark.parametrize("numbers", [["SIGALRM"], ["SIGUSR1", "SIGALRM", "SIGTERM"]])
def test_a_signal_while_handlers_are_put_back(path, monkeypatch, handlers, numbers):
    """What it raises comes, and all handlers are back, that of Ctrl-C too."""
    own = {getattr(signal, number): raising(TimeoutError(number)) for number in numbers}
    for number, handler in own.items():
        signal.signal(number, handler)
    real = signal.signal

    def at_once(number, handler):
        real(number, handler)
        if handler is own.get(number):
            os.kill(os.getpid(), number)

    monkeypatch.setattr(signal, "signal", at_once)
    with pytest.raises(TimeoutError) as caught:
        ovfile.write({"A": [1.0]}, path)
    monkeypatch.undo()
    assert str(caught.value) in numbers
    assert {number: signal.getsignal(number) for number in own} == own
    assert signal.getsignal(signal.SIGINT) is handlers[signal.SIGINT]


@pytest.fixture
def at_work(monkeypatch):
    """Signals, each of which comes while a table is written."""
    numbers = []
    real = _writing.append_rows

    def busy(*arguments):
        for number in numbers:
            os.kill(os.getpid(), number)
        return real(*arguments)

    monkeypatch.setattr(_writing, "append_rows", busy)
    return numbers


def test_a_handler_that_puts_another_in_its_place(path, handlers, at_work):
    def once(number, frame):
        signal.signal(number, signal.SIG_DFL)

    signal.signal(signal.SIGTERM, once)
    at_work.append(signal.SIGTERM)
    assert ovfile.write({"A": [1.0]}, path) == 1
    assert signal.getsignal(signal.SIGTERM) == signal.SIG_DFL
    assert signal.getsignal(signal.SIGINT) is handlers[signal.SIGINT]


def test_the_first_of_two_failures_is_told(path, handlers, at_work):
    signal.signal(signal.SIGUSR1, raising(TimeoutError("too late")))
    signal.signal(signal.SIGUSR2, raising(ConnectionError("gone")))
    at_work.extend([signal.SIGUSR1, signal.SIGUSR2])
    with pytest.raises(TimeoutError, match="too late"):
        ovfile.write({"A": [1.0]}, path)
    assert not path.exists()


THREAD = """
import _thread, sys, time, traceback
done = []
def work():
    try:
        import ovfile
        done.append(ovfile.write({"A": [1.0, 2.0]}, sys.argv[1]))
    except BaseException:
        done.append(traceback.format_exc())
_thread.start_new_thread(work, ())
while not done:
    time.sleep(0.01)
print(done[0])
"""


def test_a_thread_that_takes_itself_for_the_main_one(path):
    """As of a program that the interpreter is embedded in, which imports the package there."""
    environment = {**os.environ, "PYTHONPATH": str(ROOT / "python")}
    command = [sys.executable, "-c", THREAD, str(path)]
    run = subprocess.run(command, env=environment, capture_output=True, text=True, timeout=120)
    assert (run.stdout, run.returncode) == ("2\n", 0), run.stderr
    with ovfile.open(path) as table:
        assert len(table) == 2


def test_a_release_that_fails_keeps_no_other_from_it(monkeypatch):
    column = _arrow_export.ArrayParts(1, [None, np.zeros(1)])
    alive = len(_arrow_export._alive)
    batch = ArrowArray()
    _arrow_export.ArrayParts(1, [None]).fill(batch, [column, column, column])
    assert len(_arrow_export._alive) == alive + 4
    release, calls = _arrow_export.release, []

    def fails_once(structure):
        calls.append(structure)
        if len(calls) == 1:
            raise MemoryError
        release(structure)

    monkeypatch.setattr(_arrow_export, "release", fails_once)
    with pytest.raises(MemoryError):
        _arrow_export._release(ArrowArray, ctypes.addressof(batch))
    assert len(calls) == 3 and not batch.release
    assert len(_arrow_export._alive) == alive + 1
    release(calls[0])
    assert len(_arrow_export._alive) == alive
