"""What Wine itself says when a program ends. At that point one of its threads closes the process' connection to the Wine server
while another still uses it."""

import os
import re

_PREFIX = r"wine client error:[0-9a-f]+: "
_CALL = r"(?:sendmsg|recvmsg|read|write|wakeup read|wakeup write|pipe)"
_ERROR = (r"(?:Bad file descriptor|Socket operation on non-socket|Transport endpoint is not connected"
          r"|Connection reset by peer|Resource temporarily unavailable|Invalid argument|Operation not supported)")
_PARTIAL = r"(?:partial write|partial wakeup write|partial wakeup read) \d+"
# Prefix and text are written separately, so either may stand alone or twice.
_LINE = re.compile(rf"^(?:(?:{_PREFIX})+(?:{_CALL}: {_ERROR}|{_PARTIAL})?|(?:sendmsg|recvmsg): {_ERROR})(?:\n|\Z)", re.MULTILINE)


def without_noise(text: str) -> str:
    """The text without those lines. They are appended to the file that KELDA_TEST_NOISE names, for the results of the run."""
    noise = [match[0] for match in _LINE.finditer(text)]
    file = os.environ.get("KELDA_TEST_NOISE")
    if noise and file:
        with open(file, "a", encoding="utf-8") as output:
            output.writelines(f"{line.rstrip()}\n" for line in noise)
    return _LINE.sub("", text)
