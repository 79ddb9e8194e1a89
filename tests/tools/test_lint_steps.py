"""tools/lint_steps.py: which sources share a batch, and which flags a source gets."""

import json
import pathlib
import sys
import tempfile
import unittest

sys.path.insert(0, str(pathlib.Path(__file__).parents[2] / "tools"))

import lint_steps  # noqa: E402
from lint_steps import Compilation  # noqa: E402


def entry(target: str, flag: str, source: str) -> dict[str, str]:
    path = lint_steps.ROOT / source
    return {"file": str(path), "command": f"launcher g++ {flag} -o src/CMakeFiles/{target}.dir/x.obj -c {path}"}


class Batches(unittest.TestCase):
    def compilations(self, *entries: dict[str, str]) -> dict[str, Compilation]:
        with tempfile.TemporaryDirectory() as folder:
            pathlib.Path(folder, "compile_commands.json").write_text(json.dumps(entries), "utf-8")
            compiler, compilations = lint_steps.read_compilations(pathlib.Path(folder))
        self.assertEqual(compiler, "g++")
        return compilations

    def test_a_source_of_two_targets_gets_the_one_with_more_sources_of_its_folder(self) -> None:
        found = self.compilations(entry("few", "-DFEW", "src/a/x.cpp"), entry("many", "-DMANY", "src/a/x.cpp"),
                                  entry("many", "-DMANY", "src/a/y.cpp"), entry("few", "-DFEW", "src/b/x.cpp"))
        self.assertEqual({name: compilation.target for name, compilation in found.items()},
                         {"src/a/x.cpp": "many", "src/a/y.cpp": "many", "src/b/x.cpp": "few"})

    def test_only_sources_of_the_project_are_taken(self) -> None:
        found = self.compilations(entry("objects", "-DX", "src/x.cpp"), entry("objects", "-DX", "src/x.rc"),
                                  entry("gtest", "-DX", "build/lint/x.cpp"), entry("gtest", "-DX", "../googletest/x.cpp"))
        self.assertEqual(found, {"src/x.cpp": Compilation("objects", "-DX")})

    def test_a_batch_has_one_folder_and_one_target(self) -> None:
        found = {name: Compilation(target, "-DX") for name, target in
                 (("src/a/x.cpp", "one"), ("src/a/y.cpp", "two"), ("src/a/z.cpp", "one"), ("src/b/x.cpp", "one"))}
        self.assertEqual(lint_steps.batches(found), [("src/a/one_1", "-DX", ["src/a/x.cpp", "src/a/z.cpp"]),
                                                     ("src/a/two_1", "-DX", ["src/a/y.cpp"]),
                                                     ("src/b/one_1", "-DX", ["src/b/x.cpp"])])

    def test_a_large_folder_is_divided_evenly(self) -> None:
        count = lint_steps.SOURCES_A_BATCH + 2
        found = {f"src/{index:02}.cpp": Compilation("one", "") for index in range(count)}
        sizes = [len(sources) for _, _, sources in lint_steps.batches(found)]
        self.assertEqual(sizes, [count // 2, count // 2])


if __name__ == "__main__":
    unittest.main()
