"""tools/tidy_batch.py with the real clang-tidy: mistakes planted in a batch are named by the file and the line of their source."""

import pathlib
import subprocess
import sys
import unittest

ROOT = pathlib.Path(__file__).parents[2]
# Below the repository, because .clang-tidy files inherit from the folders above the batch.
FOLDER = ROOT / "build" / "lint" / "planted" / "src"

HEADER = "#pragma once\n\nint Sum(int first, int second);\ninline int Answer() { int Wrong = 42; return Wrong; }\n"
CLEAN = '#include "planted.h"\n\nint Sum(int first, int second) { return first + second; }\n'
MISTAKES = """#include "planted.h"
#include "planted.h"
namespace planted {
class Kept {};
} // namespace planted
namespace alias = planted;
using planted::Kept;
namespace {
int Divide(int value) {
    int divisor = 0;
    if (value > 2) {
        divisor = 0;
    }
    return value / divisor;
}
} // namespace
int Use(int value) {
    int* nothing = 0;
    if (value) return 1;
    return Divide(value) + (nothing == nullptr ? 0 : 1);
}
"""


class TidyBatch(unittest.TestCase):
    def run_batch(self, configuration: str, **sources: str) -> str:
        FOLDER.mkdir(parents=True, exist_ok=True)
        (FOLDER / "planted.h").write_text(HEADER, "utf-8")
        paths = []
        for name, text in sources.items():
            paths.append(FOLDER / f"{name}.cpp")
            paths[-1].write_text(text, "utf-8")
        self.stamp = FOLDER.parent / "batch.stamp"
        self.stamp.unlink(missing_ok=True)
        command = [sys.executable, ROOT / "tools" / "tidy_batch.py", "--stamp", self.stamp, "--config", configuration,
                   "--compiler", "x86_64-w64-mingw32-g++-posix", "--flag=-std=c++20", *paths]
        done = subprocess.run([str(word) for word in command], cwd=ROOT, stdout=subprocess.PIPE, text=True, check=False)
        self.assertEqual(done.returncode, 0 if self.stamp.exists() else 1)
        return done.stdout

    def assert_found(self, output: str, *findings: tuple[str, str]) -> None:
        for place, check in findings:
            with self.subTest(place=place, check=check):
                lines = [line for line in output.splitlines() if line.startswith(f"{FOLDER}/{place}:") and check in line]
                self.assertTrue(lines, output)

    def test_checks_of_the_main_file_see_every_source(self) -> None:
        self.assert_found(self.run_batch(".clang-tidy", a_clean=CLEAN, b_mistakes=MISTAKES),
                          ("b_mistakes.cpp:2", "readability-duplicate-include"),
                          ("b_mistakes.cpp:6", "misc-unused-alias-decls"),
                          ("b_mistakes.cpp:7", "misc-unused-using-decls"),
                          ("b_mistakes.cpp:14", "clang-analyzer-core.DivideZero"),
                          ("b_mistakes.cpp:18", "modernize-use-nullptr"),
                          ("b_mistakes.cpp:19", "readability-braces-around-statements"),
                          ("planted.h:4", "readability-identifier-naming"))

    def test_a_clean_batch_gets_its_stamp_and_a_list_of_its_headers(self) -> None:
        output = self.run_batch("tests/.clang-tidy", a_clean=CLEAN, b_clean=CLEAN.replace("Sum", "Total"))
        self.assertEqual(output, "")
        self.assertTrue(self.stamp.exists())
        self.assertIn("planted.h", pathlib.Path(f"{self.stamp}.d").read_text("utf-8"))

    def test_a_finding_of_each_configuration_fails_the_step(self) -> None:
        for configuration in sorted(ROOT.glob("*/.clang-tidy")):
            with self.subTest(configuration.parent.name):
                output = self.run_batch(str(configuration.relative_to(ROOT)), b_mistakes=MISTAKES)
                self.assert_found(output, ("b_mistakes.cpp:18", "modernize-use-nullptr"))
                self.assertFalse(self.stamp.exists())


if __name__ == "__main__":
    unittest.main()
