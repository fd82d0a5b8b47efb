"""The programs of docs/data-tools.md run, one after the other, in a folder of their own."""

import re

from conftest import ROOT

PAGE = ROOT / "docs" / "data-tools.md"


def test_the_programs_run(tmp_path, monkeypatch, capsys):
    (tmp_path / "samples").symlink_to(ROOT / "samples")
    monkeypatch.chdir(tmp_path)
    text = PAGE.read_text(encoding="utf-8")
    section = text[text.index("## Python: numpy and pandas") :]
    section = section.split("\n## ", 1)[0]
    programs = re.findall(r"^```python\n(.*?)^```$", section, re.DOTALL | re.MULTILINE)
    assert len(programs) >= 8
    names = {}
    for program in programs:
        exec(compile(program, str(PAGE), "exec"), names)
    shown = capsys.readouterr().out
    assert "assays 164 ['BHID', 'FROM', 'TO', 'SAMPLE', 'CU', 'AU', 'DENSITY', 'LITH']" in shown
    assert "LOGGED column LOGGED: dates have no place in a table" in shown
    assert "block model 24" in shown
    made = {path.name for path in tmp_path.iterdir()} - {"samples"}
    assert made == {"composites.ovt", "model.ovt", "copy.ovt"}


def test_the_example_runs(tmp_path, monkeypatch):
    (tmp_path / "samples").symlink_to(ROOT / "samples")
    monkeypatch.chdir(tmp_path)
    example = ROOT / "docs" / "examples" / "rich_samples.py"
    names = {}
    exec(compile(example.read_text(encoding="utf-8"), str(example), "exec"), names)
    with names["ovfile"].open("rich.ovt") as table:
        assert table.columns == ["BHID", "CU"]
        assert len(table) == len(names["frame"]) > 0
        assert (table["CU"] > 0.5).all()
