"""Answers whose cookies test those who read Set-Cookie headers themselves. All is sent to the byte."""

from .exchange import Exchange

MOST_REDIRECTS = 100
BODY = b"Cookies.\n"

TWENTY_COOKIES = (
    b"no-equals-sign",  # a value without a name to browsers, a name without a value to others
    b"=no-name",  # to browsers the same cookie as the one before
    b"no-value=",  # a cookie all the same
    b'quotes="a b, c"',  # they belong to the value
    b"  blanks \t =  around  ;  Path =  /  ; HttpOnly  ",  # they belong to nothing
    b"capitals=1; PATH=/; HTTPONLY; MAX-AGE=99999999999999999999999",  # an age beyond any number type
    b"age-first=1; Max-Age=600; Expires=Tue, 09 Jun 2037 10:18:14 GMT",  # the age counts
    b"date-first=1; Expires=Tue, 09 Jun 2037 10:18:14 GMT; Max-Age=600",  # in this order as well
    b"iso-date=1; Expires=2037-06-09T10:18:14Z",  # no date that browsers know: a cookie of the session
    b"no-age=1; Max-Age=0",  # takes a cookie back
    b"negative-age=1; Max-Age=-1",  # so does this
    b"domain=1; Domain=127.0.0.1",  # its own host
    b"dotted-domain=1; Domain=.127.0.0.1; SameSite=Sometimes",  # the same, and an unknown SameSite is as none
    b"relative-path=1; Path=documents; SameSite=Lax",  # a path without a slash is as none
    b"strict=1; SameSite=Strict; HttpOnly",  # for this site only
    b"none=1; SameSite=None; Secure",  # for all sites, which browsers allow together with Secure only
    "umlauts=Gr\u00fc\u00dfe".encode(),  # UTF-8, which nobody promises of a header
    b"twice=first; Path=/",  # gives way to the next
    b"twice=second; Path=/elsewhere; HttpOnly; Path=/; httponly",  # the last of an attribute counts
    b"bad-day=1; Expires=Wed, xx Jun 2021 10:18:14 GMT",  # the last, for who gives up at it to have read the others
)


def twenty(exchange: Exchange) -> None:
    """One answer with twenty cookies of odd shapes, each in a header of its own."""
    _answer(exchange, b"".join(b"Set-Cookie: %b\r\n" % cookie for cookie in TWENTY_COOKIES))


def names(exchange: Exchange) -> None:
    """Cookies in headers that are spelled SET-COOKIE, set-cookie and Set-Cookie2."""
    _answer(exchange, b"SET-COOKIE: capitals=1\r\nset-cookie: small=1\r\nSet-Cookie2: second=1\r\n")


def chain(exchange: Exchange) -> None:
    """?count=N redirects (default 3, at most 100), each of which sets a cookie, hop1 to hopN; then a small page."""
    count = exchange.number_option("count", 3, 0, MOST_REDIRECTS)
    hop = exchange.number_option("hop", 1, 1, count + 1)
    if hop > count:
        exchange.answer(200, "The end of the chain.\n")
    else:
        exchange.answer(302, headers=[("Location", f"/cookies/chain?count={count}&hop={hop + 1}"),
                                      ("Set-Cookie", f"hop{hop}={hop}; Path=/")])


def _answer(exchange: Exchange, headers: bytes) -> None:
    exchange.raw(b"HTTP/1.1 200 OK\r\n%bContent-Type: text/plain\r\nContent-Length: %d\r\nConnection: close\r\n\r\n"
                 % (headers, len(BODY)), BODY, status=200)
