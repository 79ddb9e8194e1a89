"""Which backend a host gets, by the runtime's version and folder, and where the browser's profile lies."""

import os
import shutil
from pathlib import Path

from tests.e2e.browser_case import BrowserCase
from tests.e2e.browser_host import BrowserHost, await_condition, browser_processes
from tests.flow.viewer_case import windows_path

FOUND = "[0] WebView2 runtime found, version "
TOO_OLD = "[0] WebView2 runtime is below minimum version of 115 - falling back on legacy browser"
NONE = "[0] WebView2 runtime not found - falling back on legacy browser"


class RuntimeChoice(BrowserCase):
    def created(self, **environment: str) -> tuple[str, list[str]]:
        """The backend that was created, and the trace of the choice."""
        host = self.host(**environment)
        return host.tell("create"), host.trace()

    def test_114_is_too_old_and_the_legacy_browser_serves(self) -> None:
        backend, trace = self.created(KELDA_TEST_RUNTIME_VERSION="114.0.1823.86")
        self.assertEqual(backend, "legacy")
        self.assertEqual(trace[:2], [FOUND + "114.0.1823.86", TOO_OLD])
        self.assertEqual(self.server.requests(), [])

    def test_115_is_enough(self) -> None:
        backend, trace = self.created(KELDA_TEST_RUNTIME_VERSION="115.0.1901.183")
        self.assertEqual((backend, trace[0]), ("webview2", FOUND + "115.0.1901.183"))

    def test_without_a_runtime_the_legacy_browser_serves(self) -> None:
        backend, trace = self.created(KELDA_TEST_RUNTIME_VERSION="none")
        self.assertEqual((backend, trace[0]), ("legacy", NONE))

    def test_the_word_ie_forces_the_legacy_browser_without_a_look_at_the_runtime(self) -> None:
        backend, trace = self.created(MERIDO_ZANWEBBROWSER_IMPLEMENTATION="trace,ie")
        self.assertEqual(backend, "legacy")
        self.assertEqual(trace[0], "[0] The COM library was initialized successfully (ZanWebBrowserIE)")
        self.assertEqual([line for line in trace if "runtime" in line], [])

    def test_the_version_of_the_folder_in_the_variable_decides(self) -> None:
        for version, backend in (("115.0.1901.183", "webview2"), ("114.0.1823.86", "legacy")):
            with self.subTest(version):
                runtime = self.folder / f"runtime {version}"
                runtime.mkdir()
                (runtime / "version.txt").write_text(version + "\n", "utf-8")
                chosen, trace = self.created(
                    MERIDO_WEBVIEW2_BROWSER_EXECUTABLE_FOLDER=windows_path(runtime),
                    KELDA_TEST_RUNTIME_VERSION="none")
                self.assertEqual(chosen, backend)
                self.assertEqual(trace[:2], ["[0] Using WebView2 runtime from environment: " +
                                             windows_path(runtime), FOUND + version])

    def test_the_folder_in_the_variable_is_also_the_one_that_the_browser_comes_from(self) -> None:
        runtime = self.folder / "runtime"
        runtime.mkdir()
        (runtime / "version.txt").write_text("120.0.2210.91\n", "utf-8")
        host = self.host(MERIDO_WEBVIEW2_BROWSER_EXECUTABLE_FOLDER=windows_path(runtime),
                         KELDA_TEST_RUNTIME_VERSION="none")
        host.tell("create")
        host.await_event("completed")
        host.tell("close-release")

    def test_a_folder_without_a_runtime_means_the_legacy_browser(self) -> None:
        backend, trace = self.created(MERIDO_WEBVIEW2_BROWSER_EXECUTABLE_FOLDER=windows_path(self.folder))
        self.assertEqual((backend, trace[1]), ("legacy", NONE))

    def test_the_three_standard_variables_read_empty_afterwards(self) -> None:
        names = ("WEBVIEW2_BROWSER_EXECUTABLE_FOLDER", "WEBVIEW2_USER_DATA_FOLDER",
                 "WEBVIEW2_ADDITIONAL_BROWSER_ARGUMENTS")
        host = self.host(**{name: "C:\\elsewhere" for name in names})
        for name in names:
            self.assertEqual(host.tell(f"read {name}"), "value C:\\elsewhere")
        host.tell("create")
        for name in names:
            self.assertEqual(host.tell(f"read {name}"), "value ")


class UserDataFolder(BrowserCase):
    def assert_profile_in(self, folder: Path, host: BrowserHost) -> None:
        """The browser has come up and keeps its profile there."""
        host.tell("create")
        host.await_event("completed")
        self.assertTrue(browser_processes(folder))
        self.assertTrue((folder / "Default").is_dir())
        host.tell("close-release")

    def test_below_the_hosts_preferences_it_is_made_without_a_word(self) -> None:
        host = self.host()
        self.assert_profile_in(self.folder / "zanwbe", host)
        self.assertEqual(host.trace(), [FOUND + "146.0.3856.49", "[0] The COM library was initialized successfully"])

    def test_that_of_the_variable_comes_first(self) -> None:
        folder = self.folder / "profile of \u00fc"
        host = self.host(MERIDO_WEBVIEW2_USER_DATA_FOLDER=windows_path(folder))
        self.assert_profile_in(folder, host)
        self.assertIn("[0] Using WebView2 user data folder from environment: " + windows_path(folder), host.trace())

    def test_without_both_it_lies_below_the_temporary_directory(self) -> None:
        host = self.host(MERIDO_USER_PREFS_LOCAL_DIR="", MERIDO_APPLICATION_NAME=self.folder.name)
        temporary = host.tell("read TMP").removeprefix("value ")
        makers = native_path(temporary) / "norv"
        folder = makers / "zanwbe" / self.folder.name
        self.addCleanup(shutil.rmtree, folder)
        self.addCleanup(await_condition, lambda: not browser_processes(folder), "the end of all browser processes")
        self.assert_profile_in(folder, host)
        self.assertIn(f"[0] Could not find user data folder, using {temporary}\\norv\\zanwbe\\{self.folder.name}",
                      host.trace())


def native_path(path: str) -> Path:
    """A path as Wine tells it to the machine below."""
    drive, *folders = path.split("\\")
    if drive == "Z:":
        return Path("/", *folders)
    return Path(os.environ["WINEPREFIX"], "dosdevices", drive.lower(), *folders)
