"""Runs the cases of a GoogleTest program under Wine, all in one process.

    run_gtest.py TEST PROGRAM [--plan]

A case has passed only if the program says so: a program that crashes under Wine may exit with 0. The case in which the program
ends or hangs has failed, and the program is started again for the cases after it. --plan only writes the names of the cases.
"""

import argparse
import re
import subprocess
import sys
import tempfile
import time
from pathlib import Path
from typing import IO

from testing.results import Outcome, Recorder, folder, plan_file, read_plan, write_plan
from testing.surroundings import processes, surroundings

RUN_IN_WINE = Path(__file__).resolve().parent / "run-in-wine"
CASE_SECONDS = 60
POLL_SECONDS = 0.02

_BEGIN = re.compile(r"\[ RUN      \] (\S+)$")
_END = re.compile(r"\[(       OK|  FAILED|  SKIPPED) +\] ([^\s,]+).* \((\d+) ms\)$")
_LAST = re.compile(r"\[==========\] \d+ tests? from \d+ test suites? ran\.")


class Transcript:
    """Follows what a program prints, and knows the case that it is in."""

    def __init__(self, recorder: Recorder) -> None:
        self._recorder = recorder
        self._rest = ""
        self._lines: list[str] = []
        self.case: str | None = None
        self.ended: set[str] = set()
        self.failed = 0
        self.complete = False
        self.ending = ""

    def feed(self, text: str) -> bool:
        """Takes more of the output. Returns whether a case has begun or ended in it."""
        *lines, self._rest = (self._rest + text).replace("\r", "").split("\n")
        return any([self._take(line) for line in lines])

    def give_up(self, why: str) -> None:
        """Fails the case that the program is in."""
        self._end(self.case, False, 0, [*self._lines, self._rest, why])

    def text(self) -> str:
        return "\n".join([*self._lines, self._rest])

    def _take(self, line: str) -> bool:
        self._lines.append(line)
        if begin := _BEGIN.search(line):
            self.case, self._lines = begin[1], [line]
            return True
        # Its summary names failed cases once more, outside any case.
        if self.case and (end := _END.search(line)) and end[2] == self.case:
            self._end(end[2], end[1].strip() == "OK", int(end[3]) / 1000, self._lines)
            return True
        self.complete = self.complete or bool(_LAST.match(line))
        return False

    def _end(self, case: str, passed: bool, seconds: float, lines: list[str]) -> None:
        self._recorder.add(Outcome(case, passed, seconds, "\n".join(lines)))
        self.ended.add(case)
        self.failed += not passed
        self.case, self._lines = None, []


def list_cases(program: str) -> list[str]:
    with tempfile.TemporaryFile("w+", encoding="utf-8") as output:
        subprocess.run([RUN_IN_WINE, program, "--gtest_list_tests"], stdin=subprocess.DEVNULL, stdout=output,
                       timeout=CASE_SECONDS, check=True)
        output.seek(0)
        cases, suite = [], ""
        for line in output:
            name = line.partition("#")[0].strip()
            if line.startswith(" "):
                cases.append(suite + name)
            elif name.endswith("."):
                suite = name
    if not cases:
        raise SystemExit(f"{program} names no case")
    return cases


def follow(process: subprocess.Popen, output: IO[str], transcript: Transcript) -> str:
    """Reads until the program has ended; ends it if a case takes too long. Returns how it ended."""
    deadline = time.monotonic() + CASE_SECONDS
    while True:
        status = process.poll()
        if transcript.feed(output.read()):
            deadline = time.monotonic() + CASE_SECONDS
        if status is not None:
            return f"The program has ended with status {status}."
        if time.monotonic() > deadline:
            running = processes()
            process.kill()
            process.wait()
            return f"The program was ended after {CASE_SECONDS} seconds without a new case. There were these processes:\n{running}"
        time.sleep(POLL_SECONDS)


def run_once(test: str, program: str, cases: list[str], recorder: Recorder) -> Transcript:
    """Runs cases in one process, as far as it gets."""
    transcript = Transcript(recorder)
    # Into a file: programs that outlive the test inherit its output and would keep a pipe open.
    with (tempfile.NamedTemporaryFile("w", encoding="utf-8") as written,
          open(written.name, encoding="utf-8", errors="replace", newline="") as output):
        process = subprocess.Popen([RUN_IN_WINE, program, "--gtest_filter=" + ":".join(cases)], stdin=subprocess.DEVNULL,
                                   stdout=written, stderr=subprocess.STDOUT)
        try:
            transcript.ending = follow(process, output, transcript)
        finally:
            process.kill()
            process.wait()
    if transcript.case:
        transcript.give_up(transcript.ending)
    elif transcript.ended and (process.returncode != 0 and not transcript.failed or not transcript.complete):
        recorder.add(Outcome(f"{test}.outside_of_cases", False, 0, f"{transcript.text()}\n{transcript.ending}"))
    return transcript


def run(test: str, program: str, cases: list[str], recorder: Recorder) -> None:
    """Runs cases in one process, or in more if it ends early. If a program ends before its first case, all have failed."""
    while cases:
        transcript = run_once(test, program, cases, recorder)
        cases = [case for case in cases if case not in transcript.ended]
        if not transcript.ended:
            for case in cases:
                recorder.add(Outcome(case, False, 0, f"{transcript.text()}\n{transcript.ending}"))
            return


def main() -> int:
    parser = argparse.ArgumentParser()
    parser.add_argument("test")
    parser.add_argument("program")
    parser.add_argument("--plan", action="store_true")
    arguments = parser.parse_args()
    with surroundings():
        if arguments.plan:
            plan = plan_file(arguments.test)
            if plan.exists() and plan.stat().st_mtime < Path(arguments.program).stat().st_mtime:
                plan.unlink()
            if not plan.exists():
                write_plan(arguments.test, list_cases(arguments.program))
            return 0
        recorder = Recorder(arguments.test)
        cases = (read_plan(arguments.test) if folder() else []) or list_cases(arguments.program)
        run(arguments.test, arguments.program, cases, recorder)
    return 1 if recorder.failures else 0


if __name__ == "__main__":
    sys.exit(main())
