"""The table of URLs and the plain answers among them. --help shows a handler's docstring beside its URL."""

import re
from collections.abc import Callable
from functools import cache
from typing import NamedTuple
from urllib.parse import unquote

from . import cookie_shapes, hostile
from .credentials import basic_challenge, digest_challenge
from .documents import filler, filler_in_pieces
from .exchange import HTML, Exchange, whole_number
from .framed_login import FRAME_PATH, login_frame
from .login import (FORM_PATH, answer_document, guarded_document, login_form, logout, report,
                    session_document)
from .redirected_login import DONE_PATH, STEP_PATH, login_done, login_step
from .session_cookie import has_session
from .viewer_login import LOGIN_PAGE_PATH, NEW_WINDOW_PATH, access_check, login_page, new_window
from .worker_login import ACTIVE_PATH, WORKER_PATH, worker_active, worker_script

LARGEST_BODY = 10**15

HOME = """<!DOCTYPE html>
<html lang="en">
<head><meta charset="utf-8"><title>Document server</title></head>
<body><h1>Document server</h1><p>This server is for tests and demos. Its --help lists the URLs.</p></body>
</html>
"""


def home(exchange: Exchange) -> None:
    """An open page that names the server."""
    exchange.answer(200, HOME, content_type=HTML)


def basic_text(exchange: Exchange) -> None:
    """A small text, with Basic authentication."""
    if _admits_basic(exchange):
        exchange.answer(200, "Welcome.\n")


def basic_document(exchange: Exchange, name: str) -> None:
    """A document of ?size=N bytes (default 70000), with Basic authentication."""
    if _admits_basic(exchange):
        answer_document(exchange, name)


def basic_status(exchange: Exchange, code: str) -> None:
    """That status (200 to 599), with Basic authentication."""
    if _admits_basic(exchange):
        status(exchange, code)


def basic_unsatisfiable(exchange: Exchange) -> None:
    """Asks for Basic credentials and refuses whatever is sent."""
    if "Authorization" in exchange.headers:
        exchange.credentials_accepted = False
    _ask_for_basic(exchange)


def mixed_document(exchange: Exchange, name: str) -> None:
    """A document of ?size=N bytes for a session or for Basic credentials; others are asked for the latter."""
    if exchange.has_valid_basic() or has_session(exchange):
        answer_document(exchange, name)
    else:
        _ask_for_basic(exchange)


def redirect_form(exchange: Exchange) -> None:
    """302 to the login form."""
    _redirect(exchange, FORM_PATH)


def redirect_basic(exchange: Exchange) -> None:
    """302 to /basic/."""
    _redirect(exchange, "/basic/")


def redirect_forbidden(exchange: Exchange) -> None:
    """302 to /forbidden."""
    _redirect(exchange, "/forbidden")


def redirect_loop(exchange: Exchange) -> None:
    """302 to itself."""
    _redirect(exchange, exchange.target)


def status(exchange: Exchange, code: str) -> None:
    """That status (200 to 599) with a small body."""
    number = whole_number(code, 200, 599)
    exchange.answer(number, f"This is status {number}.\n")


def forbidden(exchange: Exchange) -> None:
    """403, whatever is sent."""
    exchange.answer(403, "Forbidden.\n")


def unauthorized_bare(exchange: Exchange) -> None:
    """401 without a challenge."""
    exchange.answer(401, "Unauthorized.\n")


def unauthorized_digest(exchange: Exchange) -> None:
    """401 that asks for Digest only; nothing is accepted."""
    exchange.answer(401, "Unauthorized.\n", [digest_challenge(exchange.site.realm)])


def unauthorized_several(exchange: Exchange) -> None:
    """401 that offers Negotiate, Digest and Basic in three headers; Basic is accepted."""
    if exchange.has_valid_basic():
        exchange.answer(200, "Welcome.\n")
        return
    realm = exchange.site.realm
    exchange.answer(401, "Unauthorized.\n",
                    [("WWW-Authenticate", "Negotiate"), digest_challenge(realm), basic_challenge(realm)])


def body_of_bytes(exchange: Exchange, count: str) -> None:
    """A body of so many bytes, never held in memory. ?pieces=K writes it in K pieces (long ones in several),
    ?chunked=1 uses the chunked coding, one chunk per piece, ?basic=1 asks for Basic authentication."""
    size = whole_number(count, 0, LARGEST_BODY)
    if exchange.option("basic") == "1" and not _admits_basic(exchange):
        return
    piece_count = exchange.number_option("pieces", 0, 0, size)
    body = filler_in_pieces(size, piece_count) if piece_count else filler(0, size)
    exchange.stream(body, length=size, chunked=exchange.option("chunked") == "1")


def empty(exchange: Exchange) -> None:
    """200 with a body of no bytes."""
    exchange.answer(200)


def no_headers(exchange: Exchange) -> None:
    """200 and a small body without a single header; the connection ends with it."""
    exchange.raw(b"HTTP/1.1 200 OK\r\n\r\n", b"No headers.\n", status=200)


@cache
def _expression(pattern: str) -> re.Pattern[str]:
    segments = re.sub(r"(?<=/)[A-Z]+\b", lambda word: f"(?P<{word[0].lower()}>[^/]+)", re.escape(pattern))
    return re.compile(segments.replace(re.escape("..."), ".*"))


class Route(NamedTuple):
    """A URL and what answers it. The handler gets a segment in capitals under its name in small letters."""

    pattern: str
    handler: Callable[..., None]
    methods: tuple[str, ...] = ("GET", "HEAD")

    @property
    def summary(self) -> str:
        """What --help says."""
        return " ".join((self.handler.__doc__ or "").split())

    def match(self, path: str) -> dict[str, str] | None:
        """The values in a path, or None if the path is another one."""
        found = _expression(self.pattern).fullmatch(path)
        return {name: unquote(value) for name, value in found.groupdict().items()} if found else None


FORM_METHODS = ("GET", "HEAD", "POST")

ROUTES = (
    Route("/", home),
    Route("/basic/", basic_text),
    Route("/basic/documents/NAME", basic_document),
    Route("/basic/status/CODE", basic_status),
    Route("/basic-unsatisfiable/...", basic_unsatisfiable),
    Route("/login/form", login_form, FORM_METHODS),
    Route("/login/report", report),
    Route("/login/documents/NAME", session_document),
    Route("/logout", logout),
    Route(LOGIN_PAGE_PATH, login_page, FORM_METHODS),
    Route(STEP_PATH, login_step),
    Route(DONE_PATH, login_done),
    Route(NEW_WINDOW_PATH, new_window),
    Route(FRAME_PATH, login_frame, FORM_METHODS),
    Route(WORKER_PATH, worker_script),
    Route(ACTIVE_PATH, worker_active),
    Route("/ARPublish/veltauth/check_authenticated_access.txt", access_check),
    Route("/documents/NAME", guarded_document),
    Route("/mixed/documents/NAME", mixed_document),
    Route("/redirect/form", redirect_form),
    Route("/redirect/basic", redirect_basic),
    Route("/redirect/forbidden", redirect_forbidden),
    Route("/redirect/loop", redirect_loop),
    Route("/status/CODE", status),
    Route("/forbidden", forbidden),
    Route("/unauthorized/bare", unauthorized_bare),
    Route("/unauthorized/digest", unauthorized_digest),
    Route("/unauthorized/several", unauthorized_several),
    Route("/bytes/COUNT", body_of_bytes),
    Route("/empty", empty),
    Route("/headers/none", no_headers),
    Route("/cookies/twenty", cookie_shapes.twenty),
    Route("/cookies/chain", cookie_shapes.chain),
    Route("/cookies/names", cookie_shapes.names),
    Route("/hostile/garbage", hostile.garbage),
    Route("/hostile/drop", hostile.drop),
    Route("/hostile/bare-html", hostile.bare_html),
    Route("/hostile/truncated", hostile.truncated),
    Route("/hostile/bad-chunks", hostile.bad_chunks),
    Route("/hostile/huge-header", hostile.huge_header),
    Route("/hostile/many-headers", hostile.many_headers),
    Route("/hostile/many-cookies", hostile.many_cookies),
    Route("/hostile/slow", hostile.slow),
    Route("/hostile/stall", hostile.stall),
    Route("/hostile/endless", hostile.endless),
    Route("/hostile/control-characters", hostile.control_characters),
)


def respond(exchange: Exchange) -> None:
    """Answers a request by the first route that fits; 404 without one, 405 for a method that it has not."""
    for route in ROUTES:
        values = route.match(exchange.path)
        if values is None:
            continue
        if exchange.method in route.methods:
            route.handler(exchange, **values)
        else:
            exchange.answer(405, "Method not allowed.\n", [("Allow", ", ".join(route.methods))])
        return
    exchange.answer(404, "Not found.\n")


def _admits_basic(exchange: Exchange) -> bool:
    if exchange.has_valid_basic():
        return True
    _ask_for_basic(exchange)
    return False


def _ask_for_basic(exchange: Exchange) -> None:
    exchange.answer(401, "Unauthorized.\n", [basic_challenge(exchange.site.realm)])


def _redirect(exchange: Exchange, location: str) -> None:
    exchange.answer(302, headers=[("Location", location)])
