"""Runs the host program with a browser in its window, and looks at what it shows and leaves behind."""

import contextlib
import os
import queue
import re
import subprocess
import tempfile
import threading
import time
from collections.abc import Callable
from pathlib import Path
from typing import Any

from tests.flow.viewer_case import BIN_DIR, WINE, windows_path

ANSWER_SECONDS = 40
TRACE_LINE = re.compile(r"\S+ kelda (\S+) (\d) (.*)")


class BrowserHost:
    """A context manager around one run of the program; within the block it obeys commands."""

    def __init__(self, server_url: str, check_mode: int = 0, environment: dict[str, str] | None = None) -> None:
        self._server_url = server_url
        self._check_mode = check_mode
        self._environment = {**os.environ, **(environment or {})}
        self._lines: queue.Queue[str] = queue.Queue()
        self._events: list[str] = []

    def __enter__(self) -> "BrowserHost":
        self._folder = tempfile.TemporaryDirectory(prefix="kelda-e2e-")
        self._trace = Path(self._folder.name, "trace.txt")
        self._errors = open(Path(self._folder.name, "errors.txt"), "wb")
        self._process = subprocess.Popen(
            [WINE, str(BIN_DIR / "browser_host.exe"), self._server_url, str(self._check_mode),
             windows_path(self._trace)],
            stdin=subprocess.PIPE, stdout=subprocess.PIPE, stderr=self._errors, env=self._environment, text=True)
        self._reader = threading.Thread(target=self._read, daemon=True)
        self._reader.start()
        try:
            self._expect("ready")
        except BaseException:
            self.__exit__()
            raise
        return self

    def __exit__(self, *_: object) -> None:
        if self._process.poll() is None:
            self._process.stdin.close()
            try:
                self._process.wait(ANSWER_SECONDS)
            except subprocess.TimeoutExpired:
                self._process.kill()
                self._process.wait()
        self._process.stdin.close()
        self._reader.join(ANSWER_SECONDS)
        self._process.stdout.close()
        self._errors.close()
        self._folder.cleanup()

    def tell(self, command: str) -> str:
        """Gives a command and returns the answer."""
        self._process.stdin.write(command + "\n")
        self._process.stdin.flush()
        return self._next()

    def await_event(self, event: str) -> None:
        """Waits until the browser has reported that; each report is waited for once."""
        deadline = time.monotonic() + ANSWER_SECONDS
        while event not in self._events:
            line = self._lines.get(timeout=max(0.01, deadline - time.monotonic()))
            self._sort(line)
        self._events.remove(event)

    def counts(self) -> tuple[int, int, int, int]:
        """Handles, windows, GDI objects, and objects of the test runtime."""
        handles, windows, graphics, objects = self.tell("counts").split()
        return int(handles), int(windows), int(graphics), int(objects)

    def kill(self) -> None:
        """Ends the program as a crash would, with no chance to clean up."""
        self._process.stdin.write("die\n")
        self._process.stdin.flush()
        self._process.wait(ANSWER_SECONDS)

    def trace(self) -> list[str]:
        """The trace so far, as "[type] text", without times; the component is told unless it is ZanWebBrowserEdge."""
        lines = []
        for line in self._trace.read_text("utf-8").splitlines():
            component, kind, text = TRACE_LINE.fullmatch(line).groups()
            lines.append(f"[{kind}] {text}" + ("" if component == "ZanWebBrowserEdge" else f" ({component})"))
        return lines

    def events(self) -> list[str]:
        """What the browser has reported and nobody has waited for."""
        self.tell("area")
        return list(self._events)

    def pixel(self, x: int, y: int) -> tuple[int, int, int]:
        """The colour on the display at that place of the browser's area."""
        left, top, _, _ = map(int, self.tell("area").split())
        return pixel_of_display(left + x, top + y)

    def _read(self) -> None:
        for line in self._process.stdout:
            self._lines.put(line.rstrip("\n"))

    def _next(self) -> str:
        while True:
            line = self._lines.get(timeout=ANSWER_SECONDS)
            if not self._sort(line):
                return line

    def _sort(self, line: str) -> bool:
        if line.startswith("event "):
            self._events.append(line.removeprefix("event "))
            return True
        return False

    def _expect(self, line: str) -> None:
        answer = self._next()
        if answer != line:
            raise RuntimeError(f"the host said {answer!r} instead of {line!r}")


def pixel_of_display(x: int, y: int) -> tuple[int, int, int]:
    """The colour of one pixel of the display."""
    picture = subprocess.run(["import", "-window", "root", "-silent", "ppm:-"], check=True, capture_output=True).stdout
    _, width, height, greatest = (word.decode() for word in picture.split(maxsplit=4)[:4])
    bytes_a_sample = 1 if int(greatest) < 256 else 2
    pixels = picture[-3 * bytes_a_sample * int(width) * int(height):]
    start = 3 * bytes_a_sample * (y * int(width) + x)
    red, green, blue = pixels[start:start + 3 * bytes_a_sample:bytes_a_sample]
    return red, green, blue


def save_picture(file: Path) -> None:
    """A picture of the whole display."""
    file.parent.mkdir(parents=True, exist_ok=True)
    subprocess.run(["import", "-window", "root", "-silent", str(file)], check=True)


def browser_processes(folder: Path, kind: str = "") -> list[int]:
    """The browser's processes on profiles in that folder or below it; with a kind, its helpers of that kind only."""
    return [process for process, line in _command_lines(folder).items() if not kind or f" --type={kind} " in line]


def await_main_process(folder: Path) -> int:
    """Waits for the process that all others of the browser come from."""
    def started() -> list[int]:
        lines = _command_lines(folder)
        return sorted(process for process, line in lines.items() if line.partition("\0")[0].endswith("/chromium"))
    return await_condition(started, "the start of the browser")[0]


def _command_lines(folder: Path) -> dict[int, str]:
    # The arguments of a helper process are one text.
    option = re.compile(rf"[\0 ]--user-data-dir={re.escape(str(folder))}([\0 /]|$)")
    lines = {}
    for process in Path("/proc").glob("[0-9]*"):
        with contextlib.suppress(OSError):
            line = (process / "cmdline").read_text("utf-8", "replace")
            if option.search(line):
                lines[int(process.name)] = line
    return lines


def await_condition(condition: Callable[[], Any], what: str, seconds: float = ANSWER_SECONDS) -> Any:
    """Waits until a condition holds, which is looked at again and again; returns what it then is."""
    deadline = time.monotonic() + seconds
    while not (value := condition()):
        if time.monotonic() > deadline:
            raise AssertionError(f"{what}: not within {seconds} s")
        time.sleep(0.05)
    return value
