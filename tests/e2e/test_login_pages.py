"""Logins at pages that do more than show a form: new windows, message boxes, frames of other sites, service workers."""

from tests.e2e.browser_host import await_condition
from tests.e2e.login_case import DownloadCase
from tests.e2e.person import Person


class LoginPageCase(DownloadCase):
    def await_request(self, path: str) -> None:
        await_condition(lambda: path in [request["path"] for request in self.server.requests()], path)


class NewWindow(LoginPageCase):
    server_options = ("--login-page", "popup")

    def test_goes_without_disturbing_the_login(self) -> None:
        viewer = self.start_download()
        person = self.person_at_page()
        self.await_request("/login/new-window")
        self.log_in(person)
        self.assert_downloaded(viewer)


class MessageBox(LoginPageCase):
    server_options = ("--login-page", "dialog")

    def test_is_answered_before_the_login(self) -> None:
        viewer = self.start_download()
        box = Person(f"{self.server.url}//qxcore/jsp/qvs/vislogon.jsp")
        box.await_window()
        box.press("Return")
        box.await_end()
        self.log_in(self.person_at_page())
        self.assert_downloaded(viewer)


class FrameOfAnotherSite(LoginPageCase):
    server_options = ("--login-page", "framed")

    def test_brings_the_login_to_the_page_around_it(self) -> None:
        viewer = self.start_download()
        self.log_in(self.person_at_page())
        self.assert_downloaded(viewer)
        sites = [request["headers"]["Host"].partition(":")[0]
                 for request in self.server.requests() if request["method"] == "POST"]
        self.assertEqual(sites, ["localhost", "127.0.0.1"])


class ServiceWorker(LoginPageCase):
    """It would answer the form itself; the test runtime asks the network all the same."""

    server_options = ("--login-page", "worker")

    def test_is_passed_by(self) -> None:
        viewer = self.start_download()
        person = self.person_at_page()
        self.await_request("/login/worker-active")
        self.log_in(person)
        self.assert_downloaded(viewer)
