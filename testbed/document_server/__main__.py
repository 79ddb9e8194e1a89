"""The command line: starts the server, says where it listens and serves until it is told to end."""

import argparse
import os
import signal
import sys
import textwrap
import threading
from collections.abc import Iterator
from contextlib import contextmanager
from pathlib import Path

if not __package__:
    # Run as a folder, which the interpreter has put on the path: the package is found one folder further up.
    sys.path[0] = str(Path(__file__).resolve().parent.parent)

from document_server.balancer import Balancer
from document_server.certificate import CERTIFICATES, SELF_SIGNED, SIGNED, tls_context
from document_server.openssl import CertificateError
from document_server.request_log import RequestLog
from document_server.routes import ROUTES, respond
from document_server.secure_login import sending_logins_to
from document_server.server import HOST, Server
from document_server.site import DEFAULT_LOGIN_PAGE, Site
from document_server.viewer_login import LOGIN_PAGES

PROGRAM = "document_server"
END_SIGNALS = (signal.SIGTERM, signal.SIGINT)
PARENT_CHECK_SECONDS = 0.2
MOST_BACK_ENDS = 100


def port_number(text: str) -> int:
    """The value of --port."""
    if not text.isascii() or not text.isdigit() or len(text) > 5 or int(text) > 65535:
        raise argparse.ArgumentTypeError(f"{text!r} is not a number from 0 to 65535")
    return int(text)


def back_end_count(text: str) -> int:
    """The value of --back-ends."""
    if not text.isascii() or not text.isdigit() or len(text) > 3 or not 1 <= int(text) <= MOST_BACK_ENDS:
        raise argparse.ArgumentTypeError(f"{text!r} is not a number from 1 to {MOST_BACK_ENDS}")
    return int(text)


def header_text(text: str) -> str:
    """The value of an option that ends up in a header."""
    if not text.isprintable():
        raise argparse.ArgumentTypeError("control characters are not allowed")
    return text


def user_name(text: str) -> str:
    """The value of --user."""
    if ":" in text:
        raise argparse.ArgumentTypeError("Basic authentication cannot carry a user name with a colon")
    return text


def url_table() -> str:
    """The URLs of the server with what each of them does, for --help."""
    lines = ["URLs (words in capitals stand for a value, '...' for anything):"]
    for route in ROUTES:
        methods = "" if route.methods == ("GET", "HEAD") else f"   [{', '.join(route.methods)}]"
        lines.append(f"\n  {route.pattern}{methods}")
        lines.append(textwrap.fill(route.summary, 94, initial_indent="      ", subsequent_indent="      "))
    return "\n".join(lines)


def command_line() -> argparse.ArgumentParser:
    """The options of the program."""
    parser = argparse.ArgumentParser(
        prog=PROGRAM, formatter_class=argparse.RawDescriptionHelpFormatter, epilog=url_table(),
        description=f"A document server for tests and demos. It listens on {HOST} only, prints one line\n"
                    "with its address and serves until SIGTERM or SIGINT.")
    parser.add_argument("--port", type=port_number, default=0, metavar="N",
                        help="port to listen on; 0, the default, takes any free one")
    parser.add_argument("--user", type=user_name, default="anna", help="user name (default: %(default)s)")
    parser.add_argument("--password", default="kelda-demo",
                        help="the user's password (default: %(default)s)")
    parser.add_argument("--realm", type=header_text, default="kelda documents",
                        help="realm of the challenges (default: %(default)s)")
    parser.add_argument("--login-page", choices=LOGIN_PAGES, default=DEFAULT_LOGIN_PAGE, metavar="KIND",
                        help="kind of a viewer's login page: form (the default), silent and twice are a form "
                             "after which the session is reported once, never or twice; report logs in and "
                             "reports without any input; redirects goes over two redirects with a cookie each "
                             "and does not report; asks is a form behind Basic authentication; popup, dialog and "
                             "worker are a form that opens a window, shows an alert or starts a service worker; "
                             "faulty and links are a form with a script that fails or with links that are "
                             "scripts; framed has the form in a frame of another site; odd is a form that "
                             "fetches odd answers; unanswered is a form that is not answered when it is "
                             "posted; broken closes the connection without an answer; refused-status answers "
                             "500; stalled does not answer for a minute")
    parser.add_argument("--back-ends", type=back_end_count, metavar="N",
                        help="put a load balancer with so many back-ends before the server, each with "
                             "sessions of its own; without this there is none")
    parser.add_argument("--log", type=Path, metavar="FILE",
                        help="append one line with a JSON object to FILE for every request")
    certificate = {"nargs": "?", "choices": CERTIFICATES, "const": SELF_SIGNED, "metavar": "KIND"}
    listeners = parser.add_mutually_exclusive_group()
    listeners.add_argument("--tls", **certificate,
                           help="serve https with a certificate for localhost, made on the spot: untrusted (the "
                                "default) is signed by itself, good, expired and wrong-name by the authority")
    listeners.add_argument("--secure-login", **certificate,
                           help="serve http, but send those who ask for a viewer's login page on to https, on "
                                "another port and with a certificate of that kind")
    parser.add_argument("--authority", type=Path, metavar="FOLDER",
                        help="where the authority's certificate and key are, authority.pem and authority.key; "
                             "both are made if they are missing")
    parser.add_argument("--exit-with-parent", action="store_true",
                        help="end as well when the process that started this one has ended")
    return parser


def options_of(arguments: list[str] | None = None) -> argparse.Namespace:
    """The options in these arguments, or those of the process; wrong ones end it."""
    parser = command_line()
    options = parser.parse_args(arguments)
    if (options.tls or options.secure_login) in SIGNED and not options.authority:
        parser.error(f"--authority is needed for a certificate that is {options.tls or options.secure_login}")
    return options


@contextmanager
def reported(failure: str) -> Iterator[None]:
    """Turns what goes wrong inside into one line on stderr and exit status 1."""
    try:
        yield
    except (OSError, CertificateError) as error:
        print(f"{PROGRAM}: {failure}: {getattr(error, 'strerror', None) or error}", file=sys.stderr)
        sys.exit(1)


def open_servers(options: argparse.Namespace) -> list[Server]:
    """The server, and after it one for the login page if that has its own, that accept connections; nobody
    answers them yet."""
    with reported(f"cannot write the log {options.log}"):
        log = RequestLog(options.log)
    with reported("cannot make a certificate"):
        kind = options.tls or options.secure_login
        tls = tls_context(kind, options.authority) if kind else None
    site = Site(options.user, options.password, options.realm, secure=options.tls is not None, log=log,
                login_page=options.login_page,
                balancer=Balancer(options.back_ends) if options.back_ends else None)
    with reported(f"cannot listen on {HOST}:{options.port}"):
        if not options.secure_login:
            return [Server(options.port, site, respond, tls)]
        login_server = Server(0, site, respond, tls)
        return [Server(options.port, site, sending_logins_to(login_server.url)), login_server]


def wait_for_end(parent: int | None) -> None:
    """Returns when a signal asks for the end or, if its process id is given, when the parent is gone."""
    if parent is None:
        signal.sigwait(END_SIGNALS)
        return
    while os.getppid() == parent and signal.sigtimedwait(END_SIGNALS, PARENT_CHECK_SECONDS) is None:
        pass


def main() -> int:
    """Runs the program; the result is its exit status."""
    parent = os.getppid()
    options = options_of()
    # Blocked before the first thread starts, for threads inherit that: only wait_for_end() sees the signals.
    signal.pthread_sigmask(signal.SIG_BLOCK, END_SIGNALS)
    servers = open_servers(options)
    # These threads and those of the connections are daemons: they end with the process, whatever they wait for.
    for server in servers:
        threading.Thread(target=server.serve_forever, name="accept", daemon=True).start()
    print(f"listening on {servers[0].url}", flush=True)
    wait_for_end(parent if options.exit_with_parent else None)
    return 0


if __name__ == "__main__":
    sys.exit(main())
