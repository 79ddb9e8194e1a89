"""The login pages whose scripts matter, in a real Chromium."""

import unittest

from document_server.login import DONE_PAGE_COLOUR, NEW_WINDOW_COLOUR, PAGE_COLOUR, WORKER_PAGE_COLOUR

from tests.document_server.browser import Browser, Page, await_condition
from tests.document_server.client import ACCESS_CHECK, LOGIN_PAGE
from tests.support.document_server import DocumentServer

FORM, DONE, WORKER = "Document server login", "Logged in", "Answered by the worker"
BACKGROUND = "getComputedStyle(document.body).backgroundColor"


def rgb(colour: str) -> str:
    """A colour like #1f4e79 as scripts tell it."""
    return f"rgb({', '.join(str(part) for part in bytes.fromhex(colour.removeprefix('#')))})"


class LoginsInABrowser(unittest.TestCase):

    browser: Browser

    @classmethod
    def setUpClass(cls) -> None:
        cls.browser = cls.enterClassContext(Browser())

    def open(self, kind: str, bypass_worker: bool = False) -> tuple[DocumentServer, Page]:
        """A server with that kind of login page, and a page that has begun to load it."""
        server = self.enterContext(DocumentServer("--login-page", kind))
        page = Page(self.browser)
        page.call("Network.setBypassServiceWorker", bypass=bypass_worker)
        page.go(server.url + LOGIN_PAGE)
        return server, page

    def assert_logged_in(self, server: DocumentServer, page: Page, reports: int = 1) -> None:
        """The page that ends a login comes, has reported the session so many times, and there is one."""
        page.await_page(DONE)
        self.assertEqual((page.value(BACKGROUND), page.value("reports")), (rgb(DONE_PAGE_COLOUR), reports))
        page.go(server.url + ACCESS_CHECK)
        self.assertIn((ACCESS_CHECK, 200), [(entry["path"], entry["status"]) for entry in server.requests()])

    def test_the_form_is_sent_and_the_session_reported(self) -> None:
        server, page = self.open("form")
        page.await_page(FORM)
        self.assertEqual(page.value(BACKGROUND), rgb(PAGE_COLOUR))
        page.fill_in()
        self.assert_logged_in(server, page)

    def test_a_login_over_redirects_leaves_all_cookies_and_reports_nothing(self) -> None:
        server, page = self.open("redirects")
        page.await_page(FORM)
        page.fill_in()
        self.assert_logged_in(server, page, reports=0)
        cookies = page.call("Network.getCookies", urls=[server.url])["cookies"]
        self.assertEqual(sorted(cookie["name"] for cookie in cookies), ["JSESSIONID", "language", "workspace"])

    def test_a_new_window_opens_beside_the_form(self) -> None:
        server, page = self.open("popup")
        other = Page(self.browser, self.browser.await_target("page", server.url + "/login/new-window"))
        other.await_page("News")
        self.assertEqual(other.value(BACKGROUND), rgb(NEW_WINDOW_COLOUR))
        page.await_page(FORM)
        page.fill_in()
        self.assert_logged_in(server, page)

    def test_the_page_shows_one_dialog_which_holds_up_nothing_when_it_is_closed(self) -> None:
        server, page = self.open("dialog")
        dialog = self.browser.await_event("Page.javascriptDialogOpening")
        self.assertEqual((dialog["type"], dialog["message"]), ("alert", "Welcome"))
        page.call("Page.handleJavaScriptDialog", accept=True)
        page.await_page(FORM)
        page.fill_in()
        self.assert_logged_in(server, page)

    def test_a_login_in_the_frame_is_reported_by_the_page_around_it(self) -> None:
        server, page = self.open("framed")
        frame_address = server.url.replace("127.0.0.1", "localhost") + "/login/frame"
        frame = Page(self.browser, self.browser.await_target("iframe", frame_address))
        frame.await_page(FORM)
        self.assertEqual(frame.value("[innerWidth, innerHeight]"), page.value("[innerWidth, innerHeight]"))
        frame.fill_in()
        self.assert_logged_in(server, page)

    def await_worker(self, server: DocumentServer, page: Page) -> None:
        """Waits until the worker has said that it answers the requests of the form, which is there."""
        page.await_page(FORM)
        await_condition(lambda: "/login/worker-active" in [request["path"] for request in server.requests()],
                        "the worker")
        self.assertTrue(page.value("navigator.serviceWorker.controller !== null"))

    def test_the_worker_answers_the_login_itself(self) -> None:
        server, page = self.open("worker")
        self.await_worker(server, page)
        page.fill_in()
        page.await_page(WORKER)
        self.assertEqual(page.value(BACKGROUND), rgb(WORKER_PAGE_COLOUR))
        self.assertNotIn("POST", [request["method"] for request in server.requests()])

    def test_a_browser_that_goes_past_the_worker_logs_in(self) -> None:
        server, page = self.open("worker", bypass_worker=True)
        self.await_worker(server, page)
        page.fill_in()
        self.assert_logged_in(server, page)
