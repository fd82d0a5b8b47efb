"""What the measurements share: where the package is, times, a process's memory. Linux."""

import contextlib
import os
import pathlib
import statistics
import sys
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


def forget_peak():
    """Has the system count this process's peak memory anew. The bytes that it holds now."""
    with contextlib.suppress(OSError):  # then an earlier peak counts too
        pathlib.Path("/proc/self/clear_refs").write_text("5")
    return memory("VmRSS")


def peak():
    return memory("VmHWM")


def memory(what):
    lines = pathlib.Path("/proc/self/status").read_text().splitlines()
    return next(int(line.split()[1]) * 1024 for line in lines if line.startswith(f"{what}:"))
