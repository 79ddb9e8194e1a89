"""A person at the display: sees windows and colours, presses keys and mouse buttons, through the display's own input."""

import subprocess

from tests.e2e.browser_host import await_condition, pixel_of_display

# Of the title bar and the frame that Wine draws; the middle of the close button is so far from the window's top right corner.
CLOSE_BUTTON = (14, 13)


class Person:
    """Looks at one top-level window, known by its title."""

    def __init__(self, title: str) -> None:
        self.title = title
        self.left = self.top = self.width = self.height = 0

    def await_window(self) -> None:
        """Waits until the window has the keyboard."""
        await_condition(lambda: title_of_focus() == self.title, f"the focus in {self.title!r}")
        self._locate()

    def await_end(self) -> None:
        """Waits until no such window is there any more."""
        await_condition(lambda: not _windows(self.title), f"the end of {self.title!r}")

    def await_colour(self, colour: tuple[int, int, int], x: int, y: int) -> None:
        """Waits for a colour at a place of the window."""
        await_condition(lambda: self.colour(x, y) == colour, f"{colour} at {x},{y} of {self.title!r}")

    def colour(self, x: int, y: int) -> tuple[int, int, int]:
        """The colour at a place of the window."""
        return pixel_of_display(self.left + x, self.top + y)

    def click(self, x: int, y: int) -> None:
        """Presses the left mouse button there."""
        _xdotool("mousemove", "--sync", str(self.left + x), str(self.top + y), "click", "1")

    def close(self) -> None:
        """Presses the close button of the title bar."""
        self.click(self.width - CLOSE_BUTTON[0], CLOSE_BUTTON[1])

    @staticmethod
    def type(text: str) -> None:
        """Types a text, key by key."""
        _xdotool("type", "--delay", "30", text)

    @staticmethod
    def press(*keys: str) -> None:
        """Presses keys, one after the other."""
        _xdotool("key", "--delay", "30", *keys)

    def _locate(self) -> None:
        answer = _xdotool("getwindowgeometry", "--shell", _windows(self.title)[0])
        values = dict(line.split("=") for line in answer.split())
        self.left, self.top, self.width, self.height = (int(values[name]) for name in ("X", "Y", "WIDTH", "HEIGHT"))


def _xdotool(*arguments: str) -> str:
    return subprocess.run(["xdotool", *arguments], check=True, capture_output=True, text=True).stdout.strip()


def title_of_focus() -> str:
    """The title of the window that has the keyboard; empty where none has."""
    finished = subprocess.run(["xdotool", "getwindowfocus", "getwindowname"], capture_output=True, text=True)
    return finished.stdout.strip() if finished.returncode == 0 else ""


def _windows(title: str) -> list[str]:
    finished = subprocess.run(["xdotool", "search", "--onlyvisible", "--name", f"^{title}$"], capture_output=True, text=True)
    return finished.stdout.split()
