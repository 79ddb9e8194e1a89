// What the browser does to the User-Agent of the platform's own urlmon.
#include <string>

#include <windows.h>

#include <urlmon.h>

#include <gtest/gtest.h>

#include "browser_ie/user_agent.h"
#include "tests/support/scoped_variable.h"
#include "tests/support/transcript.h"

using test_support::Lines;
using test_support::ScopedVariable;

namespace kelda {
namespace {

constexpr const wchar_t* kVariable = L"MERIDO_ZANWEBBROWSER_USER_AGENT";

std::string UserAgent() {
    DWORD size = 0;
    UrlMkGetSessionOption(URLMON_OPTION_USERAGENT, nullptr, 0, &size, 0);
    std::string text(size, '\0');
    UrlMkGetSessionOption(URLMON_OPTION_USERAGENT, text.data(), size, &size, 0);
    return text.substr(0, text.find('\0'));
}

void SetUserAgent(const std::string& text) {
    std::string buffer = text;
    UrlMkSetSessionOption(URLMON_OPTION_USERAGENT, buffer.data(), static_cast<DWORD>(buffer.size() + 1), 0);
}

/// Puts back what the process had.
class WineUserAgent : public test_support::TranscriptTest {
  protected:
    WineUserAgent() : TranscriptTest("ZanWebBrowserIE") {}
    ~WineUserAgent() override { SetUserAgent(before); }
    WineUserAgent(const WineUserAgent&) = delete;
    WineUserAgent& operator=(const WineUserAgent&) = delete;

    const std::string before = UserAgent();
};

TEST_F(WineUserAgent, OfAnOldWindowsIsRewrittenAndASecondTimeLeftAsItIs) {
    const ScopedVariable variable(kVariable, nullptr);
    SetUserAgent("Agent (compatible; Windows NT 6.1; Trident)");
    ApplyUserAgent();
    EXPECT_EQ(UserAgent(), "Agent (compatible; Windows NT 10.0; Trident)");
    EXPECT_EQ(TakeTranscript(),
              (Lines{"[0] User-Agent: Agent (compatible; Windows NT 6.1; Trident)",
                     "[0] Setting User-Agent to Agent (compatible; Windows NT 10.0; Trident)"}));
    ApplyUserAgent();
    EXPECT_EQ(UserAgent(), "Agent (compatible; Windows NT 10.0; Trident)");
    EXPECT_EQ(TakeTranscript(), Lines{"[0] User-Agent: Agent (compatible; Windows NT 10.0; Trident)"});
}

TEST_F(WineUserAgent, OfWinesOwnNamesNoOldWindowsAfterwards) {
    const ScopedVariable variable(kVariable, nullptr);
    ASSERT_NE(before.find("Windows NT 6."), std::string::npos) << before;
    ApplyUserAgent();
    EXPECT_EQ(UserAgent().find("Windows NT 6."), std::string::npos);
    EXPECT_EQ(TakeTranscript()[0], "[0] User-Agent: " + before);
}

TEST_F(WineUserAgent, OfTheVariableIsTakenVerbatim) {
    const ScopedVariable variable(kVariable, L" default (Windows NT 6.1)");
    ApplyUserAgent();
    EXPECT_EQ(UserAgent(), " default (Windows NT 6.1)");
}

TEST_F(WineUserAgent, TheWordDefaultChangesNothing) {
    const ScopedVariable variable(kVariable, L"default");
    SetUserAgent("Agent (Windows NT 6.1)");
    ApplyUserAgent();
    EXPECT_EQ(UserAgent(), "Agent (Windows NT 6.1)");
}

} // namespace
} // namespace kelda
