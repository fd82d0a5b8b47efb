"""What a run of tests says: reads the folder with what ctest (all.xml) and the test programs (NAME.xml) wrote, or
the file that pytest wrote, and tells how many passed and failed, what failed with the end of what it said, and what
was skipped, by reason."""

import pathlib
import re
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
    complaints = [*case.findall("failure"), *case.findall("error")]
    failures = [complaint.text or complaint.get("message") or "" for complaint in complaints]
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


def read_ctest(folder):
    starts = read_cases(folder / "all.xml") or []
    return [case for start in starts for case in cases_of_start(folder, start)]


def read_pytest(path):
    return [case_of_program("python", case) for case in read_cases(path) or []]


def names_by_test(names):
    """Cases of one parametrised test share a line: `module.suite.test/ a, b, c`."""
    groups = {}
    for name in names:
        test, slash, case = name.rpartition("/")
        groups.setdefault(test + slash, []).append(case)
    for test, cases in groups.items():
        line = f"{test} " * bool(test) + ", ".join(cases)
        yield textwrap.fill(line, 110, initial_indent=" " * 8, subsequent_indent=" " * 12, break_long_words=False)


def end_of(text):
    return [" " * 8 + line[:200] for line in text.strip().splitlines()[-30:]]


def summarize(cases, status):
    """Passed, failed, and lines that tell of it. `status` is the run's own: one that fails without a failing test (a
    program that does not start) counts as one failure."""
    failed = [case for case in cases if case.state == "failed"]
    if not cases:
        failed.append(Case("no test was found", "failed"))
    elif status != 0 and not failed:
        failed.append(Case("the run failed, see its log", "failed"))
    lines = []
    for number, case in enumerate(failed):
        lines += [f"FAILED  {case.name}", *end_of(case.said if number < 10 else "")]
    reasons = {}
    for case in cases:
        if case.state == "skipped":
            reasons.setdefault(case.said, []).append(case.name)
    for reason, names in reasons.items():
        lines += [f"skipped {len(names)}: {reason}", *names_by_test(names)]
    return sum(case.state == "passed" for case in cases), len(failed), lines
