// The end of the folder of Chromium's profile.
#include "testbed/legacy_control/profile_folder.h"

#include <filesystem>
#include <string>

#include <windows.h>

#include <gtest/gtest.h>

#include "testbed/chromium/launch.h"
#include "testbed/chromium/text.h"
#include "tests/support/message_pump.h"
#include "tests/support/native_process.h"

namespace legacy_control {
namespace {

/// Has the machine below run a script on the folder, and waits until the file `ready` is there.
void RunOn(const std::filesystem::path& folder, const std::wstring& script) {
    DWORD error = ERROR_SUCCESS;
    const std::string native = testbed::chromium::NativeFolder(folder.wstring(), error);
    ASSERT_FALSE(native.empty()) << error;
    test_support::RunNative(L"/bin/sh", L"-c \"cd '" + testbed::chromium::ToUtf16(native) + L"' && " + script + L"\"");
    ASSERT_TRUE(test_support::PumpUntil([&] { return std::filesystem::exists(folder / L"ready"); }));
}

TEST(Folder, GoesAlsoIfItIsWrittenToAMomentLonger) {
    auto folder = ProfileFolder::OfThisThread();
    const std::filesystem::path path = folder->Path();
    ASSERT_NO_FATAL_FAILURE(
        RunOn(path, L"touch ready; for i in $(seq 300); do touch $i; done"));
    folder.reset();
    EXPECT_FALSE(std::filesystem::exists(path));
}

TEST(Folder, GoesWithLinksToNowhere) {
    auto folder = ProfileFolder::OfThisThread();
    const std::filesystem::path path = folder->Path();
    ASSERT_NO_FATAL_FAILURE(RunOn(path, L"ln -s nowhere SingletonLock; touch ready"));
    folder.reset();
    EXPECT_FALSE(std::filesystem::exists(path));
}

} // namespace
} // namespace legacy_control
