"""A person at the display: sees windows and colours, and uses the display's own keyboard and mouse."""

import contextlib
import re
import subprocess
from collections.abc import Callable, Iterator

from tests.e2e.browser_host import await_condition, pixel_of_display

# In the frame that Wine draws: the middle of the close button is so far from the top right corner of the window, and so near
# to its bottom right corner the frame can be taken hold of.
CLOSE_BUTTON = (14, 13)
CORNER = 2

# A caret that blinks changes fewer pixels, anything else that a person looks for more.
CARET_PIXELS = 50

# So often the display is searched while windows go away in it.
SEARCHES = 20


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
        await_condition(lambda: not windows(self.title), f"the end of {self.title!r}")

    def await_colour(self, colour: tuple[int, int, int], x: int, y: int) -> None:
        """Waits for a colour at a place of the window."""
        await_condition(lambda: self.colour(x, y) == colour, f"{colour} at {x},{y} of {self.title!r}")

    def colour(self, x: int, y: int) -> tuple[int, int, int]:
        """The colour at a place of the window."""
        return pixel_of_display(self.left + x, self.top + y)

    def await_effect(self, action: Callable[[], None]) -> None:
        """Does something and waits until the window shows it; a caret that blinks is no effect."""
        before = self._picture()
        action()

        def changed() -> bool:
            now = self._picture()
            return sum(before[at:at + 3] != now[at:at + 3] for at in range(0, len(before), 3)) > CARET_PIXELS
        await_condition(changed, f"an effect in {self.title!r}")

    def click(self, x: int, y: int) -> None:
        """Presses the left mouse button there."""
        _xdotool("mousemove", str(self.left + x), str(self.top + y), "click", "1")

    def close(self) -> None:
        """Presses the close button of the title bar."""
        self.click(self.width - CLOSE_BUTTON[0], CLOSE_BUTTON[1])

    def resize(self, width: int, height: int) -> None:
        """Draws the bottom right corner of the window to where it gets that size."""
        right, down = width - self.width, height - self.height
        with self.holding_corner():
            self.move_mouse(right, down)
        self.await_size(width, height)

    def await_size(self, width: int, height: int) -> None:
        """Waits until the window has that size."""
        await_condition(lambda: self._locate() == (width, height), f"{width} x {height} of {self.title!r}")

    def holding_corner(self) -> contextlib.AbstractContextManager[None]:
        """Within the block the bottom right corner of the window follows the mouse."""
        return self._holding(self.width - CORNER, self.height - CORNER)

    def holding_close_button(self) -> contextlib.AbstractContextManager[None]:
        """Presses the close button; at the end of the block it is let go."""
        return self._holding(self.width - CLOSE_BUTTON[0], CLOSE_BUTTON[1])

    @staticmethod
    def move_mouse(right: int, down: int) -> None:
        """Moves the mouse by so many pixels."""
        _xdotool("mousemove_relative", "--", str(right), str(down))

    def colour_count(self) -> int:
        """How many different colours there are in the window, below its title bar and within its frame."""
        return int(self._look("-format", "%k", "info:"))

    @staticmethod
    def type(text: str) -> None:
        """Types a text, key by key."""
        _xdotool("type", "--delay", "30", text)

    @staticmethod
    def press(*keys: str) -> None:
        """Presses keys, one after the other."""
        _xdotool("key", "--delay", "30", *keys)

    def _picture(self) -> bytes:
        return self._look("-depth", "8", "rgb:-")

    def _look(self, *output: str) -> bytes:
        area = f"{self.width - 20}x{self.height - 50}+{self.left + 10}+{self.top + 40}"
        return subprocess.run(["convert", "x:root", "-crop", area, *output], check=True, capture_output=True).stdout

    @contextlib.contextmanager
    def _holding(self, x: int, y: int) -> Iterator[None]:
        _xdotool("mousemove", str(self.left + x), str(self.top + y), "mousedown", "1")
        try:
            yield
        finally:
            _xdotool("mouseup", "1")

    def _locate(self) -> tuple[int, int]:
        answer = _xdotool("getwindowgeometry", "--shell", windows(self.title)[0])
        values = dict(line.split("=") for line in answer.split())
        self.left, self.top, self.width, self.height = (int(values[name]) for name in ("X", "Y", "WIDTH", "HEIGHT"))
        return self.width, self.height


def _xdotool(*arguments: str) -> str:
    return subprocess.run(["xdotool", *arguments], check=True, capture_output=True, text=True).stdout.strip()


def title_of_focus() -> str:
    """The title of the window that has the keyboard; empty where none has."""
    finished = subprocess.run(["xdotool", "getwindowfocus", "getwindowname"], capture_output=True, text=True)
    return finished.stdout.strip() if finished.returncode == 0 else ""


def windows(title: str) -> list[str]:
    """The ids of the visible windows with that title."""
    command = ["xdotool", "search", "--onlyvisible", "--name", f"^{re.escape(title)}$"]
    for _ in range(SEARCHES):
        finished = subprocess.run(command, capture_output=True, text=True)
        # A window that goes away while it is looked at ends the search.
        if "BadWindow" not in finished.stderr:
            break
    # 1 without a word means that there is none.
    if finished.returncode > 1 or finished.stderr:
        raise RuntimeError(f"the display cannot be searched: {finished.stderr}")
    return finished.stdout.split()
