"""The login through the legacy browser: by a person with keys and a mouse, and what the server and the trace see of it."""

from typing import Any

from document_server.login import BAND_COLOUR, LINK_COLOUR, WRONG_PAGE_COLOUR

from tests.e2e.browser_case import PICTURES, BrowserCase, rgb
from tests.e2e.browser_host import BrowserHost, await_condition, save_picture
from tests.e2e.login_case import INSET, TITLE_BAR, DownloadCase, LoginCase, Viewer
from tests.flow.viewer_case import PASSWORD, USER

OF_BROWSER = "ZanWebBrowserIE 0 "
LOAD_FAILED = OF_BROWSER + "Navigation failed. Leaving IE control visible for user to read message"
REPORTED = [
    OF_BROWSER + "ZanWebBrowser::Invoke DISPATCH_METHOD - dispIdMember == DISPID_NORV",
    OF_BROWSER + "OnSessionAuthenticated();",
    "ZanFormBasedAuthentication 0 OnSessionAuthenticated",
    "ZanFormBasedAuthentication 0 OnDestoy()",
]


class LegacyCase(DownloadCase):
    """A viewer whose login dialog has the legacy browser."""

    def start_legacy(self, words: str = "ie", **environment: str) -> Viewer:
        return self.start_download(words=words, **environment)

    def logged_in_trace(self, **environment: str) -> list[str]:
        """What the trace of a good login says of the browser and the dialog."""
        viewer = self.start_legacy(**environment)
        self.log_in(self.person_at_page())
        self.assert_downloaded(viewer)
        return [line for line in viewer.trace() if line.startswith(("ZanWebBrowser", "ZanForm"))]


class Login(LegacyCase):
    def test_a_good_login_is_reported_once_and_lets_the_document_be_downloaded(self) -> None:
        viewer = self.start_legacy()
        person = self.person_at_page()
        save_picture(PICTURES / "legacy-login-dialog.png")
        self.log_in(person)
        person.await_end()
        self.assert_downloaded(viewer)
        trace = viewer.trace()
        self.assertEqual(trace[-len(REPORTED):], REPORTED)
        self.assertEqual(trace.count(REPORTED[1]), 1)

    def test_a_wrong_password_may_be_followed_by_the_right_one(self) -> None:
        viewer = self.start_legacy()
        person = self.person_at_page()
        self.log_in(person, "no such password")
        self.await_page(person, WRONG_PAGE_COLOUR)
        self.log_in(person)
        self.assert_downloaded(viewer)

    def test_tab_and_the_editing_keys_reach_the_page(self) -> None:
        viewer = self.start_legacy()
        person = self.person_at_page()
        self.enter_page(person)
        # Up goes to the beginning of the field; Delete takes the character behind the caret.
        person.type("x" + USER)
        person.press("Up", "Delete", "Tab")
        person.type(PASSWORD)
        person.press("Tab", "shift+Tab", "Tab", "Return")
        self.assert_downloaded(viewer)

    def test_copied_text_can_be_pasted_and_typed_text_taken_back(self) -> None:
        viewer = self.start_legacy()
        person = self.person_at_page()
        self.enter_page(person)
        person.type(USER)
        # Selected up to the beginning, copied, deleted, and brought back.
        person.press("shift+Up", "ctrl+c", "Delete", "ctrl+v", "Tab")
        person.type("not this")
        person.press("ctrl+z")
        person.type(PASSWORD)
        person.press("Return")
        self.assert_downloaded(viewer)

    def test_the_page_follows_the_size_of_the_dialog(self) -> None:
        viewer = self.start_legacy()
        person = self.person_at_page()
        person.resize(640, 420)
        self.await_page(person)
        self.log_in(person)
        self.assert_downloaded(viewer)

    def test_the_close_button_means_no_login(self) -> None:
        viewer = self.start_legacy()
        self.person_at_page().close()
        self.assert_not_logged_in(viewer)


class TwicePage(LegacyCase):
    server_options = ("--login-page", "twice")

    def test_a_second_report_changes_nothing(self) -> None:
        trace = self.logged_in_trace()
        self.assertEqual(trace.count(REPORTED[1]), 1)


class FaultyPage(LegacyCase):
    server_options = ("--login-page", "faulty")

    def test_a_script_error_is_one_line_in_the_trace_and_no_box(self) -> None:
        errors = [line for line in self.logged_in_trace() if "Script error:" in line]
        self.assertEqual(len(errors), 1)
        page = f"{self.server.url}//qxcore/jsp/qvs/vislogon.jsp"
        self.assertRegex(errors[0], rf"^{OF_BROWSER}Script error: errorUrl: {page}, "
                                    r"errorMessage: .*documentServer is not defined, "
                                    r"errorCode: 0, errorLine: [1-9][0-9]*, errorCharacter: [0-9]+$")


class LinksPage(LegacyCase):
    server_options = ("--login-page", "links")

    def test_a_link_without_an_action_is_cancelled_and_others_are_not(self) -> None:
        viewer = self.start_legacy()
        person = self.person_at_page()
        middle = person.width // 2
        person.click(middle, person.height - INSET - 90)
        person.click(middle, person.height - INSET - 50)
        person.await_colour(rgb(LINK_COLOUR), INSET, person.height - INSET)
        person.await_colour(rgb(BAND_COLOUR), INSET, TITLE_BAR + INSET)
        person.close()
        self.assert_not_logged_in(viewer)


class RefusedPage(LegacyCase):
    server_options = ("--login-page", "broken")

    def test_a_failed_load_is_traced_and_the_dialog_waits(self) -> None:
        viewer = self.start_legacy()
        person = self.dialog()
        await_condition(lambda: LOAD_FAILED in viewer.trace(), LOAD_FAILED)
        person.close()
        self.assert_not_logged_in(viewer)


class PageOfAnError(LegacyCase):
    server_options = ("--login-page", "refused-status")

    def test_stays_in_sight_and_the_dialog_waits(self) -> None:
        viewer = self.start_legacy()
        person = self.dialog()
        # The server's page has no style of its own.
        person.await_colour(rgb("#ffffff"), INSET, person.height - INSET)
        await_condition(lambda: LOAD_FAILED in viewer.trace(), LOAD_FAILED)
        person.close()
        self.assert_not_logged_in(viewer)


class UserAgent(LegacyCase):
    def agents(self) -> tuple[str, str]:
        """What the server got from the probe, and from the login page's browser."""
        requests = self.server.requests()
        page = next(request for request in requests if request["path"].endswith("vislogon.jsp"))
        return requests[0]["headers"]["User-Agent"], page["headers"]["User-Agent"]

    def test_claims_windows_10_to_the_server(self) -> None:
        trace = self.logged_in_trace()
        before, after = self.agents()
        self.assertIn("Windows NT 6.1", before)
        self.assertEqual(after, before.replace("Windows NT 6.1", "Windows NT 10.0"))
        self.assertIn(OF_BROWSER + "User-Agent: " + before, trace)
        self.assertIn(OF_BROWSER + "Setting User-Agent to " + after, trace)
        # It is the whole process's: the download has it too.
        self.assertEqual(self.server.requests()[-1]["headers"]["User-Agent"], after)

    def test_stays_the_systems_where_the_variable_says_default(self) -> None:
        trace = self.logged_in_trace(MERIDO_ZANWEBBROWSER_USER_AGENT="default")
        before, after = self.agents()
        self.assertEqual(after, before)
        self.assertIn(OF_BROWSER + "Using default User-Agent", trace)

    def test_is_that_of_the_variable_as_it_stands(self) -> None:
        self.logged_in_trace(MERIDO_ZANWEBBROWSER_USER_AGENT=" Default")
        # The protocol knows no blank before a value; the trace shows it.
        self.assertEqual(self.agents()[1], "Default")


class Fallback(LegacyCase):
    """Each ends in a login through the legacy browser."""

    def assert_legacy(self, **environment: str) -> None:
        trace = self.logged_in_trace(words="", **environment)
        self.assertEqual(trace[-len(REPORTED):], REPORTED)

    def test_without_a_runtime(self) -> None:
        self.assert_legacy(KELDA_TEST_RUNTIME_VERSION="none")

    def test_with_too_old_a_runtime(self) -> None:
        self.assert_legacy(KELDA_TEST_RUNTIME_VERSION="114.0.1823.86")

    def test_with_the_word_among_others(self) -> None:
        trace = self.logged_in_trace(words="trace,ie")
        self.assertEqual(trace[-len(REPORTED):], REPORTED)


class InAWindow(LoginCase):
    """Browsers that a host makes itself."""

    def checking_host(self) -> BrowserHost:
        """A host whose own browser checks the session."""
        host = self.host(check_mode=1, server_url=self.server.url + "/", MERIDO_ZANWEBBROWSER_IMPLEMENTATION="ie")
        self.assertEqual(host.tell("legacy-control"), "ok")
        return host

    def checks(self) -> list[dict[str, Any]]:
        """The requests of the check's file."""
        return [request for request in self.server.requests()
                if request["path"].endswith("check_authenticated_access.txt")]

    def trace_of_check(self, host: BrowserHost) -> list[str]:
        """What is traced of a check that reports a session, without the User-Agent's lines."""
        before = len(host.trace())
        self.assertEqual(host.tell("create"), "legacy")
        host.await_event("authenticated")
        host.tell("close-release")
        return [line.removesuffix(" (ZanWebBrowserIE)") for line in host.trace()[before:] if "User-Agent" not in line]

    def test_check_mode_reports_the_session_with_the_first_document(self) -> None:
        host = self.checking_host()
        host.tell("login")
        self.log_in(self.person_at_page("Log in"))
        host.await_event("login true")
        self.assertEqual(self.trace_of_check(host), ["[0] The COM library is already initialized on this thread",
                                                     "[0] OnSessionAuthenticated();"])
        self.assertEqual([check["status"] for check in self.checks()], [200])

    def test_check_mode_takes_the_page_of_a_refusal_for_a_document_too(self) -> None:
        self.assertEqual(self.trace_of_check(self.checking_host()), [
            "[0] The COM library is already initialized on this thread",
            "[0] Navigation failed. Leaving IE control visible for user to read message",
            "[0] OnSessionAuthenticated();"])
        self.assertEqual([check["status"] for check in self.checks()], [403])

    def test_a_second_browser_finds_the_user_agent_of_the_first(self) -> None:
        host = self.checking_host()
        for _ in range(2):
            self.trace_of_check(host)
        agents = [check["headers"]["User-Agent"] for check in self.checks()]
        self.assertEqual(agents, 2 * agents[:1])
        lines = [line for line in host.trace() if "User-Agent" in line]
        self.assertEqual([line.partition(agents[0])[0] for line in lines[1:]],
                         ["[0] Setting User-Agent to ", "[0] User-Agent: "])


class TenLogins(BrowserCase):
    server_options = ("--login-page", "report")

    def test_nothing_is_left_of_them(self) -> None:
        host = self.host(server_url=self.server.url + "/", MERIDO_ZANWEBBROWSER_IMPLEMENTATION="ie")
        self.assertEqual(host.tell("legacy-control"), "ok")

        def log_in() -> None:
            host.tell("login")
            host.await_event("login true")
        # The first ones also load modules and start threads of the system.
        for _ in range(3):
            log_in()
        settled = host.counts()
        for _ in range(7):
            log_in()
        await_condition(lambda: host.counts() == settled, f"the return to {settled}, not {host.counts()}")
