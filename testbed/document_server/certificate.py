"""The certificates that a server behind TLS may show: each is made anew for the server that asks for it."""

import ssl
import tempfile
from pathlib import Path

from .authority import Authority
from .openssl import run_openssl

SELF_SIGNED = "untrusted"
OWN_NAMES = "DNS:localhost,IP:127.0.0.1"
OTHER_NAME = "DNS:elsewhere.example"
VALID = ("-days", "7")
PAST = ("-startdate", "20200101000000Z", "-enddate", "20200108000000Z")

# What the authority signs for each kind: the names and the validity.
SIGNED = {
    "good": (OWN_NAMES, VALID),
    "expired": (OWN_NAMES, PAST),
    "wrong-name": (OTHER_NAME, VALID),
}
CERTIFICATES = (SELF_SIGNED, *SIGNED)


def tls_context(kind: str, authority_folder: Path | None) -> ssl.SSLContext:
    """A TLS context with a fresh certificate of one of the CERTIFICATES; those that are SIGNED need the folder
    of an authority. Raises CertificateError, or OSError if openssl is missing.

    The files are gone as soon as they are loaded, so that not even a killed server leaves a key behind.
    """
    with tempfile.TemporaryDirectory(prefix="document-server-") as name:
        folder = Path(name)
        if kind == SELF_SIGNED:
            certificate, key = _self_signed(folder)
        else:
            certificate, key = Authority(authority_folder).sign(folder, *SIGNED[kind])
        context = ssl.SSLContext(ssl.PROTOCOL_TLS_SERVER)
        context.load_cert_chain(certificate, key)
    return context


def _self_signed(folder: Path) -> tuple[Path, Path]:
    run_openssl(folder, "req", "-x509", "-newkey", "rsa:2048", "-nodes", *VALID, "-subj", "/CN=localhost",
                "-addext", f"subjectAltName={OWN_NAMES}", "-keyout", "key.pem", "-out", "certificate.pem")
    return folder / "certificate.pem", folder / "key.pem"
