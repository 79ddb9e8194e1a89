"""Counting the cases of a run."""

import os
import sys
import tempfile
import unittest
from pathlib import Path
from unittest import mock

sys.path.insert(0, str(Path(__file__).resolve().parents[2] / "tools"))

from run_tests import Run
from testing.results import Outcome, Recorder, write_plan

PASSED = (True, "")
FAILED = (False, "what it printed")


class Counting(unittest.TestCase):
    def setUp(self) -> None:
        folder = self.enterContext(tempfile.TemporaryDirectory())
        self.enterContext(mock.patch.dict(os.environ, {"KELDA_TEST_RESULTS": folder}))
        self.enterContext(mock.patch("builtins.print"))
        self.recorder = Recorder("program")

    def run_of(self, *planned: str) -> Run:
        write_plan("program", planned)
        return Run(["program"])

    def test_counts_each_case(self) -> None:
        run = self.run_of("A.One", "A.Two")
        self.recorder.add(Outcome("A.One", True))
        self.assertEqual(run.update(), [])
        self.recorder.add(Outcome("A.Two", False, 0, "why"))
        self.assertEqual(run.update(), [Outcome("A.Two", False, 0, "why")])
        self.assertEqual(run.finish({"program": FAILED}), [])
        self.assertEqual(run.counts(), (1, 1))

    def test_a_line_that_is_not_complete_waits(self) -> None:
        run = self.run_of("A.One")
        self.recorder.add(Outcome("A.One", True))
        file = Path(os.environ["KELDA_TEST_RESULTS"], "program.record")
        whole = file.read_bytes()
        file.write_bytes(whole[:5])
        run.update()
        self.assertEqual(run.counts(), (0, 0))
        file.write_bytes(whole)
        run.update()
        self.assertEqual(run.counts(), (1, 0))

    def test_a_case_that_never_ran_has_failed(self) -> None:
        run = self.run_of("A.One", "A.Two")
        self.recorder.add(Outcome("A.One", True))
        run.update()
        self.assertEqual([failure.case for failure in run.finish({"program": PASSED})], ["A.Two"])
        self.assertEqual(run.counts(), (1, 1))

    def test_a_test_without_cases_counts_as_one(self) -> None:
        for status, counts in ((PASSED, (1, 0)), (FAILED, (0, 1))):
            run = self.run_of()
            run.finish({"program": status})
            self.assertEqual(run.counts(), counts)

    def test_a_program_that_fails_although_its_cases_passed_has_failed(self) -> None:
        run = self.run_of("A.One")
        self.recorder.add(Outcome("A.One", True))
        run.update()
        self.assertEqual([failure.case for failure in run.finish({"program": FAILED})], ["program"])
        self.assertEqual(run.counts(), (1, 1))

    def test_a_test_that_ctest_did_not_run_has_failed(self) -> None:
        run = self.run_of("A.One")
        self.assertEqual([failure.case for failure in run.finish({})], ["A.One"])
        self.assertEqual(run.counts(), (0, 1))

    def test_notes_are_kept(self) -> None:
        run = self.run_of("A.One")
        self.recorder.note("a note")
        run.update()
        self.assertEqual(run.notes, ["a note"])
