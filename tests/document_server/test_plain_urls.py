"""Open pages, statuses, redirects and what is no URL of the server."""

from tests.document_server.case import ServerTest
from tests.document_server.client import ask, basic, connect, fetch, raw_exchange


class PlainUrls(ServerTest):

    def test_the_home_page_is_open_html_that_names_the_server(self) -> None:
        answer = fetch(self.server, "/")
        self.assertEqual((answer.status, answer.headers["Content-Type"]), (200, "text/html; charset=utf-8"))
        self.assertIn(b"<title>Document server</title>", answer.body)

    def test_a_status_url_answers_that_status_with_a_small_body(self) -> None:
        for code in (200, 201, 299, 301, 400, 401, 403, 404, 407, 410, 418, 500, 503, 599):
            with self.subTest(code):
                answer = fetch(self.server, f"/status/{code}")
                self.assertEqual((answer.status, answer.body), (code, f"This is status {code}.\n".encode()))

    def test_a_status_that_has_no_body_gets_none_and_keeps_the_connection_usable(self) -> None:
        connection = connect(self.server)
        self.addCleanup(connection.close)
        for code, length in ((204, None), (205, "0"), (304, None)):
            with self.subTest(code):
                answer = ask(connection, f"/status/{code}")
                self.assertEqual((answer.status, answer.headers["Content-Length"]), (code, length))
                self.assertEqual((ask(connection, "/empty").status, answer.body), (200, b""))

    def test_a_status_that_is_no_number_or_out_of_range_is_a_bad_request(self) -> None:
        arabic_digits = "%D9%A4%D9%A0%D9%A4"
        for code in ("199", "600", "abc", "-200", "2e2", arabic_digits, "9" * 5000):
            with self.subTest(code[:20]):
                answer = fetch(self.server, f"/status/{code}")
                self.assertEqual((answer.status, answer.body),
                                 (400, b"A whole number from 200 to 599 is needed.\n"))

    def test_forbidden_is_forbidden_even_with_credentials(self) -> None:
        self.assertEqual(fetch(self.server, "/forbidden").status, 403)
        self.assertEqual(fetch(self.server, "/forbidden", headers=basic()).status, 403)

    def test_redirects_lead_where_their_names_say(self) -> None:
        for path, location in (("/redirect/form", "/login/form"), ("/redirect/basic", "/basic/"),
                               ("/redirect/forbidden", "/forbidden"),
                               ("/redirect/loop", "/redirect/loop"),
                               ("/redirect/loop?a=1", "/redirect/loop?a=1")):
            with self.subTest(path):
                answer = fetch(self.server, path)
                self.assertEqual((answer.status, answer.headers["Location"]), (302, location))

    def test_an_unknown_path_is_not_found(self) -> None:
        for path in ("/nowhere", "/basic", "/basic/documents/", "/basic/documents/a/b", "/status/200/",
                     "/hostile/", "/LOGIN/form", "/statusx200", "/hostile/bareXhtml", "/basic-unsatisfiable"):
            with self.subTest(path):
                self.assertEqual(fetch(self.server, path, headers=basic()).status, 404)

    def test_a_method_that_a_url_does_not_have_is_not_allowed(self) -> None:
        for method, path, allowed in (("POST", "/", "GET, HEAD"), ("DELETE", "/basic/", "GET, HEAD"),
                                      ("BREW", "/empty", "GET, HEAD"),
                                      ("PUT", "/login/form", "GET, HEAD, POST")):
            with self.subTest(method):
                answer = fetch(self.server, path, method, body="ignored")
                self.assertEqual((answer.status, answer.headers["Allow"]), (405, allowed))

    def test_head_is_answered_like_get_without_the_body(self) -> None:
        connection = connect(self.server)
        self.addCleanup(connection.close)
        for path in ("/", "/basic/", "/basic/documents/plan", "/login/form", "/login/documents/plan",
                     "/status/404", "/nowhere", "/unauthorized/bare", "/bytes/1000", "/bytes/1000?chunked=1",
                     "/empty", "/hostile/many-cookies?count=3"):
            with self.subTest(path):
                from_get = ask(connection, path, headers=basic())
                from_head = ask(connection, path, "HEAD", basic())
                self.assertEqual((from_head.status, from_head.headers.items(), from_head.body),
                                 (from_get.status, from_get.headers.items(), b""))

    def test_one_connection_serves_many_requests_until_the_client_asks_to_close(self) -> None:
        connection = connect(self.server)
        self.addCleanup(connection.close)
        self.assertEqual(ask(connection, "/").headers["Connection"], "keep-alive")
        first_socket = connection.sock
        self.assertEqual(ask(connection, "/status/404").status, 404)
        self.assertEqual(ask(connection, "/basic/", body="unasked").status, 401)
        self.assertIs(connection.sock, first_socket)
        self.assertEqual(ask(connection, "/", headers={"Connection": "close"}).headers["Connection"], "close")
        self.assertIsNone(connection.sock)

    def test_what_is_no_sound_request_is_refused_and_the_connection_closed(self) -> None:
        # The long ones end where the server stops reading: what it has not read could cost the answer.
        for request, status in ((b"nonsense\r\n", b"400"), (b"GET / HTTP/3.0\r\n", b"505"),
                                (b"GET /".ljust(65_537, b"a"), b"414"),
                                (b"GET / HTTP/1.1\r\n" + b"X: ".ljust(65_537, b"a"), b"431"),
                                (b"POST /login/form HTTP/1.1\r\nTransfer-Encoding: chunked\r\n\r\n", b"411"),
                                (b"POST /login/form HTTP/1.1\r\nContent-Length: -1\r\n\r\n", b"400"),
                                (b"POST /login/form HTTP/1.1\r\nContent-Length: 1048577\r\n\r\n", b"400")):
            with self.subTest(request[:60]):
                self.assertEqual(raw_exchange(self.server, request).split(b" ")[:2], [b"HTTP/1.1", status])

    def test_a_client_that_speaks_http_1_0_gets_its_answer_and_the_end_of_the_connection(self) -> None:
        head, _, body = raw_exchange(self.server, b"GET /status/200 HTTP/1.0\r\n\r\n").partition(b"\r\n\r\n")
        self.assertIn(b"Connection: close", head)
        self.assertEqual(body, b"This is status 200.\n")
