"""The request log: one JSON object per line and request, complete in the file before the call returns."""

import json
import threading
from pathlib import Path
from typing import Any


class RequestLog:
    """Numbers requests from 1 and appends them to a file, or only numbers them; may be used on any thread."""

    def __init__(self, path: Path | None) -> None:
        """Opens the file for appending; raises OSError if that fails."""
        self._file = open(path, "ab", buffering=0) if path else None
        self._count = 0
        self._lock = threading.Lock()

    def append(self, entry: dict[str, Any]) -> None:
        """Appends one entry; the order of the numbers is the order of the lines."""
        with self._lock:
            self._count += 1
            if self._file:
                self._file.write(json.dumps({"number": self._count, **entry}).encode() + b"\n")
