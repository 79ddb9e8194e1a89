// Calls that come twice, late, early or from inside one another, and exceptions that end in the dialog.
#include <new>
#include <stdexcept>

#include <gtest/gtest.h>

#include "dialog_test.h"

using test_support::InTurn;
using test_support::Lines;

namespace kelda {
namespace {

const Lines kClosedAgain = {"ui_exit_device device 0", "ui_destroy_device device"};
const Lines kReported = {"[0] OnSessionAuthenticated"};

using NestedCalls = DialogTest;

TEST_F(NestedCalls, ASecondReportIsHarmless) {
    EXPECT_TRUE(RunWhileActive([this] {
        Report();
        Report();
    }));
    EXPECT_EQ(TakeTranscript(), InTurn({kReported, kClosed, kReported, kClosedAgain}));
}

TEST_F(NestedCalls, AReportFromInsideTheReportIsHarmless) {
    EXPECT_TRUE(RunWhileActive([this] {
        LastBrowser()->during["Destroy"] = [this] { Report(); };
        Report();
    }));
    EXPECT_EQ(TakeTranscript(), InTurn({kReported, kClosed, kReported, kClosedAgain}));
}

TEST_F(NestedCalls, ClosingAfterTheReportLeavesItTrue) {
    EXPECT_TRUE(RunWhileActive([this] {
        LastBrowser()->during["Destroy"] = [this] { Close(); };
        Report();
    }));
    EXPECT_EQ(TakeTranscript(), InTurn({kReported, kClosed, kClosedAgain}));
}

TEST_F(NestedCalls, AFailureAfterTheReportLeavesItTrue) {
    EXPECT_TRUE(RunWhileActive([this] {
        Report();
        ReportFailure();
    }));
    EXPECT_EQ(TakeTranscript(),
              InTurn({kReported, kClosed, Lines{"[0] OnSessionAuthenticatedFailed"}, kClosedAgain}));
}

TEST_F(NestedCalls, AChangeOfSizeDuringTeardownOnlyReachesTheBrowser) {
    EXPECT_TRUE(RunWhileActive([this] {
        LastBrowser()->during["Destroy"] = [this] { toolkit.Raise(kUiActionResize); };
        Report();
    }));
    EXPECT_EQ(TakeTranscript(), InTurn({kReported, kClosed, Lines{"browser 1 Resize"}}));
}

TEST_F(NestedCalls, AChangeOfSizeBeforeTheBrowserIsCreatedOnlyReachesTheBrowser) {
    toolkit.during["ui_manage_device"] = [this] {
        TakeTranscript();
        toolkit.Raise(kUiActionResize);
        EXPECT_EQ(TakeTranscript(), Lines{"browser 1 Resize"});
    };
    toolkit.during["ui_activate_device"] = [this] { Close(); };
    EXPECT_FALSE(RunDialog());
}

TEST_F(NestedCalls, AReportBeforeTheDialogIsActiveEndsItAtOnce) {
    prepare = [this](RecordingBrowser& browser) { browser.during["Create"] = [this] { Report(); }; };
    EXPECT_TRUE(RunDialog());
    EXPECT_EQ(TakeTranscriptAfterSetUp(),
              InTurn({Lines{"browser 1 Create in the toolkit's window"}, kReported, kClosed,
                      Lines{"ui_activate_device device"}, kClosedAgain}));
    EXPECT_FALSE(toolkit.DeviceExists());
}

TEST_F(NestedCalls, AReportWhileTheDialogIsBeingDestroyedDoesNotCount) {
    prepare = [this](RecordingBrowser& browser) { browser.during["Destroy"] = [this] { Report(); }; };
    EXPECT_FALSE(RunDialog()) << "the modal loop had ended without a report";
}

TEST_F(NestedCalls, TheDialogHoldsItsBrowserUntilTheReportHasReturned) {
    EXPECT_TRUE(RunWhileActive([this] {
        Report();
        EXPECT_EQ(browsers.front().use_count(), 2) << "the dialog's and the retained one";
    }));
}

TEST_F(NestedCalls, ADialogWithinADialogHasNoDevice) {
    bool nested = true;
    EXPECT_TRUE(RunWhileActive([this, &nested] {
        nested = RunDialog();
        EXPECT_EQ(TakeTranscript(), (Lines{"Factory http://server 0", "browser 2 InitializeCom",
                                           "ui_create_device_from_string device device", "browser 2 gone"}));
        EXPECT_TRUE(toolkit.DeviceExists());
        Browser(1)->owner->OnSessionAuthenticated();
    }));
    EXPECT_FALSE(nested);
    EXPECT_EQ(TakeTranscript(), InTurn({kReported, kClosed}));
    EXPECT_FALSE(toolkit.DeviceExists());
}

TEST_F(NestedCalls, AnExceptionOfTheBrowserDoesNotReachTheToolkit) {
    EXPECT_FALSE(RunWhileActive([this] {
        LastBrowser()->during["Resize"] = [] { throw std::runtime_error("no size today"); };
        LastBrowser()->during["Destroy"] = [] { throw std::bad_alloc(); };
        toolkit.Raise(kUiActionResize);
        Close();
    }));
    EXPECT_EQ(TakeTranscript(), InTurn({Lines{"browser 1 Resize", "[3] Failed: no size today"}, kClosed,
                                        Lines{std::string("[3] Failed: ") + std::bad_alloc().what()}}));
    EXPECT_EQ(toolkit.handlerAnswers, (std::vector<int>{0, 0, 0}));
    EXPECT_NE(Browser(1), nullptr) << "it is retained all the same";
}

TEST_F(NestedCalls, AnExceptionOfNoKnownKindDoesNotReachTheToolkitEither) {
    EXPECT_FALSE(RunWhileActive([this] {
        LastBrowser()->during["Destroy"] = [] { throw 1; };
        Close();
    }));
    EXPECT_EQ(TakeTranscript(), kClosed);
}

} // namespace
} // namespace kelda
