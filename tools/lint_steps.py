"""Writes the steps of the linters as a file for Ninja: lint/steps.ninja in the build folder.

Each step has a stamp, which is touched only if the step has no finding. So a later run repeats the steps with findings, the
steps whose files have changed, and the steps that an interrupted run did not reach.
"""

import argparse
import collections
import json
import pathlib
import re
import shlex
import sys
import typing
import zlib

ROOT = pathlib.Path(__file__).resolve().parent.parent
ROOMS = ("include", "src", "host", "webview2", "testbed", "tests")
SHIPPED = ("src/", "host/")
SOURCES_A_BATCH = 12

TARGET = re.compile(r"CMakeFiles/([^/]+)\.dir/")
# g++'s own headers are replaced by clang's.
COMPILER_HEADERS = re.compile(r"/lib/gcc/[^/]+/[^/]+/include(-fixed)?$")

CPPCHECK = ("cppcheck --quiet --error-exitcode=1 --platform=win64 --library=windows --library=googletest --std=c++20"
            " --language=c++ --inline-suppr --enable=warning,performance,portability --suppress=missingIncludeSystem")


class Steps:
    """The text of the Ninja file. Its commands are run in the repository's top folder."""

    def __init__(self, folder: pathlib.Path) -> None:
        self.folder = folder
        self.stamps: dict[str, list[str]] = collections.defaultdict(list)
        self.lines = ["ninja_required_version = 1.8", f"builddir = {folder}",
                      "rule step", "  command = $run", "  description = $out"]

    def add(self, linter: str, name: str, command: str, files: list[str], makes_depfile: bool = False) -> None:
        """Adds a step. `{stamp}` in the command is replaced by the stamp's path. A step with a depfile touches its stamp itself."""
        stamp = self.folder / linter / f"{name}.stamp"
        stamp.parent.mkdir(parents=True, exist_ok=True)
        command = command.format(stamp=shlex.quote(str(stamp)))
        if not makes_depfile:
            command += f" && touch {shlex.quote(str(stamp))}"
        self.lines += [f"build {escape(str(stamp))}: step {' '.join(escape(file) for file in files)}",
                       f"  run = {command.replace('$', '$$')}"]
        if makes_depfile:
            self.lines += [f"  depfile = {stamp}.d", "  deps = gcc"]
        self.stamps[linter].append(escape(str(stamp)))

    def write(self) -> None:
        targets = [f"build {linter}: phony {' '.join(stamps)}" for linter, stamps in self.stamps.items()]
        text = "\n".join([*self.lines, *targets, ""])
        (self.folder / "steps.ninja").write_text(text, "utf-8")


def escape(path: str) -> str:
    return re.sub(r"([$: ])", r"$\1", path)


def find(*patterns: str, rooms: tuple[str, ...] = ROOMS) -> list[str]:
    return sorted(str(path.relative_to(ROOT)) for room in rooms for pattern in patterns for path in (ROOT / room).rglob(pattern))


def by_folder(files: list[str]) -> dict[str, list[str]]:
    folders: dict[str, list[str]] = collections.defaultdict(list)
    for file in files:
        folders[str(pathlib.Path(file).parent)].append(file)
    return folders


class Compilation(typing.NamedTuple):
    """How a source is compiled. Sources of one target define `main` only once."""

    target: str
    flags: str


def read_compilations(build: pathlib.Path) -> tuple[str, dict[str, Compilation]]:
    """Returns the compiler, and the compilation of each source. For a source of several targets, the target is chosen that
    has the most sources of its folder."""
    choices: dict[str, list[Compilation]] = collections.defaultdict(list)
    frequency: collections.Counter[tuple[str, Compilation]] = collections.Counter()
    compiler = ""
    for entry in json.loads((build / "compile_commands.json").read_text("utf-8")):
        source = pathlib.Path(entry["file"])
        if source.suffix != ".cpp" or not any(source.is_relative_to(ROOT / room) for room in ROOMS):
            continue
        words = shlex.split(entry["command"])
        first_flag = next(index for index, word in enumerate(words) if word.startswith("-"))
        compiler = words[first_flag - 1]
        output = words.index("-o")
        compilation = Compilation(TARGET.search(words[output + 1])[1], shlex.join(words[first_flag:output]))
        name = str(source.relative_to(ROOT))
        choices[name].append(compilation)
        frequency[str(pathlib.Path(name).parent), compilation] += 1
    return compiler, {
        name: max(compilations, key=lambda choice, name=name: frequency[str(pathlib.Path(name).parent), choice])
        for name, compilations in choices.items()
    }


def batches(compilations: dict[str, Compilation]) -> list[tuple[str, str, list[str]]]:
    """Returns name, flags and sources of each batch: sources of one folder and one target."""
    groups: dict[tuple[str, Compilation], list[str]] = collections.defaultdict(list)
    for name in sorted(compilations):
        groups[str(pathlib.Path(name).parent), compilations[name]].append(name)
    result = []
    for (folder, compilation), names in groups.items():
        count = -(-len(names) // SOURCES_A_BATCH)
        for index in range(count):
            result.append((f"{folder}/{compilation.target}_{index + 1}", compilation.flags, names[index::count]))
    return result


def configurations(folder: pathlib.Path) -> list[str]:
    """Returns the .clang-tidy files of a folder, the nearest one first."""
    folders = [folder, *folder.parents]
    return [str(path / ".clang-tidy") for path in folders[: folders.index(ROOT) + 1] if (path / ".clang-tidy").exists()]


def add_tidy(steps: Steps, compiler: str, compilations: dict[str, Compilation], system_headers: list[str]) -> None:
    clang_flags = ["--target=x86_64-w64-mingw32", "-Wno-unknown-warning-option"]
    clang_flags += [f"-isystem{folder}" for folder in system_headers if not COMPILER_HEADERS.search(folder)]
    clang = shlex.join(f"--clang-flag={flag}" for flag in clang_flags)
    self_test = ["tests/lint/test_tidy_batch.py", "tools/tidy_batch.py", ".clang-tidy",
                 *sorted(str(path.relative_to(ROOT)) for path in ROOT.glob("*/.clang-tidy"))]
    steps.add("lint-tidy", "self_test", "python3 -B -m unittest tests.lint.test_tidy_batch", self_test)
    for name, flags, sources in batches(compilations):
        used = configurations((ROOT / sources[0]).parent)
        words = shlex.join(f"--flag={flag}" for flag in shlex.split(flags))
        steps.add("lint-tidy", name,
                  f"python3 tools/tidy_batch.py --stamp {{stamp}} --config {shlex.quote(used[0])} --compiler {compiler} {words} {clang} "
                  + shlex.join(sources), sources + used, makes_depfile=True)


def add_alone(steps: Steps, compiler: str, compilations: dict[str, Compilation]) -> None:
    for source, (_, flags) in compilations.items():
        # Some warnings come only with the optimisation, and matter where the result is shipped.
        kind = "-c -o /dev/null" if source.startswith(SHIPPED) else "-fsyntax-only"
        steps.add("lint-alone", source,
                  f"{compiler} {flags} {kind} -MMD -MQ {{stamp}} -MF {{stamp}}.d {shlex.quote(source)} && touch {{stamp}}",
                  [source], makes_depfile=True)


def add_texts(steps: Steps) -> None:
    """Adds the linters that need no flags of the compiler."""
    files = find("*.cpp", "*.h")
    for folder, names in by_folder(files).items():
        steps.add("lint-format", folder, "clang-format --dry-run -Werror " + shlex.join(names), [*names, ".clang-format"])
        sources = [name for name in names if name.endswith(".cpp")]
        if sources:
            # Without -I, cppcheck reads the headers of the source's own folder only.
            steps.add("lint-cppcheck", folder, f"{CPPCHECK} {shlex.join(sources)}", names)
    modules = find("*.py", rooms=(*ROOMS, "tools"))
    steps.add("lint-scripts", "python", "pyflakes3 " + shlex.join(modules), modules)
    scripts = sorted(path.name for path in ROOT.glob("*.sh"))
    scripts += ["tools/common.sh", "tools/run-in-wine", ".ci/run"]
    steps.add("lint-scripts", "shell", "shellcheck -x " + shlex.join(scripts), scripts)
    includes = ["tools/check_includes.py", "tools/include_tables.py"]
    # The number stands for the list of files, so that the step also runs when one has been moved or removed.
    listed = zlib.crc32("\n".join(files).encode())
    steps.add("lint-includes", "rooms", f"python3 -B {includes[0]} {' '.join(ROOMS)} # {listed}", [*files, *includes])


def main() -> int:
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("build", type=pathlib.Path, help="the configured build folder, with compile_commands.json")
    parser.add_argument("--system-headers", default="", help="the compiler's own header folders, separated by semicolons")
    arguments = parser.parse_args()
    build = arguments.build.resolve()
    compiler, compilations = read_compilations(build)
    steps = Steps(build / "lint")
    add_texts(steps)
    add_tidy(steps, compiler, compilations, [folder for folder in arguments.system_headers.split(";") if folder])
    add_alone(steps, compiler, compilations)
    steps.write()
    return 0


if __name__ == "__main__":
    sys.exit(main())
