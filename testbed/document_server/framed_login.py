"""A login in a frame. The form is a page of another site, which has no say in the cookies of the page around it: for
the right values it hands that page a ticket, and the page posts the ticket to its own site for a session."""

from urllib.parse import urlsplit

from .exchange import Exchange
from .login import (DONE_PAGE_COLOUR, PAGE_COLOUR, answer_page, form_has_credentials, script, show_done,
                    show_form)
from .session_cookie import open_session

FRAME_PATH = "/login/frame"


def framed_login(exchange: Exchange) -> None:
    """The page around the frame; a ticket that is posted to it opens a session, which the answer reports."""
    if exchange.method == "POST" and exchange.site.tickets.close(exchange.form_field("ticket")):
        show_done(exchange, reports=1, headers=[open_session(exchange)])
        return
    frame_origin = _origin_as(exchange, "localhost")
    answer_page(exchange, "Document server login", PAGE_COLOUR, f"""<form method="post" hidden>
<input name="ticket">
</form>
<iframe src="{frame_origin}{FRAME_PATH}" style="position: fixed; inset: 0; width: 100%; height: 100%; border: 0">
</iframe>
""" + script(f"""addEventListener("message", (message) => {{
  if (message.origin === "{frame_origin}") {{
    document.forms[0].elements.ticket.value = message.data;
    document.forms[0].submit();
  }}
}});
"""))


def login_frame(exchange: Exchange) -> None:
    """The form in the frame of the login page of the kind framed; for the right values a page that hands a ticket,
    good for one session, to the page around it."""
    if exchange.method == "POST" and form_has_credentials(exchange):
        ticket = exchange.site.tickets.open(exchange.site.user)
        answer_page(exchange, "Logged in", DONE_PAGE_COLOUR,
                    script(f'window.top.postMessage("{ticket}", "{_origin_as(exchange, "127.0.0.1")}");\n'))
    else:
        show_form(exchange)


def _origin_as(exchange: Exchange, host: str) -> str:
    """The server's address under another name of its machine: another site, with cookies of its own."""
    address = urlsplit(exchange.origin)
    return f"{address.scheme}://{host}:{address.port}"
