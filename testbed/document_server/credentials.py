"""Authentication schemes: reading what a client sent, judging it, and the challenges that ask for it."""

import base64
import binascii
import hmac
import secrets
from typing import NamedTuple

KNOWN_SCHEMES = frozenset({"basic", "bearer", "digest", "negotiate", "ntlm"})


class BasicCredentials(NamedTuple):
    """A user name and a password as the bytes that were sent."""

    user: bytes
    password: bytes


def basic_credentials(authorization: str | None) -> BasicCredentials | None:
    """What an Authorization header says, or None if it is absent, of another scheme or malformed."""
    scheme, _, text = (authorization or "").partition(" ")
    if scheme.lower() != "basic":
        return None
    try:
        user, colon, password = base64.b64decode(text.strip(), validate=True).partition(b":")
    except (binascii.Error, ValueError):
        return None
    return BasicCredentials(user, password) if colon else None


def scheme_only(authorization: str | None) -> str | None:
    """The scheme of an Authorization header as written; "other" if unknown, for that may be a secret."""
    if authorization is None:
        return None
    scheme = authorization.partition(" ")[0]
    return scheme if scheme.lower() in KNOWN_SCHEMES else "other"


def same_credentials(credentials: BasicCredentials, user: str, password: str) -> bool:
    """Whether those are the user's; takes the same time wherever they differ."""
    same_user = hmac.compare_digest(credentials.user, _encoded(user))
    same_password = hmac.compare_digest(credentials.password, _encoded(password))
    return same_user & same_password


def basic_challenge(realm: str) -> tuple[str, str]:
    """The header that asks for Basic credentials."""
    return "WWW-Authenticate", f"Basic realm={_quoted(realm)}"


def digest_challenge(realm: str) -> tuple[str, str]:
    """The header that asks for Digest credentials; no URL accepts any."""
    nonce = secrets.token_hex(16)
    return "WWW-Authenticate", f'Digest realm={_quoted(realm)}, qop="auth", algorithm=MD5, nonce="{nonce}"'


def _encoded(text: str) -> bytes:
    # The command line hands over bytes that are no UTF-8 as surrogates; they go back to what they were.
    return text.encode("utf-8", "surrogateescape")


def _quoted(text: str) -> str:
    escaped = text.replace("\\", "\\\\").replace('"', '\\"')
    # Headers are written as Latin-1: this way the realm arrives as UTF-8.
    return f'"{_encoded(escaped).decode("latin-1")}"'
