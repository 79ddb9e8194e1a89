"""A server behind a load balancer: login page and documents come from the back-end that the host's first download got."""

from tests.e2e.browser_host import BrowserHost, await_condition
from tests.e2e.login_case import LoginCase

LOGIN_PAGE = "/qxcore/jsp/qvs/vislogon.jsp"
CHECK_FILE = "/ARPublish/veltauth/check_authenticated_access.txt"
# What the balancer's cookies have: SameSite=Lax, and HttpOnly.
SERVER_COOKIE_FLAGS = "0x202000"
PRE_POPULATING = "[0] Pre-populating LB cookies for "


class BalancedCase(LoginCase):
    server_options = ("--back-ends", "3")

    def balanced_host(self, check_mode: int = 0) -> BrowserHost:
        return self.host(check_mode, self.server.url + "/", KELDA_TEST_SERVER_COOKIE_FLAGS=SERVER_COOKIE_FLAGS,
                         MERIDO_ZANWEBBROWSER_IMPLEMENTATION="trace")

    def log_in_with(self, host: BrowserHost) -> None:
        host.tell("login")
        person = self.person_at_page("Log in")
        self.log_in(person)
        host.await_event("login true")

    def back_ends(self) -> set[str]:
        return {request["back_end"] for request in self.server.requests()}


class LoadBalancing(BalancedCase):
    def test_the_first_download_the_login_and_the_document_share_a_back_end(self) -> None:
        host = self.balanced_host()
        host.tell("get ")
        self.log_in_with(host)
        self.assertEqual(host.tell("get documents/plan?size=1000"), "1000 bytes")
        self.assertEqual(self.back_ends(), {"back-end-1"})
        first_of_browser = next(request for request in self.server.requests() if request["path"] == LOGIN_PAGE)
        self.assertIn("BIGipServer~pool~documents=", first_of_browser["headers"]["Cookie"])
        self.assertIn("TS01d2f6a5=", first_of_browser["headers"]["Cookie"])
        self.assertEqual(sum(line.startswith(PRE_POPULATING) for line in host.trace()), 1)

    def test_a_second_browser_takes_the_session_along_and_passes_the_check(self) -> None:
        host = self.balanced_host(check_mode=1)
        self.log_in_with(host)
        self.assertEqual(host.tell("create"), "webview2")
        host.await_event("authenticated")
        checks = [request["status"] for request in self.server.requests() if request["path"] == CHECK_FILE]
        self.assertEqual(checks, [200])
        self.assertEqual(self.back_ends(), {"back-end-1"})


class WithoutLoadBalancer(LoginCase):
    def test_nothing_is_taken_along(self) -> None:
        host = self.host(1, self.server.url + "/", KELDA_TEST_SERVER_COOKIE_FLAGS=SERVER_COOKIE_FLAGS,
                         MERIDO_ZANWEBBROWSER_IMPLEMENTATION="trace")
        host.tell("login")
        person = self.person_at_page("Log in")
        self.log_in(person)
        host.await_event("login true")
        host.tell("create")
        failed = "[0] Navigation failed. Leaving Edge control visible for user to read message"
        await_condition(lambda: failed in host.trace(), "the check's refusal")
        self.assertEqual([line for line in host.trace() if line.startswith(PRE_POPULATING)], [])
        self.assertNotIn("authenticated", host.events())
