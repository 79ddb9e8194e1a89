"""Chromium ends as by a crash, at many moments of a login: its dialog stays, can be closed, and nobody is logged in."""

import contextlib
import os
import signal
from collections.abc import Iterator
from pathlib import Path

from document_server.login import WRONG_PAGE_COLOUR

from tests.e2e.browser_host import BrowserHost, await_condition, await_main_process, browser_processes
from tests.e2e.login_case import DIALOG_BEGINS, DIALOG_ENDS, LOAD_FAILED, DownloadCase, Viewer
from tests.e2e.person import Person, title_of_focus
from tests.flow.viewer_case import PASSWORD, USER

# Places in the dialog with the login page.
USER_FIELD = (180, 130)
PASSWORD_FIELD = (220, 181)

IN_PRIVATE = "ZanWebBrowserEdge 0 Using InPrivate mode"
NO_ENVIRONMENT = "ZanWebBrowserEdge 0 Failed to create WebView2 environment -2147467259"
NO_CONTROLLER = "ZanWebBrowserEdge 0 Failed to create WebView2 controller -2147467259"


@contextlib.contextmanager
def stopped(*processes: int) -> Iterator[None]:
    """Within the block these processes stand still."""
    for process in processes:
        os.kill(process, signal.SIGSTOP)
    try:
        yield
    finally:
        for process in processes:
            with contextlib.suppress(ProcessLookupError):
                os.kill(process, signal.SIGCONT)


def kill_browser(folder: Path) -> None:
    """Ends the browser's own process; those that it has started notice that."""
    os.kill(await_main_process(folder), signal.SIGKILL)


class KilledCase(DownloadCase):
    """A login whose browser is killed. What the dialog shows from then on is up to the runtime."""

    def kill_browser(self) -> None:
        kill_browser(self.folder)
        self.assert_no_browser_process()

    def assert_no_login(self, viewer: Viewer, person: Person, *traced: str) -> None:
        """The dialog is there, can be closed, and ends the login. Since its start exactly this is traced."""
        await_condition(lambda: viewer.trace_of_dialog() == [*DIALOG_BEGINS, *traced], f"the trace of {traced}")
        self.assertEqual(title_of_focus(), person.title)
        person.close()
        self.assert_not_logged_in(viewer)
        self.assertEqual(viewer.trace_of_dialog(), [*DIALOG_BEGINS, *traced, DIALOG_ENDS])


class StartingBrowser(KilledCase):
    """A browser that waits for its settings, a pipe, until a test lets it go on."""

    def setUp(self) -> None:
        super().setUp()
        self.settings = self.folder / "zanwbe" / "Local State"
        self.settings.parent.mkdir()
        os.mkfifo(self.settings)
        # A browser that is left goes on and ends.
        self.addCleanup(lambda: self.settings.open("r+b", buffering=0).close())

    def test_before_the_browser_answers(self) -> None:
        viewer = self.start_download()
        person = self.dialog()
        first = await_main_process(self.folder)
        os.kill(first, signal.SIGKILL)
        # The loader starts it once more, with what the library has asked for.
        await_condition(lambda: await_main_process(self.folder) != first, "the second start")
        self.kill_browser()
        self.assert_no_login(viewer, person, NO_ENVIRONMENT)

    def test_before_the_page_is_made(self) -> None:
        viewer = self.start_download(words="inprivate")
        person = self.dialog()
        # Without them there are no renderers.
        zygotes = await_condition(lambda: browser_processes(self.folder, "zygote"), "the makers of renderers")
        with stopped(*zygotes):
            self.settings.write_text("{}")
            await_condition(lambda: IN_PRIVATE in viewer.trace(), "the browser's answer")
            kill_browser(self.folder)
        self.assert_no_browser_process()
        self.assert_no_login(viewer, person, IN_PRIVATE, NO_CONTROLLER)


class LoginPage(KilledCase):
    def setUp(self) -> None:
        super().setUp()
        self.viewer = self.start_download()
        self.person = self.person_at_page()

    def test_when_the_page_is_shown(self) -> None:
        self.kill_browser()
        self.assert_no_login(self.viewer, self.person)

    def test_when_a_field_is_clicked(self) -> None:
        self.person.await_effect(lambda: self.person.click(*PASSWORD_FIELD))
        self.kill_browser()
        self.person.click(*USER_FIELD)
        self.assert_no_login(self.viewer, self.person)

    def test_in_the_middle_of_typing(self) -> None:
        self.person.await_effect(lambda: self.person.type(USER[:3]))
        self.kill_browser()
        self.person.type(USER[3:])
        self.assert_no_login(self.viewer, self.person)

    def test_between_the_fields(self) -> None:
        self.person.await_effect(lambda: self.person.type(USER))
        self.person.await_effect(lambda: self.person.press("Tab"))
        self.kill_browser()
        self.person.type(PASSWORD)
        self.person.press("Return")
        self.assert_no_login(self.viewer, self.person)

    def test_after_a_wrong_password(self) -> None:
        self.log_in(self.person, "no such password")
        self.await_page(self.person, WRONG_PAGE_COLOUR)
        self.kill_browser()
        self.assert_no_login(self.viewer, self.person)

    def test_while_the_dialog_is_resized(self) -> None:
        with self.person.holding_corner():
            self.person.move_mouse(60, 40)
            self.person.await_size(560, 540)
            self.kill_browser()
            self.person.move_mouse(-90, -20)
            self.person.await_size(470, 520)
        self.assert_no_login(self.viewer, self.person)

    def test_while_the_close_button_is_held_down(self) -> None:
        with self.person.holding_close_button():
            self.kill_browser()
        self.assert_not_logged_in(self.viewer)
        self.assertEqual(self.viewer.trace_of_dialog(), [*DIALOG_BEGINS, DIALOG_ENDS])

    def test_while_it_does_not_answer(self) -> None:
        with stopped(await_main_process(self.folder)):
            self.log_in(self.person)
            kill_browser(self.folder)
        self.assert_no_browser_process()
        self.assert_no_login(self.viewer, self.person)

    def test_while_the_dialog_ends(self) -> None:
        with stopped(await_main_process(self.folder)):
            self.person.close()
            await_condition(lambda: DIALOG_ENDS in self.viewer.trace(), "the end of the dialog")
            kill_browser(self.folder)
        self.assert_not_logged_in(self.viewer)
        self.assertEqual(self.viewer.trace_of_dialog(), [*DIALOG_BEGINS, DIALOG_ENDS])


class StalledPage(KilledCase):
    server_options = ("--login-page", "stalled")

    def test_while_the_page_is_on_its_way(self) -> None:
        viewer = self.start_download()
        person = self.dialog()
        await_condition(lambda: len(self.server.requests()) == 2, "the request for the page")
        self.kill_browser()
        self.assert_no_login(viewer, person, LOAD_FAILED)


class SilentPage(KilledCase):
    server_options = ("--login-page", "silent")

    def test_after_a_login_that_the_page_does_not_report(self) -> None:
        viewer = self.start_download()
        person = self.person_at_page()
        self.log_in(person)
        self.await_done_page(person)
        self.kill_browser()
        self.assert_no_login(viewer, person)


class UnansweredForm(KilledCase):
    server_options = ("--login-page", "unanswered")

    def test_while_the_form_is_on_its_way(self) -> None:
        viewer = self.start_download()
        person = self.person_at_page()
        self.log_in(person)
        await_condition(lambda: "POST" in [request["method"] for request in self.server.requests()],
                        "the form's request")
        self.kill_browser()
        self.assert_no_login(viewer, person, LOAD_FAILED)


class AlertBox(KilledCase):
    server_options = ("--login-page", "dialog")

    def test_while_the_page_shows_an_alert_box(self) -> None:
        viewer = self.start_download()
        box = Person(f"{self.server.url}//qxcore/jsp/qvs/vislogon.jsp")
        box.await_window()
        self.kill_browser()
        # The runtime takes it away. A key that is pressed meanwhile would reach either window.
        box.await_end()
        self.assert_no_login(viewer, self.dialog(), LOAD_FAILED)


class SameHost(KilledCase):
    def lose_browser(self, host: BrowserHost) -> None:
        """A login whose browser is killed and whose dialog is closed."""
        host.tell("login")
        person = self.person_at_page("Log in")
        self.kill_browser()
        person.close()
        host.await_event("login false")

    def test_the_next_login_has_a_new_browser(self) -> None:
        host = self.host(server_url=self.server.url + "/")
        self.lose_browser(host)
        host.tell("login")
        person = self.person_at_page("Log in")
        self.log_in(person)
        host.await_event("login true")
        self.assertEqual(host.tell("get documents/plan?size=1000"), "1000 bytes")

    def test_a_browser_in_a_window_dies_with_that_of_the_dialog(self) -> None:
        host = self.host(server_url=self.server.url + "/")
        host.tell("create")
        host.await_event("completed")
        self.lose_browser(host)
        self.assertEqual(host.tell("resize 500 300"), "ok")
        host.tell("close-release")
        host.tell("create")
        host.await_event("completed")

    def test_nothing_is_left_of_killed_browsers(self) -> None:
        host = self.host(server_url=self.server.url + "/")
        # The first ones also load modules and start threads of the system.
        for _ in range(2):
            self.lose_browser(host)
        settled = host.counts()
        for _ in range(3):
            self.lose_browser(host)
        # What was about to go when it was counted may be missing now.
        await_condition(lambda: all(now <= then for now, then in zip(host.counts(), settled, strict=True)),
                        f"no more than {settled}, unlike {host.counts()}")
