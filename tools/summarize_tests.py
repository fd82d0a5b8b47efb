"""summarize_tests.py RESULTS STATUS [REPEATED]: reads what ctest wrote (JUnit) and prints a line with the
numbers passed and failed, then what failed, with the end of what it said, and what was skipped, by reason.
STATUS is ctest's own: a failing run without a failing test (a program that does not start) counts as one
failure. REPEATED is the same of a second run of what failed; what passed then is told and counts as passed."""

import re
import sys
import textwrap
import xml.etree.ElementTree as xml


def skip_reason(case):
    """The text after GoogleTest's `file:line: Skipped`, or None when the test did not run at all."""
    output = case.findtext("system-out") or ""
    found = re.search(r": Skipped\r?\n(.*?)\r?\n\s*(?:\r?\n|\[)", output, re.DOTALL)
    if found:
        return " ".join(found.group(1).split()) or "no reason given"
    return "no reason given" if "[  SKIPPED ]" in output else None


def print_names(names):
    """Cases of one parametrised test share a line: `module.suite.test/ a, b, c`."""
    groups = {}
    for name in names:
        test, slash, case = name.rpartition("/")
        groups.setdefault(test + slash, []).append(case)
    for test, cases in groups.items():
        line = f"{test} " * bool(test) + ", ".join(cases)
        print(textwrap.fill(line, 110, initial_indent=" " * 8, subsequent_indent=" " * 12, break_long_words=False))


def cases_of(path):
    try:
        return list(xml.parse(path).getroot().iter("testcase"))
    except (OSError, xml.ParseError):
        return []


def print_output(case):
    lines = (case.findtext("system-out") or "").strip().splitlines()
    for line in lines[-30:]:
        print(" " * 8 + line[:200])


def main():
    failed, skipped, passed = [], {}, 0
    cases = cases_of(sys.argv[1])
    repeated = {case.get("name"): case for case in (cases_of(sys.argv[3]) if len(sys.argv) > 3 else [])}
    told_late = []
    for case in cases:
        name, status = case.get("name"), case.get("status")
        reason = skip_reason(case) if status == "notrun" else None
        if status == "run":
            passed += 1
        elif reason is not None:
            skipped.setdefault(reason, []).append(name)
        elif name in repeated and repeated[name].get("status") == "run":
            passed += 1
            told_late.append(case)
        else:
            failed.append(case)

    broken = [] if cases else ["no test was found"]
    if cases and sys.argv[2] != "0" and not failed:
        broken.append("ctest failed, see its log")
    print(passed, len(failed) + len(broken))
    for name in broken:
        print("FAILED ", name)
    for number, case in enumerate(failed):
        print("FAILED ", case.get("name"))
        if number < 10:
            print_output(case)
    for case in told_late:
        print("passed only when it was repeated:", case.get("name"))
        print_output(case)
    for reason, names in skipped.items():
        print(f"skipped {len(names)}: {reason}")
        print_names(names)


main()
