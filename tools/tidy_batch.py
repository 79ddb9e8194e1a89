"""Runs clang-tidy once over several sources of a folder, because most of its time goes into system headers.

The sources are joined into one file. A file of #includes would be simpler, but the path analysis and some checks look at
the main file only. Each finding is printed with the file and the line of its source.
"""

import argparse
import bisect
import os
import pathlib
import re
import subprocess
import sys

# The macro ends a list of headers, because readability-duplicate-include starts anew after a definition.
SEPARATOR = "#define KELDA_LINT_SOURCE_{}\n"


def join(sources: list[str]) -> tuple[str, list[int]]:
    """Returns the text of all sources and the number of the line above each source."""
    lines: list[str] = []
    offsets = []
    for number, source in enumerate(sources):
        lines.append(SEPARATOR.format(number))
        offsets.append(len(lines))
        text = pathlib.Path(source).read_text("utf-8")
        lines += [line + "\n" for line in text.rstrip("\n").split("\n")]
    return "".join(lines), offsets


def name_sources(output: str, batch: str, sources: list[str], offsets: list[int]) -> str:
    """Replaces the places in the batch by the places in the sources."""

    def place(match: re.Match[str]) -> str:
        line = int(match[1])
        index = max(bisect.bisect_left(offsets, line) - 1, 0)
        return f"{sources[index]}:{line - offsets[index]}"

    return re.sub(re.escape(batch) + r":(\d+)", place, output)


def write_dependencies(compiler: str, flags: list[str], batch: str, stamp: str) -> None:
    subprocess.run([compiler, *flags, "-MM", "-MQ", stamp, "-MF", stamp + ".d", batch], check=True)


def main() -> int:
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--stamp", required=True, help="touched if there is no finding")
    parser.add_argument("--config", required=True, help="the .clang-tidy file of the sources")
    parser.add_argument("--compiler", required=True, help="the g++ of the target; lists the headers of the batch")
    parser.add_argument("--flag", action="append", default=[], help="a flag of g++ and of clang-tidy")
    parser.add_argument("--clang-flag", action="append", default=[], help="a flag of clang-tidy only")
    parser.add_argument("sources", nargs="+")
    arguments = parser.parse_args()

    batch = os.path.abspath(pathlib.Path(arguments.stamp).with_suffix(".cpp"))
    text, offsets = join(arguments.sources)
    pathlib.Path(batch).write_text(text, "utf-8")
    flags = [*arguments.flag, "-iquote", os.path.dirname(arguments.sources[0])]
    write_dependencies(arguments.compiler, flags, batch, arguments.stamp)
    tidy = subprocess.run(
        ["clang-tidy", "--quiet", f"--config-file={arguments.config}", batch, "--", *flags, *arguments.clang_flag],
        stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True, check=False)
    sys.stdout.write(name_sources(tidy.stdout, batch, arguments.sources, offsets))
    if tidy.returncode:
        sys.stdout.write(name_sources(tidy.stderr, batch, arguments.sources, offsets))
        return 1
    pathlib.Path(arguments.stamp).touch()
    return 0


if __name__ == "__main__":
    sys.exit(main())
