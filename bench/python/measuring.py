"""What the measurements share: where the package is, times, a process's memory. Linux."""

import contextlib
import os
import pathlib
import statistics
import subprocess
import sys
import tempfile
import time

ROOT = pathlib.Path(__file__).resolve().parents[2]
sys.path.insert(0, str(ROOT / "python"))
os.environ.setdefault("OVFILE_LIBRARY", str(ROOT / "build" / "release" / "bin"))

MB = 1e6


def medians(rounds, **works):
    """The median time of each work in seconds. They take turns, so that none has the quiet minutes alone."""
    times = {name: [] for name in works}
    for number in range(rounds + 1):
        for name, work in works.items():
            start = time.perf_counter()
            work()
            if number:  # the first round warms up
                times[name].append(time.perf_counter() - start)
    return {name: statistics.median(found) for name, found in times.items()}


def command(*arguments):
    """Runs `ovfile`; returns its output, its elapsed seconds and its peak memory in bytes."""
    program = pathlib.Path(os.environ["OVFILE_LIBRARY"]) / "ovfile"
    with tempfile.TemporaryFile("w+") as output:
        start = time.perf_counter()
        child = subprocess.Popen([program, *arguments], stdout=output)
        highest = 0
        # Looked at while it runs: what the system tells afterwards counts this process's memory too.
        while child.poll() is None:
            with contextlib.suppress(OSError, StopIteration):
                highest = max(highest, memory("VmHWM", child.pid))
            time.sleep(0.002)
        seconds = time.perf_counter() - start
        if child.returncode:
            sys.exit(f"ovfile {' '.join(arguments)[:200]} failed")
        output.seek(0)
        return output.read(), seconds, highest


def report(what, ratio, limit, at_least=False):
    good = ratio >= limit if at_least else ratio <= limit
    print(f"{what}: ratio {ratio:.2f}, target {limit}: {'met' if good else 'missed'}")
    return good


def forget_peak():
    """Has the system count this process's peak memory anew. The bytes that it holds now."""
    with contextlib.suppress(OSError):  # then an earlier peak counts too
        pathlib.Path("/proc/self/clear_refs").write_text("5")
    return memory("VmRSS")


def peak():
    return memory("VmHWM")


def memory(what, process="self"):
    lines = pathlib.Path(f"/proc/{process}/status").read_text().splitlines()
    return next(int(line.split()[1]) * 1024 for line in lines if line.startswith(f"{what}:"))
