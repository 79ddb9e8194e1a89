// The modal life of a dialog: its owner, its loop, and every way out of it.
#include <windows.h>

#include <atomic>
#include <functional>
#include <string>
#include <thread>
#include <utility>

#include <gtest/gtest.h>

#include "tests/support/message_pump.h"
#include "toolkit_scene.h"

namespace {

using host_test::Entries;
using host_test::kDialog;
using host_test::kInner;
using host_test::kOwner;
using host_test::WindowWatch;

class Modal : public host_test::ToolkitTest {
  protected:
    static POINT CentreOf(HWND window) {
        RECT area = {};
        GetWindowRect(window, &area);
        return {(area.left + area.right) / 2, (area.top + area.bottom) / 2};
    }

    using End = std::function<void()>;

    /// Runs a dialog that is exited and one that is destroyed, each by what `begin` makes of its end.
    void ExpectEnd(const std::function<void(const End& end)>& begin) {
        for (const bool destroys : {false, true}) {
            SCOPED_TRACE(destroys ? "destroyed" : "exited");
            Manage();
            begin([destroys] { destroys ? ui_destroy_device(kDialog) : ui_exit_device(kDialog, 0); });
            Activate();
            EXPECT_EQ(IsWindow(dialog) == FALSE, destroys);
            EXPECT_TRUE(IsWindowEnabled(owner));
            ui_destroy_device(kDialog);
        }
    }
};

TEST_F(Modal, ShowsTheDialogAndKeepsItsOwnerFromTakingInput) {
    Manage();
    ActivateAnd([this] {
        EXPECT_TRUE(IsWindowVisible(dialog));
        EXPECT_EQ(GetActiveWindow(), dialog);
        EXPECT_EQ(GetWindow(dialog, GW_OWNER), owner);
        EXPECT_FALSE(IsWindowEnabled(owner));
        Log("shown");
    });
    EXPECT_EQ(log, Entries{"shown"});
    EXPECT_FALSE(IsWindowVisible(dialog));
    EXPECT_TRUE(IsWindowEnabled(owner));
    EXPECT_EQ(GetActiveWindow(), owner);
}

TEST_F(Modal, CanBeActivatedAgain) {
    Manage();
    for (int i = 0; i < 3; ++i) {
        ActivateAnd([this] {
            EXPECT_TRUE(IsWindowVisible(dialog));
            EXPECT_FALSE(IsWindowEnabled(owner));
            Log("shown");
        });
        EXPECT_TRUE(IsWindowEnabled(owner));
    }
    EXPECT_EQ(log, (Entries{"shown", "shown", "shown"}));
}

TEST_F(Modal, IsNotActivatedTwiceAtATime) {
    Manage();
    ActivateAnd([] {
        EXPECT_NE(ui_activate_device(kDialog), 0);
        EXPECT_EQ(ui_exit_device(kDialog, 0), 0);
        EXPECT_NE(ui_activate_device(kDialog), 0);
        EXPECT_EQ(ui_exit_device(kDialog, 0), 0);
    });
}

TEST_F(Modal, ExitBeforeActivationIsRefusedAndDoesNotEndWhatComesLater) {
    Manage();
    EXPECT_NE(ui_exit_device(kDialog, 0), 0);
    ActivateAnd([this] { Log("shown"); });
    EXPECT_EQ(log, Entries{"shown"});
}

TEST_F(Modal, LiesInTheMiddleOfItsOwner) {
    SetWindowPos(owner, nullptr, 300, 200, 600, 500, SWP_NOZORDER);
    Manage();
    ActivateAnd([this] {
        EXPECT_EQ(CentreOf(dialog).x, CentreOf(owner).x);
        EXPECT_EQ(CentreOf(dialog).y, CentreOf(owner).y);
    });
}

TEST_F(Modal, LiesInTheMiddleOfTheWorkAreaWithoutOwner) {
    host_reference::DestroyOwnerDevice(kOwner);
    Manage();
    ActivateAnd([this] {
        RECT work = {};
        SystemParametersInfoW(SPI_GETWORKAREA, 0, &work, 0);
        EXPECT_EQ(CentreOf(dialog).x, (work.left + work.right) / 2);
        EXPECT_EQ(CentreOf(dialog).y, (work.top + work.bottom) / 2);
        EXPECT_EQ(GetWindow(dialog, GW_OWNER), nullptr);
    });
}

TEST_F(Modal, StaysWithinTheWorkAreaWhereverItsOwnerLies) {
    SetWindowPos(owner, nullptr, -500, -400, 600, 500, SWP_NOZORDER);
    Manage();
    ActivateAnd([this] {
        RECT area = {};
        GetWindowRect(dialog, &area);
        EXPECT_EQ(area.left, 0);
        EXPECT_EQ(area.top, 0);
    });
}

TEST_F(Modal, IsOwnedByTheActiveDeviceAndElseByTheLastThatIsSeen) {
    ASSERT_EQ(host_reference::CreateOwnerDevice("Later", L"Later"), 0);
    HWND later = NativeWindow("Later");
    ManageInner(); // not seen
    Manage();
    SetActiveWindow(owner);
    ActivateAnd([this] { EXPECT_EQ(GetWindow(dialog, GW_OWNER), owner); });
    HWND foreign = CreateWindowExW(0, L"Static", L"Foreign", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 0, 0, 100, 100,
                                   nullptr, nullptr, nullptr, nullptr);
    SetActiveWindow(foreign);
    ActivateAnd([this, later] { EXPECT_EQ(GetWindow(dialog, GW_OWNER), later); });
    DestroyWindow(foreign);
    EXPECT_EQ(host_reference::DestroyOwnerDevice("Later"), 0);
}

TEST_F(Modal, LeavesAnOwnerDisabledThatWasSoBefore) {
    EnableWindow(owner, FALSE);
    Manage();
    ActivateAnd([] {});
    EXPECT_FALSE(IsWindowEnabled(owner));
}

TEST_F(Modal, GivesTheOwnerItsInputBackBeforeItsWindowIsHiddenOrDestroyed) {
    for (const bool destroys : {false, true}) {
        Manage();
        log.clear();
        const WindowWatch window(dialog, [this](UINT message, WPARAM wParam, LPARAM) {
            if (message == WM_DESTROY || (message == WM_SHOWWINDOW && wParam == FALSE)) {
                EXPECT_TRUE(IsWindowEnabled(owner));
                EXPECT_EQ(GetActiveWindow(), owner);
                Log(message == WM_DESTROY ? "destroyed" : "hidden");
            }
            return false;
        });
        Post([destroys] { destroys ? ui_destroy_device(kDialog) : ui_exit_device(kDialog, 0); });
        Activate();
        ASSERT_FALSE(log.empty());
        EXPECT_EQ(log.front(), destroys ? "destroyed" : "hidden");
        ui_destroy_device(kDialog);
    }
}

TEST_F(Modal, GivesTheComponentTheFocusWhichHandsItOnToItsChild) {
    Manage();
    HWND component = NativeWindow(kDialog, "NakedWindow");
    ActivateAnd([&] { EXPECT_EQ(GetFocus(), component); });
    HWND child = CreateWindowExW(0, L"Edit", nullptr, WS_CHILD | WS_VISIBLE, 0, 0, 50, 50, component, nullptr,
                                 nullptr, nullptr);
    ActivateAnd([&] { EXPECT_EQ(GetFocus(), child); });
}

TEST_F(Modal, HandsTheFocusOnToAChildThatComesLater) {
    Manage();
    HWND component = NativeWindow(kDialog, "NakedWindow");
    HWND child = nullptr;
    Post([&] {
        child = CreateWindowExW(0, L"Edit", nullptr, WS_CHILD, 0, 0, 50, 50, component, nullptr, nullptr,
                                nullptr);
        // Behind what the component has posted to itself.
        Post([] { ui_exit_device(kDialog, 0); });
    });
    const WindowWatch window(component, [&](UINT, WPARAM, LPARAM) {
        if (child != nullptr && GetFocus() == child) {
            Log("focus");
        }
        return false;
    });
    Activate();
    EXPECT_FALSE(log.empty());
}

TEST_F(Modal, GivesAComponentWithoutKeyboardInputNoFocus) {
    Manage("(Dialog Dialog (Components (NakedWindow A) (NakedWindow B)) (Resources (B.KeyboardInput True)"
           "(.Layout (Grid (Rows 1) (Cols 2) A B))))");
    ActivateAnd([] {
        EXPECT_EQ(GetFocus(), NativeWindow(kDialog, "B"));
        SendMessageW(NativeWindow(kDialog, "A"), WM_LBUTTONDOWN, MK_LBUTTON, 0);
        EXPECT_EQ(GetFocus(), NativeWindow(kDialog, "B"));
    });
}

TEST_F(Modal, GivesTheFocusBackToWhereItWasWhenItIsActiveAgain) {
    Manage();
    HWND component = NativeWindow(kDialog, "NakedWindow");
    HWND first = CreateWindowExW(0, L"Edit", nullptr, WS_CHILD | WS_VISIBLE, 0, 0, 50, 50, component, nullptr,
                                 nullptr, nullptr);
    HWND second = CreateWindowExW(0, L"Edit", nullptr, WS_CHILD | WS_VISIBLE, 50, 0, 50, 50, component,
                                  nullptr, nullptr, nullptr);
    ActivateAnd([&] {
        EXPECT_EQ(GetFocus(), first);
        SetFocus(second);
        HWND other = CreateWindowExW(0, L"Static", nullptr, WS_POPUP | WS_VISIBLE, 0, 0, 9, 9, nullptr,
                                     nullptr, nullptr, nullptr);
        SetActiveWindow(other);
        EXPECT_NE(GetFocus(), second);
        SetActiveWindow(dialog);
        EXPECT_EQ(GetFocus(), second);
        DestroyWindow(other);
    });
}

TEST_F(Modal, LeavesEveryKeyToTheWindowWithTheFocus) {
    Manage();
    HWND child = CreateWindowExW(0, L"Static", nullptr, WS_CHILD | WS_VISIBLE | WS_TABSTOP, 0, 0, 50, 50,
                                 NativeWindow(kDialog, "NakedWindow"), nullptr, nullptr, nullptr);
    const WindowWatch window(child, [this](UINT message, WPARAM key, LPARAM) {
        if (message == WM_KEYDOWN) {
            Log(std::to_string(key));
        }
        return false;
    });
    for (const int key : {VK_TAB, VK_RETURN, VK_ESCAPE, VK_RIGHT}) {
        PostMessageW(child, WM_KEYDOWN, static_cast<WPARAM>(key), 1);
    }
    ActivateAnd([] {});
    EXPECT_EQ(log, (Entries{"9", "13", "27", "39"}));
}

TEST_F(Modal, DispatchesTheMessagesOfAllWindowsOfTheThread) {
    Manage();
    const WindowWatch window(owner, [this](UINT message, WPARAM, LPARAM) {
        if (message == WM_USER) {
            Log("owner");
        }
        return false;
    });
    PostMessageW(owner, WM_USER, 0, 0);
    ActivateAnd([] {});
    EXPECT_EQ(log, Entries{"owner"});
}

TEST_F(Modal, EndsWhenTheThreadIsAskedToQuitAndPassesThatOn) {
    Manage();
    ManageInner();
    Post([this] {
        Post([] { PostQuitMessage(7); });
        Activate(kInner);
        Log("inner ended");
    });
    Activate();
    MSG message = {};
    ASSERT_TRUE(PeekMessageW(&message, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE));
    EXPECT_EQ(message.wParam, 7U);
    EXPECT_EQ(log, Entries{"inner ended"});
    EXPECT_TRUE(IsWindowEnabled(owner));
}

TEST_F(Modal, EndsFromInsideAPostedMessage) {
    ExpectEnd([this](const End& end) { Post(end); });
}

TEST_F(Modal, EndsFromInsideTheCloseAction) {
    ExpectEnd([this](const End& end) {
        On(kUiActionClose, end);
        PostMessageW(dialog, WM_CLOSE, 0, 0);
    });
}

TEST_F(Modal, EndsFromInsideTheResizeAction) {
    ExpectEnd([this](const End& end) {
        On(kUiActionResize, end);
        Post([this] { SetWindowPos(dialog, nullptr, 0, 0, 310, 320, SWP_NOMOVE); });
    });
}

TEST_F(Modal, EndsFromInsideATimer) {
    ExpectEnd([this](const End& end) { ui_set_timer(1, &host_test::Callback::Call, Keep(end)); });
}

TEST_F(Modal, EndsFromTwoMessagesDeep) {
    ExpectEnd([this](const End& end) {
        On(kUiActionClose, end);
        Post([this] { SendMessageW(dialog, WM_SYSCOMMAND, SC_CLOSE, 0); });
    });
}

TEST_F(Modal, EndsFromInsideAMessageLoopThatTakesEverything) {
    ExpectEnd([this](const End& end) {
        Post([this, end] {
            end();
            test_support::PumpWaiting(); // also what could be there to wake the loop outside
            Log("loop inside ended");
        });
    });
    EXPECT_EQ(log, (Entries{"loop inside ended", "loop inside ended"}));
}

TEST_F(Modal, EndsInsideActivationItself) {
    for (const bool destroys : {false, true}) {
        for (const int trigger : {WM_ENABLE, WM_WINDOWPOSCHANGING, WM_SHOWWINDOW, WM_ACTIVATE, WM_SETFOCUS}) {
            SCOPED_TRACE(trigger);
            Manage();
            bool triggered = false;
            const WindowWatch window(
                trigger == WM_ENABLE ? owner : dialog, [&](UINT message, WPARAM, LPARAM) {
                    if (static_cast<int>(message) == trigger && !std::exchange(triggered, true)) {
                        destroys ? ui_destroy_device(kDialog) : ui_exit_device(kDialog, 0);
                    }
                    return false;
                });
            Activate();
            EXPECT_TRUE(triggered);
            EXPECT_TRUE(IsWindowEnabled(owner));
            ui_destroy_device(kDialog);
        }
    }
}

/// Such a message is answered inside the wait for the next one, which it does not end.
TEST_F(Modal, EndsFromAMessageThatAnotherThreadSends) {
    for (const bool destroys : {false, true}) {
        Manage();
        std::atomic<bool> done = false;
        const WindowWatch window(owner, [&](UINT message, WPARAM, LPARAM) {
            if (message == WM_USER) {
                destroys ? ui_destroy_device(kDialog) : ui_exit_device(kDialog, 0);
                // The loop is not to live on what happens to be waiting.
                MSG waiting = {};
                while (PeekMessageW(&waiting, nullptr, 0, 0, PM_REMOVE) != FALSE) {
                    DispatchMessageW(&waiting);
                }
            }
            return false;
        });
        std::thread sender;
        Post([&] {
            sender = std::thread([this, &done] {
                SendMessageW(owner, WM_USER, 0, 0);
                done = true;
            });
        });
        Activate();
        sender.join();
        EXPECT_TRUE(done);
        ui_destroy_device(kDialog);
    }
}

TEST_F(Modal, ClosedWithoutHandlerIsDestroyed) {
    Manage();
    Post([this] { SendMessageW(dialog, WM_CLOSE, 0, 0); });
    Activate();
    EXPECT_FALSE(IsWindow(dialog));
    EXPECT_EQ(GetActiveWindow(), owner);
    EXPECT_NE(ui_exit_device(kDialog, 0), 0);
}

TEST_F(Modal, EndsWithItsOwner) {
    Manage();
    On(kUiActionDestroy, [this] {
        Log("destroy");
        EXPECT_TRUE(IsWindow(NativeWindow(kDialog, "NakedWindow")));
        EXPECT_EQ(ui_destroy_device(kDialog), 0);
    });
    Post([] { host_reference::DestroyOwnerDevice(kOwner); });
    Activate();
    EXPECT_EQ(log, Entries{"destroy"});
    EXPECT_FALSE(IsWindow(dialog));
    EXPECT_NE(ui_destroy_device(kDialog), 0);
}

TEST_F(Modal, IsNotTakenAlongByAnOwnerThatItHadOnce) {
    Manage();
    ActivateAnd([] {});
    host_reference::DestroyOwnerDevice(kOwner);
    EXPECT_TRUE(IsWindow(dialog));
}

} // namespace
