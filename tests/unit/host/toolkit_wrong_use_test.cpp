// Names, components and actions that there are not, and calls in the wrong order: refused, and nothing comes of them.
#include <windows.h>

#include <atomic>
#include <map>
#include <string>
#include <thread>

#include <gtest/gtest.h>

#include "tests/support/message_pump.h"
#include "toolkit_scene.h"

namespace {

using host_test::Entries;
using host_test::kDialog;
using host_test::kOwner;

class WrongUse : public host_test::ToolkitTest {
  protected:
    static int DoNothing(void* /*context*/) { return 0; }
};

TEST_F(WrongUse, OfNamesIsRefused) {
    Manage();
    for (const char* device : {static_cast<const char*>(nullptr), "", "Unknown", "dialog", kOwner}) {
        HWND window = nullptr;
        EXPECT_NE(ui_modify(device, device, kUiAttributeTitle, L"title", 0), 0);
        EXPECT_NE(ui_add_action(device, device, kUiActionClose, &DoNothing, nullptr, 0), 0);
        EXPECT_NE(ui_set_action(device, device, kUiActionClose, &DoNothing, nullptr, 0), 0);
        EXPECT_NE(ui_manage_device(device), 0);
        EXPECT_NE(ui_activate_device(device), 0);
        EXPECT_NE(ui_exit_device(device, 0), 0);
        EXPECT_NE(ui_destroy_device(device), 0);
        EXPECT_NE(ui_do_operation(device, "NakedWindow", kUiOperationGetNativeWindow, 0, &window, 0), 0);
    }
    EXPECT_TRUE(IsWindow(owner));
    EXPECT_NE(host_reference::DestroyOwnerDevice(kDialog), 0);
    EXPECT_TRUE(IsWindow(dialog));
}

TEST_F(WrongUse, OfComponentsIsRefused) {
    Manage();
    for (const char* component :
         {static_cast<const char*>(nullptr), "", "Unknown", "Layout", "NakedWindow"}) {
        EXPECT_NE(ui_modify(kDialog, component, kUiAttributeTitle, L"title", 0), 0);
        EXPECT_NE(ui_add_action(kDialog, component, kUiActionClose, &DoNothing, nullptr, 0), 0);
        EXPECT_NE(ui_set_action(kDialog, component, kUiActionClose, &DoNothing, nullptr, 0), 0);
    }
    HWND window = nullptr;
    EXPECT_NE(ui_do_operation(kDialog, "Layout", kUiOperationGetNativeWindow, 0, &window, 0), 0);
    EXPECT_NE(ui_do_operation(kDialog, "NakedWindow", kUiOperationGetNativeWindow + 1, 0, &window, 0), 0);
    EXPECT_NE(ui_do_operation(kDialog, "NakedWindow", kUiOperationGetNativeWindow, 0, nullptr, 0), 0);
}

TEST_F(WrongUse, OfActionsIsRefused) {
    Manage();
    for (const int action : {0, -1, 4, 7, 42, 44}) {
        EXPECT_NE(ui_add_action(kDialog, kDialog, action, &DoNothing, nullptr, 0), 0);
        EXPECT_NE(ui_set_action(kDialog, kDialog, action, &DoNothing, nullptr, 0), 0);
    }
    EXPECT_NE(ui_add_action(kDialog, kDialog, kUiActionClose, nullptr, nullptr, 0), 0);
    EXPECT_NE(ui_set_action(kDialog, kDialog, kUiActionClose, nullptr, nullptr, 0), 0);
}

TEST_F(WrongUse, InTheWrongOrderIsRefused) {
    Create();
    EXPECT_NE(ui_activate_device(kDialog), 0);
    EXPECT_NE(ui_exit_device(kDialog, 0), 0);
    EXPECT_EQ(ui_manage_device(kDialog), 0);
    EXPECT_NE(ui_manage_device(kDialog), 0);
    EXPECT_NE(ui_exit_device(kDialog, 0), 0);
}

TEST_F(WrongUse, OfCreationIsRefused) {
    using host_test::kLoginDescription;
    EXPECT_NE(ui_create_device_from_string(nullptr, "Dialog", kLoginDescription), 0);
    EXPECT_NE(ui_create_device_from_string("", "Dialog", kLoginDescription), 0);
    EXPECT_NE(ui_create_device_from_string(kDialog, nullptr, kLoginDescription), 0);
    EXPECT_NE(ui_create_device_from_string(kDialog, "Dialog", nullptr), 0);
    EXPECT_NE(ui_create_device_from_string(kOwner, "Dialog", kLoginDescription), 0);
    Create();
    EXPECT_NE(ui_create_device_from_string(kDialog, "Dialog", kLoginDescription), 0);
    EXPECT_NE(host_reference::CreateOwnerDevice(kDialog, L"Owner"), 0);
}

/// What each of the toolkit's functions answers on a thread of its own.
std::map<std::string, int> AnswersOnAnotherThread(UiCallback callback) {
    std::map<std::string, int> answers;
    std::atomic<bool> done = false;
    std::thread thread([&answers, &done, callback] {
        HWND window = nullptr;
        answers = {
            {"create", ui_create_device_from_string("Another", "Dialog", host_test::kLoginDescription)},
            {"modify", ui_modify(kDialog, kDialog, kUiAttributeWidth, 321, 0)},
            {"add action", ui_add_action(kDialog, kDialog, kUiActionClose, callback, nullptr, 0)},
            {"set action", ui_set_action(kDialog, kDialog, kUiActionClose, callback, nullptr, 0)},
            {"manage", ui_manage_device(kDialog)},
            {"operation",
             ui_do_operation(kDialog, "NakedWindow", kUiOperationGetNativeWindow, 0, &window, 0)},
            {"operation on owner",
             ui_do_operation(kOwner, kOwner, kUiOperationGetNativeWindow, 0, &window, 0)},
            {"activate", ui_activate_device(kDialog)},
            {"exit", ui_exit_device(kDialog, 0)},
            {"destroy", ui_destroy_device(kDialog)},
            {"timer", ui_set_timer(0, callback, nullptr)},
            {"create owner", host_reference::CreateOwnerDevice("Another", L"Another")},
            {"destroy owner", host_reference::DestroyOwnerDevice(kOwner)},
        };
        EXPECT_EQ(window, nullptr);
        done = true;
    });
    // A call that gets through to a window of this thread is to fail the test, not to wait for this thread.
    test_support::PumpUntil([&done] { return done.load(); });
    thread.join();
    return answers;
}

TEST_F(WrongUse, OnAnotherThreadIsRefusedAndLeavesTheDialogAsItIs) {
    Manage();
    On(kUiActionClose, [this] { Log("close"); });
    RECT before = {};
    GetWindowRect(dialog, &before);
    ActivateAnd([this] {
        for (const auto& [function, answer] : AnswersOnAnotherThread(&DoNothing)) {
            EXPECT_NE(answer, 0) << function;
        }
        SendMessageW(dialog, WM_CLOSE, 0, 0);
    });
    RECT after = {};
    GetWindowRect(dialog, &after);
    EXPECT_EQ(after.right - after.left, before.right - before.left);
    EXPECT_EQ(log, Entries{"close"});
    EXPECT_EQ(NativeWindow(kDialog), dialog);
    EXPECT_EQ(NativeWindow(kOwner), owner);
    EXPECT_NE(ui_destroy_device("Another"), 0);
    EXPECT_EQ(ui_destroy_device(kDialog), 0);
}

TEST_F(WrongUse, OnAnotherThreadDoesNotMakeTheWindows) {
    Create();
    int answer = 0;
    std::thread([&answer] { answer = ui_manage_device(kDialog); }).join();
    EXPECT_NE(answer, 0);
    EXPECT_EQ(ui_manage_device(kDialog), 0);
}

TEST_F(WrongUse, WhileADeviceIsBeingDestroyedIsRefused) {
    Create();
    On(kUiActionDestroy, [this] {
        Log("destroy");
        EXPECT_NE(ui_manage_device(kDialog), 0);
        EXPECT_NE(ui_activate_device(kDialog), 0);
        EXPECT_NE(ui_create_device_from_string(kDialog, "Dialog", host_test::kLoginDescription), 0);
    });
    EXPECT_EQ(ui_destroy_device(kDialog), 0);
    EXPECT_EQ(log, Entries{"destroy"});
}

} // namespace
