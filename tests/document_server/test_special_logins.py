"""The kinds of login page that do more than to show a form."""

import re

from document_server.login import (CHALLENGE_PAGE_COLOUR, DONE_PAGE_COLOUR, NEW_WINDOW_COLOUR, PAGE_COLOUR,
                                   WRONG_PAGE_COLOUR)

from tests.document_server.client import (ACCESS_CHECK, LOGIN_PAGE, Answer, basic, cookie_header, cookies_set, fetch,
                                          log_in, session_cookie)
from tests.document_server.login_page_case import REPORT_CALL, SESSION_COOKIE, LoginPageTest

STEP, DONE, FRAME = "/login/step", "/login/done", "/login/frame"


class Redirects(LoginPageTest):

    options = ("--login-page", "redirects")

    def test_the_page_is_the_form(self) -> None:
        self.assert_asks(fetch(self.server, LOGIN_PAGE))
        self.assert_shows(log_in(self.server, LOGIN_PAGE, password="wrong"), WRONG_PAGE_COLOUR)

    def test_a_login_sets_the_session_cookie_and_another_and_leads_on(self) -> None:
        answer = log_in(self.server, LOGIN_PAGE)
        self.assertEqual((answer.status, answer.headers["Location"], answer.body), (302, STEP, b""))
        session, other = answer.headers.get_all("Set-Cookie")
        self.assertRegex(session, rf"\A{SESSION_COOKIE}\Z")
        self.assertEqual(other, "workspace=main; Path=/")

    def test_the_step_sets_a_third_cookie_and_leads_to_the_end(self) -> None:
        answer = fetch(self.server, STEP, headers=session_cookie(self.server))
        self.assertEqual((answer.status, answer.headers["Location"]), (302, DONE))
        self.assertEqual(answer.headers.get_all("Set-Cookie"), ["language=en; Path=/; HttpOnly"])

    def test_the_end_sets_no_cookie_and_reports_nothing(self) -> None:
        answer = fetch(self.server, DONE, headers=session_cookie(self.server))
        self.assert_shows(answer, DONE_PAGE_COLOUR)
        self.assertNotIn(b"<script", answer.body)
        self.assertIsNone(answer.headers["Set-Cookie"])

    def test_who_does_not_send_the_session_cookie_on_the_way_gets_no_further(self) -> None:
        for path in (STEP, DONE):
            with self.subTest(path):
                answer = fetch(self.server, path, headers={"Cookie": "workspace=main"})
                self.assertEqual((answer.status, answer.headers["Set-Cookie"]), (403, None))


class Asks(LoginPageTest):

    options = ("--login-page", "asks")

    def test_without_credentials_there_is_a_challenge_with_a_page_of_its_own(self) -> None:
        for answer in (fetch(self.server, LOGIN_PAGE), fetch(self.server, LOGIN_PAGE, headers=basic(password="wrong")),
                       log_in(self.server, LOGIN_PAGE)):
            self.assert_shows(answer, CHALLENGE_PAGE_COLOUR, status=401)
            self.assertEqual(answer.headers["WWW-Authenticate"], 'Basic realm="kelda documents"')
            self.assertIsNone(answer.headers["Set-Cookie"])

    def test_with_credentials_the_page_is_a_form_like_any_other(self) -> None:
        self.assert_asks(fetch(self.server, LOGIN_PAGE, headers=basic()))
        self.assert_logs_in(log_in(self.server, LOGIN_PAGE, headers=basic()), reports=1)
        wrong = log_in(self.server, LOGIN_PAGE, password="wrong", headers=basic())
        self.assert_shows(wrong, WRONG_PAGE_COLOUR)

    def test_the_log_tells_what_became_of_the_credentials(self) -> None:
        for headers, accepted in (({}, None), (basic(password="wrong"), False), (basic(), True)):
            fetch(self.server, LOGIN_PAGE, headers=headers)
            self.assertEqual(self.server.requests()[-1]["credentials_accepted"], accepted)


class WelcomingForm(LoginPageTest):
    """A form whose page does something when it is loaded."""

    welcome = b""

    def assert_welcomes_once(self) -> None:
        """The form as it is at first has the welcome, the same form after a wrong password has not."""
        answer = fetch(self.server, LOGIN_PAGE)
        self.assert_asks(answer)
        self.assertEqual(answer.body.count(self.welcome), 1)
        again = log_in(self.server, LOGIN_PAGE, password="wrong")
        self.assert_shows(again, WRONG_PAGE_COLOUR)
        self.assertNotIn(b"<script", again.body)
        self.assert_logs_in(log_in(self.server, LOGIN_PAGE), reports=1)


class Popup(WelcomingForm):

    options = ("--login-page", "popup")
    welcome = b'<script>\naddEventListener("load", () => window.open("/login/new-window"));\n</script>'

    def test_the_form_opens_a_window_when_it_is_loaded_first(self) -> None:
        self.assert_welcomes_once()

    def test_the_window_has_a_page_of_its_own(self) -> None:
        answer = fetch(self.server, "/login/new-window")
        self.assert_shows(answer, NEW_WINDOW_COLOUR)
        self.assertNotIn(b"<script", answer.body)


class Faulty(WelcomingForm):

    options = ("--login-page", "faulty")
    welcome = b"<script>\ndocumentServer.noSuchFunction();\n</script>"

    def test_the_form_has_a_script_that_fails_when_it_is_loaded_first(self) -> None:
        self.assert_welcomes_once()


class Links(WelcomingForm):

    options = ("--login-page", "links")
    welcome = b"href=\"javascript:void(0);document.querySelector('h1').remove()\""

    def test_the_form_has_links_when_it_is_loaded_first(self) -> None:
        self.assert_welcomes_once()


class Dialog(WelcomingForm):

    options = ("--login-page", "dialog")
    welcome = b'<script>\naddEventListener("load", () => alert("Welcome"));\n</script>'

    def test_the_form_shows_a_dialog_when_it_is_loaded_first(self) -> None:
        self.assert_welcomes_once()


class Odd(WelcomingForm):

    options = ("--login-page", "odd")
    welcome = (b'<script>\naddEventListener("load", async () => {\n'
               b'  for (const path of ["/cookies/names", "/cookies/chain", "/headers/none", "/cookies/twenty"]) {\n'
               b'    await fetch(path);\n  }\n});\n</script>')

    def test_the_form_fetches_odd_answers_when_it_is_loaded_first(self) -> None:
        self.assert_welcomes_once()


class Worker(WelcomingForm):

    options = ("--login-page", "worker")
    welcome = b'<script>\nnavigator.serviceWorker.register("/login/worker.js", { scope: "/" });\n</script>'

    def test_the_form_registers_a_worker(self) -> None:
        self.assert_welcomes_once()

    def test_the_worker_is_allowed_to_answer_for_the_whole_site(self) -> None:
        answer = fetch(self.server, "/login/worker.js")
        self.assertEqual((answer.status, answer.headers["Content-Type"], answer.headers["Service-Worker-Allowed"]),
                         (200, "text/javascript; charset=utf-8", "/"))

    def test_the_worker_says_that_it_is_there_by_a_request_of_its_own(self) -> None:
        path = "/login/worker-active"
        self.assertIn(f'fetch("{path}")'.encode(), fetch(self.server, "/login/worker.js").body)
        self.assertEqual(fetch(self.server, path).status, 204)


class Framed(LoginPageTest):

    options = ("--login-page", "framed")

    def post_ticket(self, ticket: str) -> Answer:
        """What the page around the frame does with a ticket."""
        return fetch(self.server, LOGIN_PAGE, "POST", body=f"ticket={ticket}")

    def ticket(self) -> str:
        """A ticket out of the page that follows a login in the frame."""
        return re.search(r'postMessage\("([\w-]{32})"', log_in(self.server, FRAME).body.decode())[1]

    def test_the_page_has_the_form_of_another_site_in_a_frame(self) -> None:
        answer = fetch(self.server, LOGIN_PAGE)
        self.assert_shows(answer, PAGE_COLOUR)
        self.assertIn(f'<iframe src="http://localhost:{self.server.port}{FRAME}"'.encode(), answer.body)
        self.assertNotIn(b'name="user"', answer.body)
        self.assertNotIn(REPORT_CALL, answer.body)

    def test_a_login_in_the_frame_sets_no_cookie_and_is_reported_to_the_page_around_it_only(self) -> None:
        self.assert_asks(fetch(self.server, FRAME))
        answer = log_in(self.server, FRAME)
        self.assert_shows(answer, DONE_PAGE_COLOUR)
        self.assertRegex(answer.body.decode(),
                         rf'window\.top\.postMessage\("[\w-]{{32}}", "http://127\.0\.0\.1:{self.server.port}"\);')
        self.assertNotIn(REPORT_CALL, answer.body)
        self.assertIsNone(answer.headers["Set-Cookie"])

    def test_a_wrong_password_in_the_frame_gives_no_ticket(self) -> None:
        answer = log_in(self.server, FRAME, password="wrong")
        self.assert_shows(answer, WRONG_PAGE_COLOUR)
        self.assertNotIn(b"postMessage", answer.body)

    def test_the_page_listens_to_its_frame_only(self) -> None:
        page = fetch(self.server, LOGIN_PAGE).body.decode()
        self.assertIn(f'if (message.origin === "http://localhost:{self.server.port}")', page)

    def test_a_ticket_opens_one_session_which_is_reported(self) -> None:
        ticket = self.ticket()
        self.assert_logs_in(self.post_ticket(ticket), reports=1)
        self.assert_opens_nothing(self.post_ticket(ticket))

    def test_what_is_no_ticket_opens_no_session(self) -> None:
        for ticket in ("", "made-up", session_cookie(self.server)["Cookie"].partition("=")[2]):
            with self.subTest(ticket):
                self.assert_opens_nothing(self.post_ticket(ticket))

    def test_the_password_is_for_the_frame_only(self) -> None:
        self.assert_opens_nothing(log_in(self.server, LOGIN_PAGE))

    def test_a_ticket_is_no_session(self) -> None:
        headers = cookie_header({"JSESSIONID": self.ticket()})
        self.assertEqual(fetch(self.server, ACCESS_CHECK, headers=headers).status, 403)

    def assert_opens_nothing(self, answer: Answer) -> None:
        """The answer is the page with the frame again."""
        self.assert_shows(answer, PAGE_COLOUR)
        self.assertIn(b"<iframe ", answer.body)
        self.assertEqual(cookies_set(answer), {})


class FramedBehindABalancer(LoginPageTest):

    options = ("--login-page", "framed", "--back-ends", "3")

    def test_the_ticket_of_any_back_end_counts_at_any_other(self) -> None:
        for _ in range(3):
            ticket = re.search(r'postMessage\("([\w-]{32})"', log_in(self.server, FRAME).body.decode())[1]
            answer = fetch(self.server, LOGIN_PAGE, "POST", body=f"ticket={ticket}")
            self.assert_shows(answer, DONE_PAGE_COLOUR)
            self.assertIn("JSESSIONID", cookies_set(answer))
