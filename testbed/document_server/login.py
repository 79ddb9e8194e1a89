"""The web login: a form that opens a session, and documents that only a session gets."""

import html
import re
from urllib.parse import quote

from .credentials import BasicCredentials, same_credentials
from .documents import DEFAULT_SIZE, MAXIMUM_SIZE, document
from .exchange import BINARY, HTML, Exchange, Refusal
from .sessions import COOKIE_NAME

FORM_PATH = "/login/form"
HOME_PATH = "/"

# Browsers read a backslash like a slash and drop control characters: either could make a host out of a path.
LOCAL_PATH = re.compile(r"/(?![/\\])[!-\[\]-~]*")

# Tests tell the page by its colours; the name stands on a band of this height (in pixels) across the top.
PAGE_COLOUR = "#e8eef4"
BAND_COLOUR = "#1f4e79"
BAND_HEIGHT = 64

FORM = f"""<!DOCTYPE html>
<html lang="en">
<head><meta charset="utf-8"><title>Document server login</title>
<style>
body {{{{ margin: 0; background: {PAGE_COLOUR}; font: 16px sans-serif; }}}}
h1 {{{{ margin: 0; padding: 0 24px; background: {BAND_COLOUR}; color: white;
      font-size: 22px; line-height: {BAND_HEIGHT}px; }}}}
form, .error {{{{ margin: 24px; }}}}
.error {{{{ color: #a4262c; }}}}
label {{{{ display: inline-block; }}}}
input, button {{{{ font: inherit; padding: 6px 10px; }}}}
</style></head>
<body>
<h1>Document server login</h1>
{{error}}<form method="post">
<p><label>User <input name="user" autofocus></label></p>
<p><label>Password <input name="password" type="password"></label></p>
<input type="hidden" name="next" value="{{next}}">
<p><button>Log in</button></p>
</form>
</body>
</html>
"""


# The object behind the member is called twice: only the first call is to count.
REPORT = """<!DOCTYPE html>
<html lang="en">
<head><meta charset="utf-8"><title>Logged in</title></head>
<body><h1>Logged in</h1>
<script>
window.external.norv();
window.external.norv();
</script>
</body>
</html>
"""


def report(exchange: Exchange) -> None:
    """A page whose script reports a session to the host object of the browser that shows it."""
    exchange.answer(200, REPORT, content_type=HTML)


def login_form(exchange: Exchange) -> None:
    """A login form (fields user, password). The right values open a session: its cookie is set and the client
    sent on to ?next=PATH, a local path (default /). Wrong ones show the form again, status 200."""
    next_path = exchange.form_field("next") or exchange.option("next") or HOME_PATH
    if not LOCAL_PATH.fullmatch(next_path):
        raise Refusal(400, "next must be a local path.\n")
    if exchange.method != "POST":
        _show_form(exchange, next_path)
    elif _form_has_credentials(exchange):
        identifier = exchange.site.sessions.open(exchange.site.user)
        cookie = f"{COOKIE_NAME}={identifier}; Path=/; HttpOnly{'; Secure' if exchange.site.secure else ''}"
        exchange.answer(302, headers=[("Location", next_path), ("Set-Cookie", cookie)])
    else:
        _show_form(exchange, next_path, '<p class="error">Wrong user name or password.</p>\n')


def session_document(exchange: Exchange, name: str) -> None:
    """A document of ?size=N bytes (default 70000) for a session; others are sent to the login form."""
    if has_session(exchange):
        answer_document(exchange, name)
    else:
        location = f"{FORM_PATH}?next={quote(exchange.target, safe='')}"
        exchange.answer(302, headers=[("Location", location)])


def has_session(exchange: Exchange) -> bool:
    """Whether the request carries the cookie of a session."""
    return exchange.site.sessions.user(exchange.cookie(COOKIE_NAME)) is not None


def answer_document(exchange: Exchange, name: str) -> None:
    """Answers the document of that name in the size that the query asks for."""
    size = exchange.number_option("size", DEFAULT_SIZE, 0, MAXIMUM_SIZE)
    exchange.answer(200, document(name, size), content_type=BINARY)


def _show_form(exchange: Exchange, next_path: str, error: str = "") -> None:
    exchange.answer(200, FORM.format(error=error, next=html.escape(next_path)), content_type=HTML)


def _form_has_credentials(exchange: Exchange) -> bool:
    user, password = exchange.form_field("user"), exchange.form_field("password")
    return same_credentials(BasicCredentials(user.encode(), password.encode()),
                            exchange.site.user, exchange.site.password)
