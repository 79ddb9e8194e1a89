"""The URLs that ask for credentials by a challenge."""

import base64

from document_server.documents import document

from tests.document_server.case import ServerTest
from tests.document_server.client import basic, fetch, session_cookie

CHALLENGE = 'Basic realm="kelda documents"'


def authorization(scheme: str, content: bytes) -> dict[str, str]:
    """The header with any scheme and content."""
    return {"Authorization": f"{scheme} {base64.b64encode(content).decode()}"}


class BasicAuthentication(ServerTest):

    def test_without_credentials_there_is_a_challenge(self) -> None:
        for path in ("/basic/", "/basic/documents/plan", "/basic/status/500", "/mixed/documents/plan",
                     "/bytes/10?basic=1", "/basic-unsatisfiable/", "/basic-unsatisfiable/some/where"):
            with self.subTest(path):
                answer = fetch(self.server, path)
                self.assertEqual((answer.status, answer.headers.get_all("WWW-Authenticate"), answer.body),
                                 (401, [CHALLENGE], b"Unauthorized.\n"))

    def test_the_right_credentials_are_let_in(self) -> None:
        for path, body in (("/basic/", b"Welcome.\n"), ("/basic/documents/plan", document("plan")),
                           ("/mixed/documents/plan", document("plan"))):
            with self.subTest(path):
                answer = fetch(self.server, path, headers=basic())
                self.assertEqual((answer.status, answer.body), (200, body))
        self.assertEqual(len(fetch(self.server, "/bytes/10?basic=1", headers=basic()).body), 10)

    def test_the_name_of_the_scheme_may_be_in_any_case(self) -> None:
        headers = authorization("bAsIc", b"anna:kelda-demo")
        self.assertEqual(fetch(self.server, "/basic/", headers=headers).status, 200)

    def test_anything_but_the_right_credentials_is_challenged_again(self) -> None:
        wrong = [authorization("Basic", content) for content in (
            b"anna:wrong", b"anna:", b":kelda-demo", b":", b"", b"anna", b"kelda-demo:anna",
            b"Anna:kelda-demo", b"anna:kelda-demo ", b"anna:kelda-demo:", b"anna\xff:kelda-demo")]
        wrong += [authorization("Digest", b"anna:kelda-demo"), {"Authorization": "Basic anna:kelda-demo"},
                  {"Authorization": "Basic"}, {"Authorization": ""}, {"Authorization": "Basic \u00e9\u00e9"}]
        wrong.append({"Authorization": basic()["Authorization"].replace("Basic ", "Basic !")})
        for headers in wrong:
            with self.subTest(headers):
                answer = fetch(self.server, "/basic/", headers=headers)
                self.assertEqual((answer.status, answer.headers["WWW-Authenticate"]), (401, CHALLENGE))

    def test_no_credentials_satisfy_the_unsatisfiable(self) -> None:
        answer = fetch(self.server, "/basic-unsatisfiable/", headers=basic())
        self.assertEqual((answer.status, answer.headers["WWW-Authenticate"]), (401, CHALLENGE))

    def test_a_protected_status_is_answered_after_the_credentials(self) -> None:
        for code in (200, 403, 404, 500):
            with self.subTest(code):
                self.assertEqual(fetch(self.server, f"/basic/status/{code}", headers=basic()).status, code)

    def test_a_session_does_for_a_mixed_document_but_not_for_a_basic_one(self) -> None:
        cookie = session_cookie(self.server)
        self.assertEqual(fetch(self.server, "/mixed/documents/plan", headers=cookie).body, document("plan"))
        self.assertEqual(fetch(self.server, "/basic/documents/plan", headers=cookie).status, 401)

    def test_a_session_makes_up_for_wrong_credentials_at_a_mixed_document(self) -> None:
        headers = session_cookie(self.server) | basic(password="wrong")
        self.assertEqual(fetch(self.server, "/mixed/documents/plan", headers=headers).status, 200)

    def test_a_bare_401_has_no_challenge(self) -> None:
        answer = fetch(self.server, "/unauthorized/bare", headers=basic())
        self.assertEqual((answer.status, answer.headers["WWW-Authenticate"]), (401, None))

    def test_the_digest_challenge_comes_alone_and_takes_no_basic_credentials(self) -> None:
        nonces = set()
        for headers in ({}, basic()):
            answer = fetch(self.server, "/unauthorized/digest", headers=headers)
            self.assertEqual(answer.status, 401)
            challenge, = answer.headers.get_all("WWW-Authenticate")
            self.assertRegex(challenge, r'^Digest realm="kelda documents", qop="auth", algorithm=MD5, '
                                        r'nonce="[0-9a-f]{32}"$')
            nonces.add(challenge)
        self.assertEqual(len(nonces), 2)

    def test_several_challenges_come_as_one_header_each_and_basic_is_accepted(self) -> None:
        answer = fetch(self.server, "/unauthorized/several")
        challenges = answer.headers.get_all("WWW-Authenticate")
        self.assertEqual([challenge.split()[0] for challenge in challenges], ["Negotiate", "Digest", "Basic"])
        self.assertEqual(answer.status, 401)
        self.assertEqual(fetch(self.server, "/unauthorized/several", headers=basic()).status, 200)


class ChosenCredentials(ServerTest):

    options = ("--user", "änne", "--password", "pä:ß wörd€", "--realm", 'my "rälm" \\')

    def test_user_and_password_are_compared_as_utf_8(self) -> None:
        self.assertEqual(fetch(self.server, "/basic/", headers=basic("änne", "pä:ß wörd€")).status, 200)
        latin_1 = authorization("Basic", "änne:pä:ß wörd".encode("latin-1"))
        self.assertEqual(fetch(self.server, "/basic/", headers=latin_1).status, 401)
        self.assertEqual(fetch(self.server, "/basic/", headers=basic()).status, 401)

    def test_the_realm_is_quoted_and_sent_as_utf_8(self) -> None:
        challenge = fetch(self.server, "/basic/").headers["WWW-Authenticate"]
        self.assertEqual(challenge.encode("latin-1").decode("utf-8"), 'Basic realm="my \\"rälm\\" \\\\"')
