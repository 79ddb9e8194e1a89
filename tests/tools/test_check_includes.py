"""tools/check_includes.py: which missing #include it reports, and which uses it accepts."""

import contextlib
import io
import os
import pathlib
import sys
import tempfile
import unittest

sys.path.insert(0, str(pathlib.Path(__file__).parents[2] / "tools"))

import check_includes  # noqa: E402


class CheckIncludes(unittest.TestCase):
    def setUp(self) -> None:
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.addCleanup(os.chdir, os.getcwd())
        os.chdir(folder.name)

    def findings(self, **files: str) -> list[str]:
        """Checks files; the last "_" of each name stands for the dot."""
        pathlib.Path("src").mkdir(exist_ok=True)
        for name, text in files.items():
            pathlib.Path("src", ".".join(name.rsplit("_", 1))).write_text(text, "utf-8")
        output = io.StringIO()
        with contextlib.redirect_stdout(output):
            status = check_includes.main(["src"])
        found = output.getvalue().splitlines()
        self.assertEqual(status, 1 if found else 0)
        return found

    def test_a_standard_name_without_its_header_is_found_once(self) -> None:
        self.assertEqual(self.findings(a_cpp="\nstd::string a;\nstd::string b;\n"),
                         ["src/a.cpp:2: std::string needs #include <string>"])

    def test_a_standard_name_with_its_header_is_accepted(self) -> None:
        self.assertEqual(self.findings(a_cpp="#include <string>\nstd::string a;\n"), [])

    def test_a_header_of_ours_covers_what_it_includes_itself(self) -> None:
        self.assertEqual(self.findings(a_h="#include <string>\n", a_cpp='#include "a.h"\nstd::string a;\n'), [])

    def test_a_header_does_not_cover_what_its_own_headers_include(self) -> None:
        self.assertEqual(self.findings(a_h="#include <string>\n", b_h='#include "a.h"\n', b_cpp='#include "b.h"\nstd::string a;\n'),
                         ["src/b.cpp:2: std::string needs #include <string>"])

    def test_a_standard_name_that_the_table_lacks_is_found(self) -> None:
        self.assertEqual(self.findings(a_cpp="std::latch a;\n"), ["src/a.cpp:1: std::latch is not in tools/include_tables.py"])

    def test_comments_and_texts_use_nothing(self) -> None:
        self.assertEqual(self.findings(a_cpp='// std::string\n/* std::string */ auto a = "std::string";\n'
                                             'auto b = R"x(std::string " )x";\nint c = 1\'000;\n'), [])

    def test_lines_are_counted_behind_comments_and_raw_texts(self) -> None:
        self.assertEqual(self.findings(a_cpp='/*\n*/ auto b = R"(\n)";\nstd::string a;\n'),
                         ["src/a.cpp:4: std::string needs #include <string>"])

    def test_a_platform_name_is_covered_by_any_header_that_is_reached(self) -> None:
        self.assertEqual(self.findings(a_h="#include <windows.h>\n", b_h='#include "a.h"\n', b_cpp='#include "b.h"\nHWND a;\n',
                                       c_cpp="HWND a;\n"), ["src/c.cpp:1: HWND needs #include <windows.h>"])

    def test_a_matcher_needs_gmock(self) -> None:
        self.assertEqual(self.findings(a_cpp="#include <gtest/gtest.h>\nEXPECT_EQ(1, 1); EXPECT_THAT(1, 1);\n"),
                         ["src/a.cpp:2: EXPECT_THAT needs #include <gmock/gmock.h>"])

    def test_a_class_of_ours_without_its_header_is_found(self) -> None:
        header = "namespace kelda {\nclass Session {};\n}\n"
        use = "namespace kelda {\nSession* a;\n}\n"
        self.assertEqual(self.findings(session_h=header, a_cpp=use), ["src/a.cpp:2: Session needs #include of src/session.h"])
        self.assertEqual(self.findings(a_cpp='#include "session.h"\n' + use), [])
        self.assertEqual(self.findings(a_cpp="class Session;\n" + use), [])

    def test_a_name_of_a_namespace_that_the_file_does_not_mention_is_another_one(self) -> None:
        self.assertEqual(self.findings(session_h="namespace kelda {\nclass Session {};\n}\n",
                                       a_cpp="#include <windows.h>\nenum class Kind { Session };\nSession* a;\n"), [])

    def test_enumerators_members_and_names_of_test_groups_are_other_names(self) -> None:
        self.assertEqual(self.findings(session_h="namespace kelda {\nclass Session {};\n}\n",
                                       a_cpp="#include <gtest/gtest.h>\nusing namespace kelda;\nenum class Kind { Session };\n"
                                             "auto a = Kind::Session; auto b = c.Session;\nTEST(Session, Works) {}\n"), [])


if __name__ == "__main__":
    unittest.main()
