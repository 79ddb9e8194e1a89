// Devices of the reference toolkit as real windows: found, destroyed, closed, and every wrong use.
#include <windows.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <thread>

#include "host_reference/device.h"

namespace {

constexpr const char* kName = "Owner";
constexpr const wchar_t* kTitle = L"Gr\u00fc\u00df \u4e2d";

HWND NoWindow() {
    return reinterpret_cast<HWND>(std::intptr_t{-7});
}

int NativeWindow(const char* device, const char* component, HWND& window) {
    return ui_do_operation(device, component, kUiOperationGetNativeWindow, 0, &window, 0);
}

/// Has one device at first and none of its name afterwards.
class OwnerDevice : public ::testing::Test {
  protected:
    void SetUp() override {
        ASSERT_EQ(host_reference::CreateOwnerDevice(kName, kTitle), 0);
        ASSERT_EQ(NativeWindow(kName, kName, window_), 0);
    }
    void TearDown() override { host_reference::DestroyOwnerDevice(kName); }

    static void ExpectForgotten(const char* name) {
        HWND window = NoWindow();
        EXPECT_NE(NativeWindow(name, name, window), 0);
        EXPECT_EQ(window, NoWindow());
        EXPECT_NE(host_reference::DestroyOwnerDevice(name), 0);
    }

    HWND window_ = nullptr;
};

TEST_F(OwnerDevice, IsAVisibleTopLevelWindowOfTheCallingThread) {
    EXPECT_TRUE(IsWindow(window_));
    EXPECT_TRUE(IsWindowVisible(window_));
    EXPECT_EQ(GetAncestor(window_, GA_ROOT), window_);
    DWORD process = 0;
    EXPECT_EQ(GetWindowThreadProcessId(window_, &process), GetCurrentThreadId());
    EXPECT_EQ(process, GetCurrentProcessId());
}

TEST_F(OwnerDevice, HasTheGivenTitle) {
    std::wstring title(64, L'\0');
    title.resize(static_cast<std::size_t>(GetWindowTextW(window_, title.data(), 64)));
    EXPECT_EQ(title, kTitle);
}

TEST_F(OwnerDevice, HasTheDefaultSize) {
    RECT area = {};
    ASSERT_TRUE(GetWindowRect(window_, &area));
    EXPECT_EQ(area.right - area.left, 640);
    EXPECT_EQ(area.bottom - area.top, 480);
}

TEST_F(OwnerDevice, WithoutTitleHasAnEmptyOne) {
    ASSERT_EQ(host_reference::CreateOwnerDevice("Untitled", nullptr), 0);
    HWND window = nullptr;
    EXPECT_EQ(NativeWindow("Untitled", "Untitled", window), 0);
    EXPECT_EQ(GetWindowTextLengthW(window), 0);
    EXPECT_EQ(host_reference::DestroyOwnerDevice("Untitled"), 0);
}

TEST_F(OwnerDevice, SeveralAreToldApartByName) {
    ASSERT_EQ(host_reference::CreateOwnerDevice("Other", L"Other"), 0);
    HWND other = nullptr;
    HWND first = nullptr;
    EXPECT_EQ(NativeWindow("Other", "Other", other), 0);
    EXPECT_EQ(NativeWindow(kName, kName, first), 0);
    EXPECT_EQ(first, window_);
    EXPECT_NE(other, window_);

    EXPECT_EQ(host_reference::DestroyOwnerDevice("Other"), 0);
    EXPECT_FALSE(IsWindow(other));
    EXPECT_TRUE(IsWindow(window_));
    EXPECT_EQ(NativeWindow(kName, kName, first), 0);
}

struct WrongUseOfOwner {
    const char* device;
    const char* component;
    int operation;
};

TEST_F(OwnerDevice, WrongUseIsRefusedAndWritesNothing) {
    constexpr WrongUseOfOwner kWrongUses[] = {
        {"Unknown", "Unknown", kUiOperationGetNativeWindow},
        {"Unknown", kName, kUiOperationGetNativeWindow},
        {kName, "Unknown", kUiOperationGetNativeWindow},
        {"owner", "owner", kUiOperationGetNativeWindow},
        {"", "", kUiOperationGetNativeWindow},
        {nullptr, kName, kUiOperationGetNativeWindow},
        {kName, nullptr, kUiOperationGetNativeWindow},
        {kName, kName, kUiOperationGetNativeWindow + 1},
        {kName, kName, 0},
        {kName, kName, -1},
    };
    for (const WrongUseOfOwner& use : kWrongUses) {
        HWND window = NoWindow();
        EXPECT_NE(ui_do_operation(use.device, use.component, use.operation, 0, &window, 0), 0);
        EXPECT_EQ(window, NoWindow());
    }
    EXPECT_NE(ui_do_operation(kName, kName, kUiOperationGetNativeWindow, 0, nullptr, 0), 0);
}

TEST_F(OwnerDevice, NeedsANameOfItsOwn) {
    EXPECT_NE(host_reference::CreateOwnerDevice(nullptr, kTitle), 0);
    EXPECT_NE(host_reference::CreateOwnerDevice("", kTitle), 0);
    EXPECT_NE(host_reference::CreateOwnerDevice(kName, kTitle), 0);
    HWND window = nullptr;
    EXPECT_EQ(NativeWindow(kName, kName, window), 0);
    EXPECT_EQ(window, window_) << "the refused device must not take the name over";
}

TEST_F(OwnerDevice, DestroyedIsForgotten) {
    EXPECT_EQ(host_reference::DestroyOwnerDevice(kName), 0);
    EXPECT_FALSE(IsWindow(window_));
    ExpectForgotten(kName);
}

TEST_F(OwnerDevice, ClosedByItsUserIsForgotten) {
    SendMessageW(window_, WM_CLOSE, 0, 0);
    EXPECT_FALSE(IsWindow(window_));
    ExpectForgotten(kName);
}

TEST_F(OwnerDevice, NameIsFreeAgainAfterwards) {
    SendMessageW(window_, WM_CLOSE, 0, 0);
    EXPECT_EQ(host_reference::CreateOwnerDevice(kName, kTitle), 0);
    HWND window = nullptr;
    EXPECT_EQ(NativeWindow(kName, kName, window), 0);
    EXPECT_TRUE(IsWindow(window));
}

TEST_F(OwnerDevice, CannotBeDestroyedFromAnotherThread) {
    int result = 0;
    std::thread([&result] { result = host_reference::DestroyOwnerDevice(kName); }).join();
    EXPECT_NE(result, 0);
    EXPECT_TRUE(IsWindow(window_));
    HWND window = nullptr;
    EXPECT_EQ(NativeWindow(kName, kName, window), 0);
}

TEST_F(OwnerDevice, DestroyingNoneIsRefused) {
    EXPECT_NE(host_reference::DestroyOwnerDevice(nullptr), 0);
    EXPECT_NE(host_reference::DestroyOwnerDevice("Unknown"), 0);
    EXPECT_TRUE(IsWindow(window_));
}

} // namespace
