"""The runner of GoogleTest programs, on a program that plays their output."""

import contextlib
import io
import os
import sys
import tempfile
import unittest
from pathlib import Path
from unittest import mock

sys.path.insert(0, str(Path(__file__).resolve().parents[2] / "tools"))

import run_gtest
from testing.results import Outcome, Recorder, parse, record_file

# A case does what its name says; the filter names the cases.
PROGRAM = """
import os, sys, time
with open(sys.argv[0] + ".starts", "a") as starts:
    starts.write(".")
names = sys.argv[1].removeprefix("--gtest_filter=").split(":")
if "Start.Ends" in names:
    sys.exit(7)
print(f"[==========] Running {len(names)} tests from 1 test suite.", flush=True)
failed = 0
for name in names:
    print(f"[ RUN      ] {name}", flush=True)
    if name == "Case.Crashes":
        print("the last words", flush=True)
        os._exit(0)
    if name == "Case.Hangs":
        time.sleep(60)
    if name == "Case.IsSkipped":
        print(f"[  SKIPPED ] {name} (0 ms)")
    elif name.startswith("Case.Fails"):
        failed += 1
        print("expected one thing, got another")
        print(f"[  FAILED  ] {name}, where GetParam() = 4 (12 ms)")
    else:
        print(f"[       OK ] {name} (1500 ms)", flush=True)
    if name == "Case.IsTheLastBeforeTheEnd":
        os._exit(0)
print(f"[==========] {len(names)} tests from 1 test suite ran. (1 ms total)")
print("[  FAILED  ] Case.Passes" if failed else "[  PASSED  ]", flush=True)
sys.exit(3 if failed or "Case.SpoilsTheEnd" in names else 0)
"""


class RunnerCase(unittest.TestCase):
    def setUp(self) -> None:
        folder = self.enterContext(tempfile.TemporaryDirectory())
        self.program = Path(folder, "program.py")
        self.program.write_text(PROGRAM, "utf-8")
        self.enterContext(mock.patch.dict(os.environ, {"KELDA_TEST_RESULTS": folder, "TMPDIR": folder}))
        self.enterContext(mock.patch.object(tempfile, "tempdir", None))
        self.enterContext(mock.patch.object(run_gtest, "RUN_IN_WINE", sys.executable))
        self.enterContext(mock.patch.object(run_gtest, "CASE_SECONDS", 5))

    def run_cases(self, *cases: str) -> list[Outcome]:
        """What has been recorded of these cases."""
        with contextlib.redirect_stdout(io.StringIO()):
            run_gtest.run("program", str(self.program), list(cases), Recorder("program"))
        return [parse(line) for line in record_file("program").read_text("utf-8").splitlines()]

    def outcomes(self, *cases: str) -> dict[str, bool]:
        return {outcome.case: outcome.passed for outcome in self.run_cases(*cases)}

    def starts(self) -> int:
        return len(Path(f"{self.program}.starts").read_text("utf-8"))


class Cases(RunnerCase):
    def test_are_recorded_one_by_one_from_one_process(self) -> None:
        self.assertEqual(self.run_cases("Case.Passes", "Case.PassesToo/1"),
                         [Outcome("Case.Passes", True, 1.5), Outcome("Case.PassesToo/1", True, 1.5)])
        self.assertEqual(self.starts(), 1)

    def test_that_fail_are_recorded_with_their_output(self) -> None:
        passed, failed, after = self.run_cases("Case.Passes", "Case.Fails", "Case.PassesToo")
        self.assertEqual((passed.passed, failed.passed, after.passed), (True, False, True))
        self.assertIn("expected one thing, got another", failed.output)
        self.assertEqual(self.starts(), 1)

    def test_that_fail_are_recorded_with_what_chromium_said(self) -> None:
        log = Path(f"{self.program}.chromium.log")
        log.write_text("Chromium (process 7) has ended with status 133\n", "utf-8")
        with mock.patch.dict(os.environ, {"KELDA_TEST_BROWSER_LOG": str(log)}):
            passed, failed = self.run_cases("Case.Passes", "Case.Fails")
        self.assertEqual(passed.output, "")
        self.assertIn("expected one thing, got another", failed.output)
        self.assertIn("has ended with status 133", failed.output)

    def test_that_are_skipped_have_not_passed(self) -> None:
        self.assertEqual(self.outcomes("Case.IsSkipped"), {"Case.IsSkipped": False})


class Program(RunnerCase):
    def test_that_crashes_fails_that_case_and_is_started_again_for_the_rest(self) -> None:
        outcomes = self.run_cases("Case.Passes", "Case.Crashes", "Case.PassesToo")
        self.assertEqual([(entry.case, entry.passed) for entry in outcomes],
                         [("Case.Passes", True), ("Case.Crashes", False), ("Case.PassesToo", True)])
        self.assertIn("the last words", outcomes[1].output)
        self.assertIn("ended with status 0", outcomes[1].output)
        self.assertEqual(self.starts(), 2)

    def test_that_hangs_is_ended_and_fails_that_case(self) -> None:
        hung, passed = self.run_cases("Case.Hangs", "Case.Passes")
        self.assertEqual((hung.passed, passed.passed), (False, True))
        self.assertRegex(hung.output, rf"(?m)^\d+ S \S+ .*{self.program}")

    def test_that_fails_after_its_last_case_is_a_failure_of_its_own(self) -> None:
        self.assertEqual(self.outcomes("Case.SpoilsTheEnd"), {"Case.SpoilsTheEnd": True, "program.outside_of_cases": False})

    def test_that_ends_between_two_cases_is_a_failure_of_its_own(self) -> None:
        self.assertEqual(self.outcomes("Case.Passes", "Case.IsTheLastBeforeTheEnd", "Case.PassesToo"),
                         {"Case.Passes": True, "Case.IsTheLastBeforeTheEnd": True, "program.outside_of_cases": False,
                          "Case.PassesToo": True})
        self.assertEqual(self.starts(), 2)

    def test_that_ends_before_its_first_case_fails_all_its_cases(self) -> None:
        entries = self.run_cases("Start.Ends", "Case.Passes")
        self.assertEqual([(entry.case, entry.passed) for entry in entries],
                         [("Start.Ends", False), ("Case.Passes", False)])
        self.assertIn("status 7", entries[0].output)
        self.assertEqual(self.starts(), 1)
