"""Certificates of the login page's server, those of the person, and challenges inside the browser."""

import tempfile
from pathlib import Path

from document_server.authority import Authority
from document_server.login import CHALLENGE_PAGE_COLOUR

from tests.e2e.browser_case import rgb
from tests.e2e.browser_host import await_condition
from tests.e2e.login_case import INSET, LOAD_FAILED, DownloadCase, Viewer
from tests.e2e.person import Person
from tests.support.browser_home import BrowserHome

OVERRIDE = "MERIDO_IGNORE_CERT_INVALID"
REFUSED = "ZanWebBrowserEdge 0 Invalid server certificate ({} ); cancelling request"
ALLOWED = "ZanWebBrowserEdge 0 Allowing invalid/expired certificate ({})"
WRONG_NAME, EXPIRED, REVOKED, INVALID = 1, 2, 4, 5


class CertificateCase(DownloadCase):
    """A server whose login page has a certificate of that kind; the browser trusts the authority of the test."""

    kind = ""

    def setUp(self) -> None:
        folder = Path(self.enterContext(tempfile.TemporaryDirectory(prefix="kelda-authority-")), "authority")
        self.home = self.enterContext(BrowserHome(Authority(folder).certificate))
        self.server_options = ("--secure-login", self.kind, "--authority", str(folder))
        super().setUp()

    def start_with(self, **environment: str) -> Viewer:
        return self.start_download(KELDA_TEST_BROWSER_HOME=str(self.home.path), **environment)

    def decisions(self, viewer: Viewer) -> list[str]:
        """What the trace says of certificates."""
        return [line for line in viewer.trace() if "certificate" in line]

    def assert_logs_in(self, *decisions: str, **environment: str) -> None:
        viewer = self.start_with(**environment)
        self.log_in(self.person_at_page())
        self.assert_downloaded(viewer)
        self.assertEqual(self.decisions(viewer), list(decisions))

    def assert_refused(self, status: int, **environment: str) -> None:
        """The request is cancelled: the dialog waits, without the page, until the person closes it."""
        viewer = self.start_with(**environment)
        person = self.dialog()
        await_condition(lambda: LOAD_FAILED in viewer.trace(), LOAD_FAILED)
        person.close()
        self.assert_not_logged_in(viewer)
        self.assertEqual(self.decisions(viewer), [REFUSED.format(status)])
        self.assertNotIn("https", [request["scheme"] for request in self.server.requests()])


class GoodCertificate(CertificateCase):
    kind = "good"

    def test_is_no_matter(self) -> None:
        self.assert_logs_in()


class UntrustedCertificate(CertificateCase):
    kind = "untrusted"

    def test_is_refused(self) -> None:
        self.assert_refused(INVALID)

    def test_is_allowed_where_the_variable_says_so(self) -> None:
        self.assert_logs_in(ALLOWED.format(INVALID), **{OVERRIDE: "true"})

    def test_is_refused_where_the_variable_says_something_else(self) -> None:
        self.assert_refused(INVALID, **{OVERRIDE: "yes"})


class ExpiredCertificate(CertificateCase):
    kind = "expired"

    def test_is_refused(self) -> None:
        self.assert_refused(EXPIRED)

    def test_is_allowed_in_any_case_of_the_word(self) -> None:
        self.assert_logs_in(ALLOWED.format(EXPIRED), **{OVERRIDE: "TrUE"})

    def test_that_counts_as_revoked_is_never_allowed(self) -> None:
        self.assert_refused(REVOKED, **{OVERRIDE: "true", "KELDA_TEST_CERTIFICATE_ERROR": "revoked"})


class CertificateOfAnotherName(CertificateCase):
    kind = "wrong-name"

    def test_is_refused(self) -> None:
        self.assert_refused(WRONG_NAME)

    def test_is_never_allowed(self) -> None:
        self.assert_refused(WRONG_NAME, **{OVERRIDE: "TRUE"})


class ClientCertificates(DownloadCase):
    """A login page that asks for a certificate of the person's; the runtime says that there are so many."""

    def log_in_with(self, count: int, choice: str = "") -> str | None:
        """Which certificate the form was then posted with. The choice is the key that answers the runtime's dialog."""
        viewer = self.start_download(KELDA_TEST_CLIENT_CERTIFICATES=str(count))
        if choice:
            chooser = Person("Select a certificate")
            chooser.await_window()
            chooser.press(choice)
            chooser.await_end()
        self.log_in(self.person_at_page())
        self.assert_downloaded(viewer)
        self.assertIn(f"ZanWebBrowserEdge 0 Client certificate requested; found {count} matching cert(s)", viewer.trace())
        post = next(request for request in self.server.requests() if request["method"] == "POST")
        return post["headers"].get("X-Client-Certificate")

    def test_without_one_the_login_goes_on(self) -> None:
        self.assertIsNone(self.log_in_with(0))

    def test_the_only_one_is_sent_without_a_question(self) -> None:
        self.assertEqual(self.log_in_with(1), "Test client 1")

    def test_of_several_the_person_chooses(self) -> None:
        self.assertEqual(self.log_in_with(2, "Return"), "Test client 1")

    def test_of_several_the_person_may_send_none(self) -> None:
        self.assertIsNone(self.log_in_with(2, "Escape"))


class Challenge(DownloadCase):
    """A login page behind Basic authentication, which is the runtime's business."""

    server_options = ("--login-page", "asks")

    def test_is_traced_and_left_to_the_runtime(self) -> None:
        viewer = self.start_download()
        person = self.dialog()
        person.await_colour(rgb(CHALLENGE_PAGE_COLOUR), INSET, person.height - INSET)
        await_condition(lambda: LOAD_FAILED in viewer.trace(), LOAD_FAILED)
        person.close()
        self.assert_not_logged_in(viewer)
        self.assertEqual(viewer.trace().count("ZanWebBrowserEdge 0 Unexpected Basic Auth request"), 1)
        self.assertEqual({request["authorization"] for request in self.server.requests()}, {None})
