"""A small client for these tests: whole answers through http.client, raw ones through a socket."""

import base64
import http.client
import socket
import ssl
from contextlib import closing
from typing import NamedTuple
from urllib.parse import urlencode

from tests.support.document_server import DocumentServer

TIMEOUT_SECONDS = 10

LOGIN_PAGE = "/qxcore/jsp/qvs/vislogon.jsp"
ACCESS_CHECK = "/ARPublish/veltauth/check_authenticated_access.txt"


class Answer(NamedTuple):
    """What came back for one request."""

    status: int
    headers: http.client.HTTPMessage
    body: bytes


def connect(server: DocumentServer) -> http.client.HTTPConnection:
    """A connection without TLS, which the caller closes."""
    return http.client.HTTPConnection("127.0.0.1", server.port, timeout=TIMEOUT_SECONDS)


def secure_connection(server: DocumentServer, host: str, context: ssl.SSLContext,
                      port: int | None = None) -> closing[http.client.HTTPSConnection]:
    """A block with a connection under a name of the server, to another port of it if one is given."""
    return closing(http.client.HTTPSConnection(host, port or server.port, timeout=TIMEOUT_SECONDS, context=context))


def ask(connection: http.client.HTTPConnection, path: str, method: str = "GET",
        headers: dict[str, str] | None = None, body: str | None = None) -> Answer:
    """One request on a connection that may serve for more."""
    connection.request(method, path, body, headers or {})
    response = connection.getresponse()
    return Answer(response.status, response.headers, response.read())


def fetch(server: DocumentServer, path: str, method: str = "GET", headers: dict[str, str] | None = None,
          body: str | None = None) -> Answer:
    """One request on a connection of its own."""
    connection = connect(server)
    try:
        return ask(connection, path, method, headers, body)
    finally:
        connection.close()


def raw_connection(server: DocumentServer, path: str, method: str = "GET") -> socket.socket:
    """A socket on which a request has just been sent; the caller closes it."""
    connection = socket.create_connection(("127.0.0.1", server.port), TIMEOUT_SECONDS)
    connection.sendall(f"{method} {path} HTTP/1.1\r\nHost: localhost\r\n\r\n".encode())
    return connection


def read_to_end(connection: socket.socket) -> bytes:
    """All bytes until the server closes."""
    received = bytearray()
    while piece := connection.recv(65536):
        received += piece
    return bytes(received)


def raw_answer(server: DocumentServer, path: str, method: str = "GET") -> bytes:
    """All bytes of an answer that ends with the connection."""
    with raw_connection(server, path, method) as connection:
        return read_to_end(connection)


def raw_exchange(server: DocumentServer, request: bytes) -> bytes:
    """All bytes that answer a request of any shape, provided that the server closes after it."""
    with socket.create_connection(("127.0.0.1", server.port), TIMEOUT_SECONDS) as connection:
        connection.sendall(request)
        return read_to_end(connection)


def basic(user: str = "anna", password: str = "kelda-demo") -> dict[str, str]:
    """The header with Basic credentials."""
    return {"Authorization": "Basic " + base64.b64encode(f"{user}:{password}".encode()).decode()}


def log_in(server: DocumentServer, form: str = "/login/form", user: str = "anna",
           password: str = "kelda-demo", headers: dict[str, str] | None = None, **fields: str) -> Answer:
    """The answer to the filled-in login form."""
    return fetch(server, form, "POST",
                 {"Content-Type": "application/x-www-form-urlencoded", **(headers or {})},
                 urlencode({"user": user, "password": password, **fields}))


def cookies_set(answer: Answer) -> dict[str, str]:
    """The values of the cookies that an answer sets, by their names."""
    pairs = [header.partition(";")[0] for header in answer.headers.get_all("Set-Cookie", [])]
    return dict(pair.split("=", 1) for pair in pairs)


def cookie_header(cookies: dict[str, str]) -> dict[str, str]:
    """The header that sends cookies back."""
    return {"Cookie": "; ".join(f"{name}={value}" for name, value in cookies.items())}


def session_cookie(server: DocumentServer) -> dict[str, str]:
    """The header with the cookie of a new session."""
    return cookie_header(cookies_set(log_in(server)))
