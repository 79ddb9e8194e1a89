"""What the tests with a browser share: a document server, a folder for the profile, and a look at the login page."""

import os
import tempfile
import unittest
from pathlib import Path

from document_server.login import BAND_COLOUR, BAND_HEIGHT, PAGE_COLOUR

from tests.e2e.browser_host import BrowserHost, await_condition, browser_processes
from tests.flow.viewer_case import windows_path
from tests.support.document_server import DocumentServer

PICTURES = Path(os.environ["KELDA_BIN_DIR"]).parents[1] / "pictures"


def rgb(colour: str) -> tuple[int, int, int]:
    """The parts of a colour like #1f4e79."""
    return tuple(bytes.fromhex(colour.removeprefix("#")))


class BrowserCase(unittest.TestCase):
    """A document server, and a profile below a folder of the test's own."""

    server_options: tuple[str, ...] = ()

    def setUp(self) -> None:
        folder = tempfile.TemporaryDirectory(prefix="kelda-e2e-")
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name)
        self.addCleanup(self.assert_no_browser_process)
        self.server = self.enterContext(DocumentServer(*self.server_options))

    def host(self, check_mode: int = 0, server_url: str = "", **environment: str) -> BrowserHost:
        """A host whose local preferences lie in the test's folder."""
        return self.enterContext(BrowserHost(server_url or self.server.url, check_mode, {
            "MERIDO_USER_PREFS_LOCAL_DIR": windows_path(self.folder), **environment}))

    def assert_shows(self, host: BrowserHost, colour: str, x: int, y: int) -> None:
        """Waits until the browser's area has that colour there."""
        await_condition(lambda: host.pixel(x, y) == rgb(colour), f"{colour} at {x},{y}")

    def assert_shows_login_page(self, host: BrowserHost, width: int, height: int) -> None:
        """The band at the top from edge to edge, the page below it down to the last corner."""
        for x in (1, width - 2):
            self.assert_shows(host, BAND_COLOUR, x, 1)
            self.assert_shows(host, BAND_COLOUR, x, BAND_HEIGHT - 2)
            self.assert_shows(host, PAGE_COLOUR, x, BAND_HEIGHT + 2)
            self.assert_shows(host, PAGE_COLOUR, x, height - 2)

    def assert_no_browser_process(self) -> None:
        """Chromium needs a moment to go."""
        await_condition(lambda: not browser_processes(self.folder), "the end of all browser processes")
