"""Runs the cases of one unittest module, and records each as it ends.

    run_unittest.py MODULE [--plan]

--plan only writes the names of the cases. A case that takes too long ends the run, with a traceback.
"""

import argparse
import faulthandler
import os
import sys
import time
import traceback
import unittest
from collections.abc import Iterator
from pathlib import Path

from testing.results import Outcome, Recorder, write_plan
from testing.surroundings import surroundings

CASE_SECONDS = 300


class Result(unittest.TestResult):
    """Records outcomes. Subtests count with their case; a skipped case has not passed."""

    def __init__(self, recorder: Recorder) -> None:
        super().__init__()
        self._recorder = recorder
        self._problems: list[str] = []

    def startTest(self, test: unittest.TestCase) -> None:
        super().startTest(test)
        faulthandler.dump_traceback_later(CASE_SECONDS, exit=True)
        self._problems = []
        self._started = time.monotonic()

    def stopTest(self, test: unittest.TestCase) -> None:
        super().stopTest(test)
        faulthandler.cancel_dump_traceback_later()
        self._record(test, time.monotonic() - self._started)

    def addError(self, test: unittest.TestCase, err: tuple) -> None:
        super().addError(test, err)
        self._problems.append(self.errors[-1][1])
        # The set-up or tear-down of a class or module is no case: it is recorded by itself.
        if not isinstance(test, unittest.TestCase):
            self._record(test, 0)

    def addFailure(self, test: unittest.TestCase, err: tuple) -> None:
        super().addFailure(test, err)
        self._problems.append(self.failures[-1][1])

    def addSubTest(self, test: unittest.TestCase, subtest: unittest.TestCase, err: tuple | None) -> None:
        super().addSubTest(test, subtest, err)
        if err is not None:
            self._problems.append(f"{subtest}\n{''.join(traceback.format_exception(*err))}")

    def addSkip(self, test: unittest.TestCase, reason: str) -> None:
        super().addSkip(test, reason)
        self._problems.append(f"skipped: {reason}")

    def addUnexpectedSuccess(self, test: unittest.TestCase) -> None:
        super().addUnexpectedSuccess(test)
        self._problems.append("passed, although a failure was expected")

    def _record(self, test: unittest.TestCase, seconds: float) -> None:
        self._recorder.add(Outcome(test.id(), not self._problems, seconds, "\n".join(self._problems)))
        self._problems = []


def cases_of(suite: unittest.TestSuite) -> Iterator[unittest.TestCase]:
    for test in suite:
        if isinstance(test, unittest.TestSuite):
            yield from cases_of(test)
        else:
            yield test


def main() -> int:
    parser = argparse.ArgumentParser()
    parser.add_argument("module")
    parser.add_argument("--plan", action="store_true")
    arguments = parser.parse_args()
    # Not the tools' own folder: the tests are modules of the repository.
    sys.path[0] = "."
    with surroundings():
        suite = unittest.defaultTestLoader.loadTestsFromName(arguments.module)
        if arguments.plan:
            cases = [case.id() for case in cases_of(suite)]
            if not cases:
                raise SystemExit(f"{arguments.module} has no case")
            write_plan(arguments.module, cases)
            return 0
        recorder = Recorder(arguments.module)
        noise = Path(os.environ["TMPDIR"], "wine-noise.txt")
        os.environ["KELDA_TEST_NOISE"] = str(noise)
        suite.run(Result(recorder))
        if noise.exists():
            recorder.note(f"{arguments.module}: Wine said at the end of a program: {noise.read_text('utf-8').splitlines()}")
        return 1 if recorder.failures else 0


if __name__ == "__main__":
    sys.exit(main())
