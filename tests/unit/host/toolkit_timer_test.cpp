// Timers of the toolkit: once each, from whatever message loop the thread runs.
#include <windows.h>

#include <string>

#include <gtest/gtest.h>

#include "tests/support/message_pump.h"
#include "toolkit_scene.h"

namespace {

using host_test::Entries;
using host_test::kDialog;
using test_support::PumpUntil;

class ToolkitTimer : public host_test::ToolkitTest {
  protected:
    void Start(int milliseconds, std::function<void()> function) {
        ASSERT_EQ(ui_set_timer(milliseconds, &host_test::Callback::Call, Keep(std::move(function))), 0);
    }

    bool PumpUntilLogged(std::size_t entries) {
        return PumpUntil([this, entries] { return log.size() >= entries; });
    }
};

TEST_F(ToolkitTimer, CallsBackOnceAndFromTheMessageLoopOnly) {
    Start(0, [this] { Log("first"); });
    EXPECT_EQ(log, Entries{});
    ASSERT_TRUE(PumpUntilLogged(1));
    // A second call would come long before this one.
    Start(100, [this] { Log("last"); });
    ASSERT_TRUE(PumpUntilLogged(2));
    EXPECT_EQ(log, (Entries{"first", "last"}));
}

TEST_F(ToolkitTimer, WaitsItsTime) {
    const ULONGLONG begin = GetTickCount64();
    Start(120, [this] { Log("done"); });
    ASSERT_TRUE(PumpUntilLogged(1));
    constexpr ULONGLONG kClockStep = 16;
    EXPECT_GE(GetTickCount64() - begin + kClockStep, 120U);
}

TEST_F(ToolkitTimer, ManyRunAtATimeEachForItself) {
    Start(200, [this] { Log("late"); });
    Start(100, [this] { Log("middle"); });
    Start(0, [this] { Log("early"); });
    ASSERT_TRUE(PumpUntilLogged(3));
    EXPECT_EQ(log, (Entries{"early", "middle", "late"}));
}

TEST_F(ToolkitTimer, NeedsNoDevice) {
    host_reference::DestroyOwnerDevice(host_test::kOwner);
    Start(0, [this] { Log("done"); });
    EXPECT_TRUE(PumpUntilLogged(1));
}

TEST_F(ToolkitTimer, MayBeSetAgainFromItsCallback) {
    Start(0, [this] {
        Log("first");
        Start(0, [this] {
            Log("second");
            Start(0, [this] { Log("third"); });
        });
    });
    ASSERT_TRUE(PumpUntilLogged(3));
    EXPECT_EQ(log, (Entries{"first", "second", "third"}));
}

TEST_F(ToolkitTimer, IsServedByALoopInsideAnothersCallback) {
    Start(0, [this] {
        Start(0, [this] { Log("inner"); });
        EXPECT_TRUE(PumpUntilLogged(1));
        Log("outer");
    });
    ASSERT_TRUE(PumpUntilLogged(2));
    EXPECT_EQ(log, (Entries{"inner", "outer"}));
}

TEST_F(ToolkitTimer, MayDestroyTheDialogInWhoseLoopItIsServed) {
    Manage();
    On(kUiActionDestroy, [this] { Log("destroy"); });
    Start(1, [this] {
        ui_destroy_device(kDialog);
        Log("timer");
    });
    Activate();
    EXPECT_EQ(log, (Entries{"destroy", "timer"}));
    EXPECT_FALSE(IsWindow(dialog));
}

TEST_F(ToolkitTimer, OutlivesTheDialogThatItWasSetIn) {
    Manage();
    Start(100, [this] { Log("timer"); });
    ActivateAnd([] { ui_destroy_device(kDialog); });
    EXPECT_EQ(log, Entries{});
    EXPECT_TRUE(PumpUntilLogged(1));
}

TEST_F(ToolkitTimer, WithoutCallbackOrWithANegativeTimeIsRefused) {
    EXPECT_NE(ui_set_timer(0, nullptr, this), 0);
    EXPECT_NE(ui_set_timer(-1, &host_test::Callback::Call, Keep([this] { Log("never"); })), 0);
    Start(50, [this] { Log("last"); });
    ASSERT_TRUE(PumpUntilLogged(1));
    EXPECT_EQ(log, Entries{"last"});
}

} // namespace
