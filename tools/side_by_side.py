"""Steps of a long work, several at a time: each begins when those that it comes after have ended, tells what it knows at
once, and at its end the time that it took."""

import os
import re
import subprocess
import threading
import time
from dataclasses import dataclass, field
from typing import Callable


COLOUR = re.compile(r"\x1b\[[0-9;]*m")


@dataclass
class Outcome:
    """What became of a step; `lines` tell of it."""

    passed: int = 0
    failed: int = 0
    lines: list[str] = field(default_factory=list)
    wall: float = 0
    processor: float = 0


@dataclass(frozen=True)
class Step:
    name: str
    work: Callable[["Report"], Outcome]
    after: tuple[str, ...] = ()


class Report:
    """What one step says while it is under way, line by line, so that steps do not mix within one."""

    _printing = threading.Lock()

    def __init__(self, name, processors):
        self.name = name
        self.processors = processors  # how many a step shall keep busy
        self.processor = 0.0  # seconds

    def say(self, text):
        with self._printing:
            print(text, flush=True)

    def run(self, command, log, alarming=None, environment=None):
        """Runs a command, whose output goes to a log, and returns its status. A line that `alarming` (a regular
        expression) finds is told at once."""
        told = 0
        with open(log, "ab") as file:
            child = subprocess.Popen(command, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                                     env={**os.environ, **(environment or {})})
            for line in child.stdout:
                text = COLOUR.sub("", line.decode(errors="replace")).rstrip()
                file.write(f"{text}\n".encode())
                file.flush()
                if alarming and told < 20 and alarming.search(text):
                    self.say(f"{self.name}: {text[:300]}")
                    told += 1
            _, status, usage = os.wait4(child.pid, 0)
            child.stdout.close()
            child.returncode = os.waitstatus_to_exitcode(status)
        self.processor += usage.ru_utime + usage.ru_stime
        return child.returncode


def perform(step, processors):
    report = Report(step.name, processors)
    start = time.monotonic()
    try:
        outcome = step.work(report)
    except Exception as error:  # a step that breaks has failed, and the others go on
        outcome = Outcome(failed=1, lines=[f"FAILED  {step.name}: {error!r}"])
    outcome.wall, outcome.processor = time.monotonic() - start, report.processor
    head = (f"{'FAILED' if outcome.failed else 'ok':7} {step.name}: {outcome.passed} passed, {outcome.failed} failed "
            f"({outcome.wall:.0f} s, {outcome.processor:.0f} s of processor)")
    report.say("\n".join([head, *outcome.lines]))
    return outcome


def perform_all(steps, processors):
    """In the order given as far as they do not wait for others; `after` counts where it names one of these steps.
    Returns what became of each, by name."""
    # Two share the processors: more programs than those cost each of them the other's cache. A third fills the gaps,
    # for tests wait a lot.
    few = len(steps) < 3
    at_a_time = 1 if few else 3
    share = processors if few else max(1, processors // 2)
    names = {step.name for step in steps}
    waiting, outcomes, changed = list(steps), {}, threading.Condition()

    def next_ready():
        return next((step for step in waiting if all(name in outcomes for name in step.after if name in names)), None)

    def work():
        while True:
            with changed:
                while waiting and next_ready() is None:
                    changed.wait()
                if not waiting:
                    return
                step = next_ready()
                waiting.remove(step)
            outcome = perform(step, share)
            with changed:
                outcomes[step.name] = outcome
                changed.notify_all()

    workers = [threading.Thread(target=work, daemon=True) for _ in range(at_a_time)]
    for worker in workers:
        worker.start()
    for worker in workers:
        worker.join()
    return {step.name: outcomes[step.name] for step in steps}
