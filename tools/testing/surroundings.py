"""What each test of CTest has to itself while it runs: a folder for temporary files, and a desktop."""

import contextlib
import fcntl
import os
import shutil
import tempfile
import time
from collections.abc import Iterator
from pathlib import Path

POLL_SECONDS = 0.1
REMOVE_SECONDS = 10


@contextlib.contextmanager
def surroundings() -> Iterator[None]:
    """Within the block TMPDIR, DISPLAY and WINEPREFIX name what belongs to this process alone."""
    with temporary_folder(), desktop():
        yield


@contextlib.contextmanager
def temporary_folder() -> Iterator[None]:
    """Makes a folder below the one that KELDA_TEST_TEMP names, or else where temporary files usually go."""
    folder = tempfile.mkdtemp(prefix="", dir=os.environ.get("KELDA_TEST_TEMP"))
    os.environ["TMPDIR"] = folder
    tempfile.tempdir = None
    try:
        yield
    finally:
        remove(folder)


def remove(folder: str) -> None:
    """Removes a folder. Processes of a Chromium that was killed may still write there for a moment."""
    deadline = time.monotonic() + REMOVE_SECONDS
    while os.path.exists(folder) and time.monotonic() < deadline:
        shutil.rmtree(folder, ignore_errors=True)
        if os.path.exists(folder):
            time.sleep(POLL_SECONDS)


@contextlib.contextmanager
def desktop() -> Iterator[None]:
    """Takes one of the desktops below the folder that KELDA_DESKTOPS names; without it the caller's desktop serves.

    A desktop is a display with a Wine prefix. The process that holds it has its keyboard, cookies and credentials to itself.
    """
    folder = os.environ.get("KELDA_DESKTOPS")
    if not folder:
        yield
        return
    desktops = sorted(path.parent for path in Path(folder).glob("*/display"))
    with contextlib.ExitStack() as locks:
        mine = _take_one(desktops, locks)
        os.environ["DISPLAY"] = (mine / "display").read_text("utf-8").strip()
        os.environ["WINEPREFIX"] = str(mine / "wine")
        yield


def _take_one(desktops: list[Path], locks: contextlib.ExitStack) -> Path:
    while True:
        for candidate in desktops:
            # Not inherited: what a test has started must not keep the desktop.
            lock = open(candidate / "lock", "w", encoding="utf-8")
            try:
                fcntl.flock(lock, fcntl.LOCK_EX | fcntl.LOCK_NB)
            except BlockingIOError:
                lock.close()
                continue
            locks.enter_context(lock)
            return candidate
        time.sleep(POLL_SECONDS)
