"""The type hints hold together, and say what a user's program needs."""

import os
import shutil
import subprocess

import pytest
from conftest import ROOT

PROGRAM = """
import numpy.typing
import ovfile

with ovfile.open("a.ovt") as table:
    names: list[str] = table.columns
    copper = table["CU"]
    mean: float = copper.mean()
    for batch in table.batches(rows=100, columns=["CU", 1], where="CU > 1"):
        part: "numpy.typing.NDArray[numpy.float64]" = batch["CU"]
    rows: int = table.append({"CU": [1.0]})
    width: int = table.schema["BHID"].width
ovfile.open(1)
ovfile.open("a.ovt").sort(ascending=True)
"""


@pytest.mark.skipif(shutil.which("mypy") is None, reason="mypy is missing")
def test_type_hints(tmp_path):
    (tmp_path / "program.py").write_text(PROGRAM)
    settings = ["--config-file", str(ROOT / "python" / "pyproject.toml")]
    settings += ["--cache-dir", str(tmp_path / "cache")]
    run = subprocess.run(
        ["mypy", *settings, "--python-executable", "/usr/bin/python3", "-p", "ovfile", "-m", "program"],
        capture_output=True,
        text=True,
        cwd=tmp_path,
        env={**os.environ, "MYPYPATH": f"{ROOT / 'python'}:{tmp_path}"},
    )
    errors = [line for line in run.stdout.splitlines() if ": error: " in line]
    assert len(errors) == 2, run.stdout + run.stderr
    assert errors[0].startswith('program.py:13: error: Argument 1 to "open" has incompatible type "int"')
    assert errors[1].startswith('program.py:14: error: Missing positional argument "by"')
