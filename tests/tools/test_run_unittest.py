"""The runner of unittest modules, on a module that plays every ending of a case."""

import contextlib
import io
import os
import sys
import tempfile
import unittest
from pathlib import Path
from unittest import mock

sys.path.insert(0, str(Path(__file__).resolve().parents[2] / "tools"))

import run_unittest
from testing.results import Recorder, parse, record_file


class Played(unittest.TestCase):
    """Not a test of its own: the loader does not find what it does not name."""

    def passes(self) -> None:
        pass

    def fails(self) -> None:
        self.fail("on purpose")

    def breaks(self) -> None:
        raise ValueError("on purpose")

    def is_skipped(self) -> None:
        self.skipTest("on purpose")

    def fails_in_parts(self) -> None:
        for part in ("first", "second"):
            with self.subTest(part):
                self.assertEqual(part, "first")

    @unittest.expectedFailure
    def passes_against_expectation(self) -> None:
        pass


class PlayedWithoutClass(Played):
    @classmethod
    def setUpClass(cls) -> None:
        raise ValueError("no class today")


class Cases(unittest.TestCase):
    def setUp(self) -> None:
        folder = self.enterContext(tempfile.TemporaryDirectory())
        self.enterContext(mock.patch.dict(os.environ, {"KELDA_TEST_RESULTS": folder}))

    def outcomes(self, *cases: unittest.TestCase) -> dict[str, tuple[bool, str]]:
        with contextlib.redirect_stdout(io.StringIO()), mock.patch("faulthandler.dump_traceback_later"):
            unittest.TestSuite(cases).run(run_unittest.Result(Recorder("module")))
        entries = [parse(line) for line in record_file("module").read_text("utf-8").splitlines()]
        return {entry.case.rpartition(".")[2]: (entry.passed, entry.output) for entry in entries}

    def test_end_as_they_should(self) -> None:
        names = ("passes", "fails", "breaks", "is_skipped", "fails_in_parts", "passes_against_expectation")
        outcomes = self.outcomes(*(Played(name) for name in names))
        self.assertEqual([name for name in names if outcomes[name][0]], ["passes"])
        self.assertIn("AssertionError: on purpose", outcomes["fails"][1])
        self.assertIn("ValueError: on purpose", outcomes["breaks"][1])
        self.assertIn("skipped: on purpose", outcomes["is_skipped"][1])
        self.assertIn("'second' != 'first'", outcomes["fails_in_parts"][1])

    def test_of_a_class_that_cannot_be_set_up_are_not_recorded_but_the_class_is(self) -> None:
        outcomes = self.outcomes(PlayedWithoutClass("passes"))
        (name, (passed, output)), = outcomes.items()
        self.assertIn("PlayedWithoutClass", name)
        self.assertFalse(passed)
        self.assertIn("no class today", output)
