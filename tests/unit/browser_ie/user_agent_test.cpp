// What the browser makes of urlmon's User-Agent before it navigates.
#include <algorithm>
#include <ostream>
#include <string>

#include <gtest/gtest.h>

#include "ie_browser_test.h"

using test_support::Lines;
using test_support::ScopedVariable;

namespace kelda {
namespace {

constexpr const char* kAsksForSize = "UrlMkGetSessionOption 0x10000001 (null) 0";

class UserAgent : public IEBrowserTest {
  protected:
    void Have(const std::string& text) { userAgent = text + '\0'; }

    /// What creation does to the User-Agent.
    Lines Apply() {
        MakeBrowser();
        Create();
        Lines lines = TakeTranscript();
        EXPECT_TRUE(lines.back().starts_with("webBrowser.Navigate ")) << "the navigation comes last";
        std::erase_if(lines, [](const std::string& line) {
            return !line.starts_with("UrlMk") && !line.starts_with('[');
        });
        Drop();
        TakeTranscript();
        return lines;
    }

    /// What is expected where urlmon is asked and has that text.
    static Lines Reads(const std::string& text) {
        return {kAsksForSize, "UrlMkGetSessionOption 0x10000001 " + std::to_string(text.size() + 1),
                "[0] User-Agent: " + text};
    }
    static Lines Sets(const std::string& text) {
        return {"[0] Setting User-Agent to " + text,
                "UrlMkSetSessionOption 0x10000001 " + text + " " + std::to_string(text.size() + 1)};
    }
};

TEST_F(UserAgent, TheWordDefaultLeavesItAsItIs) {
    const ScopedVariable variable(kUserAgentVariable, L"default");
    Have("Agent (Windows NT 6.1)");
    EXPECT_EQ(Apply(), Lines{"[0] Using default User-Agent"});
}

TEST_F(UserAgent, AnythingElseInTheVariableIsSetVerbatim) {
    for (const char* text :
         {"Default", "DEFAULT", " default", "default ", "defaults", "defaul", "\"default\"", "My Agent/1.0",
          " ", "Agent (Windows NT 6.1)", "a \"quoted\" $& one"}) {
        SCOPED_TRACE(text);
        const std::string value = text;
        const ScopedVariable variable(kUserAgentVariable, std::wstring(value.begin(), value.end()).c_str());
        Have("Agent (Windows NT 6.1)");
        EXPECT_EQ(Apply(), test_support::InTurn({{"[0] Using environment User-Agent"}, Sets(text)}));
    }
}

TEST_F(UserAgent, AnEmptyVariableIsNone) {
    const ScopedVariable variable(kUserAgentVariable, L"");
    EXPECT_EQ(Apply(), Reads("Agent (Windows NT 10.0)"));
}

/// urlmon's text, and what is made of it.
struct Rewriting {
    const char* name;
    const char* before;
    const char* after;
};

void PrintTo(const Rewriting& rewriting, std::ostream* out) {
    *out << rewriting.before;
}

class RewrittenUserAgent : public UserAgent, public ::testing::WithParamInterface<Rewriting> {};

TEST_P(RewrittenUserAgent, IsSetWithWindowsTenInIt) {
    Have(GetParam().before);
    EXPECT_EQ(Apply(), test_support::InTurn({Reads(GetParam().before), Sets(GetParam().after)}));
}

INSTANTIATE_TEST_SUITE_P(
    WindowsVersion, RewrittenUserAgent,
    ::testing::Values(Rewriting{"6_1", "Agent (Windows NT 6.1; WOW64)", "Agent (Windows NT 10.0; WOW64)"},
                      Rewriting{"6_2", "Agent (Windows NT 6.2)", "Agent (Windows NT 10.0)"},
                      Rewriting{"6_3", "Agent (Windows NT 6.3)", "Agent (Windows NT 10.0)"},
                      Rewriting{"6_0", "Windows NT 6.0", "Windows NT 10.0"},
                      Rewriting{"7", "Windows NT 7.0", "Windows NT 10.0"},
                      Rewriting{"8", "Windows NT 8.1", "Windows NT 10.0"},
                      Rewriting{"9", "Windows NT 9.9", "Windows NT 10.0"},
                      Rewriting{"MinorOfSeveralDigits", "(Windows NT 6.1234567)", "(Windows NT 10.0)"},
                      Rewriting{"UpToTheSecondDot", "Windows NT 6.1.7601", "Windows NT 10.0.7601"},
                      Rewriting{"Several", "Windows NT 6.1; Windows NT 10.0; Windows NT 8.0",
                                "Windows NT 10.0; Windows NT 10.0; Windows NT 10.0"},
                      Rewriting{"InsideAWord", "xWindows NT 6.1x", "xWindows NT 10.0x"},
                      Rewriting{"Shorter", "Windows NT 6.100000000", "Windows NT 10.0"}),
    [](const auto& test) { return std::string(test.param.name); });

TEST_F(UserAgent, WithoutAnOldWindowsInItItIsOnlyTraced) {
    for (const char* text :
         {"Agent (Windows NT 10.0)", "Agent (Windows NT 11.0)", "Agent", "Agent (Windows NT 5.1)",
          "Agent (Windows NT 6)", "Agent (Windows NT 6.)", "Agent (Windows NT 6.x)", "Agent (windows nt 6.1)",
          "Agent (Windows  NT 6.1)", "Agent (Windows NT 16.1)", "Agent (Windows NT 61)",
          "Agent (Windows NT 6,1)", "Windows"}) {
        SCOPED_TRACE(text);
        Have(text);
        EXPECT_EQ(Apply(), Reads(text));
    }
}

TEST_F(UserAgent, ItEndsAtItsFirstZeroByte) {
    userAgent = std::string("Agent\0Windows NT 6.1\0", 21);
    EXPECT_EQ(Apply(), (Lines{kAsksForSize, "UrlMkGetSessionOption 0x10000001 21", "[0] User-Agent: Agent"}));
}

TEST_F(UserAgent, ThatHasNoSizeIsNotAskedForAgain) {
    userAgent.clear();
    EXPECT_EQ(Apply(), Lines{kAsksForSize});
}

TEST_F(UserAgent, ThatIsEmptyIsNotTraced) {
    userAgent = std::string(1, '\0');
    EXPECT_EQ(Apply(), (Lines{kAsksForSize, "UrlMkGetSessionOption 0x10000001 1"}));
    userAgent = std::string("\0Windows NT 6.1", 15);
    EXPECT_EQ(Apply(), (Lines{kAsksForSize, "UrlMkGetSessionOption 0x10000001 15"}));
}

TEST_F(UserAgent, OfWhichOnlyTheSizeIsGivenIsEmpty) {
    givesText = false;
    Have("Windows NT 6.1");
    EXPECT_EQ(Apply(), (Lines{kAsksForSize, "UrlMkGetSessionOption 0x10000001 15"}));
}

TEST_F(UserAgent, MayBeLong) {
    const std::string before = "(Windows NT 6.1" + std::string(5000, '1') + std::string(50000, ' ') + ")";
    Have(before);
    EXPECT_EQ(Apply().size(), 5U);
    EXPECT_EQ(userAgent.size(), 50018U);
}

TEST_F(UserAgent, IsTakenWhateverUrlmonReturnsWithIt) {
    for (const HRESULT result :
         {S_OK, S_FALSE, static_cast<HRESULT>(E_OUTOFMEMORY), static_cast<HRESULT>(E_INVALIDARG)}) {
        getResult = result;
        Have("Windows NT 6.2");
        EXPECT_EQ(Apply(), test_support::InTurn({Reads("Windows NT 6.2"), Sets("Windows NT 10.0")}));
    }
}

TEST_F(UserAgent, ThatCannotBeSetIsNotTraced) {
    setResult = E_FAIL;
    Have("Windows NT 6.2");
    EXPECT_EQ(Apply(), test_support::InTurn({Reads("Windows NT 6.2"), Sets("Windows NT 10.0")}));
}

TEST_F(UserAgent, TheSecondBrowserReadsWhatTheFirstHasSetAndChangesNothing) {
    Have("Agent (Windows NT 6.1)");
    Apply();
    EXPECT_EQ(Apply(), Reads("Agent (Windows NT 10.0)"));
}

TEST_F(UserAgent, IsSetOnceTheEventsAreConnected) {
    Have("Windows NT 6.1");
    MakeBrowser();
    Create();
    const Lines lines = TakeTranscript();
    const auto position = [&](const std::string& start) {
        return std::find_if(lines.begin(), lines.end(),
                            [&](const std::string& line) { return line.starts_with(start); }) -
               lines.begin();
    };
    EXPECT_LT(position("eventSource.Advise"), position("UrlMkGetSessionOption"));
    EXPECT_LT(position("UrlMkSetSessionOption"), position("webBrowser.Navigate"));
}

} // namespace
} // namespace kelda
