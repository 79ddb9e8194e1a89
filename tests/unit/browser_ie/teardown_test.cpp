// The browser going, in every state that it can be in.
#include <algorithm>
#include <string>
#include <utility>

#include <gtest/gtest.h>

#include <windows.h>

#include <exdispid.h>
#include <wrl/client.h>

#include "ie_browser_test.h"

using Microsoft::WRL::ComPtr;
using test_support::InTurn;
using test_support::Lines;

namespace kelda {
namespace {

const Lines kDisconnects = {
    "control.QueryInterface IConnectionPointContainer",
    "container.FindConnectionPoint DWebBrowserEvents2",
    "container gone",
    "eventSource.Unadvise 71",
    "eventSource gone",
};

const Lines kDeactivates = {"inPlaceObject.InPlaceDeactivate", "OleLockRunning the control 0 0"};

const Lines kCloses = {
    "oleObject.Close 1",
    "oleObject.SetClientSite (null)",
    "control gone",
};

class Teardown : public IEBrowserTest {
  protected:
    Lines Destroyed() {
        browser->Destroy();
        return TakeTranscript();
    }
};

TEST_F(Teardown, DisconnectsThenDeactivatesThenClosesTheControl) {
    BringUp();
    EXPECT_EQ(Destroyed(), InTurn({kDisconnects, kDeactivates, kCloses}));
}

TEST_F(Teardown, NothingOfTheBrowserIsReferencedAfterIt) {
    BringUp();
    IOleClientSite* const site = control.site.Get();
    browser->Destroy();
    EXPECT_EQ(site->AddRef(), 1U);
    EXPECT_EQ(site->Release(), 0U);
}

TEST_F(Teardown, ABrowserThatGoesWithoutItIsTakenDownBeforeComEnds) {
    BringUp();
    browser.reset();
    EXPECT_EQ(TakeTranscript(), InTurn({kDisconnects, kDeactivates, kCloses, {"CoUninitialize"}}));
}

TEST_F(Teardown, ASecondOneDoesNothing) {
    BringUp();
    browser->Destroy();
    TakeTranscript();
    EXPECT_EQ(Destroyed(), Lines{});
}

TEST_F(Teardown, OfABrowserThatWasNeverCreatedDoesNothing) {
    MakeBrowser();
    EXPECT_EQ(Destroyed(), Lines{});
}

TEST_F(Teardown, OfABrowserThatIsNotConnectedDisconnectsNothing) {
    control.script.answers["eventSource.Advise"] = E_FAIL;
    BringUp();
    EXPECT_EQ(Destroyed(), InTurn({kDeactivates, kCloses}));
}

TEST_F(Teardown, OfAControlThatIsNotActiveDeactivatesNothing) {
    control.script.answers["oleObject.DoVerb"] = E_FAIL;
    BringUp();
    EXPECT_EQ(Destroyed(), InTurn({kDisconnects, kCloses}));
}

TEST_F(Teardown, AFailedDisconnectionIsTracedWhicheverStepFailedAndTheRestStillHappens) {
    const std::pair<const char*, Lines> steps[] = {
        {"control.QueryInterface IConnectionPointContainer",
         {"control.QueryInterface IConnectionPointContainer"}},
        {"container.FindConnectionPoint",
         {"control.QueryInterface IConnectionPointContainer",
          "container.FindConnectionPoint DWebBrowserEvents2", "container gone"}},
        {"eventSource.Unadvise", kDisconnects},
    };
    for (const auto& [step, expected] : steps) {
        SCOPED_TRACE(step);
        BringUp();
        control.script.answers = {{step, E_FAIL}};
        EXPECT_EQ(Destroyed(), InTurn({expected, {"[0] DispEventUnadvise failed"}, kDeactivates, kCloses}));
        control.script.answers.clear();
        control.sink.Reset();
        EXPECT_EQ(Destroyed(), Lines{}) << "it is tried once";
    }
}

TEST_F(Teardown, OtherFailuresAreNotEvenTraced) {
    for (const char* call : {"inPlaceObject.InPlaceDeactivate", "oleObject.Close", "OleLockRunning",
                             "oleObject.SetClientSite"}) {
        SCOPED_TRACE(call);
        BringUp();
        control.script.answers = {{call, E_FAIL}};
        const Lines lines = Destroyed();
        EXPECT_EQ(lines.back(), "control gone");
        EXPECT_EQ(std::count_if(lines.begin(), lines.end(),
                                [](const std::string& line) { return line.starts_with('['); }),
                  0);
        control.script.answers.clear();
        control.site.Reset();
    }
}

TEST_F(Teardown, AnEventAfterItReachesNobody) {
    for (const int mode : {0, 1}) {
        BringUp(mode);
        const ComPtr<IDispatch> sink = control.sink;
        browser->Destroy();
        control.sink = sink;
        TakeTranscript();
        control.Raise(DISPID_DOCUMENTCOMPLETE);
        control.Raise(kNorv);
        const Lines lines = TakeTranscript();
        EXPECT_EQ(std::count(lines.begin(), lines.end(), "OnNavigationCompleted"), 0);
        EXPECT_EQ(std::count(lines.begin(), lines.end(), "OnSessionAuthenticated"), 0);
        control.sink.Reset();
    }
}

TEST_F(Teardown, WhatTheControlStillTellsInsideItReachesNobody) {
    BringUp(1);
    control.script.during["eventSource.Unadvise"] = [this] { control.Raise(DISPID_DOCUMENTCOMPLETE); };
    EXPECT_EQ(Destroyed(), InTurn({kDisconnects, kDeactivates, kCloses}));
}

TEST_F(Teardown, ATeardownInsideEachOfItsStepsDoesWhatIsLeftOnce) {
    for (const char* call : {"eventSource.Unadvise", "inPlaceObject.InPlaceDeactivate", "oleObject.Close",
                             "oleObject.SetClientSite"}) {
        SCOPED_TRACE(call);
        BringUp();
        control.script.during[call] = [this] {
            control.script.during.clear();
            browser->Destroy();
        };
        const Lines lines = Destroyed();
        EXPECT_EQ(std::count(lines.begin(), lines.end(), "eventSource.Unadvise 71"), 1);
        EXPECT_EQ(std::count(lines.begin(), lines.end(), "control gone"), 1);
        EXPECT_EQ(control.site, nullptr);
        EXPECT_EQ(control.sink, nullptr);
    }
}

TEST_F(Teardown, AfterItEveryCallOfTheHostIsHarmless) {
    BringUp();
    browser->Destroy();
    TakeTranscript();
    browser->Resize();
    EXPECT_EQ(browser->GetWindowHandle(), nullptr);
    EXPECT_EQ(TakeTranscript(), Lines{"GetClientRect of the parent"});
}

} // namespace
} // namespace kelda
