// Modal dialogs inside each other's loops, in every order in which they may end.
#include <windows.h>

#include <gtest/gtest.h>

#include "toolkit_scene.h"

namespace {

using host_test::Entries;
using host_test::kDialog;
using host_test::kInner;

using NestedModal = host_test::ToolkitTest;

TEST_F(NestedModal, ASecondDialogRunsInsideTheFirst) {
    Manage();
    ManageInner();
    ActivateAnd([this] {
        Post([this] {
            EXPECT_EQ(GetWindow(inner, GW_OWNER), dialog);
            EXPECT_FALSE(IsWindowEnabled(dialog));
            EXPECT_FALSE(IsWindowEnabled(owner));
            ui_exit_device(kInner, 0);
        });
        Activate(kInner);
        EXPECT_TRUE(IsWindowEnabled(dialog));
        EXPECT_FALSE(IsWindowEnabled(owner));
        EXPECT_EQ(GetActiveWindow(), dialog);
        Log("inner ended");
    });
    EXPECT_EQ(log, Entries{"inner ended"});
    EXPECT_TRUE(IsWindowEnabled(owner));
}

TEST_F(NestedModal, TheFirstDialogMayEndBeforeTheSecond) {
    Manage();
    ManageInner();
    Post([this] {
        Post([this] {
            EXPECT_EQ(ui_exit_device(kDialog, 0), 0);
            EXPECT_TRUE(IsWindowVisible(inner));
            Post([] { ui_exit_device(kInner, 0); });
        });
        Activate(kInner);
        Log("inner ended");
    });
    Activate();
    EXPECT_EQ(log, Entries{"inner ended"});
    EXPECT_TRUE(IsWindowEnabled(owner));
}

TEST_F(NestedModal, TheFirstDialogTakesTheSecondAlongWhenItIsDestroyed) {
    Manage();
    ManageInner();
    On(kUiActionDestroy, [this] { Log("first"); });
    On(
        kUiActionDestroy, [this] { Log("second"); }, kInner);
    Post([this] {
        Post([] { ui_destroy_device(kDialog); });
        Activate(kInner);
        Log("inner ended");
    });
    Activate();
    EXPECT_EQ(log, (Entries{"first", "second", "inner ended"}));
    EXPECT_TRUE(IsWindowEnabled(owner));
    EXPECT_EQ(GetActiveWindow(), owner);
}

TEST_F(NestedModal, TwoDialogsOverOneOwnerKeepItDisabledUntilBothHaveEnded) {
    Manage();
    ManageInner();
    Post([this] {
        SetActiveWindow(messages);
        ShowWindow(dialog, SW_HIDE); // so that the second cannot be owned by the first
        Post([this] {
            EXPECT_EQ(GetWindow(inner, GW_OWNER), owner);
            ui_destroy_device(kDialog);
            EXPECT_FALSE(IsWindowEnabled(owner));
            ui_exit_device(kInner, 0);
        });
        Activate(kInner);
        EXPECT_TRUE(IsWindowEnabled(owner));
        Log("inner ended");
    });
    Activate();
    EXPECT_EQ(log, Entries{"inner ended"});
}

TEST_F(NestedModal, ADeviceOfTheSameNameMayTakeItsPlaceInside) {
    Manage();
    HWND first = dialog;
    Post([&] {
        ui_destroy_device(kDialog);
        Manage();
        ActivateAnd([this] { Log("second shown"); });
        Log("second ended");
    });
    Activate();
    EXPECT_EQ(log, (Entries{"second shown", "second ended"}));
    EXPECT_FALSE(IsWindow(first));
    EXPECT_TRUE(IsWindow(dialog));
}

} // namespace
