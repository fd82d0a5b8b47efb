"""summarize_tests.py RESULTS STATUS: reads what ctest wrote (JUnit) and prints a line with the numbers
passed and failed, then what failed and what was skipped, the latter by reason. STATUS is ctest's own:
a failing run without a failing test (a program that does not start) counts as one failure."""

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


def main():
    failed, skipped, passed = [], {}, 0
    try:
        cases = list(xml.parse(sys.argv[1]).getroot().iter("testcase"))
    except (OSError, xml.ParseError):
        cases = []
    for case in cases:
        name, status = case.get("name"), case.get("status")
        reason = skip_reason(case) if status == "notrun" else None
        if status == "run":
            passed += 1
        elif reason is not None:
            skipped.setdefault(reason, []).append(name)
        else:
            failed.append(name)
    if not cases:
        failed.append("no test was found")
    elif sys.argv[2] != "0" and not failed:
        failed.append("ctest failed, see its log")

    print(passed, len(failed))
    for name in failed:
        print("FAILED ", name)
    for reason, names in skipped.items():
        print(f"skipped {len(names)}: {reason}")
        print_names(names)


main()
