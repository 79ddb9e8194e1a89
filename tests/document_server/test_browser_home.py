"""A browser that trusts the test authority, at servers with certificates of all kinds."""

import tempfile
import unittest
from pathlib import Path

from tests.document_server.browser import Browser, Page
from tests.document_server.client import ACCESS_CHECK, LOGIN_PAGE
from tests.support.browser_home import BrowserHome
from tests.support.document_server import DocumentServer


class BrowserWithAHome(unittest.TestCase):

    @classmethod
    def setUpClass(cls) -> None:
        cls.folder = cls.enterClassContext(tempfile.TemporaryDirectory(prefix="authority-"))
        # The first server makes the authority.
        cls.good = cls.enterClassContext(DocumentServer("--tls", "good", "--authority", cls.folder))
        cls.home = cls.enterClassContext(BrowserHome(Path(cls.folder, "authority.pem")))
        cls.browser = cls.enterClassContext(Browser(cls.home.path))

    def error_at(self, server: DocumentServer) -> str:
        """What the browser says of the server's certificate."""
        return Page(self.browser).go(server.url + "/")

    def test_a_good_certificate_is_accepted(self) -> None:
        page = Page(self.browser)
        self.assertEqual(page.go(self.good.url + "/"), "")
        page.await_page("Document server")

    def test_the_others_are_refused_each_for_its_own_reason(self) -> None:
        for kind, reason in (("untrusted", "AUTHORITY"), ("expired", "DATE"), ("wrong-name", "COMMON_NAME")):
            with self.subTest(kind), DocumentServer("--tls", kind, "--authority", self.folder) as server:
                self.assertEqual(self.error_at(server), f"net::ERR_CERT_{reason}_INVALID")
                self.assertEqual(server.requests(), [])

    def test_a_browser_without_that_home_refuses_the_good_one(self) -> None:
        with tempfile.TemporaryDirectory() as other_home, Browser(Path(other_home)) as browser:
            self.assertEqual(Page(browser).go(self.good.url + "/"), "net::ERR_CERT_AUTHORITY_INVALID")

    def test_the_cookies_of_a_secure_login_go_to_the_server_without_tls(self) -> None:
        server = self.enterContext(DocumentServer("--secure-login", "good", "--authority", self.folder))
        page = Page(self.browser)
        self.assertEqual(page.go(server.url + LOGIN_PAGE), "")
        page.await_page("Document server login")
        page.fill_in()
        page.await_page("Logged in")
        cookies = page.call("Network.getCookies", urls=[server.url])["cookies"]
        self.assertEqual([cookie["name"] for cookie in cookies], ["JSESSIONID"])
        page.go(server.url + ACCESS_CHECK)
        self.assertIn(("http", ACCESS_CHECK, 200),
                      [(entry["scheme"], entry["path"], entry["status"]) for entry in server.requests()])


class Folder(unittest.TestCase):

    def test_the_folder_is_there_within_the_block_only(self) -> None:
        with tempfile.TemporaryDirectory() as folder, DocumentServer("--tls", "good", "--authority", folder):
            with BrowserHome(Path(folder, "authority.pem")) as home:
                self.assertTrue((home.path / ".pki/nssdb/cert9.db").is_file())
            self.assertFalse(home.path.exists())

    def test_what_is_no_certificate_is_refused_and_leaves_nothing(self) -> None:
        with tempfile.TemporaryDirectory() as folder:
            junk = Path(folder, "junk.pem")
            junk.write_text("no certificate")
            home = BrowserHome(junk)
            with self.assertRaisesRegex(RuntimeError, "certutil failed: "), home:
                self.fail("the block is not reached")
            self.assertFalse(home.path.exists())
