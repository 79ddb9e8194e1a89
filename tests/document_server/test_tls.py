"""The server behind TLS."""

import http.client
import socket
import ssl

from document_server.documents import document

from tests.document_server.case import ServerTest
from tests.document_server.client import TIMEOUT_SECONDS, Answer, ask, basic, raw_exchange


class Tls(ServerTest):

    options = ("--tls",)
    context: ssl.SSLContext

    @classmethod
    def setUpClass(cls) -> None:
        super().setUpClass()
        certificate = ssl.get_server_certificate(("127.0.0.1", cls.server.port), timeout=TIMEOUT_SECONDS)
        cls.context = ssl.create_default_context(cadata=certificate)

    def fetch(self, host: str, path: str, **request: object) -> Answer:
        """One request under a name of the server; the certificate is checked against it."""
        connection = http.client.HTTPSConnection(host, self.server.port, timeout=TIMEOUT_SECONDS,
                                                 context=self.context)
        try:
            return ask(connection, path, **request)
        finally:
            connection.close()

    def test_the_address_says_https(self) -> None:
        self.assertEqual(self.server.url, f"https://127.0.0.1:{self.server.port}")

    def test_the_certificate_is_self_signed_for_localhost_by_name_and_address(self) -> None:
        with (socket.create_connection(("127.0.0.1", self.server.port), TIMEOUT_SECONDS) as connection,
              self.context.wrap_socket(connection, server_hostname="localhost") as secure):
            certificate = secure.getpeercert()
        self.assertEqual(certificate["subject"], ((("commonName", "localhost"),),))
        self.assertEqual(certificate["issuer"], certificate["subject"])
        self.assertEqual(certificate["subjectAltName"], (("DNS", "localhost"), ("IP Address", "127.0.0.1")))
        for host in ("localhost", "127.0.0.1"):
            self.assertEqual(self.fetch(host, "/").status, 200)

    def test_a_client_that_does_not_know_the_certificate_refuses_it(self) -> None:
        connection = http.client.HTTPSConnection("localhost", self.server.port, timeout=TIMEOUT_SECONDS)
        self.addCleanup(connection.close)
        with self.assertRaises(ssl.SSLCertVerificationError):
            connection.request("GET", "/")

    def test_documents_come_with_credentials(self) -> None:
        answer = self.fetch("localhost", "/basic/documents/plan?size=1000000", headers=basic())
        self.assertTrue(answer.body == document("plan", 1_000_000))

    def test_the_session_cookie_is_for_secure_connections_only(self) -> None:
        answer = self.fetch("localhost", "/login/form", method="POST", body="user=anna&password=kelda-demo")
        self.assertRegex(answer.headers["Set-Cookie"], r"^JSESSIONID=[\w-]{32}; Path=/; HttpOnly; Secure$")

    def test_a_client_without_tls_gets_no_answer_and_disturbs_nobody(self) -> None:
        self.assertNotIn(b"200", raw_exchange(self.server, b"GET / HTTP/1.1\r\n\r\n"))
        self.assertEqual(self.fetch("localhost", "/empty").status, 200)

    def test_a_client_that_never_shakes_hands_holds_up_nobody(self) -> None:
        with socket.create_connection(("127.0.0.1", self.server.port)):
            self.assertEqual(self.fetch("localhost", "/empty").status, 200)

    def test_dropped_and_truncated_answers_end_behind_tls_as_well(self) -> None:
        with self.assertRaises((ConnectionError, ssl.SSLError, http.client.HTTPException)):
            self.fetch("localhost", "/hostile/drop")
        with self.assertRaises((http.client.IncompleteRead, ssl.SSLError)):
            self.fetch("localhost", "/hostile/truncated")
