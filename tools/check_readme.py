"""Holds the README against the project: its C++ stands in docs/examples word for word, its links lead to
files, and every ./ovfile line of it succeeds (after `./ovfile` was built), in a folder of its own."""

import pathlib
import re
import subprocess
import sys
import tempfile

ROOT = pathlib.Path(__file__).resolve().parent.parent
TEXT = (ROOT / "README.md").read_text(encoding="utf-8")
# Commands that write a file have nothing to show.
WRITING = re.compile(r"\./ovfile (import|export|new|rename) ")
EXAMPLES = [path.read_text(encoding="utf-8") for path in (ROOT / "docs" / "examples").glob("*.cpp")]


def blocks(language):
    return re.findall(rf"^```{language}\n(.*?)^```$", TEXT, re.DOTALL | re.MULTILINE)


def run_commands():
    with tempfile.TemporaryDirectory() as folder:
        for name in ("ovfile", "samples"):
            (pathlib.Path(folder) / name).symlink_to(ROOT / name)
        for line in "".join(blocks("sh")).splitlines():
            if not line.startswith("./ovfile"):
                continue
            run = subprocess.run(line, shell=True, cwd=folder, capture_output=True, text=True)
            if run.returncode != 0:
                yield f"{line}: exit status {run.returncode}: {run.stderr.strip()}"
            elif not run.stdout and not WRITING.match(line):
                yield f"{line}: shows nothing"


def complaints():
    for block in blocks("cpp"):
        if not any(block in example for example in EXAMPLES):
            yield f"no file of docs/examples has these lines:\n{block}"
    for target in re.findall(r"\]\(([^)#:]+)\)", TEXT):
        if not (ROOT / target).exists():
            yield f"no such file: {target}"
    yield from run_commands()


found = list(complaints())
print("\n".join(found))
sys.exit(1 if found else 0)
