"""Runs the openssl command, which makes all keys and certificates."""

import subprocess
from pathlib import Path

DEADLINE_SECONDS = 60


class CertificateError(Exception):
    """openssl did not make a certificate; the text is its last word."""


def run_openssl(folder: Path, *arguments: str) -> None:
    """Runs the command in a folder; raises CertificateError if it fails, OSError if it is missing."""
    try:
        subprocess.run(("openssl", *arguments), check=True, capture_output=True, timeout=DEADLINE_SECONDS,
                       stdin=subprocess.DEVNULL, encoding="utf-8", errors="replace", cwd=folder)
    except subprocess.CalledProcessError as error:
        raise CertificateError((error.stderr.splitlines() or ["openssl failed"])[-1]) from error
    except subprocess.TimeoutExpired as error:
        raise CertificateError("openssl did not finish") from error
