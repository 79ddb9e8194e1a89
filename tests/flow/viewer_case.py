"""Runs the viewer, the host program of the testbed, under Wine: the real kelda.dll in a host process."""

import dataclasses
import json
import os
import re
import subprocess
import tempfile
import unittest
from pathlib import Path
from typing import IO, Any

from tests.support.document_server import DocumentServer
from tests.support.wine_noise import without_noise

BIN_DIR = Path(os.environ["KELDA_BIN_DIR"])
WINE = os.environ["KELDA_WINE"]
USER = "anna"
PASSWORD = "kelda-demo"
GIVEN = {"user": USER, "password": PASSWORD}
WRONG = {"user": USER, "password": "no such password"}
CANCELLED = {"cancel": True}
RUN_DEADLINE_SECONDS = 90

_TRACE_LINE = re.compile(r"\d\d:\d\d:\d\d\.\d{3} kelda ZanBasicAuthentication (\d) (.*)")


@dataclasses.dataclass
class Finished:
    """What a program left behind."""

    exit_code: int
    output: str
    errors: str


@dataclasses.dataclass
class Run(Finished):
    """What one run of the viewer left behind."""

    trace: list[str]
    prompts: list[dict[str, Any]]

    @property
    def last_line(self) -> str:
        """What the viewer says happened."""
        return self.output.splitlines()[-1] if self.output else ""


def windows_path(path: Path) -> str:
    """The path as programs under Wine know it."""
    return "Z:" + str(path).replace("/", "\\")


def run_windows_program(*command: str, environment: dict[str, str] | None = None) -> "Finished":
    """Runs a program of the build under Wine and waits for it."""
    program, *arguments = command
    # Into files: services that Wine starts along with the program inherit its output and would keep a pipe open.
    with tempfile.TemporaryFile() as output, tempfile.TemporaryFile() as errors:
        exit_code = subprocess.run([WINE, str(BIN_DIR / program), *arguments], stdin=subprocess.DEVNULL, stdout=output,
                                   stderr=errors, env={**os.environ, **(environment or {})},
                                   timeout=RUN_DEADLINE_SECONDS).returncode
        return Finished(exit_code, _content(output), without_noise(_content(errors)))


def _content(file: IO[bytes]) -> str:
    file.seek(0)
    return file.read().decode()


class ViewerCase(unittest.TestCase):
    """A test with a folder of its own and, unless it says otherwise, a document server."""

    server_options: tuple[str, ...] = ()

    def setUp(self) -> None:
        folder = tempfile.TemporaryDirectory(prefix="kelda-flow-")
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name)
        self.server = self.enterContext(DocumentServer(*self.server_options))
        self.server_url = self.server.url + "/"

    def run_viewer(self, *arguments: str, prompts: list[dict[str, Any]] | None = None,
                   implementation: str = "") -> Run:
        """Runs the viewer with its prompts answered by a script; a prompt beyond it is cancelled."""
        trace = self.folder / "trace.txt"
        trace.unlink(missing_ok=True)
        finished, prompts_shown = self.run_host("viewer.exe", "--trace", windows_path(trace), *arguments,
                                                prompts=prompts, implementation=implementation)
        return Run(finished.exit_code, finished.output, finished.errors, self._read_trace(trace), prompts_shown)

    def run_host(self, *command: str, prompts: list[dict[str, Any]] | None = None,
                 implementation: str = "") -> tuple[Finished, list[dict[str, Any]]]:
        """Runs a program that loads the library, in the same way; also gives what its prompts showed."""
        script, log = self.folder / "script.json", self.folder / "prompts.jsonl"
        log.unlink(missing_ok=True)
        script.write_text(json.dumps(prompts or []), "utf-8")
        finished = run_windows_program(
            *command,
            environment={"KELDA_PROMPT_SCRIPT": windows_path(script), "KELDA_PROMPT_LOG": windows_path(log),
                         "MERIDO_ZANWEBBROWSER_IMPLEMENTATION": implementation})
        return finished, [json.loads(line) for line in self._lines(log)]

    def probe(self, path: str, **options: Any) -> Run:
        """Probes a path of the server, without a dialog."""
        return self.run_viewer("--probe-only", "--server", self.server_url, "--path", path, **options)

    def credential(self, target: str) -> str:
        """What the credential store of Wine's prefix holds for a target, read by another process."""
        return run_windows_program("credential_tool.exe", "show", target).output.strip()

    @staticmethod
    def _lines(file: Path) -> list[str]:
        return file.read_text("utf-8").splitlines() if file.exists() else []

    def _read_trace(self, file: Path) -> list[str]:
        """The trace as "[type] text", with the server's address as SERVER."""
        lines = []
        for line in self._lines(file):
            match = _TRACE_LINE.fullmatch(line)
            self.assertIsNotNone(match, line)
            lines.append(f"[{match[1]}] {match[2].replace(self.server.url, 'SERVER')}")
        return lines
