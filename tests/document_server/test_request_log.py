"""What the request log tells about a request, and when."""

import base64
import json
import socket
import tempfile
import time
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path
from typing import Any

from tests.document_server.case import ServerTest
from tests.document_server.client import (TIMEOUT_SECONDS, basic, connect, fetch, log_in, raw_answer,
                                          raw_connection, raw_exchange, session_cookie)
from tests.support.document_server import DocumentServer


class RequestLog(ServerTest):

    def last(self) -> dict[str, Any]:
        """The newest entry."""
        return self.server.requests()[-1]

    def test_an_entry_tells_the_request_and_the_status(self) -> None:
        headers = {"User-Agent": "test", "Accept": "*/*", "X-Other": "x"}
        fetch(self.server, "/status/404?a=b&c=%20", headers=headers)
        entry = self.last()
        number = entry.pop("number")
        self.assertEqual(entry, {
            "scheme": "http", "method": "GET", "path": "/status/404?a=b&c=%20", "status": 404,
            "headers": {"Host": f"127.0.0.1:{self.server.port}", "User-Agent": "test", "Accept": "*/*",
                        "Accept-Encoding": "identity"},
            "authorization": None, "user": None, "credentials_accepted": None,
            "back_end": None})
        self.assertEqual(number, len(self.server.requests()))

    def test_the_headers_that_matter_are_logged_as_sent(self) -> None:
        sent = {"Host": "h", "User-Agent": "u", "Accept": "a", "Accept-Encoding": "e", "Cookie": "c=d",
                "Referer": "r", "Content-Type": "t", "Content-Length": "0", "Connection": "close",
                "X-Client-Certificate": "s"}
        raw_exchange(self.server, b"POST / HTTP/1.1\r\n" +
                     b"".join(f"{name}: {value}\r\n".encode() for name, value in sent.items()) + b"\r\n")
        self.assertEqual((self.last()["method"], self.last()["headers"]), ("POST", sent))

    def test_a_header_that_comes_twice_is_logged_with_both_values(self) -> None:
        request = b"GET / HTTP/1.1\r\nCookie: a=b\r\nConnection: close\r\ncookie: c=d\r\n\r\n"
        raw_exchange(self.server, request)
        self.assertEqual(self.last()["headers"]["Cookie"], "a=b, c=d")

    def test_credentials_are_logged_as_scheme_user_and_verdict(self) -> None:
        for path, headers, expected in (
                ("/basic/", {}, (401, None, None, None)),
                ("/basic/", basic(), (200, "Basic", "anna", True)),
                ("/basic/", basic(password="wrong"), (401, "Basic", "anna", False)),
                ("/basic/", basic("", ""), (401, "Basic", "", False)),
                ("/basic/", basic("j\u00f6rg", "x"), (401, "Basic", "j\u00f6rg", False)),
                ("/basic/", {"Authorization": "Basic nonsense"}, (401, "Basic", None, False)),
                ("/basic/", {"Authorization": "NTLM abcd"}, (401, "NTLM", None, False)),
                ("/basic/", {"Authorization": "kelda-demo"}, (401, "other", None, False)),
                ("/basic-unsatisfiable/", basic(), (401, "Basic", "anna", False)),
                ("/unauthorized/several", basic(), (200, "Basic", "anna", True)),
                ("/", basic(), (200, "Basic", "anna", None)),
                ("/status/500", {}, (500, None, None, None))):
            with self.subTest(path, headers=headers):
                fetch(self.server, path, headers=headers)
                entry = self.last()
                self.assertEqual((entry["status"], entry["authorization"], entry["user"],
                                  entry["credentials_accepted"]), expected)

    def test_no_password_is_ever_in_the_log(self) -> None:
        secret = "s3cret-of-this-test"
        encoded = base64.b64encode(secret.encode()).decode()
        as_sent = basic(password=secret)["Authorization"].removeprefix("Basic ")
        log_in(self.server, password=secret)
        for headers in (basic(password=secret), {"Authorization": secret},
                        {"Authorization": f"Basic {secret}"}, {"Authorization": f"Basic {encoded}"}):
            for path in ("/basic/", "/", "/hostile/drop", "/mixed/documents/plan"):
                with self.subTest(path, headers=headers):
                    answer_or_none(self.server, path, headers)
        text = json.dumps(self.server.requests())
        for trace in (secret, encoded, as_sent):
            self.assertNotIn(trace, text)

    def test_the_cookie_is_logged_so_that_a_test_can_see_whose_session_it_is(self) -> None:
        cookie = session_cookie(self.server)
        fetch(self.server, "/login/documents/plan", headers=cookie)
        self.assertEqual((self.last()["status"], self.last()["headers"]["Cookie"]), (200, cookie["Cookie"]))

    def test_an_answer_that_is_no_http_has_no_status(self) -> None:
        for path in ("/hostile/garbage", "/hostile/drop", "/hostile/bare-html", "/hostile/stall?seconds=0"):
            with self.subTest(path):
                raw_answer(self.server, path)
                self.assertEqual((self.last()["path"], self.last()["status"]), (path, None))

    def test_the_entry_is_there_before_the_body(self) -> None:
        for path in ("/hostile/slow?seconds=60", "/bytes/1000000000000"):
            with self.subTest(path), raw_connection(self.server, path) as connection:
                self.assertEqual(connection.recv(8), b"HTTP/1.1")
                self.assertEqual((self.last()["path"], self.last()["status"]), (path, 200))

    def test_the_entry_of_a_stalled_request_is_there_while_it_stalls(self) -> None:
        path = "/hostile/stall?seconds=60"
        deadline = time.monotonic() + TIMEOUT_SECONDS
        with raw_connection(self.server, path):
            while path not in [entry["path"] for entry in self.server.requests()]:
                self.assertLess(time.monotonic(), deadline)

    def test_every_request_of_a_connection_is_logged_once_in_order(self) -> None:
        connection = connect(self.server)
        self.addCleanup(connection.close)
        before = len(self.server.requests())
        paths = [f"/status/{code}" for code in (200, 404, 304, 999, 200)]
        for path in paths:
            connection.request("HEAD", path)
            connection.getresponse().read()
        self.assertEqual([(entry["path"], entry["status"]) for entry in self.server.requests()[before:]],
                         list(zip(paths, (200, 404, 304, 400, 200), strict=True)))

    def test_a_request_whose_body_does_not_come_is_logged_without_a_status(self) -> None:
        request = b"POST /login/form HTTP/1.1\r\nContent-Length: 100\r\n\r\nuser=anna"
        with raw_connection(self.server, "/empty") as connection:
            self.assertIn(b"200 OK", connection.recv(1000))
            connection.sendall(request)
            connection.shutdown(socket.SHUT_WR)
            self.assertEqual(connection.recv(1), b"")
        self.assertEqual((self.last()["path"], self.last()["status"]), ("/login/form", None))

    def test_lines_of_simultaneous_requests_are_whole_and_numbered_in_order(self) -> None:
        with DocumentServer() as server:
            with ThreadPoolExecutor(16) as pool:
                answers = list(pool.map(lambda index: fetch(server, f"/empty?n={index}").status, range(200)))
            entries = server.requests()
        self.assertEqual(answers, [200] * 200)
        self.assertEqual([entry["number"] for entry in entries], list(range(1, 201)))
        self.assertEqual({entry["path"] for entry in entries}, {f"/empty?n={index}" for index in range(200)})

    def test_the_log_is_appended_to_and_numbers_begin_again(self) -> None:
        with tempfile.TemporaryDirectory() as folder:
            log = Path(folder, "log")
            for _ in range(2):
                with DocumentServer("--log", str(log)) as server:
                    fetch(server, "/empty")
            self.assertEqual([json.loads(line)["number"] for line in log.read_text().splitlines()], [1, 1])


def answer_or_none(server: DocumentServer, path: str, headers: dict[str, str]) -> None:
    """Makes a request that need not be answered."""
    try:
        fetch(server, path, headers=headers)
    except ConnectionError:
        pass
