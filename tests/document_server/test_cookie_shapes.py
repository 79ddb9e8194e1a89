"""Answers with cookies and heads of odd shapes, to the byte."""

from tests.document_server.case import ServerTest
from tests.document_server.client import cookies_set, fetch, raw_answer

END_OF_HEAD = b"Content-Type: text/plain\r\nContent-Length: 9\r\nConnection: close\r\n\r\n"
BODY = b"Cookies.\n"

# All of them in their order, as the server has to send them.
TWENTY = b"""Set-Cookie: no-equals-sign
Set-Cookie: =no-name
Set-Cookie: no-value=
Set-Cookie: quotes="a b, c"
Set-Cookie:   blanks \t =  around  ;  Path =  /  ; HttpOnly\x20\x20
Set-Cookie: capitals=1; PATH=/; HTTPONLY; MAX-AGE=99999999999999999999999
Set-Cookie: age-first=1; Max-Age=600; Expires=Tue, 09 Jun 2037 10:18:14 GMT
Set-Cookie: date-first=1; Expires=Tue, 09 Jun 2037 10:18:14 GMT; Max-Age=600
Set-Cookie: iso-date=1; Expires=2037-06-09T10:18:14Z
Set-Cookie: no-age=1; Max-Age=0
Set-Cookie: negative-age=1; Max-Age=-1
Set-Cookie: domain=1; Domain=127.0.0.1
Set-Cookie: dotted-domain=1; Domain=.127.0.0.1; SameSite=Sometimes
Set-Cookie: relative-path=1; Path=documents; SameSite=Lax
Set-Cookie: strict=1; SameSite=Strict; HttpOnly
Set-Cookie: none=1; SameSite=None; Secure
Set-Cookie: umlauts=Gr\xc3\xbc\xc3\x9fe
Set-Cookie: twice=first; Path=/
Set-Cookie: twice=second; Path=/elsewhere; HttpOnly; Path=/; httponly
Set-Cookie: bad-day=1; Expires=Wed, xx Jun 2021 10:18:14 GMT
""".replace(b"\n", b"\r\n")


class CookieShapes(ServerTest):

    def test_the_twenty_arrive_as_they_are_and_nothing_follows_the_last(self) -> None:
        self.assertEqual(TWENTY.count(b"Set-Cookie: "), 20)
        self.assertEqual(raw_answer(self.server, "/cookies/twenty"),
                         b"HTTP/1.1 200 OK\r\n" + TWENTY + END_OF_HEAD + BODY)

    def test_the_name_of_the_header_comes_in_three_spellings(self) -> None:
        self.assertEqual(raw_answer(self.server, "/cookies/names"),
                         b"HTTP/1.1 200 OK\r\n"
                         b"SET-COOKIE: capitals=1\r\nset-cookie: small=1\r\nSet-Cookie2: second=1\r\n"
                         + END_OF_HEAD + BODY)

    def test_the_chain_sets_one_cookie_per_redirect_and_ends_in_a_page(self) -> None:
        for query, count in (("", 3), ("?count=1", 1), ("?count=100", 100)):
            with self.subTest(query):
                path = f"/cookies/chain{query}"
                for hop in range(1, count + 1):
                    answer = fetch(self.server, path)
                    self.assertEqual((answer.status, answer.headers.get_all("Set-Cookie")),
                                     (302, [f"hop{hop}={hop}; Path=/"]))
                    path = answer.headers["Location"]
                answer = fetch(self.server, path)
                self.assertEqual((answer.status, cookies_set(answer), answer.body),
                                 (200, {}, b"The end of the chain.\n"))

    def test_a_chain_of_no_redirects_is_the_page(self) -> None:
        self.assertEqual(fetch(self.server, "/cookies/chain?count=0").status, 200)

    def test_a_chain_that_is_too_long_or_none_is_a_bad_request(self) -> None:
        for query in ("count=101", "count=-1", "count=x", "count=3&hop=0", "count=3&hop=5"):
            with self.subTest(query):
                self.assertEqual(fetch(self.server, f"/cookies/chain?{query}").status, 400)

    def test_the_head_without_headers_is_a_status_line_alone(self) -> None:
        self.assertEqual(raw_answer(self.server, "/headers/none"), b"HTTP/1.1 200 OK\r\n\r\nNo headers.\n")

    def test_head_gets_the_same_heads_without_the_bodies(self) -> None:
        for path in ("/cookies/twenty", "/cookies/names", "/headers/none"):
            with self.subTest(path):
                head, blank_line, _ = raw_answer(self.server, path).partition(b"\r\n\r\n")
                self.assertEqual(raw_answer(self.server, path, "HEAD"), head + blank_line)

    def test_the_log_has_the_requests_with_their_status(self) -> None:
        for path in ("/cookies/twenty", "/cookies/names", "/headers/none"):
            with self.subTest(path):
                raw_answer(self.server, path)
                entry = self.server.requests()[-1]
                self.assertEqual((entry["path"], entry["status"]), (path, 200))


class BehindABalancer(ServerTest):

    options = ("--back-ends", "2")

    def test_the_cookies_of_the_load_balancer_stay_out_of_what_is_sent_to_the_byte(self) -> None:
        for path, cookies in (("/cookies/twenty", 20), ("/cookies/names", 0), ("/headers/none", 0)):
            with self.subTest(path):
                answer = raw_answer(self.server, path)
                self.assertEqual((answer.count(b"Set-Cookie: "), b"BIGipServer" in answer), (cookies, False))
