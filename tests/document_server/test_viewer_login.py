"""The login page that a viewer opens in its browser, in all its kinds."""

import http.client
import time

from document_server.login import WRONG_PAGE_COLOUR

from tests.document_server.client import (ACCESS_CHECK, LOGIN_PAGE, TIMEOUT_SECONDS, cookie_header, cookies_set,
                                          fetch, log_in, raw_answer, raw_connection, session_cookie)
from tests.document_server.login_page_case import COLOURS, REPORT_CALL, WRONG, Controls, LoginPageTest


class Form(LoginPageTest):

    def test_the_page_asks_for_user_and_password_without_a_challenge(self) -> None:
        answer = fetch(self.server, LOGIN_PAGE)
        self.assert_asks(answer)
        self.assertIsNone(answer.headers["WWW-Authenticate"])

    def test_the_focus_begins_at_the_user_and_tab_leads_over_the_password_to_the_button(self) -> None:
        self.assertEqual(Controls(fetch(self.server, LOGIN_PAGE).body).found,
                         [("input", {"name": "user", "autofocus": None}),
                          ("input", {"name": "password", "type": "password"}),
                          ("button", {})])

    def test_the_form_is_the_same_after_a_wrong_password(self) -> None:
        at_first = Controls(fetch(self.server, LOGIN_PAGE).body).found
        self.assertEqual(Controls(log_in(self.server, LOGIN_PAGE, password="wrong").body).found, at_first)

    def test_the_right_password_opens_a_session_and_reports_it_once(self) -> None:
        self.assert_logs_in(log_in(self.server, LOGIN_PAGE), reports=1)

    def test_wrong_credentials_show_the_form_with_a_message_and_open_no_session(self) -> None:
        for user, password in (("anna", "wrong"), ("anna", ""), ("", "kelda-demo"), ("bert", "kelda-demo")):
            with self.subTest(user=user, password=password):
                answer = log_in(self.server, LOGIN_PAGE, user=user, password=password)
                self.assert_shows(answer, WRONG_PAGE_COLOUR)
                self.assertIn(WRONG, answer.body)
                self.assertNotIn(REPORT_CALL, answer.body)
                self.assertIsNone(answer.headers["Set-Cookie"])

    def test_the_right_password_is_let_in_after_a_wrong_one(self) -> None:
        log_in(self.server, LOGIN_PAGE, password="wrong")
        self.assert_logs_in(log_in(self.server, LOGIN_PAGE), reports=1)

    def test_a_post_that_is_no_form_is_a_wrong_password(self) -> None:
        for body in ("", "\u00ff\u0000%zz&&==", '{"user": "anna"}', "user&password", "&" * 100_000,
                     "user=%ff%fe&password=%00"):
            with self.subTest(body[:40]):
                self.assert_shows(fetch(self.server, LOGIN_PAGE, "POST", body=body), WRONG_PAGE_COLOUR)

    def test_credentials_count_in_a_post_only(self) -> None:
        body = "user=anna&password=kelda-demo"
        self.assert_asks(fetch(self.server, LOGIN_PAGE, body=body))
        self.assert_asks(fetch(self.server, f"{LOGIN_PAGE}?{body}"))

    def test_nothing_that_was_typed_comes_back_in_the_page(self) -> None:
        answer = log_in(self.server, LOGIN_PAGE, user="<b>bert", password="<b>secret", next="//elsewhere.example")
        for text in (b"<b>", b"bert", b"secret", b"elsewhere"):
            self.assertNotIn(text, answer.body)

    def test_who_is_logged_in_gets_the_form_again_and_may_log_in_again(self) -> None:
        cookie = session_cookie(self.server)
        self.assert_asks(fetch(self.server, LOGIN_PAGE, headers=cookie))
        self.assert_logs_in(log_in(self.server, LOGIN_PAGE, headers=cookie), reports=1)

    def test_a_query_changes_nothing(self) -> None:
        path = LOGIN_PAGE + "?next=//elsewhere.example&x"
        self.assert_asks(fetch(self.server, path))
        self.assert_logs_in(log_in(self.server, path), reports=1)

    def test_the_pages_have_different_colours(self) -> None:
        self.assertEqual(len(set(COLOURS)), 6)

    def test_there_are_no_cookies_of_a_load_balancer(self) -> None:
        self.assertEqual(list(cookies_set(log_in(self.server, LOGIN_PAGE))), ["JSESSIONID"])


class Silent(LoginPageTest):

    options = ("--login-page", "silent")

    def test_a_login_opens_a_session_but_does_not_report_it(self) -> None:
        self.assert_asks(fetch(self.server, LOGIN_PAGE))
        answer = log_in(self.server, LOGIN_PAGE)
        self.assert_logs_in(answer, reports=0)
        self.assertNotIn(b"<script", answer.body)

    def test_a_wrong_password_is_refused(self) -> None:
        self.assert_shows(log_in(self.server, LOGIN_PAGE, password="wrong"), WRONG_PAGE_COLOUR)


class Twice(LoginPageTest):

    options = ("--login-page", "twice")

    def test_a_login_reports_its_session_twice(self) -> None:
        self.assert_asks(fetch(self.server, LOGIN_PAGE))
        self.assert_logs_in(log_in(self.server, LOGIN_PAGE), reports=2)


class Report(LoginPageTest):

    options = ("--login-page", "report")

    def test_the_page_logs_in_and_reports_without_any_input(self) -> None:
        self.assert_logs_in(fetch(self.server, LOGIN_PAGE), reports=1)

    def test_the_page_opens_a_new_session_each_time_and_ends_the_one_before(self) -> None:
        first = cookie_header(cookies_set(fetch(self.server, LOGIN_PAGE)))
        second = cookie_header(cookies_set(fetch(self.server, LOGIN_PAGE, headers=first)))
        self.assertNotEqual(first, second)
        self.assertEqual([fetch(self.server, ACCESS_CHECK, headers=cookie).status for cookie in (first, second)],
                         [403, 200])

    def test_the_other_form_still_asks(self) -> None:
        self.assert_asks(fetch(self.server, "/login/form"))


class Unanswered(LoginPageTest):

    options = ("--login-page", "unanswered")

    def test_the_page_is_the_form(self) -> None:
        self.assert_asks(fetch(self.server, LOGIN_PAGE))

    def test_a_post_is_logged_while_it_waits(self) -> None:
        deadline = time.monotonic() + TIMEOUT_SECONDS
        before = len(self.server.requests())
        with raw_connection(self.server, LOGIN_PAGE, "POST"):
            while len(self.server.requests()) == before:
                self.assertLess(time.monotonic(), deadline)
        entry = self.server.requests()[-1]
        self.assertEqual((entry["method"], entry["path"], entry["status"]), ("POST", LOGIN_PAGE, None))


class Broken(LoginPageTest):

    options = ("--login-page", "broken")

    def test_the_connection_is_closed_without_an_answer(self) -> None:
        self.assertEqual(raw_answer(self.server, LOGIN_PAGE), b"")
        with self.assertRaises(http.client.RemoteDisconnected):
            log_in(self.server, LOGIN_PAGE)

    def test_the_request_is_in_the_log_without_a_status(self) -> None:
        raw_answer(self.server, LOGIN_PAGE)
        entry = self.server.requests()[-1]
        self.assertEqual((entry["path"], entry["status"]), (LOGIN_PAGE, None))

    def test_the_rest_of_the_server_works(self) -> None:
        self.assertEqual(fetch(self.server, ACCESS_CHECK, headers=session_cookie(self.server)).status, 200)


class RefusedStatus(LoginPageTest):

    options = ("--login-page", "refused-status")

    def test_the_page_is_a_server_error_whatever_is_sent(self) -> None:
        for answer in (fetch(self.server, LOGIN_PAGE), log_in(self.server, LOGIN_PAGE)):
            self.assertEqual((answer.status, answer.headers["Set-Cookie"]), (500, None))
