"""summarize_tests.py RESULTS STATUS: reads the folder with what ctest (all.xml) and the test programs
(NAME.xml) wrote and prints a line with the numbers of tests passed and failed, then what failed, with the end of
what it said, and what was skipped, by reason. STATUS is ctest's own: a failing run without a failing test (a
program that does not start) counts as one failure."""

import pathlib
import re
import sys
import textwrap
import xml.etree.ElementTree as xml
from dataclasses import dataclass


@dataclass(frozen=True)
class Case:
    """One test; `state` is passed, failed or skipped, `said` the reason or the complaint."""

    name: str
    state: str
    said: str = ""


def read_cases(path):
    """None where the file is not there, or is none of tests."""
    try:
        return list(xml.parse(path).getroot().iter("testcase"))
    except (OSError, xml.ParseError):
        return None


def case_of_program(prefix, case):
    name = f"{prefix}.{case.get('classname')}.{case.get('name')}"
    if not case.get("name"):
        name = f"{prefix}: what stands around the tests"
    failures = [failure.text or failure.get("message") or "" for failure in case.findall("failure")]
    if failures:
        return Case(name, "failed", "\n".join(failures))
    skipped = case.find("skipped")
    if skipped is None:
        return Case(name, "passed")
    # The place in the source comes first.
    lines = (skipped.get("message") or "").splitlines()
    reason = " ".join(" ".join(lines[1:] if re.search(r":\d+$", lines[0]) else lines).split()) if lines else ""
    return Case(name, "skipped", reason or "no reason given")


def is_program(name):
    """Whether the start is a part of a test program's tests, as `engine.3` is, and not a test itself."""
    return re.fullmatch(r"[^.]+\.(\d+|alone)", name) is not None


def cases_of_start(folder, start):
    """The tests of one start of a program; the start itself where it is a test, or where it failed though its
    tests did not, or before they could say so."""
    name, passed = start.get("name"), start.get("status") == "run"
    if not is_program(name):
        return [Case(name, "passed" if passed else "failed", start.findtext("system-out") or "")]
    found = read_cases(folder / f"{name}.xml")
    if found is None:
        return [Case(name, "failed", start.findtext("system-out") or "it left no results")]
    cases = [case_of_program(name.split(".")[0], case) for case in found
             if case.get("status") == "run" or case.find("skipped") is not None]
    if not passed and not any(case.state == "failed" for case in cases):
        cases.append(Case(name, "failed", start.findtext("system-out") or ""))
    return cases


def print_names(names):
    """Cases of one parametrised test share a line: `module.suite.test/ a, b, c`."""
    groups = {}
    for name in names:
        test, slash, case = name.rpartition("/")
        groups.setdefault(test + slash, []).append(case)
    for test, cases in groups.items():
        line = f"{test} " * bool(test) + ", ".join(cases)
        print(textwrap.fill(line, 110, initial_indent=" " * 8, subsequent_indent=" " * 12, break_long_words=False))


def print_end(text):
    for line in text.strip().splitlines()[-30:]:
        print(" " * 8 + line[:200])


def main():
    folder = pathlib.Path(sys.argv[1])
    starts = read_cases(folder / "all.xml") or []
    cases = [case for start in starts for case in cases_of_start(folder, start)]
    failed = [case for case in cases if case.state == "failed"]
    if not cases:
        failed.append(Case("no test was found", "failed"))
    elif sys.argv[2] != "0" and not failed:
        failed.append(Case("ctest, see its log", "failed"))

    print(sum(case.state == "passed" for case in cases), len(failed))
    for number, case in enumerate(failed):
        print("FAILED ", case.name)
        print_end(case.said if number < 10 else "")
    reasons = {}
    for case in cases:
        if case.state == "skipped":
            reasons.setdefault(case.said, []).append(case.name)
    for reason, names in reasons.items():
        print(f"skipped {len(names)}: {reason}")
        print_names(names)


main()
