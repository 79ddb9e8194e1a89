"""A self-signed certificate for localhost, made by the openssl command each time it is asked for."""

import ssl
import subprocess
import tempfile
from pathlib import Path

VALID_DAYS = 7
DEADLINE_SECONDS = 60


class CertificateError(Exception):
    """openssl did not make a certificate; the text is its last word."""


def self_signed_context() -> ssl.SSLContext:
    """A TLS context with a fresh certificate; raises CertificateError, or OSError if openssl is missing.

    The files are gone as soon as they are loaded, so that not even a killed server leaves a key behind.
    """
    with tempfile.TemporaryDirectory(prefix="document-server-") as folder:
        certificate, key = Path(folder, "certificate.pem"), Path(folder, "key.pem")
        _run_openssl("req", "-x509", "-newkey", "rsa:2048", "-nodes", "-days", str(VALID_DAYS),
                     "-subj", "/CN=localhost", "-addext", "subjectAltName=DNS:localhost,IP:127.0.0.1",
                     "-keyout", str(key), "-out", str(certificate))
        context = ssl.SSLContext(ssl.PROTOCOL_TLS_SERVER)
        context.load_cert_chain(certificate, key)
    return context


def _run_openssl(*arguments: str) -> None:
    try:
        subprocess.run(("openssl", *arguments), check=True, capture_output=True, timeout=DEADLINE_SECONDS,
                       stdin=subprocess.DEVNULL, encoding="utf-8", errors="replace")
    except subprocess.CalledProcessError as error:
        raise CertificateError((error.stderr.splitlines() or ["openssl failed"])[-1]) from error
    except subprocess.TimeoutExpired as error:
        raise CertificateError("openssl did not finish") from error
