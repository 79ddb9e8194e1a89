"""The lines that are Wine's own, and those that are not."""

import os
import tempfile
import unittest
from pathlib import Path
from unittest import mock

from tests.support.wine_noise import without_noise


class Noise(unittest.TestCase):
    def setUp(self) -> None:
        self.file = Path(self.enterContext(tempfile.TemporaryDirectory()), "noise")
        self.enterContext(mock.patch.dict(os.environ, {"KELDA_TEST_NOISE": str(self.file)}))

    def test_is_taken_out_and_kept_for_the_results(self) -> None:
        line = "sendmsg: Socket operation on non-socket"
        for noise in (f"wine client error:9c: {line}\n", f"wine client error:9c: wine client error:a0: {line}\n",
                      f"{line}\n", line, "wine client error:9c: "):
            with self.subTest(noise):
                self.file.unlink(missing_ok=True)
                self.assertEqual(without_noise(f"before\n{noise}"), "before\n")
                self.assertEqual(self.file.read_text("utf-8"), noise.rstrip() + "\n")

    def test_leaves_a_programs_own_lines(self) -> None:
        own = "viewer: sendmsg: Socket operation on non-socket\nsendmsg: no such thing\nread: Bad file descriptor\n"
        self.assertEqual(without_noise(own), own)
        self.assertFalse(self.file.exists())
