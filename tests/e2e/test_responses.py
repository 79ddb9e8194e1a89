"""Cookies out of the responses of the login page, and what the trace shows of those."""

import re

from document_server.cookie_shapes import TWENTY_COOKIES

from tests.e2e.browser_host import BrowserHost, await_condition
from tests.e2e.login_case import LoginCase

# The last of the odd cookies has a date whose day is no number.
UNREADABLE_DATE = "[0] Failed: invalid stoi argument error code: -2147467259"
DOCUMENT = "documents/plan?size=1000"
EXPIRY = re.compile(r"expires=.*")
# What the twenty odd cookies are read as, all but the last.
READ_COOKIES = [
    "=; domain=; path=; session; samesite=1",
    "=no-name; domain=; path=; session; samesite=1",
    "no-value=; domain=; path=; session; samesite=1",
    "quotes=a b, c; domain=; path=; session; samesite=1",
    "blanks=around; domain=; path=/; httponly; session; samesite=1",
    "capitals=1; domain=; path=/; httponly; session; samesite=1",
    "age-first=1; domain=; path=; samesite=1; expires=",
    "date-first=1; domain=; path=; samesite=1; expires=",
    "iso-date=1; domain=; path=; session; samesite=1",
    "no-age=1; domain=; path=; samesite=1; expires=",
    "negative-age=1; domain=; path=; samesite=1; expires=",
    "domain=1; domain=127.0.0.1; path=; session; samesite=1",
    "dotted-domain=1; domain=.127.0.0.1; path=; session; samesite=1",
    "relative-path=1; domain=; path=documents; session; samesite=1",
    "strict=1; domain=; path=; httponly; session; samesite=2",
    "none=1; domain=; path=; secure; session; samesite=0",
    "umlauts=Gr\u00fc\u00dfe; domain=; path=; session; samesite=1",
    "twice=first; domain=; path=/; session; samesite=1",
    "twice=second; domain=; path=/; httponly; session; samesite=1",
]
# Where a cookie is sent to whose header named no path.
BESIDE_THE_ANSWERS = "cookies/nothing"


class ResponseCase(LoginCase):
    """A host in which a person logs in, and that downloads afterwards."""

    def host_with(self, words: str) -> BrowserHost:
        return self.host(server_url=self.server.url + "/", MERIDO_ZANWEBBROWSER_IMPLEMENTATION=words)

    def cookies_of_download(self, host: BrowserHost, path: str, answer: str) -> dict[str, str]:
        """What a download of the host sends, which is answered so."""
        self.assertEqual(host.tell(f"get {path}"), answer)
        sent = self.server.requests()[-1]["headers"].get("Cookie", "")
        return dict(pair.partition("=")[::2] for pair in sent.split("; ") if pair)


class CookiesOfRedirects(ResponseCase):
    server_options = ("--login-page", "redirects")

    def log_in_without_report(self, words: str) -> BrowserHost:
        """The page at the end reports nothing, so the person closes the dialog."""
        host = self.host_with(words)
        host.tell("login")
        person = self.person_at_page("Log in")
        self.log_in(person)
        self.await_done_page(person)
        person.close()
        host.await_event("login false")
        return host

    def test_reach_the_host_although_the_page_never_reports(self) -> None:
        host = self.log_in_without_report("parse")
        cookies = self.cookies_of_download(host, DOCUMENT, "1000 bytes")
        self.assertEqual({"workspace": "main", "language": "en"}.items() - cookies.items(), set())
        self.assertEqual(sorted(cookies), ["JSESSIONID", "language", "workspace"])
        of_responses = ("Response ", "Request headers:", "End of headers", "Cookie", "Set-Cookie")
        self.assertEqual([line for line in host.trace() if line.removeprefix("[0] ").startswith(of_responses)
                          and "(ZanBasicAuthentication)" not in line], [])

    def test_stay_in_the_browser_without_the_word(self) -> None:
        host = self.log_in_without_report("trace")
        self.assertEqual(self.cookies_of_download(host, DOCUMENT, "HTTP 403"), {})
        self.assertIn("[0] Set-Cookie: workspace=main; Path=/", host.trace())


class OddAnswers(ResponseCase):
    server_options = ("--login-page", "odd")

    def headers_of(self, path: str, trace: list[str]) -> list[str]:
        """The headers of the answer to that request, as far as they have been traced."""
        begin = trace.index(f"[0] Response 200 received for GET: {self.server.url}{path}")
        headers = trace[trace.index("[0] Response headers:", begin) + 1:]
        end = headers.index("[0] End of headers") if "[0] End of headers" in headers else len(headers)
        return [line.removeprefix("[0] ") for line in headers[:end]]

    def trace_of_answers(self, words: str, last: str) -> tuple[BrowserHost, list[str]]:
        """What was traced when the page had fetched all odd answers, in a dialog that was then closed."""
        host = self.host_with(words)
        host.tell("login")
        person = self.person_at_page("Log in")
        await_condition(lambda: last in host.trace(), last)
        person.close()
        host.await_event("login false")
        return host, host.trace()

    def test_are_traced_a_line_for_each_header(self) -> None:
        # The last of the headers to come.
        _, trace = self.trace_of_answers("trace", "[0] Set-Cookie: " + TWENTY_COOKIES[-1].decode())
        self.assertEqual(self.headers_of("/headers/none", trace), [])
        self.assertEqual(self.headers_of("/cookies/names", trace)[:4],
                         ["SET-COOKIE: capitals=1", "set-cookie: small=1", "Set-Cookie2: second=1",
                          "Content-Type: text/plain"])
        # Blanks around a value are no part of it, and the trace writes a tab as two characters.
        values = [cookie.decode().strip().replace("\t", "\\t") for cookie in TWENTY_COOKIES]
        self.assertEqual(self.headers_of("/cookies/twenty", trace)[:len(values)],
                         ["Set-Cookie: " + value for value in values])
        hops = [line for line in trace if line.startswith("[0] Response 302")]
        self.assertEqual(hops, [f"[0] Response 302 received for GET: {self.server.url}/cookies/chain{query}"
                                for query in ("", "?count=3&hop=2", "?count=3&hop=3")])

    def test_bring_their_cookies_to_the_host(self) -> None:
        host, trace = self.trace_of_answers("parse,trace", UNREADABLE_DATE)
        received = [line.removeprefix("[0] Cookie received: ") for line in trace
                    if line.startswith("[0] Cookie received: ")]
        self.assertEqual([cookie.partition(";")[0] for cookie in received[:5]],
                         ["capitals=1", "small=1", "hop1=1", "hop2=2", "hop3=3"])
        self.assertEqual([EXPIRY.sub("expires=", cookie) for cookie in received[5:]], READ_COOKIES)
        cookies = self.cookies_of_download(host, BESIDE_THE_ANSWERS, "HTTP 404")
        expected = {"capitals": "1", "small": "1", "hop1": "1", "hop2": "2", "hop3": "3", "twice": "second",
                    "no-value": "", "quotes": "a b, c", "iso-date": "1", "age-first": "1", "date-first": "1"}
        self.assertEqual(expected.items() - cookies.items(), set())
        self.assertEqual({"second", "no-age", "negative-age", "bad-day"} & cookies.keys(), set())

    def test_bring_later_cookies_in_the_place_of_earlier_ones_of_the_same_name(self) -> None:
        host, _ = self.trace_of_answers("parse,trace", UNREADABLE_DATE)
        self.assertEqual(host.tell(f"get {BESIDE_THE_ANSWERS}"), "HTTP 404")
        sent = self.server.requests()[-1]["headers"]["Cookie"]
        self.assertEqual([pair for pair in sent.split("; ") if pair.startswith("twice=")], ["twice=second"])
