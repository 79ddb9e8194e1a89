"""A server without TLS whose login page is behind it."""

import ssl
import tempfile
from urllib.parse import urlencode, urlsplit

from tests.document_server.case import ServerTest
from tests.document_server.client import (ACCESS_CHECK, LOGIN_PAGE, Answer, ask, cookie_header, cookies_set, fetch,
                                          log_in, secure_connection)
from tests.support.document_server import DocumentServer

FORM_TYPE = {"Content-Type": "application/x-www-form-urlencoded"}
CREDENTIALS = urlencode({"user": "anna", "password": "kelda-demo"})


class SecureLoginTest(ServerTest):
    """Has what these tests ask a server whose login page has a listener of its own."""

    options = ("--secure-login",)
    login_port: int

    @classmethod
    def setUpClass(cls) -> None:
        super().setUpClass()
        cls.login_port = urlsplit(cls.server.login_url()).port

    def fetch_securely(self, path: str, method: str = "GET", headers: dict[str, str] | None = None,
                       body: str | None = None) -> Answer:
        """One request to the listener behind TLS, whatever its certificate."""
        context = ssl.create_default_context()
        context.check_hostname = False
        context.verify_mode = ssl.CERT_NONE
        with secure_connection(self.server, "127.0.0.1", context, self.login_port) as connection:
            return ask(connection, path, method, headers, body)


class SecureLogin(SecureLoginTest):

    def test_the_address_says_http_and_is_the_only_word(self) -> None:
        with DocumentServer("--secure-login") as server:
            server.stop()
            self.assertRegex(server.output(), r"\Alistening on http://127\.0\.0\.1:\d+\n\Z")

    def test_the_login_page_is_on_another_port_behind_tls(self) -> None:
        self.assertNotEqual(self.login_port, self.server.port)
        self.assertEqual(self.server.login_url(), f"https://127.0.0.1:{self.login_port}{LOGIN_PAGE}")
        for path in (LOGIN_PAGE, LOGIN_PAGE + "?a=b&c=%20"):
            for method in ("GET", "HEAD", "POST"):
                with self.subTest(path, method=method):
                    answer = fetch(self.server, path, method)
                    self.assertEqual((answer.status, answer.headers["Location"], answer.body),
                                     (302, f"https://127.0.0.1:{self.login_port}{path}", b""))

    def test_nobody_logs_in_without_tls(self) -> None:
        self.assertEqual(cookies_set(log_in(self.server, LOGIN_PAGE)), {})

    def test_a_method_that_the_page_does_not_have_is_not_allowed_either(self) -> None:
        self.assertEqual(fetch(self.server, LOGIN_PAGE, "DELETE").status, 405)

    def test_a_login_behind_tls_is_a_session_on_both_sides(self) -> None:
        answer = self.fetch_securely(LOGIN_PAGE, "POST", FORM_TYPE, CREDENTIALS)
        self.assertRegex(answer.headers["Set-Cookie"], r"\AJSESSIONID=[\w-]{32}; Path=/; HttpOnly\Z")
        session = cookie_header(cookies_set(answer))
        self.assertEqual(fetch(self.server, ACCESS_CHECK, headers=session).status, 200)
        self.assertEqual(self.fetch_securely(ACCESS_CHECK, headers=session).status, 200)

    def test_the_log_has_the_requests_of_both_and_tells_them_apart(self) -> None:
        before = len(self.server.requests())
        fetch(self.server, LOGIN_PAGE)
        self.fetch_securely(LOGIN_PAGE)
        fetch(self.server, "/empty")
        entries = self.server.requests()[before:]
        self.assertEqual([(entry["scheme"], entry["path"], entry["status"]) for entry in entries],
                         [("http", LOGIN_PAGE, 302), ("https", LOGIN_PAGE, 200), ("http", "/empty", 200)])
        self.assertEqual([entry["number"] - before for entry in entries], [1, 2, 3])

    def test_the_certificate_is_self_signed_unless_asked_otherwise(self) -> None:
        certificate = ssl.get_server_certificate(("127.0.0.1", self.login_port))
        context = ssl.create_default_context(cadata=certificate)
        with secure_connection(self.server, "localhost", context, self.login_port) as connection:
            self.assertEqual(ask(connection, "/empty").status, 200)


class OtherCertificates(ServerTest):

    def test_the_certificate_is_of_the_kind_asked_for(self) -> None:
        folder = self.enterContext(tempfile.TemporaryDirectory())
        for kind, verdict in (("good", None), ("expired", "certificate has expired"),
                              ("wrong-name", "IP address mismatch")):
            with self.subTest(kind), DocumentServer("--secure-login", kind, "--authority", folder) as server:
                context = ssl.create_default_context(cafile=f"{folder}/authority.pem")
                port = urlsplit(server.login_url()).port
                with secure_connection(server, "127.0.0.1", context, port) as connection:
                    if verdict is None:
                        self.assertEqual(ask(connection, LOGIN_PAGE).status, 200)
                    else:
                        with self.assertRaisesRegex(ssl.SSLCertVerificationError, verdict):
                            connection.request("GET", LOGIN_PAGE)


class BehindABalancer(SecureLoginTest):

    options = ("--secure-login", "--back-ends", "3")

    def test_a_login_behind_tls_is_a_session_at_its_back_end_without_tls(self) -> None:
        pool = cookies_set(fetch(self.server, LOGIN_PAGE))
        answer = self.fetch_securely(LOGIN_PAGE, "POST", FORM_TYPE | cookie_header(pool), CREDENTIALS)
        session = cookies_set(answer)
        self.assertEqual(list(session), ["JSESSIONID"])
        self.assertEqual(fetch(self.server, ACCESS_CHECK, headers=cookie_header(pool | session)).status, 200)
        self.assertEqual(fetch(self.server, ACCESS_CHECK, headers=cookie_header(session)).status, 403)
