// Each call of the creation failing once: what is traced, what no longer happens, and that all the rest still does.
#include <algorithm>
#include <string>
#include <utility>

#include <gtest/gtest.h>

#include "ie_browser_test.h"

using test_support::Lines;

namespace kelda {
namespace {

constexpr const char* kInvisible = "[0] Failed to set visuble";
constexpr const char* kUnconnected = "[2] Failed to establish a connection with the event source";

class FailingCalls : public IEBrowserTest {
  protected:
    /// What creation does when that call fails.
    Lines CreateFailing(const std::string& call) {
        control.script.answers = {{call, E_FAIL}};
        MakeBrowser();
        Create();
        return TakeTranscript();
    }

    static bool Contains(const Lines& lines, const std::string& line) {
        return std::any_of(lines.begin(), lines.end(),
                           [&](const std::string& each) { return each.starts_with(line); });
    }
};

TEST_F(FailingCalls, WithoutAControlTheBrowserIsNotVisible) {
    EXPECT_EQ(CreateFailing("OleCreate"),
              (Lines{"GetClientRect of the parent", "OleCreate WebBrowser IOleObject 1",
                     "GetClientRect of the parent", kInvisible}));
    EXPECT_EQ(browser->GetWindowHandle(), nullptr);
    browser->Destroy();
    EXPECT_EQ(TakeTranscript(), Lines{});
}

TEST_F(FailingCalls, AControlThatIsNoBrowserIsNotVisible) {
    const Lines lines = CreateFailing("control.QueryInterface IWebBrowser2");
    EXPECT_EQ(lines.back(), kInvisible);
    EXPECT_FALSE(Contains(lines, "eventSource.Advise"));
    EXPECT_FALSE(Contains(lines, "webBrowser."));
}

TEST_F(FailingCalls, AControlThatCannotBeMadeVisibleGoesNowhere) {
    const Lines lines = CreateFailing("webBrowser.put_Visible");
    EXPECT_EQ(lines[lines.size() - 2], "webBrowser.put_Visible -1");
    EXPECT_EQ(lines.back(), kInvisible);
}

TEST_F(FailingCalls, AControlWithoutEventsGoesNowhereWhicheverStepFailed) {
    const std::pair<const char*, Lines> steps[] = {
        {"control.QueryInterface IConnectionPointContainer",
         {"control.QueryInterface IConnectionPointContainer", kUnconnected}},
        {"container.FindConnectionPoint",
         {"control.QueryInterface IConnectionPointContainer",
          "container.FindConnectionPoint DWebBrowserEvents2", "container gone", kUnconnected}},
        {"eventSource.Advise",
         {"control.QueryInterface IConnectionPointContainer",
          "container.FindConnectionPoint DWebBrowserEvents2", "container gone", "eventSource.Advise",
          "eventSource gone", kUnconnected}},
    };
    for (const auto& [step, expected] : steps) {
        SCOPED_TRACE(step);
        Lines lines = CreateFailing(step);
        lines.erase(lines.begin(), std::find(lines.begin(), lines.end(), "webBrowser.put_Visible -1") + 1);
        EXPECT_EQ(lines, expected);
        Drop();
        EXPECT_FALSE(Contains(TakeTranscript(), "eventSource.Unadvise"));
    }
}

TEST_F(FailingCalls, AFailedConnectionIsTriedAgainByTheNextCreation) {
    CreateFailing("eventSource.Advise");
    control.script.answers.clear();
    Create();
    EXPECT_TRUE(Contains(TakeTranscript(), "eventSource.Advise"));
    EXPECT_NE(control.sink, nullptr);
}

TEST_F(FailingCalls, WithoutInPlaceActivationTheControlIsSizedByItsExtentAlone) {
    for (const char* call : {"oleObject.DoVerb", "control.QueryInterface IOleInPlaceObject"}) {
        SCOPED_TRACE(call);
        const Lines lines = CreateFailing(call);
        EXPECT_TRUE(Contains(lines, "oleObject.SetExtent 1 16933x10160"));
        EXPECT_FALSE(Contains(lines, "inPlaceObject."));
        EXPECT_TRUE(lines.back().starts_with("webBrowser.Navigate "));
        EXPECT_EQ(browser->GetWindowHandle(), nullptr);
        Drop();
        EXPECT_FALSE(Contains(TakeTranscript(), "inPlaceObject."));
    }
}

TEST_F(FailingCalls, AllOthersAreNotEvenTraced) {
    MakeBrowser();
    Create();
    const Lines goodLife = TakeTranscript();
    Drop();
    TakeTranscript();
    for (const char* call :
         {"OleLockRunning", "inPlaceObject.SetObjectRects", "oleObject.SetExtent", "webBrowser.Navigate"}) {
        SCOPED_TRACE(call);
        EXPECT_EQ(CreateFailing(call), goodLife);
        Drop();
        TakeTranscript();
    }
}

} // namespace
} // namespace kelda
