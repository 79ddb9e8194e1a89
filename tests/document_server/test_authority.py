"""The authority that signs certificates, and the certificates of each kind."""

import os
import ssl
import subprocess
import tempfile
import unittest
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

from document_server.authority import Authority

from tests.document_server.client import TIMEOUT_SECONDS, ask, secure_connection
from tests.support.document_server import DocumentServer

EXPIRED, OTHER_HOST, OTHER_ADDRESS, UNKNOWN_ISSUER = 10, 62, 64, 20


def text_of(certificate: str, *what: str) -> str:
    """What openssl says of a certificate."""
    return subprocess.run(("openssl", "x509", "-noout", *what), input=certificate, capture_output=True,
                          encoding="ascii", timeout=TIMEOUT_SECONDS, check=True).stdout


class AuthorityTest(unittest.TestCase):
    """Has a place for the folder of an authority, where there is none yet."""

    def setUp(self) -> None:
        around = tempfile.TemporaryDirectory(prefix="authority-test-")
        self.addCleanup(around.cleanup)
        self.folder = Path(around.name, "authority")
        self.certificate, self.key = self.folder / "authority.pem", self.folder / "authority.key"

    def serve(self, kind: str, option: str = "--tls") -> DocumentServer:
        """A server with a certificate of that kind."""
        return self.enterContext(DocumentServer(option, kind, "--authority", str(self.folder)))

    def verdict(self, server: DocumentServer, host: str = "127.0.0.1", check_name: bool = True,
                trusting: bool = True) -> int:
        """What is wrong with the certificate for a client that trusts the authority, 0 if nothing is."""
        context = ssl.create_default_context(cafile=str(self.certificate) if trusting else None)
        context.check_hostname = check_name
        try:
            with secure_connection(server, host, context) as connection:
                self.assertEqual(ask(connection, "/empty").status, 200)
        except ssl.SSLCertVerificationError as error:
            return error.verify_code
        return 0


class Folder(AuthorityTest):

    def test_the_folder_is_made_with_both_files_and_nothing_else(self) -> None:
        Authority(self.folder)
        self.assertEqual(sorted(os.listdir(self.folder)), ["authority.key", "authority.pem"])

    def test_the_key_is_for_its_owner_only(self) -> None:
        Authority(self.folder)
        self.assertEqual(self.key.stat().st_mode & 0o077, 0)

    def test_an_authority_that_is_there_is_kept(self) -> None:
        Authority(self.folder)
        before = self.certificate.read_bytes(), self.key.read_bytes()
        Authority(self.folder)
        self.serve("good")
        self.assertEqual((self.certificate.read_bytes(), self.key.read_bytes()), before)

    def test_an_authority_that_was_left_unfinished_is_made_anew(self) -> None:
        self.folder.mkdir()
        self.key.write_text("of another certificate")
        self.assertEqual(self.verdict(self.serve("good")), 0)

    def test_servers_that_start_at_the_same_time_share_one_authority(self) -> None:
        with ThreadPoolExecutor(3) as pool:
            servers = list(pool.map(self.serve, ["good"] * 3))
        self.assertEqual([self.verdict(server) for server in servers], [0, 0, 0])
        self.assertEqual(sorted(os.listdir(self.folder)), ["authority.key", "authority.pem"])

    def test_the_folder_may_be_given_relative_to_the_working_one(self) -> None:
        self.folder = Path(os.path.relpath(self.folder))
        self.assertEqual(self.verdict(self.serve("good")), 0)

    def test_the_self_signed_certificate_needs_no_authority(self) -> None:
        self.serve("untrusted")
        self.assertFalse(self.folder.exists())

    def test_the_authority_is_one_for_years(self) -> None:
        Authority(self.folder)
        text = text_of(self.certificate.read_text(), "-subject", "-ext", "basicConstraints,keyUsage",
                       "-checkend", str(3000 * 24 * 60 * 60))
        self.assertIn("subject=CN = Document server test authority\n", text)
        self.assertIn("X509v3 Basic Constraints: critical\n    CA:TRUE\n", text)
        self.assertIn("X509v3 Key Usage: critical\n    Certificate Sign\n", text)


class Kinds(AuthorityTest):

    def assert_unknown_to_others(self, server: DocumentServer) -> None:
        """A client that does not know the authority refuses the certificate for that reason."""
        self.assertEqual(self.verdict(server, trusting=False), UNKNOWN_ISSUER)

    def test_a_good_one_is_for_both_names_of_the_server(self) -> None:
        server = self.serve("good")
        self.assertEqual([self.verdict(server, host) for host in ("127.0.0.1", "localhost")], [0, 0])
        self.assert_unknown_to_others(server)

    def test_an_expired_one_is_from_the_past_and_sound_otherwise(self) -> None:
        server = self.serve("expired")
        self.assertEqual([self.verdict(server, host) for host in ("127.0.0.1", "localhost")], [EXPIRED, EXPIRED])
        certificate = ssl.get_server_certificate(("127.0.0.1", server.port), timeout=TIMEOUT_SECONDS)
        self.assertEqual(text_of(certificate, "-startdate", "-enddate", "-ext", "subjectAltName"),
                         "notBefore=Jan  1 00:00:00 2020 GMT\nnotAfter=Jan  8 00:00:00 2020 GMT\n"
                         "X509v3 Subject Alternative Name: \n    DNS:localhost, IP Address:127.0.0.1\n")
        self.assert_unknown_to_others(server)

    def test_one_with_a_wrong_name_is_sound_but_for_the_name(self) -> None:
        server = self.serve("wrong-name")
        self.assertEqual(self.verdict(server), OTHER_ADDRESS)
        self.assertEqual(self.verdict(server, "localhost"), OTHER_HOST)
        self.assertEqual(self.verdict(server, check_name=False), 0)
        self.assert_unknown_to_others(server)

    def test_each_server_has_a_certificate_of_its_own(self) -> None:
        serials = {text_of(ssl.get_server_certificate(("127.0.0.1", self.serve("good").port)), "-serial")
                   for _ in range(2)}
        self.assertEqual(len(serials), 2)
