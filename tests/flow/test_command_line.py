"""The viewer's command line: usage, exit codes, and a last line that says what happened."""

import os

from tests.flow.viewer_case import BIN_DIR, GIVEN, ViewerCase, run_windows_program, windows_path


class WrongArguments(ViewerCase):
    def assert_usage(self, problem: str, *arguments: str) -> None:
        finished = run_windows_program("viewer.exe", *arguments)
        self.assertEqual(finished.exit_code, 2)
        self.assertIn("usage: viewer", finished.errors)
        self.assertEqual(finished.output.splitlines()[-1], f"viewer: {problem}")

    def test_no_arguments(self) -> None:
        self.assert_usage("--server is missing.")

    def test_an_option_that_there_is_not(self) -> None:
        self.assert_usage('"--sever" is no option of the viewer.', "--sever", self.server_url)

    def test_an_option_without_its_value(self) -> None:
        self.assert_usage("--server needs a value.", "--server")
        self.assert_usage("--server needs a value.", "--server", "--probe-only")

    def test_a_document_without_a_file(self) -> None:
        self.assert_usage("--get and --output belong together.", "--server", self.server_url, "--get", "x")
        self.assert_usage("--get and --output belong together.", "--server", self.server_url, "--output", "x")

    def test_nothing_is_sent_to_the_server(self) -> None:
        self.assert_usage("--get and --output belong together.", "--server", self.server_url, "--get", "x")
        self.assertEqual(self.server.requests(), [])


class Help(ViewerCase):
    def test_is_printed_on_demand(self) -> None:
        finished = run_windows_program("viewer.exe", "--help")
        self.assertEqual(finished.exit_code, 0)
        self.assertIn("usage: viewer --server URL", finished.output)


class LastLine(ViewerCase):
    def download(self, document: str, output: str) -> "tuple[int, str]":
        run = self.run_viewer("--server", self.server_url, "--path", "basic/", "--get", document, "--output", output,
                              prompts=[GIVEN])
        return run.exit_code, run.last_line

    def test_tells_of_a_login(self) -> None:
        run = self.run_viewer("--server", self.server_url, "--path", "basic/", prompts=[GIVEN])
        self.assertEqual((run.exit_code, run.last_line), (0, "viewer: logged in."))

    def test_tells_of_a_document_and_its_size(self) -> None:
        output = windows_path(self.folder / "plan.bin")
        self.assertEqual(self.download("basic/documents/plan?size=12345", output),
                         (0, f"viewer: logged in; {output} holds 12345 bytes."))

    def test_tells_of_a_document_that_is_not_there(self) -> None:
        output = self.folder / "plan.bin"
        self.assertEqual(self.download("no/such/document", windows_path(output)),
                         (4, "viewer: logged in, but no/such/document was not served: HTTP 404."))
        self.assertEqual(list(self.folder.glob("plan*")), [], "nothing half-done is left")

    def test_tells_of_a_server_that_went_silent(self) -> None:
        exit_code, last_line = self.download("hostile/drop", windows_path(self.folder / "plan.bin"))
        self.assertEqual(exit_code, 4)
        self.assertIn("no HTTP answer", last_line)

    def test_tells_of_a_file_that_cannot_be_written(self) -> None:
        output = windows_path(self.folder / "no" / "such" / "folder" / "plan.bin")
        exit_code, last_line = self.download("basic/documents/plan", output)
        self.assertEqual(exit_code, 5)
        self.assertIn(f"{output} cannot be written", last_line)

    def test_tells_of_a_trace_that_cannot_be_written(self) -> None:
        trace = windows_path(self.folder / "no" / "trace.txt")
        finished = run_windows_program("viewer.exe", "--server", self.server_url, "--trace", trace)
        self.assertEqual(finished.exit_code, 5)
        self.assertEqual(finished.output.strip(), f"viewer: the trace file {trace} cannot be written.")

    def test_keeps_an_older_file_where_the_document_is_refused(self) -> None:
        output = self.folder / "plan.bin"
        output.write_bytes(b"older")
        self.assertEqual(self.download("forbidden", windows_path(output))[0], 4)
        self.assertEqual(output.read_bytes(), b"older")


class Trace(ViewerCase):
    def test_goes_to_stderr_on_demand(self) -> None:
        finished = run_windows_program("viewer.exe", "--server", self.server_url, "--path", "forbidden", "--trace", "-")
        self.assertIn("kelda ZanBasicAuthentication 0 Operation aborted.", finished.errors)

    def test_stays_silent_otherwise(self) -> None:
        finished = run_windows_program("viewer.exe", "--server", self.server_url, "--path", "forbidden")
        self.assertEqual((finished.exit_code, finished.errors), (3, ""))


class WithoutWindow(ViewerCase):
    def test_tells_what_could_not_be_made(self) -> None:
        # Wine makes no window without its driver for the display. The desktop is there already (tools/common.sh): the
        # viewer would start it without the driver too, for all programs that run at the same time.
        overrides = ";".join(filter(None, [os.environ.get("WINEDLLOVERRIDES", ""), "winex11.drv=d"]))
        finished = run_windows_program("viewer.exe", "--server", self.server_url,
                                       environment={"WINEDLLOVERRIDES": overrides})
        self.assertEqual(finished.exit_code, 1)
        self.assertRegex(finished.output.strip(), r"^viewer: the main window could not be made: "
                                                  r"toolkit result \d+, system error \d+\.$")


class Program(ViewerCase):
    def test_needs_no_module_beside_it_but_the_projects_own(self) -> None:
        self.assertEqual({path.name for path in BIN_DIR.glob("*.dll")},
                         {"kelda.dll", "host_utility.dll", "host_toolkit.dll", "legacy_control.dll", "windows_gaps.dll",
                          "WebView2Loader.dll"})
