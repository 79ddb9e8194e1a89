// The folder of Chromium's profile, with a file in it that stays open a moment longer, as processes of Chromium keep it.
#include "testbed/legacy_control/profile_folder.h"

#include <filesystem>
#include <thread>

#include <gtest/gtest.h>

#include <windows.h>

namespace legacy_control {
namespace {

constexpr DWORD kLateMilliseconds = 300;

TEST(Folder, GoesAlsoIfItIsInUseAMomentLonger) {
    auto folder = ProfileFolder::OfThisThread();
    const std::filesystem::path path = folder->Path();
    ASSERT_TRUE(std::filesystem::create_directory(path));
    HANDLE file = CreateFileW((path / L"late").c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW, 0, nullptr);
    ASSERT_NE(file, INVALID_HANDLE_VALUE);
    std::thread user([file] {
        Sleep(kLateMilliseconds);
        CloseHandle(file);
    });
    folder.reset();
    EXPECT_FALSE(std::filesystem::exists(path));
    user.join();
}

} // namespace
} // namespace legacy_control
