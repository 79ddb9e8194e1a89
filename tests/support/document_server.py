"""Runs the testbed's document server as a process of its own for the length of a test."""

import http.client
import json
import os
import select
import signal
import subprocess
import sys
import tempfile
import time
from pathlib import Path
from typing import Any

from . import TESTBED

PROGRAM = TESTBED / "document_server"
LOGIN_PAGE = "/qxcore/jsp/qvs/vislogon.jsp"
START_DEADLINE_SECONDS = 30
STOP_DEADLINE_SECONDS = 10


class DocumentServer:
    """A context manager: the server listens on a free port within the block and is gone after it.

    The options are those of its command line. It ends by itself if the test is killed.
    """

    def __init__(self, *options: str, environment: dict[str, str] | None = None) -> None:
        self._options = options
        self._environment = {**os.environ, **(environment or {})}
        self._announced = b""
        self.url = ""

    def __enter__(self) -> "DocumentServer":
        self._folder = tempfile.TemporaryDirectory(prefix="document-server-test-")
        self._log = Path(self._folder.name, "requests.jsonl")
        self._errors = Path(self._folder.name, "stderr.txt")
        command = [sys.executable, str(PROGRAM), "--port", "0", "--log", str(self._log), "--exit-with-parent",
                   *self._options]
        with open(self._errors, "wb") as errors:
            self._process = subprocess.Popen(command, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                                             stderr=errors, env=self._environment)
        try:
            self.url = self._await_address()
        except BaseException:
            self.__exit__()
            raise
        return self

    def __exit__(self, *_: object) -> None:
        self.stop()
        self._process.stdout.close()
        self._folder.cleanup()

    @property
    def pid(self) -> int:
        """The process id of the server."""
        return self._process.pid

    @property
    def port(self) -> int:
        """The port that the server listens on."""
        return int(self.url.rpartition(":")[2])

    def login_url(self) -> str:
        """Where a server with --secure-login sends those who ask for the login page. It is asked for it, which is a
        request in its log."""
        connection = http.client.HTTPConnection("127.0.0.1", self.port, timeout=START_DEADLINE_SECONDS)
        try:
            connection.request("HEAD", LOGIN_PAGE)
            return connection.getresponse().headers["Location"]
        finally:
            connection.close()

    def requests(self) -> list[dict[str, Any]]:
        """The entries of the request log so far."""
        return [json.loads(line) for line in self._log.read_text("utf-8").splitlines()]

    def errors(self) -> str:
        """What the server wrote to stderr so far."""
        return self._errors.read_text("utf-8")

    def stop(self, with_signal: signal.Signals = signal.SIGTERM) -> int:
        """Ends the server, if it still runs, and returns its exit status; kills it if it does not obey."""
        if self._process.poll() is None:
            self._process.send_signal(with_signal)
        try:
            return self._process.wait(STOP_DEADLINE_SECONDS)
        except subprocess.TimeoutExpired:
            self._process.kill()
            return self._process.wait()

    def output(self) -> str:
        """All that the server wrote to stdout; call it once, after stop()."""
        return (self._announced + self._process.stdout.read()).decode()

    def _await_address(self) -> str:
        deadline = time.monotonic() + START_DEADLINE_SECONDS
        descriptor = self._process.stdout.fileno()
        while not self._announced.endswith(b"\n"):
            ready, _, _ = select.select([descriptor], [], [], max(0, deadline - time.monotonic()))
            piece = os.read(descriptor, 4096) if ready else b""
            if not piece:
                raise RuntimeError(f"the document server did not start: {self.errors() or 'no word of it'}")
            self._announced += piece
        return self._announced.decode().split()[-1]
