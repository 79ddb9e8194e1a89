"""A certificate authority for tests: a folder with its certificate and its key, which clients may come to trust."""

import fcntl
import os
import tempfile
from collections.abc import Iterator
from contextlib import contextmanager
from pathlib import Path

from .openssl import run_openssl

CERTIFICATE_FILE = "authority.pem"
KEY_FILE = "authority.key"
NAME = "Document server test authority"

# The folder may be kept for long: clients that trust its authority go on to do so.
VALID_DAYS = 3650

# The machine's own would add extensions of its choice. A server's names come with its request.
CONFIGURATION_FILE = "openssl.cnf"
CONFIGURATION = """[req]
distinguished_name = no_defaults
[no_defaults]
[ca]
default_ca = authority
[authority]
database = issued.txt
new_certs_dir = .
rand_serial = yes
default_md = sha256
policy = any_name
copy_extensions = copy
[any_name]
commonName = supplied
"""


class Authority:
    """Signs certificates of servers. Several processes may use the authority of one folder at the same time."""

    def __init__(self, folder: Path) -> None:
        """Makes the folder, and the authority in it, if they are missing; raises CertificateError or OSError."""
        self.certificate = folder.absolute() / CERTIFICATE_FILE
        self._key = folder.absolute() / KEY_FILE
        folder.mkdir(exist_ok=True)
        with _locked(folder):
            # The certificate comes last: where it is, the authority is complete.
            if not self.certificate.exists():
                self._make(folder)

    def sign(self, folder: Path, names: str, validity: tuple[str, ...]) -> tuple[Path, Path]:
        """Makes a server's certificate and its key in an empty folder and returns the two files. The names are
        as openssl writes alternative names, the validity is openssl's options for it."""
        (folder / CONFIGURATION_FILE).write_text(CONFIGURATION, "ascii")
        (folder / "issued.txt").touch()
        run_openssl(folder, "req", "-config", CONFIGURATION_FILE, "-new", "-newkey", "rsa:2048", "-nodes",
                    "-subj", "/CN=Document server", "-addext", f"subjectAltName={names}",
                    "-addext", "extendedKeyUsage=serverAuth", "-keyout", "key.pem", "-out", "request.pem")
        run_openssl(folder, "ca", "-config", CONFIGURATION_FILE, "-batch", "-notext", *validity,
                    "-cert", str(self.certificate), "-keyfile", str(self._key),
                    "-in", "request.pem", "-out", "certificate.pem")
        return folder / "certificate.pem", folder / "key.pem"

    def _make(self, folder: Path) -> None:
        # Beside its place, for files to be moved there whole: a killed process leaves no half of one.
        with tempfile.TemporaryDirectory(prefix="unfinished-", dir=folder) as name:
            unfinished = Path(name)
            (unfinished / CONFIGURATION_FILE).write_text(CONFIGURATION, "ascii")
            run_openssl(unfinished, "req", "-config", CONFIGURATION_FILE, "-x509", "-newkey", "rsa:2048", "-nodes",
                        "-days", str(VALID_DAYS), "-subj", f"/CN={NAME}",
                        "-addext", "basicConstraints=critical,CA:TRUE", "-addext", "keyUsage=critical,keyCertSign",
                        "-keyout", KEY_FILE, "-out", CERTIFICATE_FILE)
            os.replace(unfinished / KEY_FILE, self._key)
            os.replace(unfinished / CERTIFICATE_FILE, self.certificate)


@contextmanager
def _locked(folder: Path) -> Iterator[None]:
    """One process at a time; the lock is on the folder itself and goes with the process."""
    descriptor = os.open(folder, os.O_RDONLY)
    try:
        fcntl.flock(descriptor, fcntl.LOCK_EX)
        yield
    finally:
        os.close(descriptor)
