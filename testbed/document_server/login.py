"""The web login: its pages, a form that opens a session, and documents that only a session gets."""

import html
import re
from urllib.parse import quote

from .credentials import BasicCredentials, same_credentials
from .documents import DEFAULT_SIZE, MAXIMUM_SIZE, document
from .exchange import BINARY, HTML, Exchange, Headers, Refusal
from .session_cookie import admits_session, end_session, has_session, open_session

FORM_PATH = "/login/form"
HOME_PATH = "/"

# Browsers read a backslash like a slash and drop control characters: either could make a host out of a path.
LOCAL_PATH = re.compile(r"/(?![/\\])[!-\[\]-~]*")

# Tests tell the pages by their colours: the form, the form after a wrong password, what follows the right one, and
# what some kinds of login page show besides. The name stands on a band of this height (in pixels) across the top.
PAGE_COLOUR = "#e8eef4"
WRONG_PAGE_COLOUR = "#f6dcc8"
DONE_PAGE_COLOUR = "#d0ecd0"
CHALLENGE_PAGE_COLOUR = "#e4d4f0"
NEW_WINDOW_COLOUR = "#f4f0c4"
WORKER_PAGE_COLOUR = "#f0c8dc"
LINK_COLOUR = "#bcd8b0"
BAND_COLOUR = "#1f4e79"
BAND_HEIGHT = 64

WRONG = '<p class="error">Wrong user name or password.</p>\n'
REPORT_CALL = "window.external.norv();\n"


def login_form(exchange: Exchange) -> None:
    """A login form (fields user, password). The right values open a session: its cookie is set and the client
    sent on to ?next=PATH, a local path (default /). Wrong ones show the form again, status 200."""
    next_path = exchange.form_field("next") or exchange.option("next") or HOME_PATH
    if not LOCAL_PATH.fullmatch(next_path):
        raise Refusal(400, "next must be a local path.\n")
    if exchange.method == "POST" and form_has_credentials(exchange):
        exchange.answer(302, headers=[("Location", next_path), open_session(exchange)])
    else:
        show_form(exchange, f'<input type="hidden" name="next" value="{html.escape(next_path)}">\n')


def report(exchange: Exchange) -> None:
    """A page whose script reports a session twice to the host object of the browser that shows it."""
    show_done(exchange, reports=2)


def logout(exchange: Exchange) -> None:
    """Ends the session of the request and takes its cookie back."""
    exchange.answer(200, "Logged out.\n", [end_session(exchange)])


def session_document(exchange: Exchange, name: str) -> None:
    """A document of ?size=N bytes (default 70000) for a session; others are sent to the login form."""
    if has_session(exchange):
        answer_document(exchange, name)
    else:
        location = f"{FORM_PATH}?next={quote(exchange.target, safe='')}"
        exchange.answer(302, headers=[("Location", location)])


def guarded_document(exchange: Exchange, name: str) -> None:
    """A document of ?size=N bytes (default 70000) for a session; others get 403."""
    if admits_session(exchange):
        answer_document(exchange, name)


def answer_document(exchange: Exchange, name: str) -> None:
    """Answers the document of that name in the size that the query asks for."""
    size = exchange.number_option("size", DEFAULT_SIZE, 0, MAXIMUM_SIZE)
    exchange.answer(200, document(name, size), content_type=BINARY)


def form_has_credentials(exchange: Exchange) -> bool:
    """Whether the form that was posted holds the user's name and password."""
    user, password = exchange.form_field("user"), exchange.form_field("password")
    return same_credentials(BasicCredentials(user.encode(), password.encode()),
                            exchange.site.user, exchange.site.password)


def show_form(exchange: Exchange, hidden_fields: str = "", welcome: str = "") -> None:
    """Answers the form; to a form that was posted it says that the credentials were wrong. The welcome is a script
    for the form as it is at first."""
    wrong = exchange.method == "POST"
    form = f"""<form method="post">
<p><label>User <input name="user" autofocus></label></p>
<p><label>Password <input name="password" type="password"></label></p>
{hidden_fields}<p><button>Log in</button></p>
</form>
"""
    if wrong:
        answer_page(exchange, "Document server login", WRONG_PAGE_COLOUR, WRONG + form)
    else:
        answer_page(exchange, "Document server login", PAGE_COLOUR, form + script(welcome))


def show_done(exchange: Exchange, reports: int, headers: Headers = ()) -> None:
    """Answers the page that follows a login; its script reports the session so many times to the host object."""
    answer_page(exchange, "Logged in", DONE_PAGE_COLOUR, script(REPORT_CALL * reports), headers)


def answer_page(exchange: Exchange, name: str, colour: str, content: str = "", headers: Headers = (),
                status: int = 200) -> None:
    """Answers a page with its name on a band and the content, which is HTML, below it."""
    exchange.answer(status, page(name, colour, content), headers, HTML)


def script(lines: str) -> str:
    """The element that runs lines of JavaScript; nothing for none."""
    return f"<script>\n{lines}</script>\n" if lines else ""


def page(name: str, colour: str, content: str = "") -> str:
    """A whole page with its name on a band and the content, which is HTML, below it. Its icon is empty: browsers ask
    for one at a time of their own."""
    return f"""<!DOCTYPE html>
<html lang="en">
<head><meta charset="utf-8"><title>{name}</title><link rel="icon" href="data:,">
<style>
body {{ margin: 0; background: {colour}; font: 16px sans-serif; }}
h1 {{ margin: 0; padding: 0 24px; background: {BAND_COLOUR}; color: white;
     font-size: 22px; line-height: {BAND_HEIGHT}px; }}
form, .error {{ margin: 24px; }}
.error {{ color: #a4262c; }}
label {{ display: inline-block; }}
input, button {{ font: inherit; padding: 6px 10px; }}
</style></head>
<body>
<h1>{name}</h1>
{content}</body>
</html>
"""
