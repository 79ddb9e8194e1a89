"""A small client for a real browser: Chromium without a window, spoken to over its DevTools pipe."""

import json
import os
import select
import subprocess
import tempfile
import time
from collections.abc import Callable
from pathlib import Path
from typing import Any

DEADLINE_SECONDS = 60
POLL_SECONDS = 0.02
# Chromium reads commands from 3 and writes to 4.
ITS_READING_END, ITS_WRITING_END = 3, 4

# What a viewer's browser gives to its pages; here it counts.
HOST_OBJECT = "var reports = 0; window.external.norv = () => { reports += 1; };"


class CommandFailed(Exception):
    """The browser answered a command with an error, which is the text."""


class Browser:
    """A context manager around one Chromium with a profile of its own; a home of one's own is optional."""

    def __init__(self, home: Path | None = None) -> None:
        self._environment = {**os.environ, **({"HOME": str(home)} if home else {})}
        self._received = b""
        self._last_id = 0
        self.events: list[dict[str, Any]] = []

    def __enter__(self) -> "Browser":
        self._profile = tempfile.TemporaryDirectory(prefix="browser-profile-")
        command = ["/usr/bin/chromium", "--headless=new", "--disable-gpu", "--no-first-run", "--remote-debugging-pipe",
                   "--disable-background-networking", "--disable-popup-blocking",
                   f"--user-data-dir={self._profile.name}", *(["--no-sandbox"] if os.geteuid() == 0 else [])]
        its_commands, self._commands = os.pipe()
        self._answers, its_answers = os.pipe()

        def place_pipes() -> None:
            # By way of high numbers: either may have 3 or 4 itself.
            os.dup2(os.dup2(its_commands, 100), ITS_READING_END)
            os.dup2(os.dup2(its_answers, 101), ITS_WRITING_END)

        self._process = subprocess.Popen(command, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                                         stderr=subprocess.DEVNULL, env=self._environment, close_fds=False,
                                         preexec_fn=place_pipes)
        os.close(its_commands)
        os.close(its_answers)
        return self

    def __exit__(self, *_: object) -> None:
        try:
            self.call("Browser.close")
            # All its processes have its stdout: at the end of that they are gone, and no longer use the profile.
            self._process.communicate(timeout=DEADLINE_SECONDS)
        finally:
            self._process.kill()
            self._process.communicate()
            os.close(self._commands)
            os.close(self._answers)
            self._profile.cleanup()

    def call(self, method: str, session: str | None = None, **parameters: Any) -> dict[str, Any]:
        """Gives a command, to the browser or to the page of a session, and returns its result."""
        self._last_id += 1
        message = {"id": self._last_id, "method": method, "params": parameters,
                   **({"sessionId": session} if session else {})}
        os.write(self._commands, json.dumps(message).encode() + b"\0")
        while (answer := self._next_message()).get("id") != self._last_id:
            self.events.append(answer)
        if "error" in answer:
            raise CommandFailed(f"{method}: {answer['error']}")
        return answer["result"]

    def await_event(self, method: str) -> dict[str, Any]:
        """The parameters of the next event of that name; those before it are dropped."""
        while True:
            event = self.events.pop(0) if self.events else self._next_message()
            if event.get("method") == method:
                return event["params"]

    def await_target(self, kind: str, url: str) -> str:
        """The target of that kind (page, iframe) at that address, as soon as there is one."""
        # It keeps its name, whereas the address of a new window may change to that of an empty page once more.
        return await_condition(lambda: self._targets(kind, url), f"a {kind} at {url}")[0]

    def _targets(self, kind: str, url: str) -> list[str]:
        return [target["targetId"] for target in self.call("Target.getTargets")["targetInfos"]
                if (target["type"], target["url"]) == (kind, url)]

    def _next_message(self) -> dict[str, Any]:
        while b"\0" not in self._received:
            if not select.select([self._answers], [], [], DEADLINE_SECONDS)[0]:
                raise TimeoutError("the browser does not answer")
            piece = os.read(self._answers, 65536)
            if not piece:
                raise ConnectionError("the browser is gone")
            self._received += piece
        message, _, self._received = self._received.partition(b"\0")
        return json.loads(message)


class Page:
    """A page in a browser, a new one or that of a target. It has a host object that counts the reports to it."""

    def __init__(self, browser: Browser, target: str | None = None) -> None:
        self.browser = browser
        target = target or browser.call("Target.createTarget", url="about:blank")["targetId"]
        self._session = browser.call("Target.attachToTarget", targetId=target, flatten=True)["sessionId"]
        for domain in ("Page", "Runtime", "Network"):
            self.call(f"{domain}.enable")
        self.call("Page.addScriptToEvaluateOnNewDocument", source=HOST_OBJECT)

    def call(self, method: str, **parameters: Any) -> dict[str, Any]:
        """Gives a command to the page."""
        return self.browser.call(method, self._session, **parameters)

    def go(self, url: str) -> str:
        """Navigates there; the result is the error's name, empty without one."""
        return self.call("Page.navigate", url=url).get("errorText", "")

    def value(self, expression: str) -> Any:
        """What an expression of a script is worth in the page."""
        return self.call("Runtime.evaluate", expression=expression, returnByValue=True)["result"].get("value")

    def await_page(self, name: str) -> None:
        """Waits until the page of that name is there and its scripts have run."""
        await_condition(lambda: self._name_when_complete() == name, f"the page {name!r}")

    def fill_in(self) -> None:
        """Logs in by the form, which is there."""
        self.value("""{
            const form = document.forms[0];
            form.user.value = "anna";
            form.password.value = "kelda-demo";
            form.submit();
        }""")

    def _name_when_complete(self) -> str | None:
        try:
            return self.value("document.readyState === 'complete' ? document.title : null")
        except CommandFailed:
            # One page has gone and the next is not there yet.
            return None


def await_condition(condition: Callable[[], Any], what: str) -> Any:
    """Waits until the condition holds and returns what it is; fails if it does not hold by the deadline."""
    deadline = time.monotonic() + DEADLINE_SECONDS
    while not (result := condition()):
        if time.monotonic() > deadline:
            raise AssertionError(f"waited in vain for {what}")
        time.sleep(POLL_SECONDS)
    return result
