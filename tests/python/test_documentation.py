"""The programs of docs/data-tools.md run, chapter by chapter, in a folder of their own."""

import os
import pathlib
import re
import shlex
import subprocess

import pytest
from conftest import ROOT

PAGE = ROOT / "docs" / "data-tools.md"


def chapter(title):
    """The programs of a chapter in their order."""
    text = PAGE.read_text(encoding="utf-8")
    section = text[text.index(f"\n## {title}\n") :].split("\n## ", 2)[1]
    return re.findall(r"^```python\n(.*?)^```$", section, re.DOTALL | re.MULTILINE)


def commands(title):
    """The lines of a chapter that call the command."""
    text = PAGE.read_text(encoding="utf-8")
    section = text[text.index(f"\n## {title}\n") :].split("\n## ", 2)[1]
    blocks = re.findall(r"^```sh\n(.*?)^```$", section, re.DOTALL | re.MULTILINE)
    return [line for line in "".join(blocks).splitlines() if line.startswith("ovfile")]


def run_commands(title):
    """Runs them in the current folder and returns what each says."""
    program = pathlib.Path(os.environ["OVFILE_LIBRARY"])
    program = (program if program.is_dir() else program.parent) / "ovfile"
    if not program.exists():
        pytest.skip("the command is not beside the library")
    if not os.environ.get("OVFILE_DUCKDB"):
        pytest.skip("OVFILE_DUCKDB does not name DuckDB's library")
    outputs = []
    for line in commands(title):
        if line.startswith("ovfile setup"):
            continue  # it fetches from the network
        words = [str(program), *shlex.split(line)[1:]]
        done = subprocess.run(words, capture_output=True, text=True)
        assert done.returncode == 0, f"{line}: {done.stderr}"
        outputs.append(done.stdout)
    return outputs


def run(programs, needs=()):
    for name in needs:
        pytest.importorskip(name, reason=f"{name} is not installed")
    names = {"__name__": "__main__"}
    for program in programs:
        exec(compile(program, str(PAGE), "exec"), names)
    return names


@pytest.fixture
def folder(tmp_path, monkeypatch):
    (tmp_path / "samples").symlink_to(ROOT / "samples")
    monkeypatch.chdir(tmp_path)
    return tmp_path


def made(folder):
    return {path.name for path in folder.iterdir()} - {"samples"}


def test_the_programs_run(folder, capsys):
    programs = chapter("Python: numpy and pandas")
    assert len(programs) >= 8
    run(programs, needs=["pandas"])
    shown = capsys.readouterr().out
    assert "assays 164 ['BHID', 'FROM', 'TO', 'SAMPLE', 'CU', 'AU', 'DENSITY', 'LITH']" in shown
    assert "LOGGED column LOGGED: dates have no place in a table" in shown
    assert "block model 24" in shown
    assert made(folder) == {"composites.ovt", "model.ovt", "copy.ovt"}


def test_the_first_program_stands_alone(folder, capsys):
    """What a new user tries first."""
    run(chapter("Python: numpy and pandas")[:1], needs=["pandas"])
    assert "LK001" in capsys.readouterr().out


def test_polars(folder):
    programs = chapter("Polars")
    assert len(programs) == 1
    run(programs, needs=["polars"])
    assert made(folder) == {"rich.ovt"}


def test_sql(folder):
    join, named, csv, composites, as_json, absent = run_commands("SQL")
    assert join.splitlines()[0].split() == ["BHID", "avg(CU)"] and "LK001" in join
    assert named.splitlines()[0].split() == ["BHID", "CU", "EOH"]
    assert csv.splitlines()[0] == "BHID,FROM,TO,SAMPLE,CU,AU,DENSITY,LITH" and len(csv.splitlines()) == 11
    assert composites == as_json == ""
    assert absent.splitlines()[1].split()[1] == "-1e+30"
    assert made(folder) == {"composites.ovt", "composites.json"}


def test_duckdb_for_python(folder):
    run(chapter("SQL"), needs=["duckdb"])


def test_parquet(folder):
    outputs = run_commands("Parquet")
    assert len(outputs) == 6 and outputs[2] == ""
    assert "ZONE" in outputs[4] and len(outputs[4].splitlines()) > 2
    assert made(folder) == {"assays.parquet", "again.ovt", "lake", "blocks.ovt"}


def test_a_folder_for_spark_and_trino(folder):
    run_commands("Spark and Trino")
    assert (folder / "assays" / "LITH=SKARN").is_dir()


def test_dask(folder, capsys):
    programs = chapter("Dask")
    assert len(programs) == 2
    run(programs[:1], needs=["dask"])
    shown = capsys.readouterr().out
    assert "4 partitions" in shown and "SKARN" in shown


def test_dask_with_workers(folder, capsys):
    dask = pytest.importorskip("dask", reason="dask is not installed")

    with dask.config.set({"temporary-directory": str(folder / "workers")}):
        run(chapter("Dask")[1:], needs=["dask", "distributed"])
    shown = capsys.readouterr().out
    assert re.search(r"^count +[1-9]", shown, re.MULTILINE) and "METAL" in shown


def test_parquet_for_spark_and_trino(folder):
    programs = chapter("Spark and Trino")
    assert len(programs) == 2
    run(programs[:1], needs=["dask", "pyarrow"])
    assert (folder / "assays" / "LITH=SKARN").is_dir()
    run(programs[1:], needs=["pyspark"])


def test_excel(folder):
    programs = chapter("Excel")
    assert len(programs) == 1
    names = run(programs, needs=["pandas", "openpyxl"])
    with names["ovfile"].open("edited.ovt") as table:
        assert table.columns == ["BHID", "FROM", "TO", "SAMPLE", "CU", "AU", "DENSITY", "LITH"]
        assert [column.kind for column in table.schema if column.name in ("BHID", "CU", "LITH")] == [
            "text",
            "number",
            "text",
        ]
        rich = names["rich"]
        assert len(table) == len(rich) > 0
        assert table["CU"].tolist() == rich["CU"].tolist()
        assert table["LITH"].tolist() == rich["LITH"].tolist()


def test_the_example_runs(folder):
    example = ROOT / "docs" / "examples" / "rich_samples.py"
    names = run([example.read_text(encoding="utf-8")], needs=["pandas"])
    with names["ovfile"].open("rich.ovt") as table:
        assert table.columns == ["BHID", "CU"]
        assert len(table) == len(names["frame"]) > 0
        assert (table["CU"] > 0.5).all()
