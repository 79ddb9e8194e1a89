"""Several logins of one host, one after the other, and what they leave behind."""

from tests.e2e.browser_case import BrowserCase
from tests.e2e.browser_host import BrowserHost, await_condition
from tests.e2e.login_case import LoginCase

LOGINS = 50


class TwoLogins(LoginCase):
    def test_each_opens_a_dialog_and_gets_a_session_of_its_own(self) -> None:
        host = self.host(server_url=self.server.url + "/")
        sessions = []
        for _ in range(2):
            host.tell("login")
            person = self.dialog("Log in")
            self.assertEqual(host.tell("owner"), "disabled inactive")
            self.await_page(person)
            self.log_in(person)
            host.await_event("login true")
            self.assertEqual(host.tell("owner"), "enabled active")
            self.assertEqual(host.tell("get documents/plan?size=1000"), "1000 bytes")
            sessions.append(self.server.requests()[-1]["headers"]["Cookie"])
        self.assertNotEqual(*sessions)

    def test_a_dialog_that_is_closed_means_no_login_although_cookies_are_set(self) -> None:
        host = self.host(server_url=self.server.url + "/")
        host.tell("login")
        person = self.person_at_page("Log in")
        self.log_in(person)
        host.await_event("login true")
        host.tell("login")
        person = self.person_at_page("Log in")
        person.close()
        host.await_event("login false")
        self.assertEqual(host.tell("get documents/plan?size=1000"), "1000 bytes")


class ManyLogins(BrowserCase):
    """A login page that reports without any input."""

    server_options = ("--login-page", "report")

    def log_in(self, host: BrowserHost) -> None:
        host.tell("login")
        host.await_event("login true")
        # The last browser lives on until the next one's dialog has gone, but its processes do not.
        self.assert_no_browser_process()

    def test_nothing_is_left_after_fifty(self) -> None:
        host = self.host(server_url=self.server.url + "/")
        # The first ones also load modules and start threads of the system.
        for _ in range(3):
            self.log_in(host)
        settled = host.counts()
        for _ in range(LOGINS - 3):
            self.log_in(host)
        await_condition(lambda: host.counts() == settled, f"the return to {settled}, not {host.counts()}")
