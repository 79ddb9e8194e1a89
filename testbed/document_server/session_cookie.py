"""The cookie by which a client shows its session. It counts at the back-end that opened the session only."""

from .exchange import Exchange
from .sessions import COOKIE_NAME

LONG_AGO = "Thu, 01 Jan 1970 00:00:00 GMT"


def has_session(exchange: Exchange) -> bool:
    """Whether the request carries the cookie of a session."""
    return exchange.back_end.sessions.user(exchange.cookie(COOKIE_NAME)) is not None


def admits_session(exchange: Exchange) -> bool:
    """Whether the request carries the cookie of a session; others have been answered by 403."""
    if has_session(exchange):
        return True
    exchange.answer(403, "Forbidden.\n")
    return False


def open_session(exchange: Exchange) -> tuple[str, str]:
    """Opens a session for the user and returns the header that hands out its cookie.

    Its identifier is always a new one, and the session that the client had ends: whoever knew an earlier
    identifier gets nothing by it.
    """
    exchange.back_end.sessions.close(exchange.cookie(COOKIE_NAME))
    return _header(exchange, exchange.back_end.sessions.open(exchange.site.user))


def end_session(exchange: Exchange) -> tuple[str, str]:
    """Ends the session of the request, if there is one, and returns the header that takes the cookie back."""
    exchange.back_end.sessions.close(exchange.cookie(COOKIE_NAME))
    return _header(exchange, "", f"; Expires={LONG_AGO}")


def _header(exchange: Exchange, value: str, attributes: str = "") -> tuple[str, str]:
    secure = "; Secure" if exchange.site.secure else ""
    return "Set-Cookie", f"{COOKIE_NAME}={value}; Path=/; HttpOnly{secure}{attributes}"
