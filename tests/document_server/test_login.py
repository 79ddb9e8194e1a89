"""The web login form and the sessions that it opens."""

import re
from html import unescape
from urllib.parse import parse_qs, quote, urlsplit

from document_server.documents import document

from tests.document_server.case import ServerTest
from tests.document_server.client import basic, fetch, log_in, session_cookie

FOREIGN = ("https://elsewhere.example/", "//elsewhere.example/", "///elsewhere.example",
           "/\\elsewhere.example", "\\\\elsewhere.example", "elsewhere.example", "javascript:alert(1)",
           "/\t/elsewhere.example", "/a\r\nSet-Cookie: x=y", " /login/form", "/a\\..\\b", "/caf\u00e9")


def hidden_next(page: bytes) -> str:
    """The value of the form's hidden field."""
    return unescape(re.search(r'<input type="hidden" name="next" value="(.*?)">', page.decode())[1])


class WebLogin(ServerTest):

    def test_the_form_asks_for_a_user_and_a_password(self) -> None:
        answer = fetch(self.server, "/login/form")
        self.assertEqual(answer.status, 200)
        self.assertEqual(answer.headers["Content-Type"], "text/html; charset=utf-8")
        self.assertIn(b'<form method="post">', answer.body)
        self.assertIn(b'<input name="user"', answer.body)
        self.assertIn(b'<input name="password" type="password">', answer.body)
        self.assertNotIn(b'class="error"', answer.body)
        self.assertIsNone(answer.headers["Set-Cookie"])

    def test_the_report_page_calls_the_host_object_twice(self) -> None:
        answer = fetch(self.server, "/login/report")
        self.assertEqual((answer.status, answer.headers["Content-Type"]), (200, "text/html; charset=utf-8"))
        self.assertEqual(answer.body.count(b"window.external.norv();"), 2)

    def test_the_right_password_opens_a_session_and_leads_to_the_next_path(self) -> None:
        answer = log_in(self.server, next="/basic/documents/plan?size=3")
        self.assertEqual(answer.status, 302)
        self.assertEqual(answer.headers["Location"], "/basic/documents/plan?size=3")
        self.assertRegex(answer.headers["Set-Cookie"], r"^JSESSIONID=[\w-]{32}; Path=/; HttpOnly$")

    def test_the_next_path_may_come_in_the_query_and_is_home_by_default(self) -> None:
        self.assertEqual(log_in(self.server, "/login/form?next=/empty").headers["Location"], "/empty")
        self.assertEqual(log_in(self.server).headers["Location"], "/")

    def test_a_wrong_password_shows_the_form_again_with_an_error_and_no_session(self) -> None:
        for user, password in (("anna", "wrong"), ("anna", ""), ("", "kelda-demo"), ("bert", "kelda-demo")):
            with self.subTest(user=user, password=password):
                answer = log_in(self.server, user=user, password=password, next="/empty")
                self.assertEqual((answer.status, answer.headers["Set-Cookie"]), (200, None))
                self.assertIn(b'<p class="error">Wrong user name or password.</p>', answer.body)
                self.assertEqual(hidden_next(answer.body), "/empty")

    def test_a_post_that_is_no_form_is_a_wrong_password(self) -> None:
        for body in ("", "\u00ff\u0000%zz&&==", '{"user": "anna"}'):
            with self.subTest(body):
                answer = fetch(self.server, "/login/form", "POST", body=body)
                self.assertEqual((answer.status, b'class="error"' in answer.body), (200, True))

    def test_next_is_only_ever_a_local_path(self) -> None:
        for target in FOREIGN:
            with self.subTest(target):
                for answer in (fetch(self.server, "/login/form?next=" + quote(target, safe="")),
                               log_in(self.server, next=target),
                               log_in(self.server, "/login/form?next=" + quote(target, safe=""))):
                    self.assertEqual(answer.status, 400)
                    self.assertNotIn("Location", answer.headers)
                    self.assertNotIn("Set-Cookie", answer.headers)

    def test_next_cannot_break_out_of_the_page(self) -> None:
        target = '/"><script>alert(1)</script>{error}'
        page = fetch(self.server, "/login/form?next=" + quote(target, safe="")).body
        self.assertNotIn(b"<script", page)
        self.assertEqual(hidden_next(page), target)

    def test_a_document_without_a_session_leads_through_the_form_to_the_document(self) -> None:
        path = "/login/documents/the%20plan%26more?size=5000&x=%2F"
        to_form = fetch(self.server, path)
        self.assertEqual(to_form.status, 302)
        location = urlsplit(to_form.headers["Location"])
        self.assertEqual((location.path, parse_qs(location.query)), ("/login/form", {"next": [path]}))

        form = fetch(self.server, to_form.headers["Location"])
        logged_in = log_in(self.server, next=hidden_next(form.body))
        self.assertEqual(logged_in.headers["Location"], path)

        cookie = {"Cookie": logged_in.headers["Set-Cookie"].partition(";")[0]}
        answer = fetch(self.server, path, headers=cookie)
        self.assertEqual((answer.status, answer.body), (200, document("the plan&more", 5000)))

    def test_only_the_cookie_of_a_session_gets_a_document(self) -> None:
        other_name = session_cookie(self.server)["Cookie"].replace("JSESSIONID", "OTHER")
        for headers in (basic(), {"Cookie": "JSESSIONID="}, {"Cookie": "JSESSIONID"},
                        {"Cookie": "JSESSIONID=made-up"}, {"Cookie": other_name}):
            with self.subTest(headers):
                self.assertEqual(fetch(self.server, "/login/documents/plan", headers=headers).status, 302)

    def test_the_session_cookie_is_found_among_others(self) -> None:
        cookies = f'a="b=c"; odd;  {session_cookie(self.server)["Cookie"]} ; d=e'
        answer = fetch(self.server, "/login/documents/plan", headers={"Cookie": cookies})
        self.assertEqual(answer.body, document("plan"))
