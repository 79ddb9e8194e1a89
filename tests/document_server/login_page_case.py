"""What the tests of a viewer's login page share: what its pages look like and what a login is."""

from html.parser import HTMLParser

from document_server.login import (CHALLENGE_PAGE_COLOUR, DONE_PAGE_COLOUR, NEW_WINDOW_COLOUR, PAGE_COLOUR,
                                   WORKER_PAGE_COLOUR, WRONG_PAGE_COLOUR)

from tests.document_server.case import ServerTest
from tests.document_server.client import ACCESS_CHECK, Answer, cookie_header, cookies_set, fetch

COLOURS = (PAGE_COLOUR, WRONG_PAGE_COLOUR, DONE_PAGE_COLOUR, CHALLENGE_PAGE_COLOUR, NEW_WINDOW_COLOUR,
           WORKER_PAGE_COLOUR)
REPORT_CALL = b"window.external.norv();"
SESSION_COOKIE = r"JSESSIONID=[\w-]{32}; Path=/; HttpOnly"
WRONG = b'<p class="error">Wrong user name or password.</p>'


class Controls(HTMLParser):
    """The controls of a page in their order, which is that of the Tab key, with their attributes."""

    def __init__(self, page: bytes) -> None:
        super().__init__()
        self.found: list[tuple[str, dict[str, str | None]]] = []
        self.feed(page.decode())

    def handle_starttag(self, tag: str, attrs: list[tuple[str, str | None]]) -> None:
        if tag in ("a", "button", "input", "select", "textarea"):
            self.found.append((tag, dict(attrs)))


class LoginPageTest(ServerTest):
    """Has what the tests of the kinds ask about an answer."""

    def assert_shows(self, answer: Answer, colour: str, status: int = 200) -> None:
        """The answer is a page of that colour and of no other one that tests look for."""
        self.assertEqual((answer.status, answer.headers["Content-Type"]), (status, "text/html; charset=utf-8"))
        self.assertEqual([known for known in COLOURS if f"background: {known};".encode() in answer.body], [colour])

    def assert_logs_in(self, answer: Answer, reports: int) -> None:
        """The answer opens a session and its page reports that so many times."""
        self.assert_shows(answer, DONE_PAGE_COLOUR)
        self.assertEqual(answer.body.count(REPORT_CALL), reports)
        cookie, = answer.headers.get_all("Set-Cookie")
        self.assertRegex(cookie, rf"\A{SESSION_COOKIE}\Z")
        session = cookie_header(cookies_set(answer))
        self.assertEqual(fetch(self.server, ACCESS_CHECK, headers=session).status, 200)

    def assert_asks(self, answer: Answer) -> None:
        """The answer is the form as it is at first."""
        self.assert_shows(answer, PAGE_COLOUR)
        self.assertIn(b'<form method="post">', answer.body)
        self.assertNotIn(b'class="error"', answer.body)
        self.assertNotIn(REPORT_CALL, answer.body)
        self.assertIsNone(answer.headers["Set-Cookie"])
