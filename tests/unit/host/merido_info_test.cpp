// What the reference host says of itself, from its two environment variables and the program's file name.
#include "dp/merido_info.h"

#include <gtest/gtest.h>

#include "tests/support/scoped_variable.h"

namespace {

using test_support::ScopedVariable;

constexpr const wchar_t* kApplicationName = L"MERIDO_APPLICATION_NAME";
constexpr const wchar_t* kLocalPrefsDir = L"MERIDO_USER_PREFS_LOCAL_DIR";

TEST(MeridoInfo, ApplicationNameIsTheProgramsFileNameWithoutExtension) {
    const ScopedVariable variable(kApplicationName, nullptr);
    EXPECT_EQ(dp::MeridoInfo::GetApplicationName(), "host_utility_test");
}

TEST(MeridoInfo, ApplicationNameFromTheEnvironmentComesFirst) {
    const ScopedVariable variable(kApplicationName, L"Gr\u00fc\u00dfer 2.0");
    EXPECT_EQ(dp::MeridoInfo::GetApplicationName(), "Gr\xc3\xbc\xc3\x9f"
                                                    "er 2.0");
}

TEST(MeridoInfo, UserPrefsDirComesFromTheEnvironment) {
    const ScopedVariable variable(kLocalPrefsDir, L"C:\\users\\gr\u00fc\u00df\\prefs");
    std::string directory;
    EXPECT_TRUE(dp::MeridoInfo::GetMeridoUserPrefsLocalDir(directory));
    EXPECT_EQ(directory, "C:\\users\\gr\xc3\xbc\xc3\x9f\\prefs");
}

TEST(MeridoInfo, HostWithoutUserPrefsDirLeavesTheResultUntouched) {
    const ScopedVariable variable(kLocalPrefsDir, nullptr);
    std::string directory = "untouched";
    EXPECT_FALSE(dp::MeridoInfo::GetMeridoUserPrefsLocalDir(directory));
    EXPECT_EQ(directory, "untouched");
}

} // namespace
