"""Checks that each source and header includes what it uses: the standard library, the platform, and the project's own names.

Unity files and precompiled headers hide a missing #include from the build. A name of the standard library is covered by the
file's own #includes and by those of the project's headers that it includes. Names of the platform and of the project are
covered by any header that is reached. Prints "FILE:LINE: ..." for the first use of each name that is not covered.
"""

import pathlib
import re
import sys
from collections.abc import Iterator

from include_tables import ALWAYS_THERE, GENERATED, PATTERNS, STANDARD

# More levels of #includes than the project has.
DEEPEST = 20
# The headers in this folder have names of the platform's headers.
STAND_IN_FOR_THE_PLATFORM = "tests/native/platform"

INCLUDE = re.compile(r'^[ \t]*#[ \t]*include[ \t]*(["<])([^">]+)[">]', re.MULTILINE)
NUMBER_TEXT_OR_COMMENT = re.compile(
    r"""(?P<number>\b\d[\w.']*)|R"(?P<mark>[^(\s]*)\(.*?\)(?P=mark)"|"(?:\\.|[^"\\\n])*"|'(?:\\.|[^'\\\n])*'"""
    r"""|//[^\n]*|/\*.*?\*/""", re.DOTALL)
STANDARD_NAME = re.compile(r"\bstd::((?:ranges|chrono|filesystem|numbers)\b|\w+)")
# A definition or an alias that starts in the first column: a name of a namespace, not a member.
DEFINITION = re.compile(
    r"^(?:(?:class|struct|enum(?: class)?)(?: [A-Z]+_[A-Z_]+)? (?P<type>[A-Z]\w+)\b(?! *;)|using (?P<alias>[A-Z]\w+) =)",
    re.MULTILINE)
NAMESPACE = re.compile(r"^(?:inline )?namespace (?:\w+::)*(\w+) \{", re.MULTILINE)
DECLARED = re.compile(r"\b(?:class|struct|enum class|enum|using)(?: [A-Z]+_[A-Z_]+)? ([A-Z]\w+)\b")
OWN_NAME = re.compile(r"(?<![.>\w:])(?:\w+::)*?(?:(?P<scope>\w+)::)?(?P<name>[A-Z]\w+)\b(?!\(|::)")
# Words that may equal a name of ours: enumerators, and the name of a group of tests.
NOT_A_USE = re.compile(r"\benum (?:class )?\w+[^{;]*\{[^}]*\}|\bTEST\(\w+,")


class File:
    """A source or a header, with its #includes and its text without comments and literals."""

    def __init__(self, path: pathlib.Path) -> None:
        self.path = path
        text = path.read_text("utf-8")
        self.includes = [name for _, name in INCLUDE.findall(text)]
        self.code = NUMBER_TEXT_OR_COMMENT.sub(blank, text)

    def line(self, position: int) -> int:
        return self.code.count("\n", 0, position) + 1


def blank(match: re.Match[str]) -> str:
    return match[0] if match["number"] else '""' + "\n" * match[0].count("\n")


class Tree:
    """All files of the project, and the headers that declare its names."""

    def __init__(self, paths: list[pathlib.Path]) -> None:
        self.files = {path: File(path) for path in paths}
        self.headers: dict[str, list[pathlib.Path]] = {}
        for path in paths:
            if path.suffix == ".h":
                self.headers.setdefault(path.name, []).append(path)
        # Each name of ours: the headers that define it, and the last part of its namespace.
        self.definitions: dict[str, set[tuple[pathlib.Path, str]]] = {}
        for path, file in self.files.items():
            for match in DEFINITION.finditer(file.code) if path.suffix == ".h" else ():
                scope = NAMESPACE.findall(file.code, 0, match.start())
                self.definitions.setdefault(match["type"] or match["alias"], set()).add((path, scope[-1] if scope else ""))

    def resolve(self, includer: pathlib.Path, name: str) -> list[pathlib.Path]:
        """Returns the project's headers that an #include may mean; none for a header of the system."""
        name = GENERATED.get(name, name)
        beside = includer.parent / name
        if beside in self.files:
            return [beside]
        return [path for path in self.headers.get(name.rpartition("/")[2], []) if f"/{path.as_posix()}".endswith("/" + name)]

    def covering(self, file: File, depth: int) -> tuple[set[str], set[pathlib.Path]]:
        """Returns the names of the #includes of a file and, down to a depth, of the project's headers it includes. The second
        result is these headers."""
        names = set(file.includes)
        paths: set[pathlib.Path] = set()
        level = [file]
        for _ in range(depth):
            reached = {path for includer in level for name in includer.includes for path in self.resolve(includer.path, name)}
            level = [self.files[path] for path in reached - paths]
            paths |= reached
            names.update(name for header in level for name in header.includes)
        return names, paths


def missing_standard(file: File, names: set[str]) -> Iterator[tuple[int, str]]:
    for match in STANDARD_NAME.finditer(file.code):
        headers = STANDARD.get(match[1])
        if match[1] in ALWAYS_THERE:
            continue
        if headers is None:
            yield match.start(), f"std::{match[1]} is not in tools/include_tables.py"
        elif names.isdisjoint(headers):
            yield match.start(), f"std::{match[1]} needs #include <{headers[0]}>"


def missing_platform(file: File, names: set[str]) -> Iterator[tuple[int, str]]:
    for pattern, headers in PATTERNS:
        match = pattern.search(file.code)
        if match and names.isdisjoint(headers):
            yield match.start(), f"{match[0]} needs #include <{headers[0]}>"


def missing_own(tree: Tree, file: File, paths: set[pathlib.Path]) -> Iterator[tuple[int, str]]:
    """Leaves out a name that several headers define, a name that the file or a reached header declares, and a name of a
    namespace that the file does not mention."""
    declared = {name for path in paths | {file.path} for name in DECLARED.findall(tree.files[path].code)}
    code = NOT_A_USE.sub(lambda match: re.sub(r"[^\n]", " ", match[0]), file.code)
    for match in OWN_NAME.finditer(code):
        places = tree.definitions.get(match["name"], set())
        if len(places) != 1 or match["name"] in declared:
            continue
        header, scope = next(iter(places))
        if match["scope"] not in (None, scope):
            continue
        if not scope or re.search(rf"\b{scope}::|\bnamespace (?:\w+::)*{scope}\b", file.code):
            yield match.start(), f"{match['name']} needs #include of {header.as_posix()}"


def findings(tree: Tree, file: File) -> Iterator[str]:
    near_names, _ = tree.covering(file, depth=1)
    all_names, all_paths = tree.covering(file, depth=DEEPEST)
    checks = (missing_standard(file, near_names), missing_platform(file, all_names), missing_own(tree, file, all_paths))
    seen: set[str] = set()
    for check in checks:
        for position, text in check:
            if text not in seen:
                seen.add(text)
                yield f"{file.path}:{file.line(position)}: {text}"


def read(folders: list[str]) -> Tree:
    paths = (path for folder in folders for path in pathlib.Path(folder).rglob("*") if path.suffix in (".cpp", ".h"))
    return Tree(sorted(path for path in paths if not path.is_relative_to(STAND_IN_FOR_THE_PLATFORM)))


def main(folders: list[str]) -> int:
    tree = read(folders)
    found = [finding for file in tree.files.values() for finding in findings(tree, file)]
    print("\n".join(found), end="\n" if found else "")
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
