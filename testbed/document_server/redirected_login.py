"""A login that goes over redirects: its cookies are set on the way, and the page at the end sets none."""

from .exchange import Exchange
from .login import form_has_credentials, show_done, show_form
from .session_cookie import admits_session, open_session

STEP_PATH = "/login/step"
DONE_PATH = "/login/done"

# The first comes together with the session's cookie, the second from the redirect after that.
WORKSPACE_COOKIE = ("Set-Cookie", "workspace=main; Path=/")
LANGUAGE_COOKIE = ("Set-Cookie", "language=en; Path=/; HttpOnly")


def redirected_login(exchange: Exchange) -> None:
    """The form; for the right values it sets the session's cookie and another and sends on to the step."""
    if exchange.method == "POST" and form_has_credentials(exchange):
        exchange.answer(302, headers=[("Location", STEP_PATH), open_session(exchange), WORKSPACE_COOKIE])
    else:
        show_form(exchange)


def login_step(exchange: Exchange) -> None:
    """For a session: sets a cookie and sends on to /login/done; others get 403."""
    if admits_session(exchange):
        exchange.answer(302, headers=[("Location", DONE_PATH), LANGUAGE_COOKIE])


def login_done(exchange: Exchange) -> None:
    """For a session: the page that ends a login, without a report; others get 403."""
    if admits_session(exchange):
        show_done(exchange, reports=0)
