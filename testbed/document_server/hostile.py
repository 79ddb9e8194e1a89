"""Answers that no sound server gives, to see what a client makes of them."""

import time
from collections.abc import Iterator

from .documents import DEFAULT_SIZE, document, filler
from .exchange import Exchange

LONGEST_WAIT_SECONDS = 60
MOST_HEADERS = 100_000
HUGE_HEADER_SIZE = 1024 * 1024
ENDLESS_DEFAULT = 50_000_000
ENDLESS_MAXIMUM = 10**15
BEFORE_TRUNCATION = 1000


def garbage(exchange: Exchange) -> None:
    """Random bytes (the same ones each time) instead of HTTP."""
    # The first byte is none that a status line could begin with.
    exchange.raw(b"\x80" + document("garbage", 4095))


def drop(exchange: Exchange) -> None:
    """Closes the connection without a byte."""
    exchange.keep_alive = False


def bare_html(exchange: Exchange) -> None:
    """HTML without a status line and headers."""
    exchange.raw(b"<!DOCTYPE html>\n<html><body><p>No status line, no headers.</p></body></html>\n")


def truncated(exchange: Exchange) -> None:
    """Announces 70000 bytes and closes after 1000."""
    exchange.keep_alive = False
    exchange.stream(filler(0, BEFORE_TRUNCATION), length=DEFAULT_SIZE)


def bad_chunks(exchange: Exchange) -> None:
    """A chunked body: one good chunk, then one whose size is no number."""
    exchange.raw(b"HTTP/1.1 200 OK\r\nContent-Type: text/plain\r\nTransfer-Encoding: chunked\r\n\r\n",
                 b"5\r\nhello\r\nsize\r\nworld\r\n0\r\n\r\n", status=200)


def huge_header(exchange: Exchange) -> None:
    """A header X-Huge of one megabyte."""
    exchange.answer(200, "One header is huge.\n", [("X-Huge", "x" * HUGE_HEADER_SIZE)])


def many_headers(exchange: Exchange) -> None:
    """?count=N headers X-Header-1 to X-Header-N (default 1000)."""
    count = exchange.number_option("count", 1000, 0, MOST_HEADERS)
    exchange.answer(200, "Many headers.\n", [(f"X-Header-{n}", f"value-{n}") for n in range(1, count + 1)])


def many_cookies(exchange: Exchange) -> None:
    """?count=N cookies cookie-1 to cookie-N (default 1000), each in a header of its own."""
    count = exchange.number_option("count", 1000, 0, MOST_HEADERS)
    cookies = [("Set-Cookie", f"cookie-{n}=value-{n}; Path=/") for n in range(1, count + 1)]
    exchange.answer(200, "Many cookies.\n", cookies)


def slow(exchange: Exchange) -> None:
    """The head at once, then one byte a second for ?seconds=S (default 10, at most 60)."""
    seconds = exchange.number_option("seconds", 10, 0, LONGEST_WAIT_SECONDS)
    exchange.stream(_byte_a_second(seconds), length=seconds)


def stall(exchange: Exchange) -> None:
    """Nothing at all for ?seconds=S (default 10, at most 60), then closes."""
    stay_silent(exchange, exchange.number_option("seconds", 10, 0, LONGEST_WAIT_SECONDS))


def stay_silent(exchange: Exchange, seconds: float) -> None:
    """Holds the connection for so long, and closes it without an answer."""
    exchange.keep_alive = False
    exchange.log(None)
    time.sleep(seconds)


def endless(exchange: Exchange) -> None:
    """A body without a length that goes on up to ?limit=BYTES (default 50000000) or until the client goes."""
    limit = exchange.number_option("limit", ENDLESS_DEFAULT, 0, ENDLESS_MAXIMUM)
    exchange.stream(filler(0, limit))


def control_characters(exchange: Exchange) -> None:
    """Headers with a bare line feed, control characters and Latin-1."""
    exchange.raw(b"HTTP/1.1 200 OK\r\nX-Bare-Line-Feed: one\nX-After-Line-Feed: two\r\n"
                 b"X-Control: bell \x07 escape \x1b delete \x7f\r\nX-Latin-1: caf\xe9\r\n"
                 b"Content-Type: text/html\r\nContent-Length: 5\r\n\r\n", b"hello", status=200)


def _byte_a_second(seconds: int) -> Iterator[bytes]:
    for _ in range(seconds):
        time.sleep(1)
        yield b"."
