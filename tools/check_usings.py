"""Fails on a source of the product that brings a name into its scope, or gives a namespace a shorter one, and does not
use it. clang-tidy looks for that in sources that are compiled alone, and reads unity builds."""

import pathlib
import re
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
BROUGHT = re.compile(r"^\s*(?:using (?:typename )?(?:\w+::)+(\w+);|namespace (\w+) = [\w:]+;)", re.MULTILINE)
COMMENT = re.compile(r"//.*")


def complaints(path):
    text = COMMENT.sub("", path.read_text(encoding="utf-8"))
    for brought in BROUGHT.finditer(text):
        name = brought.group(1) or brought.group(2)
        rest = text[:brought.start()] + text[brought.end():]
        if not re.search(rf"(?<!\w){name}\b", rest):
            line = text.count("\n", 0, brought.start(brought.lastindex)) + 1
            yield f"{path.relative_to(ROOT)}:{line}: {name} is not used"


def main():
    # What a header or a class brings in is for others.
    found = [each for path in sorted((ROOT / "src").rglob("*.cpp")) for each in complaints(path)]
    print("\n".join(found))
    sys.exit(1 if found else 0)


main()
