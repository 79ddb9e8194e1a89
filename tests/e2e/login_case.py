"""What tests of a whole login share: the viewer while it runs, and a person at its login dialog."""

import os
import re
import subprocess
from pathlib import Path

from document_server.documents import document
from document_server.login import BAND_COLOUR, BAND_HEIGHT, DONE_PAGE_COLOUR, PAGE_COLOUR

from tests.e2e.browser_case import PICTURES, BrowserCase, rgb
from tests.e2e.browser_host import ANSWER_SECONDS, save_picture
from tests.e2e.person import Person
from tests.flow.viewer_case import BIN_DIR, PASSWORD, USER, WINE, windows_path
from tests.support.wine_noise import without_noise

PROMPT = "Log in to the document server"
DOCUMENT = "plan.bin"
OF_LIBRARY = re.compile(r"^\S+ kelda ")
LOGGED_IN, NOT_LOGGED_IN = 0, 3
NOT_LOGGED_IN_LINE = "viewer: not logged in: the server wants its web login form filled in."
LOAD_FAILED = "ZanWebBrowserEdge 0 Navigation failed. Leaving Edge control visible for user to read message"
# What the trace of a dialog begins and ends with.
DIALOG_BEGINS = [
    "ZanWebBrowserEdge 0 WebView2 runtime found, version 146.0.3856.49",
    "ZanWebBrowserEdge 0 The COM library is already initialized on this thread",
]
DIALOG_ENDS = "ZanFormBasedAuthentication 0 OnDestoy()"
# Places in the dialog, from the corners of its window: within the page, clear of title bar and frame.
INSET = 12
TITLE_BAR = 30


class Viewer:
    """A context manager around one run of the viewer."""

    def __init__(self, folder: Path, arguments: list[str], environment: dict[str, str]) -> None:
        self._trace, self._output, self.document = (folder / name for name in ("trace.txt", "viewer.txt", DOCUMENT))
        self._command = [WINE, str(BIN_DIR / "viewer.exe"), "--trace", windows_path(self._trace), *arguments]
        self._environment = {**os.environ, **environment}

    def __enter__(self) -> "Viewer":
        with open(self._output, "wb") as output:
            self._process = subprocess.Popen(self._command, stdin=subprocess.DEVNULL, stdout=output, stderr=output,
                                             env=self._environment)
        return self

    def __exit__(self, *_: object) -> None:
        if self._process.poll() is None:
            self._process.kill()
        self._process.wait()

    def exit_code(self) -> int:
        """Waits for the end. Where it does not come, a picture shows what the viewer waits for."""
        try:
            return self._process.wait(ANSWER_SECONDS)
        except subprocess.TimeoutExpired:
            save_picture(PICTURES / "viewer-that-waits.png")
            raise AssertionError(f"the viewer still runs, its trace is {self.trace()}") from None

    @property
    def last_line(self) -> str:
        """What the viewer says happened."""
        return without_noise(self._output.read_text("utf-8")).splitlines()[-1]

    def trace(self) -> list[str]:
        """The trace so far. Of the library's lines: component, type and text; of others all."""
        lines = self._trace.read_text("utf-8").splitlines() if self._trace.exists() else []
        return [OF_LIBRARY.sub("", line) for line in lines]

    def trace_of_dialog(self) -> list[str]:
        """The part of the trace that is about the dialog, which is there or was."""
        trace = self.trace()
        return trace[trace.index(DIALOG_BEGINS[0]):]


class LoginCase(BrowserCase):
    """A viewer that is to log in at the login page of a document server."""

    def start(self, *arguments: str, words: str = "", folder: Path | None = None, **environment: str) -> Viewer:
        """A viewer on the server of the test; its files, and its browser's profile, lie in that folder or the test's."""
        folder = folder or self.folder
        return self.enterContext(Viewer(
            folder, ["--server", self.server.url + "/", *arguments],
            {"MERIDO_USER_PREFS_LOCAL_DIR": windows_path(folder), "MERIDO_ZANWEBBROWSER_IMPLEMENTATION": words,
             **environment}))

    def dialog(self, prompt: str = PROMPT) -> Person:
        """A person at the login dialog, which is there and has the keyboard."""
        person = Person(f"{prompt}: {self.server.url}")
        person.await_window()
        return person

    def person_at_page(self, prompt: str = PROMPT) -> Person:
        """A person at the login dialog with the login page in it."""
        person = self.dialog(prompt)
        self.await_page(person)
        return person

    def await_page(self, person: Person, page_colour: str = PAGE_COLOUR) -> None:
        """Waits until the login page fills the dialog."""
        for x in (INSET, person.width - INSET):
            person.await_colour(rgb(BAND_COLOUR), x, TITLE_BAR + INSET)
            person.await_colour(rgb(page_colour), x, person.height - INSET)

    def await_done_page(self, person: Person) -> None:
        """Waits until the page is there that follows a login."""
        self.await_page(person, DONE_PAGE_COLOUR)

    def log_in(self, person: Person, password: str = PASSWORD) -> None:
        """Fills the form in, which is there, by its keys."""
        self.enter_page(person)
        person.type(USER)
        person.press("Tab")
        person.type(password)
        person.press("Return")

    @staticmethod
    def enter_page(person: Person) -> None:
        """Gives the page the keyboard; the next field from its heading is the first."""
        person.click(person.width // 2, TITLE_BAR + BAND_HEIGHT // 2)
        person.press("Tab")


class DownloadCase(LoginCase):
    """A viewer that wants a document that only a session gets."""

    def start_download(self, *arguments: str, folder: Path | None = None, **options: str) -> Viewer:
        document_file = (folder or self.folder) / DOCUMENT
        return self.start("--get", "documents/plan", "--output", windows_path(document_file), *arguments,
                          folder=folder, **options)

    def assert_downloaded(self, viewer: Viewer) -> None:
        self.assertEqual(viewer.exit_code(), LOGGED_IN, viewer.last_line)
        self.assertEqual(viewer.document.read_bytes(), document("plan"))

    def assert_not_logged_in(self, viewer: Viewer) -> None:
        self.assertEqual(viewer.exit_code(), NOT_LOGGED_IN)
        self.assertEqual(viewer.last_line, NOT_LOGGED_IN_LINE)
        self.assertFalse(viewer.document.exists())
        self.assertNotIn("/documents/plan", [request["path"] for request in self.server.requests()])
