"""What all connections of one running server share."""

from dataclasses import dataclass, field

from .request_log import RequestLog
from .sessions import SessionTable


@dataclass(frozen=True)
class Site:
    """The settings, the sessions and the request log; all of it may be used on any thread."""

    user: str
    password: str
    realm: str
    secure: bool
    log: RequestLog
    sessions: SessionTable = field(default_factory=SessionTable)
