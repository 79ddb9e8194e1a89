"""What a viewer asks for: its login page, of the kind that the server was started with, and the access check."""

from collections.abc import Callable
from functools import partial

from .credentials import basic_challenge
from .exchange import Exchange
from .framed_login import framed_login
from .hostile import LONGEST_WAIT_SECONDS, drop, stay_silent
from .login import (CHALLENGE_PAGE_COLOUR, LINK_COLOUR, NEW_WINDOW_COLOUR, answer_page, form_has_credentials,
                    show_done, show_form)
from .redirected_login import redirected_login
from .session_cookie import admits_session, open_session
from .worker_login import REGISTRATION

LOGIN_PAGE_PATH = "/qxcore/jsp/qvs/vislogon.jsp"
NEW_WINDOW_PATH = "/login/new-window"

OPEN_WINDOW = f'addEventListener("load", () => window.open("{NEW_WINDOW_PATH}"));\n'
# One after the other, so that the order of their answers is known.
FETCH_ODD_ANSWERS = """addEventListener("load", async () => {
  for (const path of ["/cookies/names", "/cookies/chain", "/headers/none", "/cookies/twenty"]) {
    await fetch(path);
  }
});
"""
# Two bands at the foot of the page, 40 pixels each. The upper one is a link without an action, and would hide the heading
# if it had one; the lower one colours the page.
SHOW_LINKS = f"""document.body.insertAdjacentHTML("beforeend", `<style>
nav a {{ position: fixed; left: 0; right: 0; height: 40px; background: white }}
</style><nav>
<a style="bottom: 80px" href="javascript:void(0);document.querySelector('h1').remove()">Nothing</a>
<a style="bottom: 40px" href="javascript:void(document.body.style.background='{LINK_COLOUR}')">Colour</a>
</nav>`);
"""
SHOW_FAULT = "documentServer.noSuchFunction();\n"
SHOW_DIALOG = 'addEventListener("load", () => alert("Welcome"));\n'


def login_page(exchange: Exchange) -> None:
    """A viewer's login page of the kind that --login-page names. The form (fields user, password) sets the
    cookie of a new session for the right values and answers a page that reports it; who has a session gets
    the form as well."""
    LOGIN_PAGES[exchange.site.login_page](exchange)


def access_check(exchange: Exchange) -> None:
    """A small text for a session; others get 403."""
    if admits_session(exchange):
        exchange.answer(200, "Access is authenticated.\n")


def new_window(exchange: Exchange) -> None:
    """The page in the window that the login page of the kind popup opens."""
    answer_page(exchange, "News", NEW_WINDOW_COLOUR)


def _form(exchange: Exchange, reports: int = 1, welcome: str = "") -> None:
    if exchange.method == "POST" and form_has_credentials(exchange):
        _log_in(exchange, reports)
    else:
        show_form(exchange, welcome=welcome)


def _log_in(exchange: Exchange, reports: int) -> None:
    show_done(exchange, reports, [open_session(exchange)])


def _unanswered(exchange: Exchange) -> None:
    if exchange.method == "POST":
        stay_silent(exchange, LONGEST_WAIT_SECONDS)
    else:
        show_form(exchange)


def _challenged(exchange: Exchange) -> None:
    if exchange.has_valid_basic():
        _form(exchange)
    else:
        answer_page(exchange, "Credentials are needed", CHALLENGE_PAGE_COLOUR, status=401,
                    headers=[basic_challenge(exchange.site.realm)])


def _refused(exchange: Exchange) -> None:
    exchange.answer(500, "The login page is out of order.\n")


LOGIN_PAGES: dict[str, Callable[[Exchange], None]] = {
    "form": _form,
    "silent": partial(_form, reports=0),
    "twice": partial(_form, reports=2),
    "report": partial(_log_in, reports=1),
    "unanswered": _unanswered,
    "redirects": redirected_login,
    "asks": _challenged,
    "popup": partial(_form, welcome=OPEN_WINDOW),
    "dialog": partial(_form, welcome=SHOW_DIALOG),
    "faulty": partial(_form, welcome=SHOW_FAULT),
    "framed": framed_login,
    "links": partial(_form, welcome=SHOW_LINKS),
    "odd": partial(_form, welcome=FETCH_ODD_ANSWERS),
    "worker": partial(_form, welcome=REGISTRATION),
    "broken": drop,
    "refused-status": _refused,
    "stalled": partial(stay_silent, seconds=LONGEST_WAIT_SECONDS),
}
