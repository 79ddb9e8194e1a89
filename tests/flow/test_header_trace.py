"""The headers of the probe in the trace, for support engineers who asked for them."""

from tests.flow.viewer_case import GIVEN, ViewerCase


class HeaderTrace(ViewerCase):
    def test_shows_the_headers_that_the_server_received_and_sent(self) -> None:
        run = self.probe("login/form", implementation="trace")
        request, response = run.trace.index("[0] Request headers:"), run.trace.index("[0] Response headers:")
        self.assertLess(request, response)
        self.assertEqual(run.trace[request + 1], "[0] GET /login/form HTTP/1.1")
        self.assertEqual(run.trace[response + 1], "[0] HTTP/1.1 200 OK")
        received = self.server.requests()[0]["headers"]
        self.assertIn("User-Agent", received)
        for name, value in received.items():
            self.assertIn(f"[0] {name}: {value}", run.trace[request:response])
        self.assertNotIn("[0] ", run.trace, "no line is empty")

    def test_is_off_without_the_word(self) -> None:
        run = self.probe("login/form", implementation="parse")
        self.assertIn("[0] SessionAuthenticationComplete. status = 1", run.trace)
        self.assertEqual([line for line in run.trace if "headers" in line], [])

    def test_shows_the_answer_of_a_server_that_refuses(self) -> None:
        run = self.probe("forbidden", implementation="trace")
        self.assertIn("[0] SessionAuthenticationComplete. status = 3", run.trace)
        answer = run.trace.index("[0] Server answered with HTTP status 403")
        self.assertEqual(run.trace[answer + 1], "[0] Response headers:")
        self.assertRegex(run.trace[answer + 2], r"^\[0\] HTTP/1\.1 403 ")
        self.assertNotIn("[0] Request headers:", run.trace)

    def test_shows_nothing_of_a_refusal_without_the_word(self) -> None:
        run = self.probe("forbidden")
        self.assertIn("[0] SessionAuthenticationComplete. status = 3", run.trace)
        self.assertEqual([line for line in run.trace if "403" in line or "headers" in line], [])

    def test_cannot_be_forged_by_what_a_server_sends(self) -> None:
        run = self.probe("hostile/control-characters", implementation="trace")
        self.assertIn("[0] Response headers:", run.trace)
        self.assertEqual([line for line in run.trace if any(ord(character) < 0x20 for character in line)], [])

    def test_shows_the_accepted_request_after_a_challenge(self) -> None:
        run = self.probe("basic/", prompts=[GIVEN], implementation="trace")
        self.assertIn("[0] HTTP/1.1 200 OK", run.trace)
        self.assertNotIn("[0] HTTP/1.1 401 Unauthorized", run.trace)
