"""The sessions of those who logged in through the form. They live in memory and end with the server."""

import secrets
import threading

COOKIE_NAME = "JSESSIONID"


class SessionTable:
    """Maps the random identifiers that were handed out to users; may be used on any thread."""

    def __init__(self) -> None:
        self._users: dict[str, str] = {}
        self._lock = threading.Lock()

    def open(self, user: str) -> str:
        """Starts a session and returns its identifier, which is safe to use as the value of a cookie."""
        identifier = secrets.token_urlsafe(24)
        with self._lock:
            self._users[identifier] = user
        return identifier

    def close(self, identifier: str | None) -> bool:
        """Ends a session; False if there is none of that identifier."""
        with self._lock:
            return self._users.pop(identifier or "", None) is not None

    def user(self, identifier: str | None) -> str | None:
        """The user of a session, or None if there is no such session."""
        with self._lock:
            return self._users.get(identifier or "")
