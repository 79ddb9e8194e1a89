"""The whole form login through the viewer and the real library, by a person with keys and a mouse."""

from document_server.login import WRONG_PAGE_COLOUR

from tests.e2e.browser_case import PICTURES
from tests.e2e.browser_host import await_condition, save_picture
from tests.e2e.login_case import LOAD_FAILED, DownloadCase
from tests.e2e.person import title_of_focus
from tests.flow.viewer_case import PASSWORD, USER


class Login(DownloadCase):
    def test_a_good_login_lets_the_document_be_downloaded(self) -> None:
        viewer = self.start_download()
        person = self.person_at_page()
        save_picture(PICTURES / "login-dialog.png")
        self.log_in(person)
        person.await_end()
        self.assert_downloaded(viewer)

    def test_a_wrong_password_may_be_followed_by_the_right_one(self) -> None:
        viewer = self.start_download()
        person = self.person_at_page()
        self.log_in(person, "no such password")
        self.await_page(person, WRONG_PAGE_COLOUR)
        self.log_in(person)
        self.assert_downloaded(viewer)

    def test_tab_moves_between_the_fields_and_the_button_and_enter_submits(self) -> None:
        viewer = self.start_download()
        person = self.person_at_page()
        self.enter_page(person)
        person.type("anxa")
        person.press("Left", "BackSpace")
        person.type("n")
        person.press("Tab")
        person.type("kelda-demo")
        person.press("Tab", "shift+Tab", "Tab", "Return")
        self.assert_downloaded(viewer)

    def test_the_words_inprivate_nosso_and_devtools_are_accepted(self) -> None:
        viewer = self.start_download(words="inprivate,nosso,devtools")
        person = self.person_at_page()
        self.log_in(person)
        self.assert_downloaded(viewer)
        self.assertIn("ZanWebBrowserEdge 0 Using InPrivate mode", viewer.trace())

    def test_the_page_has_the_keyboard_without_a_click(self) -> None:
        viewer = self.start_download()
        person = self.person_at_page()
        person.type(USER)
        person.press("Tab")
        person.type(PASSWORD)
        person.press("Return")
        self.assert_downloaded(viewer)

    def test_the_page_follows_the_size_of_the_dialog(self) -> None:
        viewer = self.start_download()
        person = self.dialog()
        self.assertEqual((person.width, person.height), (500, 500))
        self.await_page(person)
        person.resize(640, 420)
        self.await_page(person)
        person.resize(400, 600)
        self.await_page(person)
        self.log_in(person)
        self.assert_downloaded(viewer)


class ClosedDialog(DownloadCase):
    def test_the_close_button_means_no_login(self) -> None:
        viewer = self.start_download()
        person = self.person_at_page()
        person.close()
        self.assert_not_logged_in(viewer)


class StalledPage(DownloadCase):
    server_options = ("--login-page", "stalled")

    def test_the_dialog_can_be_closed_before_the_page_is_there(self) -> None:
        viewer = self.start_download()
        person = self.dialog()
        await_condition(lambda: len(self.server.requests()) == 2, "the request for the page")
        person.press("alt+F4")
        self.assert_not_logged_in(viewer)


class SilentPage(DownloadCase):
    server_options = ("--login-page", "silent")

    def test_a_login_that_the_page_does_not_report_is_none(self) -> None:
        viewer = self.start_download()
        person = self.person_at_page()
        self.log_in(person)
        self.await_done_page(person)
        person.close()
        self.assert_not_logged_in(viewer)
        self.assertNotIn("ZanWebBrowserEdge 0 OnSessionAuthenticated();", viewer.trace())


class RepeatedReport(DownloadCase):
    server_options = ("--login-page", "twice")

    def test_a_page_that_reports_twice_logs_in_once(self) -> None:
        viewer = self.start_download()
        person = self.person_at_page()
        self.log_in(person)
        self.assert_downloaded(viewer)
        self.assertEqual(viewer.trace().count("ZanWebBrowserEdge 0 OnSessionAuthenticated();"), 1)


class FailedLoad(DownloadCase):
    def assert_the_dialog_waits_with_the_error_page(self) -> None:
        viewer = self.start_download()
        person = self.dialog()
        await_condition(lambda: LOAD_FAILED in viewer.trace(), "the trace of the failed load")
        await_condition(lambda: person.colour_count() > 1, "the error page")
        self.assertEqual(title_of_focus(), person.title, "the dialog is still there")
        person.close()
        self.assert_not_logged_in(viewer)


class BrokenPage(FailedLoad):
    server_options = ("--login-page", "broken")

    def test_leaves_the_error_page_and_a_dialog_that_waits(self) -> None:
        self.assert_the_dialog_waits_with_the_error_page()


class RefusedPage(FailedLoad):
    server_options = ("--login-page", "refused-status")

    def test_leaves_the_error_page_and_a_dialog_that_waits(self) -> None:
        self.assert_the_dialog_waits_with_the_error_page()
