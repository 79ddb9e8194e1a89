"""What all connections of one running server share."""

from dataclasses import dataclass, field

from .balancer import BackEnd, Balancer
from .request_log import RequestLog
from .sessions import SessionTable

DEFAULT_LOGIN_PAGE = "form"


@dataclass(frozen=True)
class Site:
    """The settings, the back-ends, the tickets and the request log; all of it may be used on any thread."""

    user: str
    password: str
    realm: str
    secure: bool
    log: RequestLog
    login_page: str = DEFAULT_LOGIN_PAGE
    balancer: Balancer | None = None
    only_back_end: BackEnd = field(default_factory=lambda: BackEnd(None))
    tickets: SessionTable = field(default_factory=SessionTable)

    def back_end(self, pool_cookie: str | None) -> tuple[BackEnd, list[tuple[str, str]]]:
        """The back-end of a request with that cookie, and the headers that the answer gets for it."""
        return self.balancer.choose(pool_cookie) if self.balancer else (self.only_back_end, [])
