"""A home folder for Chromium in which it trusts one more certificate authority."""

import subprocess
import tempfile
from pathlib import Path

# Chromium looks here first and, only where this is missing, below XDG_DATA_HOME, which a test may have inherited.
DATABASE_FOLDER = Path(".pki", "nssdb")
DEADLINE_SECONDS = 30


class BrowserHome:
    """A context manager: a Chromium that is started with HOME set to the path trusts the authority of a file.

    It keeps the folder until the end of the block, where no such Chromium may run any more. certutil makes the
    database, which is part of Debian's libnss3-tools.
    """

    def __init__(self, authority: Path) -> None:
        self._authority = authority

    def __enter__(self) -> "BrowserHome":
        self._folder = tempfile.TemporaryDirectory(prefix="browser-home-")
        self.path = Path(self._folder.name)
        database = self.path / DATABASE_FOLDER
        try:
            database.mkdir(parents=True)
            _certutil("-N", "-d", f"sql:{database}", "--empty-password")
            _certutil("-A", "-d", f"sql:{database}", "-n", "test authority", "-t", "C,,", "-i", str(self._authority))
        except BaseException:
            self.__exit__()
            raise
        return self

    def __exit__(self, *_: object) -> None:
        self._folder.cleanup()


def _certutil(*arguments: str) -> None:
    run = subprocess.run(("certutil", *arguments), stdin=subprocess.DEVNULL, capture_output=True, encoding="utf-8",
                         timeout=DEADLINE_SECONDS, check=False)
    if run.returncode != 0:
        raise RuntimeError(f"certutil failed: {run.stderr or run.stdout}")
