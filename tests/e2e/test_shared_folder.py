"""Several logins at the same time, on one folder for the browser's profile and on different ones."""

from pathlib import Path

from document_server.login import BAND_COLOUR, PAGE_COLOUR

from tests.e2e.browser_host import await_condition, browser_processes
from tests.e2e.login_case import DIALOG_BEGINS, DIALOG_ENDS, DownloadCase, LoginCase
from tests.flow.viewer_case import windows_path

# What the runtime of the tests says to the second process; that of Windows lets it share the profile.
FOLDER_IN_USE = "ZanWebBrowserEdge 0 Failed to create WebView2 environment -2147024864"


class TwoViewers(DownloadCase):
    def other_folder(self) -> Path:
        folder = self.folder / "other"
        folder.mkdir()
        return folder

    def test_on_one_folder_the_second_gets_no_browser_and_the_first_logs_in(self) -> None:
        first = self.start_download("--prompt", "First")
        first_person = self.person_at_page("First")
        second = self.start_download("--prompt", "Second", folder=self.other_folder(),
                                     MERIDO_USER_PREFS_LOCAL_DIR=windows_path(self.folder))
        second_person = self.dialog("Second")
        await_condition(lambda: second.trace_of_dialog() == [*DIALOG_BEGINS, FOLDER_IN_USE], "the runtime's answer")
        await_condition(lambda: second_person.colour_count() == 1, "an empty dialog")
        second_person.close()
        self.assert_not_logged_in(second)
        self.assertEqual(second.trace_of_dialog()[-1], DIALOG_ENDS)
        self.log_in(first_person)
        self.assert_downloaded(first)

    def test_on_two_folders_both_log_in(self) -> None:
        first = self.start_download("--prompt", "First")
        first_person = self.person_at_page("First")
        second = self.start_download("--prompt", "Second", folder=self.other_folder())
        second_person = self.person_at_page("Second")
        self.log_in(second_person)
        self.assert_downloaded(second)
        self.log_in(first_person)
        self.assert_downloaded(first)


class OneHost(LoginCase):
    """A host with a browser in a window of its own and another one in a login dialog."""

    def setUp(self) -> None:
        super().setUp()
        self.running = self.host(server_url=self.server.url + "/")
        self.running.tell("create")
        self.running.await_event("completed")
        zygotes = browser_processes(self.folder, "zygote")
        self.running.tell("login")
        self.person = self.person_at_page("Log in")
        self.assertEqual(browser_processes(self.folder, "zygote"), zygotes, "there is one Chromium for both")

    def test_the_one_in_the_window_outlives_the_login(self) -> None:
        self.log_in(self.person)
        self.running.await_event("login true")
        # The owner of the login covers the page's other corners.
        self.running.tell("resize 800 600")
        self.assert_shows(self.running, BAND_COLOUR, 798, 1)
        self.assert_shows(self.running, PAGE_COLOUR, 798, 598)

    def test_the_one_in_the_dialog_outlives_the_window(self) -> None:
        self.running.tell("close-release")
        self.log_in(self.person)
        self.running.await_event("login true")
        self.assertEqual(self.running.tell("get documents/plan?size=1000"), "1000 bytes")
