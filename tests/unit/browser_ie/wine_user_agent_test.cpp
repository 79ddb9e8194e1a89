// What the browser does to the User-Agent of the platform's own urlmon.
#include <string>

#include <gtest/gtest.h>

#include "browser_ie/user_agent.h"
#include "tests/support/scoped_variable.h"
#include "tests/support/session_user_agent.h"
#include "tests/support/transcript.h"

using test_support::Lines;
using test_support::ScopedVariable;
using test_support::SessionUserAgent;
using test_support::SetSessionUserAgent;

namespace kelda {
namespace {

constexpr const wchar_t* kVariable = L"MERIDO_ZANWEBBROWSER_USER_AGENT";

/// Puts back what the process had.
class WineUserAgent : public test_support::TranscriptTest {
  protected:
    WineUserAgent() : TranscriptTest("ZanWebBrowserIE") {}
    ~WineUserAgent() override { SetSessionUserAgent(before); }
    WineUserAgent(const WineUserAgent&) = delete;
    WineUserAgent& operator=(const WineUserAgent&) = delete;

    const std::string before = SessionUserAgent();
};

TEST_F(WineUserAgent, OfAnOldWindowsIsRewrittenAndASecondTimeLeftAsItIs) {
    const ScopedVariable variable(kVariable, nullptr);
    SetSessionUserAgent("Agent (compatible; Windows NT 6.1; Trident)");
    ApplyUserAgent();
    EXPECT_EQ(SessionUserAgent(), "Agent (compatible; Windows NT 10.0; Trident)");
    EXPECT_EQ(TakeTranscript(),
              (Lines{"[0] User-Agent: Agent (compatible; Windows NT 6.1; Trident)",
                     "[0] Setting User-Agent to Agent (compatible; Windows NT 10.0; Trident)"}));
    ApplyUserAgent();
    EXPECT_EQ(SessionUserAgent(), "Agent (compatible; Windows NT 10.0; Trident)");
    EXPECT_EQ(TakeTranscript(), Lines{"[0] User-Agent: Agent (compatible; Windows NT 10.0; Trident)"});
}

TEST_F(WineUserAgent, OfWinesOwnNamesNoOldWindowsAfterwards) {
    const ScopedVariable variable(kVariable, nullptr);
    ASSERT_NE(before.find("Windows NT 6."), std::string::npos) << before;
    ApplyUserAgent();
    EXPECT_EQ(SessionUserAgent().find("Windows NT 6."), std::string::npos);
    EXPECT_EQ(TakeTranscript()[0], "[0] User-Agent: " + before);
}

TEST_F(WineUserAgent, OfTheVariableIsTakenVerbatim) {
    const ScopedVariable variable(kVariable, L" default (Windows NT 6.1)");
    ApplyUserAgent();
    EXPECT_EQ(SessionUserAgent(), " default (Windows NT 6.1)");
}

TEST_F(WineUserAgent, TheWordDefaultChangesNothing) {
    const ScopedVariable variable(kVariable, L"default");
    SetSessionUserAgent("Agent (Windows NT 6.1)");
    ApplyUserAgent();
    EXPECT_EQ(SessionUserAgent(), "Agent (Windows NT 6.1)");
}

} // namespace
} // namespace kelda
