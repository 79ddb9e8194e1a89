"""The WebView2 backend in a window of a host: a page of the document server comes up in it and goes away again."""

from document_server.login import BAND_COLOUR

from tests.e2e.browser_case import PICTURES, BrowserCase, rgb
from tests.e2e.browser_host import await_condition, browser_processes, save_picture

BEHIND = (255, 255, 255)


class BrowserInAWindow(BrowserCase):
    def test_the_page_appears_fills_the_window_follows_its_size_and_goes(self) -> None:
        host = self.host()
        self.assertEqual(host.tell("create"), "webview2")
        host.await_event("completed")
        self.assert_shows_login_page(host, 640, 480)
        save_picture(PICTURES / "browser-in-a-window.png")
        self.assertEqual(host.pixel(640 + 5, 100), BEHIND, "nothing is drawn beside the window")

        host.tell("resize 500 300")
        self.assert_shows_login_page(host, 500, 300)
        self.assertEqual(host.pixel(560, 100), BEHIND)
        host.tell("resize 800 600")
        self.assert_shows_login_page(host, 800, 600)

        host.tell("close")
        await_condition(lambda: host.pixel(300, 20) != rgb(BAND_COLOUR), "the end of the page")
        host.tell("release")
        self.assert_no_browser_process()

    def test_the_first_request_carries_the_librarys_headers_and_every_other_its_accept(self) -> None:
        host = self.host(server_url=self.server.url + "/status/200?for=")
        host.tell("create")
        host.await_event("completed")
        first = self.server.requests()[0]
        self.assertEqual((first["method"], first["path"]), ("GET", "/status/200?for=/qxcore/jsp/qvs/vislogon.jsp"))
        self.assertEqual((first["headers"]["Accept"], first["headers"]["Pragma"]), ("*/*", "no-cache"))
        # A page without an icon has the browser look for one, an image, for which it asks otherwise.
        icon = "/favicon.ico"
        await_condition(lambda: icon in [request["path"] for request in self.server.requests()], "the icon's request")
        self.assertEqual({request["headers"]["Accept"] for request in self.server.requests()}, {"*/*"})

    def test_a_page_that_calls_the_host_object_reports_its_session_once(self) -> None:
        for words in ("", "parse"):
            with self.subTest(words):
                host = self.host(server_url=self.server.url + "/login/report?for=",
                                 MERIDO_ZANWEBBROWSER_IMPLEMENTATION=words)
                host.tell("create")
                host.await_event("authenticated")
                call = "[0] ZanWebBrowserEdge::Invoke DISPATCH_METHOD - dispIdMember == DISPID_NORV"
                await_condition(lambda: host.trace().count(call) == 2, "the page's second call")
                self.assertEqual(host.trace().count("[0] OnSessionAuthenticated();"), 1)
                self.assertNotIn("authenticated", host.events())
                host.tell("close-release")
                self.assert_no_browser_process()

    def test_nothing_is_left_after_several_browsers(self) -> None:
        host = self.host()
        _, windows, _, _ = host.counts()
        settled = None
        for _ in range(4):
            host.tell("create")
            host.await_event("completed")
            host.tell("close")
            self.assert_no_browser_process()
            host.tell("release")
            # The first one also loads modules, which keep handles of their own.
            settled = settled or host.counts()
            await_condition(lambda: host.counts() == settled, f"the return to {settled} handles, windows and objects")
        self.assertEqual((settled[1], settled[3]), (windows, 0))

    def test_a_browser_that_is_closed_before_it_has_come_up_leaves_nothing(self) -> None:
        host = self.host()
        host.tell("create")
        host.await_event("completed")
        host.tell("close-release")
        self.assert_no_browser_process()
        settled = host.counts()
        for started in (False, True):
            for commands in (("close-release",), ("close", "release"), ("release",)):
                with self.subTest(commands=commands, started=started):
                    host.tell("create")
                    if started:
                        await_condition(lambda: browser_processes(self.folder), "the browser's start")
                    for command in commands:
                        host.tell(command)
                    self.assert_no_browser_process()
                    await_condition(lambda: host.counts() == settled, f"the return to {settled}")
        self.assertNotIn("completed", host.events())

    def test_the_process_of_the_browser_ends_with_a_host_that_dies(self) -> None:
        host = self.host()
        host.tell("create")
        host.await_event("completed")
        self.assertTrue(browser_processes(self.folder))
        host.kill()
        self.assert_no_browser_process()


class Words(BrowserCase):
    def test_devtools_nosso_inprivate_and_trace_are_accepted_together(self) -> None:
        host = self.host(MERIDO_ZANWEBBROWSER_IMPLEMENTATION="devtools,nosso,inprivate,trace")
        self.assertEqual(host.tell("create"), "webview2")
        host.await_event("completed")
        address = f"{self.server.url}/qxcore/jsp/qvs/vislogon.jsp"
        self.assertEqual(host.trace()[:7], [
            "[0] WebView2 runtime found, version 146.0.3856.49",
            "[0] The COM library was initialized successfully",
            "[0] Using InPrivate mode",
            f"[0] WinInet cookies before navigating to {address}",
            f"[0] WinInet cookies for {address}",
            f"[0] Navigating to {address}",
            f"[0] Response 200 received for GET: {address}",
        ])
        self.assertEqual(host.trace()[-1], "[0] End of headers")


class FailedLoad(BrowserCase):
    def test_a_missing_check_file_is_traced_and_the_browser_stays(self) -> None:
        host = self.host(check_mode=1, server_url=self.server.url + "/")
        host.tell("create")
        failed = "[0] Navigation failed. Leaving Edge control visible for user to read message"
        await_condition(lambda: failed in host.trace(), "the trace of the failed navigation")
        self.assertEqual(self.server.requests()[0]["path"], "/ARPublish/veltauth/check_authenticated_access.txt")
        self.assertEqual(host.events(), [])
        host.tell("close-release")
        self.assert_no_browser_process()

    def test_an_address_with_the_empty_script_in_it_is_never_asked_for(self) -> None:
        host = self.host(server_url=self.server.url + "/?javascript:void(0)&for=")
        host.tell("create")
        failed = "[0] Navigation failed. Leaving Edge control visible for user to read message"
        await_condition(lambda: failed in host.trace(), "the trace of the failed navigation")
        self.assertEqual(self.server.requests(), [])

    def test_a_server_that_is_not_there_is_traced_and_the_browser_stays(self) -> None:
        self.server.stop()
        host = self.host()
        host.tell("create")
        failed = "[0] Navigation failed. Leaving Edge control visible for user to read message"
        await_condition(lambda: failed in host.trace(), "the trace of the failed navigation")
        self.assertEqual(host.events(), [])
        self.assertTrue(browser_processes(self.folder))
