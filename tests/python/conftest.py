"""Tests of the Python package, run with Debian's python3-pytest: `python3 -m pytest tests/python`.

The library is the one that OVFILE_LIBRARY names, else that of build/release.
"""

import os
import pathlib
import subprocess
import sys

import pytest

ROOT = pathlib.Path(__file__).resolve().parents[2]
sys.path.insert(0, str(ROOT / "python"))
os.environ.setdefault("OVFILE_LIBRARY", str(ROOT / "build" / "release" / "bin"))

import ovfile  # noqa: E402


def child(script, *arguments):
    """What a program of its own says, which works on tables."""
    environment = {**os.environ, "PYTHONPATH": str(ROOT / "python")}
    run = subprocess.run(
        [sys.executable, "-c", script, *map(str, arguments)],
        env=environment,
        capture_output=True,
        text=True,
        timeout=300,
    )
    assert run.returncode == 0, run.stderr
    return run.stdout.strip()


@pytest.fixture(autouse=True, scope="session")
def own_settings(tmp_path_factory):
    """No test reads or writes the user's settings."""
    folder = tmp_path_factory.mktemp("settings")
    os.environ["OVFILE_REGISTRY"] = str(folder / "registry.reg")
    os.environ["OVFILE_ATOMS"] = str(folder / "atoms")


@pytest.fixture
def path(tmp_path):
    return tmp_path / "table.ovt"


@pytest.fixture
def assays(path):
    """Six rows: numbers and texts, an absent number, a blank text, a column for all rows."""
    with ovfile.create(
        path,
        ["BHID:8", "FROM", "CU", "ROCK:12", ovfile.Column.number("SG", 2.7, implicit=True)],
        description="assays of a test",
    ) as table:
        table.append(
            {
                "BHID": ["LK001", "LK001", "LK001", "LK002", "LK002", "LK003"],
                "FROM": [0, 1, 2, 0, 1.5, 0],
                "CU": [0.25, None, 1.75, 0.5, 3, 0.125],
                "ROCK": ["SKARN", "", "SKARN", "LIME, GREY", "SKARN", "Küste"],
            }
        )
    return path


def golden_folder():
    """The table files with known contents; skips visibly where they are not."""
    shared = os.environ.get("OVFILE_SHARED") or str(ROOT.parent / "shared")
    folder = pathlib.Path(shared) / "golden"
    if not folder.is_dir():
        pytest.skip("OVFILE_SHARED does not lead to the golden files")
    return folder


def without_new_files(folder):
    """Whether no file of an unfinished write lies in a folder."""
    return not [name for name in os.listdir(folder) if name.startswith(".NEW") or name.startswith("NEW")]
