"""Each answer of a server: the probe's status and the exact lines of the trace."""

import base64

from tests.flow.viewer_case import CANCELLED, GIVEN, PASSWORD, USER, WRONG, ViewerCase

from document_server.documents import document

AUTHENTICATED, FORM, FAILED, CANCELLED_STATUS, UNAUTHORIZED = 0, 11, 13, 14, 15

SENT = "[0] Credentials were sent successfully to server following Authenticate() callback"
USER_CANCELLED = "[0] Sending of Credentials to server following Authenticate() callback was cancelled by user"
CREATED = "[0] HTTP Stream for server authentication was created successfully"
BIND_FAILED = "[3] Error while creating HTTP Stream for server authentication - BindToStorage() failed"
NO_RESULT_TEXT = "[0] GetBindResult() = 0x0"
ABORTED = "[0] Operation aborted."


def begun(path: str, server: str = "SERVER/") -> list[str]:
    return [f"[0] Authentication URL is {server}", f"[0] Authentication URL path is {path}"]


def completed(status: int) -> str:
    return f"[0] SessionAuthenticationComplete. status = {status}"


def failed_with(name: str) -> list[str]:
    return [f"[3] Server binding failed. error_str = {name}", NO_RESULT_TEXT, completed(3), BIND_FAILED]


class Challenge(ViewerCase):
    """A server that asks for Basic credentials."""

    def test_right_credentials_authenticate(self) -> None:
        run = self.probe("basic/", prompts=[GIVEN])
        self.assertEqual(run.exit_code, AUTHENTICATED)
        self.assertEqual(run.trace, [*begun("basic/"), SENT, completed(2), CREATED])
        self.assertEqual([request["credentials_accepted"] for request in self.server.requests()][-1], True)

    def test_right_credentials_let_the_document_be_downloaded(self) -> None:
        output = self.folder / "document.bin"
        run = self.run_viewer("--server", self.server_url, "--path", "basic/", "--get", "basic/documents/plan?size=300000",
                              "--output", "Z:" + str(output), prompts=[GIVEN])
        self.assertEqual(run.exit_code, 0, run.output)
        self.assertEqual(output.read_bytes(), document("plan", 300_000))
        download = self.server.requests()[-1]
        self.assertEqual((download["path"], download["status"], download["user"], download["credentials_accepted"]),
                         ("/basic/documents/plan?size=300000", 200, USER, True))
        self.assertEqual(len(run.prompts), 1, "the download does not ask again")

    def test_the_document_is_refused_to_who_did_not_log_in(self) -> None:
        output = self.folder / "document.bin"
        run = self.run_viewer("--server", self.server_url, "--path", "basic/", "--get", "basic/documents/plan",
                              "--output", "Z:" + str(output), prompts=[CANCELLED])
        self.assertEqual(run.exit_code, 3)
        self.assertFalse(output.exists())
        self.assertNotIn("/basic/documents/plan", [request["path"] for request in self.server.requests()])

    def test_wrong_credentials_are_asked_for_again_until_they_are_right(self) -> None:
        run = self.probe("basic/", prompts=[WRONG, GIVEN])
        self.assertEqual(run.exit_code, AUTHENTICATED)
        self.assertEqual(run.trace, [*begun("basic/"), SENT, SENT, completed(2), CREATED])

    def test_wrong_credentials_and_then_a_cancelled_prompt_are_cancelled(self) -> None:
        run = self.probe("basic/", prompts=[WRONG, CANCELLED])
        self.assertEqual(run.exit_code, CANCELLED_STATUS)
        self.assertEqual(run.trace, [*begun("basic/"), SENT, USER_CANCELLED, ABORTED, NO_RESULT_TEXT, completed(4),
                                     BIND_FAILED])

    def test_wrong_credentials_to_the_end_are_unauthorized(self) -> None:
        run = self.probe("basic/", prompts=[WRONG] * 5)
        self.assertEqual(run.exit_code, UNAUTHORIZED)
        self.assertEqual(run.trace, [*begun("basic/"), SENT, SENT, SENT, "[0] Credentials are unauthorized",
                                     completed(5), BIND_FAILED])
        self.assertEqual(len(run.prompts), 3, "the system gives up after three")

    def test_a_cancelled_prompt_is_cancelled(self) -> None:
        run = self.probe("basic/", prompts=[CANCELLED])
        self.assertEqual(run.exit_code, CANCELLED_STATUS)
        self.assertEqual(run.trace, [*begun("basic/"), USER_CANCELLED, ABORTED, NO_RESULT_TEXT, completed(4),
                                     BIND_FAILED])
        self.assertEqual({request["user"] for request in self.server.requests()}, {None})

    def test_a_prompt_that_fails_leaves_the_401_as_the_answer(self) -> None:
        run = self.probe("basic/", prompts=[{"fail": 31}])
        self.assertEqual(run.exit_code, UNAUTHORIZED)
        self.assertEqual(run.trace, [*begun("basic/"), "[3] CredUIPromptForCredentials() failed. Error code = 31",
                                     "[0] Credentials are unauthorized", completed(5), BIND_FAILED])

    def test_an_answer_that_cannot_be_unpacked_counts_as_a_prompt_that_failed(self) -> None:
        run = self.probe("basic/", prompts=[{"malformed": True}])
        self.assertEqual(run.exit_code, UNAUTHORIZED)
        self.assertEqual(run.trace[2:4], ["[3] CredUnPackAuthenticationBuffer() failed. Error code = 50",
                                          "[3] CredUIPromptForCredentials() failed. Error code = 50"])

    def test_forbidden_to_the_right_user_is_a_failure(self) -> None:
        run = self.probe("basic/status/403", prompts=[GIVEN])
        self.assertEqual(run.exit_code, FAILED)
        self.assertEqual(run.trace, [*begun("basic/status/403"), SENT, ABORTED, NO_RESULT_TEXT, completed(3),
                                     BIND_FAILED])

    def test_basic_is_chosen_among_several_offers(self) -> None:
        self.assertEqual(self.probe("unauthorized/several", prompts=[GIVEN]).exit_code, AUTHENTICATED)

    def test_a_redirect_to_a_challenge_is_challenged(self) -> None:
        run = self.probe("redirect/basic", prompts=[GIVEN])
        self.assertEqual(run.exit_code, AUTHENTICATED)
        self.assertEqual(run.trace, [*begun("redirect/basic"), SENT, completed(2), CREATED])

    def test_a_second_probe_of_the_process_is_not_challenged_any_more(self) -> None:
        finished, prompts = self.run_host("probe_twice.exe", self.server_url, "basic/", prompts=[GIVEN, GIVEN])
        self.assertEqual(finished.output.split(), ["2", "1"], finished.errors)
        self.assertEqual(len(prompts), 1)
        self.assertEqual(self.server.requests()[-1]["credentials_accepted"], True)

    def test_no_trace_line_holds_the_password_or_its_encoding(self) -> None:
        run = self.probe("basic/", prompts=[GIVEN], implementation="trace")
        text = "\n".join(run.trace) + run.output + run.errors
        self.assertIn("[0] Authorization: (not traced)", run.trace)
        self.assertNotIn(PASSWORD, text)
        self.assertNotIn(base64.b64encode(f"{USER}:{PASSWORD}".encode()).decode(), text)


class NoChallenge(ViewerCase):
    """A server that answers without asking for credentials."""

    def test_a_page_at_once_means_a_login_form(self) -> None:
        run = self.probe("login/form")
        self.assertEqual(run.exit_code, FORM)
        self.assertEqual(run.trace, [*begun("login/form"), completed(1), CREATED])
        self.assertEqual(run.prompts, [])

    def test_a_redirect_to_a_login_form_means_a_login_form(self) -> None:
        run = self.probe("redirect/form")
        self.assertEqual(run.exit_code, FORM)
        self.assertEqual(run.trace, [*begun("redirect/form"), completed(1), CREATED])
        self.assertEqual([request["path"] for request in self.server.requests()], ["/redirect/form", "/login/form"])

    def test_an_empty_body_is_an_answer(self) -> None:
        self.assertEqual(self.probe("empty").exit_code, FORM)

    def test_a_large_body_in_many_pieces_is_an_answer(self) -> None:
        run = self.probe("bytes/3000000?pieces=30")
        self.assertEqual(run.exit_code, FORM)
        self.assertEqual(run.trace[-1], CREATED)

    def test_the_path_follows_the_url_with_nothing_between(self) -> None:
        self.run_viewer("--probe-only", "--server", self.server.url + "/lo", "--path", "gin/form")
        self.assertEqual(self.server.requests()[0]["path"], "/login/form")


class Refusal(ViewerCase):
    """A server that answers with an error, or in no way that helps."""

    def assert_failed_with_status(self, path: str) -> None:
        run = self.probe(path)
        self.assertEqual(run.exit_code, FAILED)
        self.assertEqual(run.trace, [*begun(path), ABORTED, NO_RESULT_TEXT, completed(3), BIND_FAILED])
        self.assertEqual(run.prompts, [])

    def test_403_fails(self) -> None:
        self.assert_failed_with_status("forbidden")

    def test_404_fails(self) -> None:
        self.assert_failed_with_status("no/such/page")

    def test_500_fails(self) -> None:
        self.assert_failed_with_status("status/500")

    def test_204_without_a_body_fails(self) -> None:
        self.assert_failed_with_status("status/204")

    def test_a_401_without_a_challenge_is_unauthorized(self) -> None:
        run = self.probe("unauthorized/bare")
        self.assertEqual(run.exit_code, UNAUTHORIZED)
        self.assertEqual(run.trace, [*begun("unauthorized/bare"), "[0] Credentials are unauthorized", completed(5),
                                     BIND_FAILED])
        self.assertEqual(run.prompts, [])

    def test_a_challenge_for_digest_alone_is_unauthorized(self) -> None:
        run = self.probe("unauthorized/digest")
        self.assertEqual((run.exit_code, run.prompts), (UNAUTHORIZED, []))

    def test_a_dropped_connection_fails(self) -> None:
        self.assert_failed_with_status("hostile/drop")

    def test_a_page_without_a_status_line_passes_for_a_login_form(self) -> None:
        run = self.probe("hostile/bare-html")
        self.assertEqual((run.exit_code, run.trace[2:]), (FORM, [completed(1), CREATED]))

    def test_garbage_does_not_authenticate(self) -> None:
        run = self.probe("hostile/garbage")
        self.assertEqual((run.exit_code, run.trace[2:]), (FORM, [completed(1), CREATED]))

    def test_a_redirect_to_a_refusal_is_a_refusal(self) -> None:
        self.assert_failed_with_status("redirect/forbidden")
        self.assertEqual([request["path"] for request in self.server.requests()],
                         ["/redirect/forbidden", "/forbidden"])


class Unreachable(ViewerCase):
    """No server at all behind the address."""

    def test_a_refused_connection_fails(self) -> None:
        self.server.stop()
        run = self.probe("basic/")
        self.assertEqual(run.exit_code, FAILED)
        self.assertEqual(run.trace, [*begun("basic/"), *failed_with("INET_E_DOWNLOAD_FAILURE")])
        self.assertIn("INET_E_DOWNLOAD_FAILURE", run.last_line)

    def test_an_unknown_host_fails(self) -> None:
        run = self.run_viewer("--probe-only", "--server", "http://no-such-host.invalid/")
        self.assertEqual(run.exit_code, FAILED)
        self.assertEqual(run.trace, [*begun("", "http://no-such-host.invalid/"),
                                     *failed_with("INET_E_DOWNLOAD_FAILURE")])

    def test_a_scheme_that_nobody_knows_fails(self) -> None:
        run = self.run_viewer("--probe-only", "--server", "nonsense://server/")
        self.assertEqual(run.exit_code, FAILED)
        self.assertEqual(run.trace, [*begun("", "nonsense://server/"), NO_RESULT_TEXT, completed(3), BIND_FAILED])

    def test_a_text_that_is_no_url_fails(self) -> None:
        run = self.run_viewer("--probe-only", "--server", "no url at all")
        self.assertEqual(run.exit_code, FAILED)
        self.assertEqual(run.trace, [*begun("", "no url at all"), NO_RESULT_TEXT, completed(3), BIND_FAILED])


class UntrustedCertificate(ViewerCase):
    """A server whose certificate nobody vouches for."""

    server_options = ("--tls",)

    def test_is_refused_without_a_question(self) -> None:
        run = self.probe("basic/", prompts=[GIVEN])
        self.assertEqual(run.exit_code, FAILED)
        self.assertEqual(run.trace, [*begun("basic/"), *failed_with("INET_E_INVALID_CERTIFICATE")])
        self.assertEqual((run.prompts, self.server.requests()), ([], []))
