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
LONGEST_COMMAND = 120


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
    os.environ["KELDA_TEST_BROWSER_LOG"] = os.path.join(folder, "chromium.log")
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


def browser_log(lines: int) -> str:
    """The last lines of what the test's Chromiums have said."""
    log = os.environ.get("KELDA_TEST_BROWSER_LOG")
    if not log or not os.path.exists(log):
        return ""
    said = Path(log).read_text("utf-8", "replace").splitlines()
    # There is no D-Bus here, which Chromium says often.
    return "\n".join([line for line in said if "ERROR:dbus/" not in line][-lines:])


def processes() -> str:
    """The processes that use this test's temporary folder, a line each: number, state, where it waits, command line."""
    mine = f"={tempfile.gettempdir()}\0".encode()
    lines = []
    for process in Path("/proc").glob("[0-9]*"):
        with contextlib.suppress(OSError):
            if mine in (process / "environ").read_bytes():
                state = (process / "stat").read_text("utf-8").rpartition(")")[2].split()[0]
                command = (process / "cmdline").read_text("utf-8", "replace").replace("\0", " ")
                lines.append(f"{process.name} {state} {_place(process)} {command[:LONGEST_COMMAND]}")
    return "\n".join(lines)


def _place(process: Path) -> str:
    """Where it waits in the system; not every system tells."""
    try:
        return (process / "wchan").read_text("utf-8")
    except OSError:
        return "?"


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
    if not desktops:
        raise SystemExit(f"{folder} has no desktop: see start_desktop in tools/common.sh")
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
