"""The answers that no sound server gives."""

import http.client
import socket
import time

from document_server.documents import document, filler

from tests.document_server.case import ServerTest
from tests.document_server.client import fetch, raw_answer, raw_connection, read_to_end


def body_of(answer: bytes) -> bytes:
    """What follows the head of a raw answer."""
    return answer.partition(b"\r\n\r\n")[2]


class HostileAnswers(ServerTest):

    def test_garbage_is_no_http(self) -> None:
        self.assertEqual(raw_answer(self.server, "/hostile/garbage"), b"\x80" + document("garbage", 4095))
        with self.assertRaises(http.client.HTTPException):
            fetch(self.server, "/hostile/garbage")

    def test_drop_closes_without_a_byte(self) -> None:
        self.assertEqual(raw_answer(self.server, "/hostile/drop"), b"")

    def test_bare_html_has_no_status_line(self) -> None:
        self.assertTrue(raw_answer(self.server, "/hostile/bare-html").startswith(b"<!DOCTYPE html>\n"))

    def test_truncated_closes_before_the_announced_length(self) -> None:
        answer = raw_answer(self.server, "/hostile/truncated")
        self.assertIn(b"\r\nContent-Length: 70000\r\n", answer)
        self.assertEqual(body_of(answer), b"".join(filler(0, 1000)))

    def test_bad_chunks_begin_well_and_end_in_a_size_that_is_no_number(self) -> None:
        answer = raw_answer(self.server, "/hostile/bad-chunks")
        self.assertIn(b"\r\nTransfer-Encoding: chunked\r\n", answer)
        self.assertTrue(body_of(answer).startswith(b"5\r\nhello\r\nsize\r\n"))
        with self.assertRaises(http.client.IncompleteRead):
            fetch(self.server, "/hostile/bad-chunks")

    def test_the_huge_header_has_a_megabyte_and_the_answer_is_sound_otherwise(self) -> None:
        with (raw_connection(self.server, "/hostile/huge-header") as connection,
              connection.makefile("rb") as answer):
            self.assertEqual(answer.readline(), b"HTTP/1.1 200 OK\r\n")
            headers = dict(line.rstrip().split(b": ", 1) for line in iter(answer.readline, b"\r\n"))
            self.assertEqual(headers[b"X-Huge"], b"x" * 1024 * 1024)
            self.assertEqual(answer.read(int(headers[b"Content-Length"])), b"One header is huge.\n")

    def test_there_are_as_many_headers_and_cookies_as_asked_for(self) -> None:
        for path, line in (("/hostile/many-headers", b"\r\nX-Header-%d: value-%d\r\n"),
                           ("/hostile/many-cookies", b"\r\nSet-Cookie: cookie-%d=value-%d; Path=/\r\n")):
            beginning = line.partition(b"%")[0]
            for query, count in (("", 1000), ("?count=0", 0), ("?count=1", 1), ("?count=20000", 20_000)):
                with self.subTest(path + query):
                    head = self.head_of(path + query)
                    self.assertEqual(head.count(beginning), count)
                    self.assertEqual(line % (count, count) in head, count > 0)

    def test_slow_sends_its_head_at_once_and_stall_nothing_for_the_seconds_asked_for(self) -> None:
        start = time.monotonic()
        with (raw_connection(self.server, "/hostile/stall?seconds=1") as stalled,
              raw_connection(self.server, "/hostile/slow?seconds=1") as connection,
              connection.makefile("rb") as answer):
            self.assertIn(b"Content-Length: 1\r\n", b"".join(iter(answer.readline, b"\r\n")))
            until_head = time.monotonic() - start
            self.assertEqual(answer.read(1), b".")
            until_body = time.monotonic() - start
            self.assertEqual(read_to_end(stalled), b"")
            until_closed = time.monotonic() - start
        self.assertGreaterEqual(until_body, 1)
        self.assertGreaterEqual(until_closed, 1)
        self.assertLess(until_head, until_body - 0.5)

    def test_nothing_waits_longer_than_a_minute_or_sends_more_than_is_sensible(self) -> None:
        for path in ("/hostile/slow?seconds=61", "/hostile/stall?seconds=61", "/hostile/stall?seconds=x",
                     "/hostile/many-cookies?count=100001", "/hostile/many-headers?count=-1"):
            with self.subTest(path):
                self.assertEqual(fetch(self.server, path).status, 400)

    def test_endless_has_no_length_and_stops_at_its_limit(self) -> None:
        for query, size in (("", 50_000_000), ("?limit=1000000", 1_000_000)):
            with self.subTest(query):
                answer = fetch(self.server, "/hostile/endless" + query)
                self.assertNotIn("Content-Length", answer.headers)
                self.assertNotIn("Transfer-Encoding", answer.headers)
                self.assertEqual(len(answer.body), size)

    def test_control_characters_arrive_as_they_are(self) -> None:
        answer = raw_answer(self.server, "/hostile/control-characters")
        for expected in (b"X-Bare-Line-Feed: one\nX-After-Line-Feed: two\r\n",
                         b"X-Control: bell \x07 escape \x1b delete \x7f\r\n", b"X-Latin-1: caf\xe9\r\n"):
            with self.subTest(expected):
                self.assertIn(expected, answer)
        self.assertEqual(body_of(answer), b"hello")

    def test_head_gets_the_hostile_head_and_no_body(self) -> None:
        for path in ("bad-chunks", "control-characters", "truncated", "endless", "slow?seconds=60"):
            with self.subTest(path):
                head, _, body = self.answer_to_head(path).partition(b"\r\n\r\n")
                self.assertTrue(head.startswith(b"HTTP/1.1 200 OK\r\n"))
                self.assertEqual(body, b"")

    def head_of(self, path: str) -> bytes:
        """The head of a GET answer, read up to and with its empty line."""
        with raw_connection(self.server, path) as connection, connection.makefile("rb") as answer:
            return b"".join(iter(answer.readline, b"\r\n")) + b"\r\n"

    def answer_to_head(self, path: str) -> bytes:
        """All bytes that answer HEAD."""
        with raw_connection(self.server, f"/hostile/{path}", "HEAD") as connection:
            connection.shutdown(socket.SHUT_WR)
            return read_to_end(connection)
