"""A login page with a service worker that answers every request with a page of its own: a login succeeds in a browser
only that asks the network all the same."""

import json

from .exchange import Exchange
from .login import WORKER_PAGE_COLOUR, page

WORKER_PATH = "/login/worker.js"
ACTIVE_PATH = "/login/worker-active"

REGISTRATION = f'navigator.serviceWorker.register("{WORKER_PATH}", {{ scope: "/" }});\n'

# The last request goes past the worker, whose own it is: the log tells from when on it answers the page's.
WORKER = f"""const PAGE = {json.dumps(page("Answered by the worker", WORKER_PAGE_COLOUR))};

addEventListener("install", (event) => {{
  const response = new Response(PAGE, {{ headers: {{ "Content-Type": "text/html" }} }});
  event.waitUntil(caches.open("pages").then((cache) => cache.put("/", response)));
}});

addEventListener("activate", (event) => {{
  event.waitUntil(clients.claim().then(() => fetch("{ACTIVE_PATH}")));
}});

addEventListener("fetch", (event) => event.respondWith(caches.match("/")));
"""


def worker_script(exchange: Exchange) -> None:
    """The service worker of the login page of the kind worker; it answers every request with a page out of its
    cache."""
    exchange.answer(200, WORKER, [("Service-Worker-Allowed", "/")], "text/javascript; charset=utf-8")


def worker_active(exchange: Exchange) -> None:
    """204; the service worker asks for it when it has taken over."""
    exchange.answer(204)
