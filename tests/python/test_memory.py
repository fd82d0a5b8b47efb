"""Memory that runs out while a program appends rows: all of them are there, or none and the program hears of it."""

import os
import subprocess
import sys

import pytest
from conftest import ROOT

import ovfile

DENIED = ROOT / "build" / "release" / "bin" / "fake" / "denied_malloc.so"
PROGRAM = """
import sys
import numpy as np
import ovfile

more = {"A": np.arange(2_000.0), "T": np.array(["x", "y"] * 1_000)}
with ovfile.open(sys.argv[1], "r+") as table:
    table.append(more)
"""
ROWS, MORE = 10, 2_000

pytestmark = pytest.mark.skipif(not DENIED.exists(), reason="the build has no library that denies memory")


def run(path, nth, mark):
    environment = {
        **os.environ,
        "PYTHONPATH": str(ROOT / "python"),
        "PYTHONMALLOC": "malloc",
        "LD_PRELOAD": str(DENIED),
        "DENY_FROM": path.name,
        "DENY_NTH": str(nth),
        "DENY_MARK": str(mark),
    }
    return subprocess.run(
        [sys.executable, "-c", PROGRAM, str(path)], env=environment, capture_output=True, text=True, timeout=300
    )


def test_rows_are_there_or_the_program_hears_of_it(path, tmp_path):
    """Each allocation in turn with OVFILE_DENY_EVERY, else some fifty of them."""
    mark = tmp_path / "mark"
    refused, nth = 0, 1
    while True:
        ovfile.write({"A": [1.0] * ROWS, "T": ["a"] * ROWS}, path)
        mark.unlink(missing_ok=True)
        end = run(path, nth, mark)
        assert end.returncode in (0, 1), f"{nth}: {end.returncode}: {end.stderr}"
        with ovfile.open(path) as table:
            rows, first, last = len(table), table["A"][:ROWS].tolist(), float(table["A"][-1])
        assert first == [1.0] * ROWS
        assert rows == ROWS or (rows == ROWS + MORE and last == MORE - 1), f"{nth}: {rows} rows: {end.stderr}"
        assert rows == ROWS + MORE or end.returncode == 1, f"{nth}: nobody was told"
        assert sorted(os.listdir(tmp_path)) == [*(["mark"] if mark.exists() else []), path.name]
        refused += end.returncode
        if not mark.exists():
            break
        nth += 1 if "OVFILE_DENY_EVERY" in os.environ else 1 + nth // 6
    assert end.returncode == 0 and refused > 10
