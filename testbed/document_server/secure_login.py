"""A login page behind TLS for a server without it: a viewer's probe meets plain HTTP, its browser a certificate."""

from collections.abc import Callable

from .exchange import Exchange
from .routes import FORM_METHODS, respond
from .viewer_login import LOGIN_PAGE_PATH


def sending_logins_to(origin: str) -> Callable[[Exchange], None]:
    """Answers as respond() does, but sends those who ask for a viewer's login page on to that server."""
    def respond_or_send_on(exchange: Exchange) -> None:
        if exchange.path == LOGIN_PAGE_PATH and exchange.method in FORM_METHODS:
            exchange.answer(302, headers=[("Location", origin + exchange.target)])
        else:
            respond(exchange)

    return respond_or_send_on
