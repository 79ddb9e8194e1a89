"""The results of a run. Each test of CTest stands for many cases: their names are in its plan, and a line for each case that
has ended is in its record. Both files lie in the folder that KELDA_TEST_RESULTS names; without it nothing is recorded."""

import dataclasses
import json
import os
from collections.abc import Iterable
from pathlib import Path

from testing.surroundings import browser_log

LONGEST_OUTPUT_LINES = 40
LONGEST_LOG_LINES = 12


@dataclasses.dataclass
class Outcome:
    """How a case ended. The output is kept only if the case failed."""

    case: str
    passed: bool
    seconds: float = 0.0
    output: str = ""


@dataclasses.dataclass
class Note:
    """Something that a reader of the results must know although nothing failed."""

    note: str


def folder() -> Path | None:
    """The folder of the results; None if this run is not recorded."""
    name = os.environ.get("KELDA_TEST_RESULTS")
    return Path(name) if name else None


def plan_file(test: str) -> Path:
    return folder() / f"{test}.plan"


def record_file(test: str) -> Path:
    return folder() / f"{test}.record"


def write_plan(test: str, cases: Iterable[str]) -> None:
    plan_file(test).write_text("".join(f"{case}\n" for case in cases), "utf-8")


def read_plan(test: str) -> list[str]:
    """The names of the cases; empty if there is no plan."""
    file = plan_file(test)
    return file.read_text("utf-8").split() if file.exists() else []


def parse(line: str) -> Outcome | Note:
    values = json.loads(line)
    return Note(**values) if "note" in values else Outcome(**values)


class Recorder:
    """Prints how each case of one test ends, and appends it to the record."""

    def __init__(self, test: str) -> None:
        self.failures = 0
        self._file = record_file(test) if folder() else None

    def add(self, outcome: Outcome) -> None:
        self.failures += not outcome.passed
        print(f"{'passed' if outcome.passed else 'FAILED'}  {outcome.case} ({outcome.seconds:.2f} s)", flush=True)
        if outcome.passed:
            self._append(dataclasses.replace(outcome, output=""))
            return
        last_lines = "\n".join(outcome.output.splitlines()[-LONGEST_OUTPUT_LINES:])
        if log := browser_log(LONGEST_LOG_LINES):
            last_lines += f"\nWhat Chromium said last in this test:\n{log}"
        print(last_lines, flush=True)
        self._append(dataclasses.replace(outcome, output=last_lines))

    def note(self, text: str) -> None:
        print(text, flush=True)
        self._append(Note(text))

    def _append(self, line: Outcome | Note) -> None:
        if self._file:
            with open(self._file, "a", encoding="utf-8") as file:
                file.write(json.dumps(dataclasses.asdict(line)) + "\n")
