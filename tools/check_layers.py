"""Fails on an include that points upwards, on one that reaches around a published border, and on a
conditional for a system outside the one folder that may know systems."""

import pathlib
import re
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent

# What the files of a folder under src/ may include, besides the published headers and the standard's.
ALLOWED = {
    "base": {"base"},
    "platform": {"base", "platform"},
    "storage": {"base", "platform", "storage"},
    "engine": {"base", "platform", "storage", "engine"},
    "schema": {"base", "platform", "storage", "engine", "schema"},
    "stream": {"base", "platform", "storage", "engine", "stream"},
    "table": {"base", "platform", "storage", "engine", "schema", "stream", "table"},
    "server": {"base", "platform", "storage", "engine", "schema", "table", "stream", "server"},
    "command": {"base"},  # a host: it sees what every host sees
    "filter": set(),
}
# The classes report their failures through this header of the layer above them.
REPORTS = "server/report_error.h"
REPORTING = {"schema", "table"}
# Of the engine the schema knows the limit of field names alone.
NAME_LIMIT = re.compile(r"engine/long_field_names\.h")

INCLUDE = re.compile(r'^\s*#\s*include\s*[<"]([^">]+)[">]')
SYSTEM = re.compile(
    r"^\s*#\s*(?:el)?if.*\b(_WIN32|_WIN64|WIN32|__MINGW\w*|_MSC_VER|__linux__|__linux|__unix__|__APPLE__)\b"
)
KNOWS_SYSTEMS = ("src/base/", "src/platform/", "include/ovfile/component.h", "include/ovfile/exception.h")


def is_allowed(module, path):
    folder, _, rest = path.partition("/")
    if folder == "ovfile" or not rest or folder not in ALLOWED:
        return True  # published, beside the file itself, or another library's
    if path == REPORTS and module in REPORTING:
        return True
    if module == "schema" and folder == "engine":
        return NAME_LIMIT.fullmatch(path) is not None
    return folder == module or folder in ALLOWED[module]


def module_of(name):
    parts = name.split("/")
    if parts[0] == "src" and len(parts) > 2:
        return parts[1]
    return "command" if parts[0] in ("include", "bench") else None


def complaints(name):
    module = module_of(name)
    for number, line in enumerate((ROOT / name).read_text(encoding="utf-8").splitlines(), 1):
        include = INCLUDE.match(line)
        if module and include:
            path = include.group(1)
            if path.startswith("../") or not is_allowed(module, path):
                yield f"{name}:{number}: {module} must not include {path}"
        if SYSTEM.match(line) and not name.startswith(KNOWS_SYSTEMS):
            yield f"{name}:{number}: a conditional for a system belongs in src/base"


def main():
    found = []
    for folder in ("include", "src", "tests", "bench", "fuzz"):
        for path in sorted((ROOT / folder).rglob("*")):
            if path.suffix in (".h", ".cpp"):
                found.extend(complaints(path.relative_to(ROOT).as_posix()))
    unknown = {path.name for path in (ROOT / "src").iterdir() if path.is_dir()} - ALLOWED.keys()
    found.extend(f"src/{name}: no rule says what this folder may include" for name in sorted(unknown))
    print("\n".join(found))
    sys.exit(1 if found else 0)


main()
