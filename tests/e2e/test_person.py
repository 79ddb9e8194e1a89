"""How a person finds a window on a display on which others come and go."""

import os
import stat
import tempfile
import unittest
from pathlib import Path
from unittest import mock

from tests.e2e import person

# The display's tool as it answers when a window goes away during its search: as often as the file beside it says, and then well.
TOOL = """#!/bin/sh
left=$(cat "$0.failures")
if [ "$left" -gt 0 ]; then
    echo $((left - 1)) > "$0.failures"
    echo "X Error of failed request:  BadWindow (invalid Window parameter)" >&2
    exit 1
fi
echo 4194305
"""


class TestPerson(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.tool = Path(folder.name, "xdotool")
        self.tool.write_text(TOOL)
        self.tool.chmod(stat.S_IRWXU)
        path = mock.patch.dict(os.environ, PATH=f"{folder.name}:{os.environ['PATH']}")
        path.start()
        self.addCleanup(path.stop)

    def test_searches_again_when_a_window_goes_away_during_the_search(self):
        self._fail(3)
        self.assertEqual(person.windows("Login"), ["4194305"])

    def test_does_not_search_for_ever(self):
        self._fail(person.SEARCHES)
        with self.assertRaisesRegex(RuntimeError, "cannot be searched"):
            person.windows("Login")

    def _fail(self, times: int) -> None:
        Path(f"{self.tool}.failures").write_text(str(times))
