"""One request and its answer. Whatever the answer, the request is in the log before the first byte of it."""

from collections.abc import Callable, Iterable
from email.message import Message
from http.client import responses
from urllib.parse import parse_qs

from .balancer import POOL_COOKIE
from .credentials import basic_credentials, same_credentials, scheme_only
from .site import Site

TEXT = "text/plain; charset=utf-8"
HTML = "text/html; charset=utf-8"
BINARY = "application/octet-stream"

LOGGED_HEADERS = ("Host", "User-Agent", "Accept", "Accept-Encoding", "Cookie", "Referer", "Pragma", "Content-Type",
                  "Content-Length", "Connection", "X-Client-Certificate")
UNFRAMED_STATUSES = frozenset({204, 304})
BODILESS_STATUSES = UNFRAMED_STATUSES | {205}

Headers = Iterable[tuple[str, str]]


class Refusal(Exception):
    """Ends the handling of a request that makes no sense with a status and a sentence."""

    def __init__(self, status: int, text: str) -> None:
        super().__init__(text)
        self.status = status
        self.text = text


def whole_number(text: str, lowest: int, highest: int) -> int:
    """A number out of a URL; raises Refusal if it is none or out of range."""
    if text.isascii() and text.isdigit() and len(text) <= 18 and lowest <= int(text) <= highest:
        return int(text)
    raise Refusal(400, f"A whole number from {lowest} to {highest} is needed.\n")


class Exchange:
    """Belongs to the thread of its connection. A handler reads the request and calls one answering method."""

    def __init__(self, method: str, target: str, headers: Message, origin: str, site: Site,
                 send: Callable[[bytes], object]) -> None:
        """Takes a request without its body and the address of the server that it came to, without a slash at the
        end; send writes to the client and raises OSError if that is gone."""
        self.method = method
        self.target = target
        self.headers = headers
        self.origin = origin
        self.site = site
        self.body = b""
        self.keep_alive = True
        self.credentials_accepted: bool | None = None
        self._send = send
        self._logged = False
        self.path, _, query = target.partition("?")
        self._options = parse_qs(query, keep_blank_values=True)
        self.back_end, self._balancer_headers = site.back_end(self.cookie(POOL_COOKIE))

    def option(self, name: str, default: str = "") -> str:
        """A value from the query."""
        return self._options.get(name, [default])[0]

    def number_option(self, name: str, default: int, lowest: int, highest: int) -> int:
        """A number from the query; raises Refusal as whole_number() does."""
        return whole_number(self.option(name, str(default)), lowest, highest)

    def form_field(self, name: str) -> str:
        """A value from the form that is the body of the request."""
        fields = parse_qs(self.body.decode("utf-8", "replace"), keep_blank_values=True)
        return fields.get(name, [""])[0]

    def cookie(self, name: str) -> str | None:
        """The value of the first cookie of that name."""
        for header in self.headers.get_all("Cookie", []):
            for pair in header.split(";"):
                key, equals, value = pair.partition("=")
                if equals and key.strip() == name:
                    return value.strip()
        return None

    def has_valid_basic(self) -> bool:
        """Whether the request carries the user's Basic credentials; the log tells the verdict."""
        if "Authorization" not in self.headers:
            return False
        sent = basic_credentials(self.headers["Authorization"])
        accepted = sent is not None and same_credentials(sent, self.site.user, self.site.password)
        self.credentials_accepted = accepted
        return accepted

    def answer(self, status: int, body: bytes | str = b"", headers: Headers = (),
               content_type: str = TEXT) -> None:
        """Answers with a body that is at hand; statuses that have none go without it."""
        content = body.encode() if isinstance(body, str) else body
        if status in BODILESS_STATUSES:
            content = b""
        framing = [("Content-Type", content_type), ("Content-Length", str(len(content)))]
        if status in UNFRAMED_STATUSES:
            framing = []
        head = self._head(status, [*headers, *framing])
        self.log(status)
        self._send(head if self.method == "HEAD" else head + content)

    def stream(self, pieces: Iterable[bytes], length: int | None = None, chunked: bool = False) -> None:
        """Answers 200 and writes piece after piece, none of them empty. Without a length and chunks, the
        connection ends with the body."""
        headers = [("Content-Type", BINARY)]
        if chunked:
            headers.append(("Transfer-Encoding", "chunked"))
        elif length is not None:
            headers.append(("Content-Length", str(length)))
        else:
            self.keep_alive = False
        self.log(200)
        self._send(self._head(200, headers))
        if self.method == "HEAD":
            return
        for piece in pieces:
            self._send(b"%x\r\n%b\r\n" % (len(piece), piece) if chunked else piece)
        if chunked:
            self._send(b"0\r\n\r\n")

    def raw(self, head: bytes, body: bytes = b"", status: int | None = None) -> None:
        """Sends bytes as they are and closes; the status is what the log tells, None for no HTTP at all."""
        self.keep_alive = False
        self.log(status)
        self._send(head if self.method == "HEAD" else head + body)

    def log(self, status: int | None) -> None:
        """Writes the request to the log, the first time it is called."""
        if self._logged:
            return
        self._logged = True
        authorization = self.headers["Authorization"]
        credentials = basic_credentials(authorization)
        present = [name for name in LOGGED_HEADERS if name in self.headers]
        self.site.log.append({
            "scheme": self.origin.partition(":")[0],
            "method": self.method,
            "path": self.target,
            "status": status,
            "headers": {name: ", ".join(self.headers.get_all(name)) for name in present},
            "authorization": scheme_only(authorization),
            "user": credentials.user.decode("utf-8", "backslashreplace") if credentials else None,
            "credentials_accepted": self.credentials_accepted,
            "back_end": self.back_end.name,
        })

    def _head(self, status: int, headers: Headers) -> bytes:
        lines = [f"HTTP/1.1 {status} {responses.get(status, '')}", "Server: document_server"]
        lines += [f"{name}: {value}" for name, value in [*headers, *self._balancer_headers]]
        lines += [f"Connection: {'keep-alive' if self.keep_alive else 'close'}", "", ""]
        return "\r\n".join(lines).encode("latin-1")
