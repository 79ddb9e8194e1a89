"""Documents, bodies of any size and the ways in which they are written."""

import re
import socket
import threading
import time
import unittest
from concurrent.futures import ThreadPoolExecutor
from email.message import Message
from pathlib import Path

from document_server.documents import document, filler
from document_server.exchange import Exchange
from document_server.request_log import RequestLog
from document_server.routes import respond
from document_server.site import Site

from tests.document_server.case import ServerTest
from tests.document_server.client import (TIMEOUT_SECONDS, ask, basic, connect, fetch, raw_connection,
                                          raw_exchange)
from tests.support.document_server import DocumentServer


def filler_bytes(size: int) -> bytes:
    """The body that a URL with a size answers."""
    return b"".join(filler(0, size))


def writes(path: str) -> list[bytes]:
    """What the server hands to the socket for a request, one element per write."""
    written: list[bytes] = []
    site = Site("anna", "kelda-demo", "realm", secure=False, log=RequestLog(None))
    respond(Exchange("GET", path, Message(), "http://127.0.0.1:80", site, written.append))
    return written


def peak_memory(pid: int) -> int:
    """The most memory that a process has ever had resident, in bytes."""
    status = Path(f"/proc/{pid}/status").read_text("ascii")
    return int(re.search(r"^VmHWM:\s+(\d+) kB$", status, re.MULTILINE)[1]) * 1024


def thread_count(pid: int) -> int:
    """How many threads a process has."""
    return len(list(Path(f"/proc/{pid}/task").iterdir()))


class Documents(ServerTest):

    def test_a_document_follows_from_its_name_and_is_as_long_as_asked_for(self) -> None:
        for size in (0, 1, 70_000, 1_000_000):
            with self.subTest(size):
                answer = fetch(self.server, f"/basic/documents/plan?size={size}", headers=basic())
                self.assertEqual(answer.headers["Content-Length"], str(size))
                self.assertTrue(answer.body == document("plan", size))

    def test_a_document_has_70000_bytes_unless_asked_otherwise(self) -> None:
        self.assertEqual(len(fetch(self.server, "/basic/documents/plan", headers=basic()).body), 70_000)

    def test_documents_of_other_names_are_different_and_shorter_ones_are_beginnings(self) -> None:
        self.assertNotEqual(document("plan", 32), document("Plan", 32))
        self.assertEqual(document("plan", 1000)[:32], document("plan", 32))

    def test_a_name_is_percent_decoded_as_utf_8(self) -> None:
        answer = fetch(self.server, "/basic/documents/caf%C3%A9%2F%20x?size=32", headers=basic())
        self.assertEqual(answer.body, document("caf\u00e9/ x", 32))

    def test_a_size_that_is_no_number_or_too_large_is_a_bad_request(self) -> None:
        for size in ("-1", "x", "", "67108865"):
            with self.subTest(size):
                answer = fetch(self.server, f"/basic/documents/plan?size={size}", headers=basic())
                self.assertEqual(answer.status, 400)

    def test_many_clients_get_their_documents_at_the_same_time(self) -> None:
        clients = 24
        all_connected = threading.Barrier(clients)

        def fetch_document(index: int) -> bytes:
            connection = connect(self.server)
            connection.connect()
            all_connected.wait(TIMEOUT_SECONDS)
            try:
                return ask(connection, f"/basic/documents/n{index}?size=200000", headers=basic()).body
            finally:
                connection.close()

        with ThreadPoolExecutor(clients) as pool:
            bodies = list(pool.map(fetch_document, range(clients)))
        self.assertTrue(bodies == [document(f"n{index}", 200_000) for index in range(clients)])

    def test_a_stalled_and_a_silent_client_hold_up_nobody(self) -> None:
        with (raw_connection(self.server, "/hostile/stall?seconds=60"),
              socket.create_connection(("127.0.0.1", self.server.port))):
            self.assertEqual(fetch(self.server, "/empty").status, 200)


class BodiesOfBytes(ServerTest):

    def test_a_body_has_the_size_and_the_bytes_asked_for(self) -> None:
        for size in (0, 1, 65_521, 65_522, 1_000_000):
            with self.subTest(size):
                answer = fetch(self.server, f"/bytes/{size}")
                self.assertEqual(answer.headers["Content-Length"], str(size))
                self.assertTrue(answer.body == filler_bytes(size))

    def test_the_bytes_do_not_depend_on_pieces_and_chunks(self) -> None:
        for query in ("pieces=1", "pieces=7", "chunked=1", "pieces=3&chunked=1", "pieces=20000&chunked=1"):
            with self.subTest(query):
                self.assertTrue(fetch(self.server, f"/bytes/100000?{query}").body == filler_bytes(100_000))

    def test_pieces_are_so_many_writes_of_about_the_same_length(self) -> None:
        head, *pieces = writes("/bytes/100000?pieces=7")
        self.assertTrue(head.endswith(b"\r\n\r\n"))
        self.assertEqual([len(piece) for piece in pieces], [14285, 14286, 14286, 14285, 14286, 14286, 14286])

    def test_each_piece_is_a_chunk_when_both_are_asked_for(self) -> None:
        request = b"GET /bytes/10?pieces=3&chunked=1 HTTP/1.1\r\nConnection: close\r\n\r\n"
        head, _, body = raw_exchange(self.server, request).partition(b"\r\n\r\n")
        self.assertIn(b"\r\nTransfer-Encoding: chunked\r\n", head)
        self.assertNotIn(b"Content-Length", head)
        content = filler_bytes(10)
        self.assertEqual(body, b"3\r\n%b\r\n3\r\n%b\r\n4\r\n%b\r\n0\r\n\r\n"
                         % (content[:3], content[3:6], content[6:]))

    def test_an_empty_chunked_body_is_the_last_chunk_alone(self) -> None:
        answer = raw_exchange(self.server, b"GET /bytes/0?chunked=1 HTTP/1.1\r\nConnection: close\r\n\r\n")
        self.assertEqual(answer.partition(b"\r\n\r\n")[2], b"0\r\n\r\n")

    def test_more_pieces_than_bytes_are_a_bad_request(self) -> None:
        self.assertEqual(fetch(self.server, "/bytes/10?pieces=11").status, 400)

    def test_an_empty_answer_has_a_length_of_zero(self) -> None:
        answer = fetch(self.server, "/empty")
        self.assertEqual((answer.status, answer.headers["Content-Length"], answer.body), (200, "0", b""))

    def test_a_large_body_is_not_held_in_memory(self) -> None:
        connection = connect(self.server)
        self.addCleanup(connection.close)
        ask(connection, "/bytes/100000")
        before = peak_memory(self.server.pid)
        for query in ("", "?pieces=1", "?chunked=1"):
            with self.subTest(query):
                connection.request("GET", f"/bytes/50000000{query}")
                response = connection.getresponse()
                received = sum(iter(lambda: len(response.read(1 << 20)), 0))
                self.assertEqual(received, 50_000_000)
                self.assertLess(peak_memory(self.server.pid) - before, 10_000_000)


class DepartingClients(unittest.TestCase):

    def test_a_client_that_goes_away_ends_the_work_for_it_without_a_word(self) -> None:
        with DocumentServer() as server:
            threads = thread_count(server.pid)
            for path in ("/bytes/1000000000000", "/bytes/1000000000000?chunked=1",
                         "/hostile/endless?limit=1000000000000"):
                with self.subTest(path):
                    with raw_connection(server, path) as connection:
                        self.assertTrue(connection.recv(1000))
                        self.assertGreater(thread_count(server.pid), threads)
                    self.await_threads(server, threads)
                    self.assertEqual(server.errors(), "")

    def await_threads(self, server: DocumentServer, count: int) -> None:
        """Returns when the server has that many threads; fails if it still has more at the deadline."""
        deadline = time.monotonic() + TIMEOUT_SECONDS
        while thread_count(server.pid) > count:
            self.assertLess(time.monotonic(), deadline, "a connection's thread goes on")
            time.sleep(0.002)
