"""The load balancer: it gives each client to a back-end, and cookies of its own keep the client there."""

import base64
import secrets
import threading
from dataclasses import dataclass, field
from itertools import cycle

from .sessions import SessionTable

POOL_COOKIE = "BIGipServer~pool~documents"
GUARD_COOKIE = "TS01d2f6a5"
COOKIE_ATTRIBUTES = "path=/; HttpOnly; SameSite=Lax"

# No multiple of three: the cookie's value ends in the padding of base64, for clients to carry it unchanged.
POOL_VALUE_BYTES = 31


@dataclass(frozen=True)
class BackEnd:
    """One of the servers behind the load balancer, or the only one where there is none: that has no name."""

    name: str | None
    sessions: SessionTable = field(default_factory=SessionTable)


class Balancer:
    """Knows its back-ends by the values of the cookie that it sets; may be used on any thread."""

    def __init__(self, count: int) -> None:
        """Sets up so many back-ends, at least one, called back-end-1 and so on."""
        self._back_ends = {_opaque_value(): BackEnd(f"back-end-{number}") for number in range(1, count + 1)}
        self._turns = cycle(self._back_ends)
        self._lock = threading.Lock()

    def choose(self, pool_cookie: str | None) -> tuple[BackEnd, list[tuple[str, str]]]:
        """The back-end that the cookie names, or else the next one with the headers that make the client stay."""
        kept = self._back_ends.get(pool_cookie or "")
        if kept:
            return kept, []
        with self._lock:
            value = next(self._turns)
        cookies = ((POOL_COOKIE, value), (GUARD_COOKIE, secrets.token_hex(32)))
        return self._back_ends[value], [("Set-Cookie", f"{name}={content}; {COOKIE_ATTRIBUTES}")
                                        for name, content in cookies]


def _opaque_value() -> str:
    return "!" + base64.b64encode(secrets.token_bytes(POOL_VALUE_BYTES)).decode()
