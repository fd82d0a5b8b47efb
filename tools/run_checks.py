"""run_checks.py [--quick | --fast | --bench | --only STEP | --from STEP | --list]: builds and tests everything, or what is asked
for, and ends with one line `N passed, N failed`. ./check calls it once the packages are there. Logs are kept in
build/check/."""

import argparse
import functools
import glob
import os
import pathlib
import re
import shutil
import subprocess
import sys
import threading
import time

from side_by_side import Outcome, Step, perform_all
from test_results import read_ctest, read_pytest, summarize

ROOT = pathlib.Path(__file__).resolve().parent.parent
BUILD = ROOT / "build"
LOGS = BUILD / "check"
PROCESSORS = len(os.sched_getaffinity(0))
COMPLAINT = re.compile(r"^[^ ]+:\d+(:\d+)?: (fatal )?error:|undefined reference|multiple definition")
FAILED_START = re.compile(r"\*\*\*(Failed|Timeout|Exception|Not Run)|^\[  FAILED  \] .* \(\d+ ms\)")
# The path-sensitive checks read what is included from a source only where the name says that it is a unity build.
LINT_FOLDER = "build/lint/UnifiedSource"
WINE_FOLDERS = "build/wine/drive_c/users/*/{}"


def log_of(name):
    path = LOGS / f"{name}.log"
    path.unlink(missing_ok=True)
    return path


def excerpt(log):
    """A compiler's complaints, wherever in the log they stand, else its end."""
    lines = log.read_text(errors="replace").splitlines()
    complaints = [index for index, line in enumerate(lines) if COMPLAINT.search(line)][:20]
    shown = [line for index in complaints for line in lines[index:index + 6]] or lines[-60:]
    return [f"        a part of {log.relative_to(ROOT)}:", *(" " * 8 + line[:300] for line in shown)]


def command(*words, environment=None):
    """A step that is one check: a command that succeeds."""

    def work(report):
        log = log_of(report.name)
        if report.run(words, log, environment=environment) == 0:
            return Outcome(passed=1)
        return Outcome(failed=1, lines=excerpt(log))

    return work


def build(preset, *targets):
    def work(report):
        log = log_of(report.name)
        asked = ["--target", *targets] if targets else []
        if (report.run(["cmake", "--preset", preset], log) == 0 and
                report.run(["cmake", "--build", "--preset", preset, "-j", str(report.processors), *asked, "--",
                            "-k", "0"], log, COMPLAINT) == 0):
            return Outcome(passed=1)
        return Outcome(failed=1, lines=excerpt(log))

    return work


def temporary_folders(preset):
    """Where its tests put temporary files. Wine's folders are there once a program has run."""
    wine = [pathlib.Path(path) for name in ("Temp", "AppData/Local/Temp")
            for path in glob.glob(str(ROOT / WINE_FOLDERS.format(name)))]
    return [LOGS / f"{preset}-temporary", *(wine if preset == "windows-x64" else [])]


def empty(folders):
    for folder in folders:
        for path in folder.iterdir() if folder.is_dir() else ():
            shutil.rmtree(path) if path.is_dir() and not path.is_symlink() else path.unlink()


def files_left(folders):
    return [str(path) for folder in folders if folder.is_dir() for path in folder.rglob("*")]


def tests(preset, chosen=None, *, with_duckdb=True, soak=3):
    """A step in which every test of a built preset counts by itself, and one check more: that nothing is left in the
    folders for temporary files. `chosen` is a regular expression of ctest's names; `soak` is for how many seconds
    programs work on one table at once."""

    def work(report):
        if not (BUILD / preset / "CTestTestfile.cmake").exists():
            return Outcome(failed=1, lines=["        there is no build of it"])
        temporary, results = LOGS / f"{preset}-temporary", BUILD / preset / "results"
        temporary.mkdir(exist_ok=True)
        results.mkdir(exist_ok=True)
        empty([*temporary_folders(preset), results])
        # Some tests wait for the disk or the clock.
        words = ["ctest", "--preset", preset, "-j", str(report.processors + 1),
                 "--output-junit", str(results / "all.xml")]
        environment = {"TMPDIR": str(temporary), **(duckdb(preset) if with_duckdb else {}),
                       "OVFILE_SOAK_SECONDS": os.environ.get("OVFILE_SOAK_SECONDS", str(soak))}
        status = report.run(words + (["-R", chosen] if chosen else []), log_of(report.name), FAILED_START, environment)
        passed, failed, lines = summarize(read_ctest(results), status)
        left = files_left(temporary_folders(preset))
        if left:
            lines += ["FAILED  files are left behind:", *(" " * 8 + path for path in left[:20])]
        return Outcome(passed + (not left), failed + bool(left), lines)

    return work


def python_tests(report):
    """By Debian's interpreter, whatever stands first in the path: the packages are its own."""
    results = LOGS / "python.xml"
    results.unlink(missing_ok=True)
    status = report.run(["/usr/bin/python3", "-m", "pytest", "-v", "-rsfE", "-p", "no:cacheprovider", "--basetemp",
                         str(LOGS / "python-temporary"), f"--junit-xml={results}", "tests/python"],
                        log_of(report.name), re.compile(r" (FAILED|ERROR) +\["),
                        {"OVFILE_LIBRARY": str(BUILD / "release" / "bin"), "PYTHONDONTWRITEBYTECODE": "1",
                         **duckdb("release")})
    return Outcome(*summarize(read_pytest(results), status))


fetching = threading.Lock()


@functools.cache
def fetched(*words):
    """Whether a library that SQL and Parquet need could be put where it stays."""
    LOGS.mkdir(parents=True, exist_ok=True)
    log = log_of(pathlib.Path(words[0]).stem)
    with open(log, "wb") as file:
        try:
            status = subprocess.run(words, stdin=subprocess.DEVNULL, stdout=file, stderr=file, timeout=300).returncode
        except subprocess.TimeoutExpired:
            status = 1
    said = (log.read_text(errors="replace").splitlines() or ["no word of why"])[-1]
    print(f"ok      {said}" if status == 0 else f"skipped tests of SQL and Parquet: {said}", flush=True)
    return status == 0


def duckdb(preset):
    """The environment that tells tests where DuckDB's library is. Without it those of SQL and Parquet are skipped, each
    by its name."""
    with fetching:
        if preset == "windows-x64":
            name, folder = "OVFILE_DUCKDB_WINDOWS", str(BUILD / "duckdb-windows")
            words = ("tools/fetch_duckdb_windows.sh", folder)
        else:
            name, folder = "OVFILE_DUCKDB", str(BUILD / "duckdb")
            words = ("tools/fetch_duckdb.sh", str(BUILD / "release" / "bin" / "ovfile"), folder)
        return {name: folder} if name not in os.environ and fetched(*words) else {}


def lint(report):
    log = log_of(report.name)
    if (report.run(["cmake", "--preset", "lint"], log) == 0 and
            report.run(["run-clang-tidy", "-clang-tidy-binary", "clang-tidy-14", "-p", LINT_FOLDER, "-quiet", "-j",
                        str(report.processors), "-header-filter", f"^{ROOT}/(src|include)/",
                        f"^{ROOT}/(src|{LINT_FOLDER})/"], log, COMPLAINT) == 0):
        return Outcome(passed=1)
    return Outcome(failed=1, lines=excerpt(log))


def all_steps():
    return [
        Step("formatting", command("tools/check_format.sh")),
        Step("layers", command("python3", "tools/check_layers.py")),
        Step("includes", command("python3", "tools/check_includes.py")),
        Step("usings", command("python3", "tools/check_usings.py")),
        Step("words", command("tools/check_words.sh")),
        Step("release-build", build("release")),
        Step("asan-build", build("asan")),
        Step("windows-x64-build", build("windows-x64")),
        Step("release-tests", tests("release", soak=30), after=("release-build",)),
        Step("lint", lint),
        Step("asan-tests", tests("asan"), after=("asan-build", "release-build")),
        Step("windows-x64-tests", tests("windows-x64"), after=("windows-x64-build",)),
        Step("python", python_tests, after=("release-build",)),
        # It builds what ./ovfile finds stale: not while tests use it.
        Step("readme", command("python3", "tools/check_readme.py"), after=("release-build", "release-tests")),
        # Its programs are not run: what is inspected is enough.
        Step("windows-x86-build", build("windows-x86", "ovfile", "ovfilter")),
        Step("windows-x86-tests", tests("windows-x86"), after=("windows-x86-build",)),
    ]


def benchmarks(report):
    log = log_of(report.name)
    status = report.run(["bench/run.sh"], log)
    return Outcome(int(status == 0), int(status != 0), log.read_text(errors="replace").splitlines())


def bench_steps():
    return [Step("release-build", build("release")), Step("benchmarks", benchmarks, after=("release-build",))]


def fast_steps():
    """For the middle of work. What a change reaches is what the build makes anew."""
    kept = [step for step in all_steps() if step.name in ("formatting", "layers", "includes", "usings", "release-build")]
    return [*kept, Step("release-tests", reached_tests, after=("release-build",))]


def reached_tests(report):
    """Those of the native test programs that were built, or load a library that was built, since their tests passed."""
    folder = BUILD / "release" / "bin"
    loaded = [folder / name for name in ("libovfile.so", "libovfilter.so", "ovfile")]
    read = [path for name in ("tests/data", "samples", "build/release/bin/fake") for path in (ROOT / name).rglob("*")]
    passed = LOGS / "passed"
    passed.mkdir(exist_ok=True)
    reached = []
    for program in sorted([*folder.glob("test_*"), *folder.glob("*/test_*")]):
        mark = passed / program.name
        changed = max(path.stat().st_mtime for path in [program, *loaded, *read] if path.exists())
        if not mark.exists() or mark.stat().st_mtime < changed:
            reached.append(program.name.removeprefix("test_"))
    if not reached:
        return Outcome(lines=["        nothing was built since the tests passed"])
    started = time.time()
    outcome = tests("release", rf"^({'|'.join(reached)})\.(\d+|alone)$")(report)
    outcome.lines.insert(0, f"        of {', '.join(reached)}")
    if not outcome.failed:
        for name in reached:
            (passed / f"test_{name}").touch()
            os.utime(passed / f"test_{name}", (started, started))
    return outcome


def quick_steps():
    """Starting DuckDB a thousand times takes half of the native tests' time: they are skipped, each by its name, unless
    the caller's environment names its library."""
    return [Step("release-build", build("release")),
            Step("release-tests", tests("release", with_duckdb=False), after=("release-build",))]


def chosen_steps(arguments):
    if arguments.quick:
        return quick_steps()
    if arguments.fast:
        return fast_steps()
    if arguments.bench:
        return bench_steps()
    steps = all_steps()
    names = [step.name for step in steps]
    asked = arguments.only or arguments.first
    if asked and asked not in names:
        sys.exit(f"check: no step {asked}; there are {', '.join(names)}")
    if arguments.only:
        return [step for step in steps if step.name == asked]
    return steps[names.index(asked):] if asked else steps


def stop_wine():
    environment = {name: value for name, value in os.environ.items() if name != "TMPDIR"}
    if shutil.which("wineserver"):
        subprocess.run(["wineserver", "-k"], env={**environment, "WINEPREFIX": str(BUILD / "wine")},
                       stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, check=False)


def main():
    parser = argparse.ArgumentParser(prog="check", description="Builds and tests everything.")
    choice = parser.add_mutually_exclusive_group()
    choice.add_argument("--quick", action="store_true", help="the native tests but those of SQL and Parquet")
    choice.add_argument("--fast", action="store_true", help="formatting, layers, native tests of what changed")
    choice.add_argument("--bench", action="store_true", help="the benchmarks")
    choice.add_argument("--only", metavar="STEP", help="this step alone")
    choice.add_argument("--from", metavar="STEP", dest="first", help="this step and those below it")
    choice.add_argument("--list", action="store_true", help="the names of the steps")
    arguments = parser.parse_args()
    if arguments.list:
        print("\n".join(step.name for step in all_steps()))
        return 0
    os.chdir(ROOT)
    LOGS.mkdir(parents=True, exist_ok=True)
    start = time.monotonic()
    steps = chosen_steps(arguments)
    try:
        outcomes = perform_all(steps, PROCESSORS)
    finally:
        if any(step.name == "windows-x64-tests" for step in steps):
            stop_wine()
    print(f"\n{'step':20}{'wall':>8}{'processor':>11}")
    for name, outcome in outcomes.items():
        print(f"{name:20}{outcome.wall:6.0f} s{outcome.processor:9.0f} s")
    total = sum(outcome.processor for outcome in outcomes.values())
    print(f"{'in all':20}{time.monotonic() - start:6.0f} s{total:9.0f} s")
    for name, outcome in outcomes.items():
        if outcome.failed:
            print(f"FAILED  {name}, see build/check/{name}.log")
    failed = sum(outcome.failed for outcome in outcomes.values())
    print(f"{sum(outcome.passed for outcome in outcomes.values())} passed, {failed} failed")
    return int(failed > 0)


if __name__ == "__main__":
    sys.exit(main())
