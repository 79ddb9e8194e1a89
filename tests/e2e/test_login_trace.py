"""The whole trace of a login, as a support engineer reads it, compared with what is kept in the folder expected/."""

import re
from pathlib import Path

from tests.e2e.login_case import LoginCase

EXPECTED = Path(__file__).parent / "expected"
# The values of these cookies; and of the browser: its version, what it can decode, and its language.
CHANCE = re.compile(r"(JSESSIONID=|BIGipServer~pool~documents=|TS01d2f6a5=)[^;]+|"
                    r"(Chrome/)[\d.]+|(Accept-Encoding: gzip, deflate, ).+|(Accept-Language: ).+")


class TraceCase(LoginCase):
    """A login whose trace is looked at."""

    def assert_trace_of_login(self, name: str, words: str, **environment: str) -> None:
        viewer = self.start(words=words, **environment)
        person = self.person_at_page()
        self.log_in(person)
        self.assertEqual(viewer.exit_code(), 0, viewer.last_line)
        trace = [self.without_chance(line) for line in viewer.trace()]
        self.assertEqual(trace, (EXPECTED / name).read_text("utf-8").splitlines())

    def without_chance(self, line: str) -> str:
        """The line with names for what differs from run to run."""
        return CHANCE.sub(r"\1\2\3\4VALUE", line.replace(self.server.url.removeprefix("http://"), "SERVER"))


class LoginTrace(TraceCase):
    def test_without_tracing_it_is_short(self) -> None:
        self.assert_trace_of_login("login.txt", "")

    def test_with_tracing_it_shows_headers_addresses_and_cookies(self) -> None:
        self.assert_trace_of_login("login-traced.txt", "trace")

    def test_with_parse_the_session_is_reported_at_once(self) -> None:
        self.assert_trace_of_login("login-parse.txt", "parse,trace")

    def test_through_the_legacy_browser_it_tells_the_user_agent(self) -> None:
        self.assert_trace_of_login("login-legacy.txt", "ie")


class BalancedLoginTrace(TraceCase):
    server_options = ("--back-ends", "2")

    def test_with_tracing_it_shows_what_the_browser_took_along(self) -> None:
        self.assert_trace_of_login("login-balanced-traced.txt", "trace", KELDA_TEST_SERVER_COOKIE_FLAGS="0x202000")
