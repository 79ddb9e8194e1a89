"""How sessions begin and end, and what only a session gets."""

from document_server.documents import document

from tests.document_server.case import ServerTest
from tests.document_server.client import (ACCESS_CHECK, LOGIN_PAGE, basic, cookie_header, cookies_set,
                                          fetch, log_in, session_cookie)

NO_SESSIONS = ({}, basic(), {"Cookie": "JSESSIONID="}, {"Cookie": "JSESSIONID"},
               {"Cookie": "JSESSIONID=made-up"}, {"Cookie": "jsessionid=made-up"},
               {"Cookie": "=; ;;=\u00e9; JSESSIONID==="}, {"Cookie": "JSESSIONID=" + "x" * 60_000})


class Sessions(ServerTest):

    def is_session(self, cookie: dict[str, str]) -> bool:
        """Whether a request with those headers counts as logged in."""
        return fetch(self.server, ACCESS_CHECK, headers=cookie).status == 200

    def test_the_access_check_is_a_text_for_a_session(self) -> None:
        answer = fetch(self.server, ACCESS_CHECK, headers=session_cookie(self.server))
        self.assertEqual((answer.status, answer.headers["Content-Type"], answer.body),
                         (200, "text/plain; charset=utf-8", b"Access is authenticated.\n"))

    def test_the_access_check_is_forbidden_without_a_session(self) -> None:
        for headers in NO_SESSIONS:
            with self.subTest(str(headers)[:60]):
                self.assertEqual(fetch(self.server, ACCESS_CHECK, headers=headers).status, 403)

    def test_a_guarded_document_comes_for_a_session_in_the_size_asked_for(self) -> None:
        answer = fetch(self.server, "/documents/the%20plan?size=5000", headers=session_cookie(self.server))
        self.assertEqual((answer.status, answer.headers["Content-Type"], answer.body),
                         (200, "application/octet-stream", document("the plan", 5000)))

    def test_a_guarded_document_is_forbidden_without_a_session_and_asks_for_nothing(self) -> None:
        for headers in NO_SESSIONS:
            with self.subTest(str(headers)[:60]):
                answer = fetch(self.server, "/documents/plan", headers=headers)
                self.assertEqual((answer.status, answer.headers["WWW-Authenticate"], answer.body),
                                 (403, None, b"Forbidden.\n"))

    def test_clients_that_log_in_get_sessions_of_their_own(self) -> None:
        first, second = session_cookie(self.server), session_cookie(self.server)
        self.assertNotEqual(first, second)
        self.assertTrue(self.is_session(first))
        self.assertTrue(self.is_session(second))

    def test_a_client_that_logs_in_again_gets_a_new_session_and_loses_the_old_one(self) -> None:
        for form in ("/login/form", LOGIN_PAGE):
            with self.subTest(form):
                old = session_cookie(self.server)
                new = cookie_header(cookies_set(log_in(self.server, form, headers=old)))
                self.assertNotEqual(new, old)
                self.assertTrue(self.is_session(new))
                self.assertFalse(self.is_session(old))

    def test_an_identifier_that_the_client_brings_along_never_becomes_a_session(self) -> None:
        planted = {"Cookie": "JSESSIONID=planted"}
        for form in ("/login/form", LOGIN_PAGE):
            with self.subTest(form):
                answer = log_in(self.server, form, headers=planted)
                self.assertNotIn(cookies_set(answer)["JSESSIONID"], ("planted", ""))
                self.assertFalse(self.is_session(planted))

    def test_a_wrong_password_leaves_the_session_that_the_client_has(self) -> None:
        cookie = session_cookie(self.server)
        for form in ("/login/form", LOGIN_PAGE):
            with self.subTest(form):
                answer = log_in(self.server, form, password="wrong", headers=cookie)
                self.assertEqual(cookies_set(answer), {})
                self.assertTrue(self.is_session(cookie))

    def test_a_logout_ends_its_session_only_and_takes_the_cookie_back(self) -> None:
        cookie, other = session_cookie(self.server), session_cookie(self.server)
        answer = fetch(self.server, "/logout", headers=cookie)
        self.assertEqual((answer.status, answer.headers.get_all("Set-Cookie")),
                         (200, ["JSESSIONID=; Path=/; HttpOnly; Expires=Thu, 01 Jan 1970 00:00:00 GMT"]))
        self.assertFalse(self.is_session(cookie))
        self.assertTrue(self.is_session(other))

    def test_a_login_after_a_logout_opens_a_new_session(self) -> None:
        old = session_cookie(self.server)
        fetch(self.server, "/logout", headers=old)
        new = session_cookie(self.server)
        self.assertNotEqual(new, old)
        self.assertTrue(self.is_session(new))

    def test_a_logout_without_a_session_is_answered_as_well(self) -> None:
        for headers in NO_SESSIONS:
            with self.subTest(str(headers)[:60]):
                self.assertEqual(fetch(self.server, "/logout", headers=headers).status, 200)
