// Path composition, and the folder for temporary files against the system's answer.
#include "du/file_system.h"

#include <windows.h>

#include <gtest/gtest.h>

#include "du/string_utilities.h"
#include "tests/support/scoped_variable.h"

namespace {

std::string PathOf(const std::string& location, const std::vector<std::string>& directories = {}) {
    du::FileSpec path;
    path.SetLocation(location);
    for (const std::string& directory : directories) {
        path.PushDirectory(directory);
    }
    return path.GetPath();
}

TEST(FileSpec, IsEmptyAtFirst) {
    EXPECT_EQ(du::FileSpec().GetPath(), "");
}

TEST(FileSpec, DropsTrailingSeparatorsOfTheLocation) {
    EXPECT_EQ(PathOf("C:\\users\\one"), "C:\\users\\one");
    EXPECT_EQ(PathOf("C:\\users\\one\\"), "C:\\users\\one");
    EXPECT_EQ(PathOf("C:/users/one//"), "C:/users/one");
}

TEST(FileSpec, KeepsTheSeparatorOfARoot) {
    EXPECT_EQ(PathOf("C:\\"), "C:\\");
    EXPECT_EQ(PathOf("C:\\\\"), "C:\\");
    EXPECT_EQ(PathOf("C:/"), "C:/");
    EXPECT_EQ(PathOf("\\"), "\\");
}

TEST(FileSpec, JoinsDirectoriesWithOneBackslash) {
    EXPECT_EQ(PathOf("C:\\temp", {"norv", "zanwbe", "viewer"}), "C:\\temp\\norv\\zanwbe\\viewer");
    EXPECT_EQ(PathOf("C:\\temp\\", {"norv"}), "C:\\temp\\norv");
    EXPECT_EQ(PathOf("C:\\", {"norv"}), "C:\\norv");
    EXPECT_EQ(PathOf("C:\\gr\xc3\xbc\xc3\x9f", {"\xe4\xb8\xad"}), "C:\\gr\xc3\xbc\xc3\x9f\\\xe4\xb8\xad");
}

TEST(FileSpec, EmptyDirectoryChangesNothing) {
    EXPECT_EQ(PathOf("C:\\temp", {""}), "C:\\temp");
}

TEST(FileSpec, DirectoriesWithoutALocationMakeARelativePath) {
    EXPECT_EQ(PathOf("", {"norv", "zanwbe"}), "norv\\zanwbe");
}

TEST(FileSpec, NewLocationStartsOver) {
    du::FileSpec path;
    path.SetLocation("C:\\one");
    path.PushDirectory("two");
    path.SetLocation("D:\\three");
    EXPECT_EQ(path.GetPath(), "D:\\three");
}

TEST(FileSystem, TempDirIsTheSystemsWithoutTrailingSeparator) {
    std::wstring path(MAX_PATH + 1, L'\0');
    path.resize(GetTempPathW(static_cast<DWORD>(path.size()), path.data()));
    ASSERT_EQ(path.back(), L'\\');
    path.pop_back();
    EXPECT_EQ(du::FileSystem::GetTempDir(), du::WideStrToUtf8(path));
}

TEST(FileSystem, TempDirFollowsTheEnvironmentInUtf8) {
    const test_support::ScopedVariable temp(L"TMP", L"C:\\gr\u00fc\u00df\\temp");
    EXPECT_EQ(du::FileSystem::GetTempDir(), "C:\\gr\xc3\xbc\xc3\x9f\\temp");
}

} // namespace
