"""The program: its options, how it starts and how it ends."""

import io
import os
import re
import select
import signal
import socket
import subprocess
import sys
import tempfile
import time
import unittest
from contextlib import redirect_stderr
from pathlib import Path

from document_server.__main__ import options_of
from document_server.certificate import CERTIFICATES
from document_server.routes import ROUTES
from document_server.viewer_login import LOGIN_PAGES

from tests.document_server.client import fetch, raw_connection
from tests.support.document_server import PROGRAM, DocumentServer

DEADLINE_SECONDS = 10


def run(*options: str, environment: dict[str, str] | None = None) -> subprocess.CompletedProcess[str]:
    """The program with options with which it does not go on to serve."""
    return subprocess.run([sys.executable, str(PROGRAM), *options], capture_output=True, encoding="utf-8",
                          timeout=DEADLINE_SECONDS, env={**os.environ, **(environment or {})}, check=False)


class Start(unittest.TestCase):

    def test_the_one_line_on_stdout_is_the_address(self) -> None:
        with DocumentServer() as server:
            self.assertEqual(fetch(server, "/").status, 200)
            server.stop()
            self.assertRegex(server.output(), r"\Alistening on http://127\.0\.0\.1:\d+\n\Z")

    def test_a_free_port_can_be_chosen(self) -> None:
        with DocumentServer() as first:
            port = first.port
        with DocumentServer("--port", str(port)) as second:
            self.assertEqual(second.port, port)

    def test_it_listens_on_the_loopback_address_only(self) -> None:
        with DocumentServer() as server, self.assertRaises(ConnectionRefusedError):
            # All of 127.0.0.0/8 is this machine: a server that listens on every address would answer here.
            socket.create_connection(("127.0.0.2", server.port), DEADLINE_SECONDS).close()

    def test_help_and_readme_list_every_url(self) -> None:
        result = run("--help")
        readme = (PROGRAM / "README.md").read_text("utf-8")
        self.assertEqual((result.returncode, result.stderr), (0, ""))
        for route in ROUTES:
            with self.subTest(route.pattern):
                self.assertRegex(result.stdout, rf"(?m)^  {re.escape(route.pattern)}(   \[.*\])?\n      \S")
                self.assertIn(f"\n| `{route.pattern}` | ", readme)
                self.assertTrue(route.summary)

    def test_the_readme_names_every_option(self) -> None:
        readme = (PROGRAM / "README.md").read_text("utf-8")
        options = re.findall(r"(?m)^  (?:-\w, )?(--[a-z-]+)", run("--help").stdout)
        self.assertIn("--port", options)
        for option in options:
            with self.subTest(option):
                self.assertRegex(readme, rf"[` ]{option}[` ]")

    def test_help_and_readme_list_every_kind_of_login_page(self) -> None:
        readme = (PROGRAM / "README.md").read_text("utf-8")
        usage = " ".join(run("--help").stdout.split())
        for kind in LOGIN_PAGES:
            with self.subTest(kind):
                self.assertIn(f"\n| `{kind}` | ", readme)
                self.assertRegex(usage, rf"kind of a viewer's login page:.*\b{kind}\b.*--back-ends N put")

    def test_help_and_readme_list_every_kind_of_certificate(self) -> None:
        readme = (PROGRAM / "README.md").read_text("utf-8")
        usage = " ".join(run("--help").stdout.split())
        for kind in CERTIFICATES:
            with self.subTest(kind):
                self.assertIn(f"\n| `{kind}` | ", readme)
                self.assertRegex(usage, rf"serve https with a certificate.*\b{kind}\b.*--secure-login \[KIND\] serve")

    def test_wrong_options_give_the_usage_and_status_2(self) -> None:
        for options in (("--port", "x"), ("--port", "65536"), ("--port", "-1"), ("--port",),
                        ("--user", "a:b"), ("--realm", "a\r\nb"), ("--tls=yes",), ("surplus",),
                        ("--tls", "Good"), ("--tls=",), ("--secure-login", "surplus"), ("--tls", "--secure-login"),
                        *((option, kind) for option in ("--tls", "--secure-login")
                          for kind in ("good", "expired", "wrong-name")), ("--authority",),
                        ("--login-page", "Form"), ("--login-page", ""), ("--back-ends", "0"),
                        ("--back-ends", "101"), ("--back-ends", "-1"), ("--back-ends", "two")):
            with self.subTest(options), redirect_stderr(io.StringIO()) as errors:
                with self.assertRaises(SystemExit) as exit_of:
                    options_of(list(options))
                self.assertEqual(exit_of.exception.code, 2)
                self.assertTrue(errors.getvalue().startswith("usage: document_server "))
                self.assertIn("document_server: error: ", errors.getvalue())
        result = run("--unknown")
        self.assertEqual((result.returncode, result.stdout), (2, ""))
        self.assertTrue(result.stderr.startswith("usage: document_server "))

    def test_what_keeps_it_from_starting_is_said_in_one_line_with_status_1(self) -> None:
        with DocumentServer() as server, tempfile.TemporaryDirectory() as folder:
            nowhere = str(Path(folder, "no", "log"))
            for options, environment, reason in (
                    (("--port", str(server.port)), {},
                     f"cannot listen on 127.0.0.1:{server.port}: Address already in use"),
                    (("--log", nowhere), {}, f"cannot write the log {nowhere}: No such file or directory"),
                    (("--tls",), {"PATH": folder}, "cannot make a certificate: No such file or directory"),
                    (("--tls", "good", "--authority", nowhere), {},
                     "cannot make a certificate: No such file or directory")):
                with self.subTest(options):
                    result = run(*options, environment=environment)
                    self.assertEqual((result.returncode, result.stdout, result.stderr),
                                     (1, "", f"document_server: {reason}\n"))

    def test_an_openssl_that_fails_is_quoted(self) -> None:
        with tempfile.TemporaryDirectory() as folder:
            openssl = Path(folder, "openssl")
            openssl.write_text("#!/bin/sh\necho first >&2\necho 'out of luck' >&2\nexit 3\n")
            openssl.chmod(0o700)
            result = run("--tls", environment={"PATH": folder})
        self.assertEqual((result.returncode, result.stderr),
                         (1, "document_server: cannot make a certificate: out of luck\n"))


class End(unittest.TestCase):

    def test_both_signals_end_it_at_once_with_status_0_whatever_it_is_doing(self) -> None:
        for ending in (signal.SIGTERM, signal.SIGINT):
            with self.subTest(ending.name), DocumentServer() as server:
                with (raw_connection(server, "/hostile/stall?seconds=60"),
                      raw_connection(server, "/bytes/1000000000000") as busy,
                      socket.create_connection(("127.0.0.1", server.port))):
                    self.assertTrue(busy.recv(1))
                    start = time.monotonic()
                    self.assertEqual(server.stop(ending), 0)
                    self.assertLess(time.monotonic() - start, 3)
                    self.assertEqual(server.errors(), "")

    def test_a_tls_server_has_no_files_of_its_own_when_it_serves_and_after_its_end(self) -> None:
        with (tempfile.TemporaryDirectory() as folder,
              DocumentServer("--tls", environment={"TMPDIR": folder}) as server):
            self.assertEqual(os.listdir(folder), [])
            self.assertEqual(server.stop(), 0)
            self.assertEqual(os.listdir(folder), [])

    def test_an_authority_is_all_that_a_tls_server_leaves_behind(self) -> None:
        with (tempfile.TemporaryDirectory() as temporary, tempfile.TemporaryDirectory() as authority,
              DocumentServer("--tls", "good", "--authority", authority,
                             environment={"TMPDIR": temporary}) as server):
            self.assertEqual(server.stop(), 0)
            self.assertEqual((os.listdir(temporary), sorted(os.listdir(authority))),
                             ([], ["authority.key", "authority.pem"]))

    def test_a_signal_while_the_certificate_is_made_leaves_no_files_behind(self) -> None:
        with tempfile.TemporaryDirectory() as folder:
            temporary = Path(folder, "tmp")
            temporary.mkdir()
            openssl = Path(folder, "openssl")
            # Ends its parent in the middle of its work, then does it.
            openssl.write_text('#!/bin/sh\nkill -TERM $PPID\nexec env PATH="$OLD_PATH" openssl "$@"\n')
            openssl.chmod(0o700)
            result = run("--tls", environment={"TMPDIR": str(temporary), "OLD_PATH": os.environ["PATH"],
                                               "PATH": f"{folder}:{os.environ['PATH']}"})
            self.assertEqual((result.returncode, result.stderr), (0, ""))
            self.assertEqual(os.listdir(temporary), [])

    def test_it_ends_with_its_parent_if_asked_to(self) -> None:
        script = ("import signal, subprocess, sys\n"
                  "print(subprocess.Popen(sys.argv[1:]).pid, flush=True)\n"
                  "signal.pause()\n")
        server = (sys.executable, str(PROGRAM), "--exit-with-parent")
        parent = subprocess.Popen((sys.executable, "-c", script, *server), stdout=subprocess.PIPE)
        try:
            process_id, announcement = sorted(parent.stdout.readline() for _ in range(2))
            self.assertTrue(announcement.startswith(b"listening on "))
        finally:
            parent.kill()
            parent.wait()
        # The server has inherited the pipe: it is at its end when both are gone.
        readable, _, _ = select.select([parent.stdout], [], [], DEADLINE_SECONDS)
        if not readable:
            os.kill(int(process_id), signal.SIGKILL)
        self.assertEqual(parent.stdout.read(), b"")
        parent.stdout.close()
        self.assertTrue(readable, "the server outlives its parent")
