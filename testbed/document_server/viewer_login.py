"""What a viewer asks for: its login page, of the kind that the server was started with, and the access check."""

from collections.abc import Callable
from functools import partial

from .exchange import HTML, Exchange
from .hostile import LONGEST_WAIT_SECONDS, drop, stay_silent
from .login import done_page, form_has_credentials, show_form
from .session_cookie import admits_session, open_session


def login_page(exchange: Exchange) -> None:
    """A viewer's login page of the kind that --login-page names. The form (fields user, password) sets the
    cookie of a new session for the right values and answers a page that reports it; who has a session gets
    the form as well."""
    LOGIN_PAGES[exchange.site.login_page](exchange)


def access_check(exchange: Exchange) -> None:
    """A small text for a session; others get 403."""
    if admits_session(exchange):
        exchange.answer(200, "Access is authenticated.\n")


def _form(exchange: Exchange, reports: int) -> None:
    if exchange.method == "POST" and form_has_credentials(exchange):
        _log_in(exchange, reports)
    else:
        show_form(exchange)


def _log_in(exchange: Exchange, reports: int) -> None:
    exchange.answer(200, done_page(reports), [open_session(exchange)], HTML)


def _refused(exchange: Exchange) -> None:
    exchange.answer(500, "The login page is out of order.\n")


LOGIN_PAGES: dict[str, Callable[[Exchange], None]] = {
    "form": partial(_form, reports=1),
    "silent": partial(_form, reports=0),
    "twice": partial(_form, reports=2),
    "report": partial(_log_in, reports=1),
    "broken": drop,
    "refused-status": _refused,
    "stalled": partial(stay_silent, seconds=LONGEST_WAIT_SECONDS),
}
