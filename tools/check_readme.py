"""Holds the README and docs/hosts.md against the project: their programs stand in docs/examples word for
word, their links lead to files, and every ./ovfile line of the README succeeds (after `./ovfile` was
built), in a folder of its own."""

import pathlib
import re
import subprocess
import sys
import tempfile

ROOT = pathlib.Path(__file__).resolve().parent.parent
PAGES = [ROOT / "README.md", ROOT / "docs" / "hosts.md"]
LANGUAGES = ("cpp", "vba", "vbscript", "js", "python")
# Commands that write a file have nothing to show.
WRITING = re.compile(r"\./ovfile (import|export|new|rename|sort) ")
EXAMPLES = [path.read_text(encoding="utf-8") for path in (ROOT / "docs" / "examples").iterdir()]


def blocks(page, language):
    text = page.read_text(encoding="utf-8")
    return re.findall(rf"^```{language}\n(.*?)^```$", text, re.DOTALL | re.MULTILINE)


def run_commands():
    with tempfile.TemporaryDirectory() as folder:
        for name in ("ovfile", "samples"):
            (pathlib.Path(folder) / name).symlink_to(ROOT / name)
        for line in "".join(blocks(PAGES[0], "sh")).splitlines():
            if not line.startswith("./ovfile"):
                continue
            run = subprocess.run(line, shell=True, cwd=folder, capture_output=True, text=True)
            if run.returncode != 0:
                yield f"{line}: exit status {run.returncode}: {run.stderr.strip()}"
            elif not run.stdout and not WRITING.match(line):
                yield f"{line}: shows nothing"


def complaints():
    for page in PAGES:
        for block in (each for language in LANGUAGES for each in blocks(page, language)):
            if not any(block in example for example in EXAMPLES):
                yield f"{page.name}: no file of docs/examples has these lines:\n{block}"
        for target in re.findall(r"\]\(([^)#:]+)[^)]*\)", page.read_text(encoding="utf-8")):
            if not (page.parent / target).exists():
                yield f"{page.name}: no such file: {target}"
    yield from run_commands()


found = list(complaints())
print("\n".join(found))
sys.exit(1 if found else 0)
