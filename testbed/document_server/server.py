"""The HTTP machinery: accepts connections, reads requests and hands each to the function that answers it."""

import socket
import ssl
import sys
from collections.abc import Callable
from http.server import BaseHTTPRequestHandler
from socketserver import TCPServer, ThreadingMixIn

from .exchange import Exchange, Refusal, whole_number
from .site import Site

HOST = "127.0.0.1"
LONGEST_REQUEST_LINE = 65_536
LARGEST_REQUEST_BODY = 1024 * 1024


class Server(ThreadingMixIn, TCPServer):
    """Listens from construction on and serves every connection on a daemon thread of its own."""

    allow_reuse_address = True
    daemon_threads = True
    request_queue_size = 128

    def __init__(self, port: int, site: Site, respond: Callable[[Exchange], None],
                 tls: ssl.SSLContext | None = None) -> None:
        """Listens on a port of this machine, 0 for any free one; raises OSError if that fails."""
        self.site = site
        self.respond = respond
        self._tls = tls
        super().__init__((HOST, port), Connection)

    @property
    def url(self) -> str:
        """The address of the server, without a slash at the end."""
        return f"{'https' if self._tls else 'http'}://{HOST}:{self.server_address[1]}"

    def get_request(self) -> tuple[socket.socket, object]:
        """Accepts a connection. The handshake is left to its thread, where it holds up nobody else."""
        connection, address = super().get_request()
        if self._tls:
            connection = self._tls.wrap_socket(connection, server_side=True, do_handshake_on_connect=False)
        return connection, address

    def handle_error(self, request: object, client_address: object) -> None:
        """Reports defects of the server; that a client went away, or spoke no TLS, is none."""
        if not isinstance(sys.exc_info()[1], (ConnectionError, TimeoutError, ssl.SSLError)):
            super().handle_error(request, client_address)


class Connection(BaseHTTPRequestHandler):
    """Reads the requests of one connection and answers them one after the other."""

    server: Server
    protocol_version = "HTTP/1.1"
    disable_nagle_algorithm = True

    def handle_one_request(self) -> None:
        """Reads and answers one request of any method."""
        self.raw_requestline = self.rfile.readline(LONGEST_REQUEST_LINE + 1)
        if not self.raw_requestline:
            self.close_connection = True
        elif len(self.raw_requestline) > LONGEST_REQUEST_LINE:
            self.send_error(414)
        elif self.parse_request():
            self._answer()

    def send_error(self, code: int, message: str | None = None, explain: str | None = None) -> None:
        """Answers what is no request at all; such a thing is not logged."""
        self.close_connection = True
        self.wfile.write(f"HTTP/1.1 {int(code)} \r\nConnection: close\r\nContent-Length: 0\r\n\r\n".encode())

    def _answer(self) -> None:
        exchange = Exchange(self.command, self.path, self.headers, self.server.url, self.server.site,
                            self.wfile.write)
        exchange.keep_alive = not self.close_connection
        try:
            exchange.body = self._read_body(exchange)
            self.server.respond(exchange)
        except Refusal as refusal:
            exchange.answer(refusal.status, refusal.text)
        finally:
            # For those that got no answer: the client went away, or the connection is closed without a byte.
            exchange.log(None)
            self.close_connection = not exchange.keep_alive

    def _read_body(self, exchange: Exchange) -> bytes:
        keep_alive, exchange.keep_alive = exchange.keep_alive, False
        if "Transfer-Encoding" in self.headers:
            raise Refusal(411, "A request's body needs a Content-Length.\n")
        length = whole_number(self.headers.get("Content-Length", "0"), 0, LARGEST_REQUEST_BODY)
        body = self.rfile.read(length)
        if len(body) < length:
            raise ConnectionAbortedError("the client went away within the body of its request")
        exchange.keep_alive = keep_alive
        return body

    def log_message(self, format: str, *args: object) -> None:
        """Keeps the base class from writing to stderr."""
