"""The Windows credential store between two runs of a host: what is saved, pre-filled and cleared."""

import json

from tests.flow.viewer_case import CANCELLED, GIVEN, USER, ViewerCase, run_windows_program

SAVED = {**GIVEN, "save": True}
UNTICKED = {**GIVEN, "save": False}
WITHOUT_BLOB = "blob= persist=2 user=none"


class CredentialStore(ViewerCase):
    """Each test asks for the entry of its own server, and leaves none."""

    def setUp(self) -> None:
        super().setUp()
        for target in (self.server_url, self.server.url):
            self._delete(target)
            self.addCleanup(self._delete, target)

    @staticmethod
    def _delete(target: str) -> None:
        run_windows_program("credential_tool.exe", "delete", target)

    def prompt_of(self, answer: dict, server_url: str | None = None, path: str = "basic/") -> dict:
        """Runs a host that is challenged once, and tells what its prompt showed."""
        url = server_url or self.server_url
        run = self.run_viewer("--probe-only", "--server", url, "--path", path, "--prompt", "Please log in",
                              "--caption", "Viewer", prompts=[answer])
        self.assertEqual(len(run.prompts), 1, json.dumps(run.prompts))
        return run.prompts[0]

    def test_first_contact_shows_an_empty_prompt_with_the_box_unticked(self) -> None:
        prompt = self.prompt_of(GIVEN)
        self.assertEqual((prompt["prefilled_user"], prompt["prefilled_password"], prompt["save_before"]),
                         (None, False, False))
        self.assertEqual((prompt["caption"], prompt["message"]), ("Viewer", f"Please log in\n{self.server.url}"))
        self.assertEqual((prompt["has_parent"], prompt["flags"], prompt["struct_size"]), (False, 3, 40))
        self.assertEqual(self.credential(self.server_url), WITHOUT_BLOB)

    def test_a_ticked_box_pre_fills_and_pre_ticks_the_next_prompt_of_another_process(self) -> None:
        self.prompt_of(SAVED)
        prompt = self.prompt_of({"accept": True})
        self.assertEqual((prompt["prefilled_user"], prompt["prefilled_password"], prompt["save_before"]),
                         (USER, True, True))

    def test_the_saved_answer_is_accepted_by_the_server_once_confirmed(self) -> None:
        self.prompt_of(SAVED)
        run = self.probe("basic/", prompts=[{"accept": True}])
        self.assertEqual((run.exit_code, len(run.prompts)), (0, 1))

    def test_an_unticked_box_clears_the_saved_answer(self) -> None:
        self.prompt_of(SAVED)
        self.prompt_of(UNTICKED)
        self.assertEqual(self.credential(self.server_url), WITHOUT_BLOB)
        prompt = self.prompt_of(GIVEN)
        self.assertEqual((prompt["prefilled_user"], prompt["save_before"]), (None, False))

    def test_a_saved_answer_is_neither_sent_nor_lost_unless_the_user_confirms(self) -> None:
        self.prompt_of(SAVED)
        saved = self.credential(self.server_url)
        sent_before = len(self.server.requests())
        self.prompt_of(CANCELLED)
        self.assertEqual(self.credential(self.server_url), saved)
        self.assertEqual([request["user"] for request in self.server.requests()[sent_before:]], [None])

    def test_the_blob_is_the_packed_buffer(self) -> None:
        self.prompt_of(SAVED)
        fields = dict(field.split("=", 1) for field in self.credential(self.server_url).split())
        self.assertEqual((fields["persist"], fields["user"]), ("2", "none"))
        packed = run_windows_program("credential_tool.exe", "pack", GIVEN["user"], GIVEN["password"])
        self.assertEqual(fields["blob"], packed.output.strip())

    def test_the_server_with_and_without_a_trailing_slash_are_two_entries(self) -> None:
        self.prompt_of(SAVED)
        self.assertEqual(self.credential(self.server.url), "none")
        prompt = self.prompt_of(SAVED, self.server.url, "/basic/")
        self.assertEqual(prompt["prefilled_user"], None)
        self.assertNotEqual(self.credential(self.server.url), "none")

    def test_the_path_is_no_part_of_the_entry(self) -> None:
        self.prompt_of(SAVED, path="basic/")
        prompt = self.prompt_of({"accept": True}, path="basic/documents/plan")
        self.assertEqual(prompt["prefilled_user"], USER)
