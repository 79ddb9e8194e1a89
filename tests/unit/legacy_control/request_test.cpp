// What goes along with requests: WinINet's cookies, both ways, and urlmon's User-Agent.
#include <algorithm>
#include <array>

#include <exdispid.h>
#include <wininet.h>

#include "tests/support/session_user_agent.h"
#include "tests/unit/legacy_control/control_test.h"

namespace legacy_control_test {
namespace {

using test_support::Answer;
using test_support::HeaderOf;
using test_support::SessionUserAgent;
using test_support::SetSessionUserAgent;
using testing::ElementsAre;

std::wstring Wide(const std::string& text) {
    return {text.begin(), text.end()};
}

/// Of ASCII alone.
std::string Narrow(const std::wstring& text) {
    return {text.begin(), text.end()};
}

std::vector<std::string> PartsOf(const std::string& line) {
    std::vector<std::string> parts;
    for (std::size_t start = 0; start < line.size();) {
        const std::size_t end = std::min(line.find("; ", start), line.size());
        parts.push_back(line.substr(start, end - start));
        start = end + 2;
    }
    std::ranges::sort(parts);
    return parts;
}

class RequestTest : public ControlTest {
  protected:
    void SetUp() override {
        ControlTest::SetUp();
        ASSERT_NO_FATAL_FAILURE(CreateAndActivate());
    }

    void TearDown() override {
        SetSessionUserAgent(userAgentBefore_);
        // The store is the process's.
        for (const char* name : {"open", "hidden", "way", "goal", "more", "script", "late", "later", "gone",
                                 "kept", "cross", "shared"}) {
            Store(name, "x; Path=/; Expires=Thu, 01 Jan 1970 00:00:01 GMT");
        }
        Store("folder", "x; Path=/sub; Expires=Thu, 01 Jan 1970 00:00:01 GMT");
        EXPECT_THAT(Stored("/sub/aged", true), testing::IsEmpty());
        ControlTest::TearDown();
    }

    void Store(const std::string& name, const std::string& data) const {
        InternetSetCookieExW(Wide(pages.Url("/")).c_str(), Wide(name).c_str(), Wide(data).c_str(),
                             INTERNET_COOKIE_HTTPONLY, 0);
    }

    std::vector<std::string> Stored(const std::string& path, bool httpOnly) const {
        std::array<wchar_t, 4096> line{};
        auto size = static_cast<DWORD>(line.size());
        InternetGetCookieExW(Wide(pages.Url(path)).c_str(), nullptr, line.data(), &size,
                             httpOnly ? INTERNET_COOKIE_HTTPONLY : 0, nullptr);
        return PartsOf(Narrow(line.data()));
    }

    /// The cookies of the last request for a path.
    std::vector<std::string> Sent(const std::string& path) const {
        const auto requests = pages.Requests(path);
        return requests.empty() ? std::vector<std::string>{"no request"}
                                : PartsOf(HeaderOf(requests.back(), "Cookie"));
    }

  private:
    const std::string userAgentBefore_ = SessionUserAgent();
};

TEST_F(RequestTest, TheServersCookiesAreStored) {
    pages.Add("/", "page", "Set-Cookie: open=1; Path=/\r\nSet-Cookie: hidden=2; Path=/; HttpOnly\r\n");
    ASSERT_TRUE(Load(pages.Url("/")));
    EXPECT_THAT(Stored("/", true), ElementsAre("hidden=2", "open=1"));
    EXPECT_THAT(Stored("/", false), ElementsAre("open=1"));
}

TEST_F(RequestTest, SoAreThoseOfARedirect) {
    pages.Add("/", Answer(302, "Location: /there\r\nSet-Cookie: way=1; Path=/; HttpOnly\r\n", ""));
    pages.Add("/there", "there", "Set-Cookie: goal=2; Path=/\r\n");
    ASSERT_TRUE(Load(pages.Url("/")));
    EXPECT_THAT(Stored("/", true), ElementsAre("goal=2", "way=1"));
    EXPECT_THAT(Sent("/there"), ElementsAre("way=1"));
}

TEST_F(RequestTest, AndThoseOfWhatThePageFetches) {
    pages.Add("/more", "more", "Set-Cookie: more=1; Path=/\r\n");
    pages.Add("/", "<script>fetch('/more').then(() => external.say('fetched'))</script>");
    ASSERT_TRUE(Load(pages.Url("/")));
    EXPECT_TRUE(PumpUntil([&] { return !host.scriptCalls.empty(); }));
    EXPECT_THAT(Stored("/", false), ElementsAre("more=1"));
}

TEST_F(RequestTest, AScriptsCookiesAreStoredAtOnce) {
    pages.Add("/", "<script>document.cookie = 'script=1; path=/'; external.norv()</script>");
    std::vector<std::string> seen;
    host.onCall = [&](const std::string& call) {
        if (call == "external") {
            seen = Stored("/", false);
        }
    };
    ASSERT_TRUE(Load(pages.Url("/")));
    EXPECT_THAT(seen, ElementsAre("script=1"));
    EXPECT_EQ(Evaluate("document.cookie"), "script=1");
}

TEST_F(RequestTest, AScriptsCookieGoesWithItsNextRequest) {
    pages.Add("/next", "next");
    pages.Add("/", "<script>(async () => { for (let round = 0; round < 50; ++round) {"
                   "document.cookie = `script=${round}; path=/`; await fetch('/next'); }"
                   "external.norv(); })()</script>");
    Store("open", "1; Path=/");
    ASSERT_TRUE(Load(pages.Url("/")));
    ASSERT_TRUE(PumpUntil([&] { return !host.scriptCalls.empty(); }));
    const auto requests = pages.Requests("/next");
    ASSERT_EQ(requests.size(), 50U);
    for (std::size_t round = 0; round < requests.size(); ++round) {
        EXPECT_THAT(PartsOf(HeaderOf(requests[round], "Cookie")),
                    ElementsAre("open=1", "script=" + std::to_string(round)));
    }
}

TEST_F(RequestTest, ScriptsSetNoHiddenCookies) {
    pages.Add("/", "<script>document.cookie = 'hidden=2; path=/'</script>",
              "Set-Cookie: hidden=1; Path=/; HttpOnly\r\n");
    ASSERT_TRUE(Load(pages.Url("/")));
    EXPECT_THAT(Stored("/", true), ElementsAre("hidden=1"));
}

TEST_F(RequestTest, TheStoresCookiesAreSent) {
    Store("open", "1; Path=/");
    Store("hidden", "2; Path=/; HttpOnly");
    pages.Add("/", "page");
    ASSERT_TRUE(Load(pages.Url("/")));
    EXPECT_THAT(Sent("/"), ElementsAre("hidden=2", "open=1"));
    EXPECT_EQ(Evaluate("document.cookie"), "open=1");
}

TEST_F(RequestTest, WhatIsStoredLaterGoesWithTheNextRequest) {
    pages.Add("/", "<a id=link href=/next>next</a>");
    pages.Add("/next", "next");
    ASSERT_TRUE(Load(pages.Url("/")));
    for (int round = 0; round < 20; ++round) {
        Store("late", std::to_string(round) + "; Path=/; HttpOnly");
        Navigate(pages.Url("/"));
        ASSERT_TRUE(Await(DISPID_DOCUMENTCOMPLETE, [] {}));
        Store("later", std::to_string(round) + "; Path=/");
        ASSERT_TRUE(Await(DISPID_DOCUMENTCOMPLETE, [&] { Navigate("javascript:link.click()"); }));
        EXPECT_THAT(Sent("/next"),
                    ElementsAre("late=" + std::to_string(round), "later=" + std::to_string(round)));
    }
}

TEST_F(RequestTest, WhatTheStoreHasNoLongerIsNotSent) {
    pages.Add("/", "page", "Set-Cookie: gone=1; Path=/\r\nSet-Cookie: kept=2; Path=/\r\n");
    ASSERT_TRUE(Load(pages.Url("/")));
    Store("gone", "x; Path=/; Expires=Thu, 01 Jan 1970 00:00:01 GMT");
    ASSERT_TRUE(Load(pages.Url("/")));
    EXPECT_THAT(Sent("/"), ElementsAre("kept=2"));
}

TEST_F(RequestTest, AnEmptyStoreSendsNothing) {
    pages.Add("/", "<a id=link href=/next>next</a>", "Set-Cookie: gone=1; Path=/\r\n");
    pages.Add("/next", "next");
    ASSERT_TRUE(Load(pages.Url("/")));
    Store("gone", "x; Path=/; Expires=Thu, 01 Jan 1970 00:00:01 GMT");
    ASSERT_TRUE(Await(DISPID_DOCUMENTCOMPLETE, [&] { Navigate("javascript:link.click()"); }));
    EXPECT_THAT(Sent("/next"), testing::IsEmpty());
    EXPECT_EQ(Evaluate("document.cookie"), "");
}

TEST_F(RequestTest, ACookieOfAFolderGoesNowhereElse) {
    Store("folder", "1; Path=/sub");
    pages.Add("/sub/page", "<iframe src=/outside></iframe><iframe src=/sub/other></iframe>");
    pages.Add("/outside", "outside");
    pages.Add("/sub/other", "other");
    ASSERT_TRUE(Load(pages.Url("/sub/page")));
    EXPECT_THAT(Sent("/sub/page"), ElementsAre("folder=1"));
    ASSERT_TRUE(Load(pages.Url("/outside")));
    EXPECT_THAT(Sent("/outside"), testing::IsEmpty());
    ASSERT_TRUE(Load(pages.Url("/sub/other")));
    EXPECT_THAT(Sent("/sub/other"), ElementsAre("folder=1"));
}

TEST_F(RequestTest, AServerDeletesByAgeToo) {
    // What lasts is seen by other processes; nobody else uses this folder.
    pages.Add("/aged/in", "in", "Set-Cookie: aged=1; Path=/aged; Max-Age=100\r\n");
    pages.Add("/aged/out", "out", "Set-Cookie: aged=1; Path=/aged; Max-Age=0\r\n");
    ASSERT_TRUE(Load(pages.Url("/aged/in")));
    EXPECT_THAT(Stored("/aged/in", true), ElementsAre("aged=1"));
    ASSERT_TRUE(Load(pages.Url("/aged/out")));
    EXPECT_THAT(Stored("/aged/in", true), testing::IsEmpty());
}

TEST_F(RequestTest, WhatChromiumRefusesIsSentAllTheSame) {
    pages.Add("/", "page", "Set-Cookie: cross=1; Path=/; SameSite=None\r\n");
    ASSERT_TRUE(Load(pages.Url("/")));
    ASSERT_TRUE(Load(pages.Url("/")));
    EXPECT_THAT(Sent("/"), ElementsAre("cross=1"));
}

TEST_F(RequestTest, AnotherControlHasTheSameCookies) {
    pages.Add("/", "page", "Set-Cookie: shared=1; Path=/; HttpOnly\r\n");
    pages.Add("/next", "next");
    ASSERT_TRUE(Load(pages.Url("/")));
    Close();
    CreateAndActivate();
    ASSERT_TRUE(Load(pages.Url("/next")));
    EXPECT_THAT(Sent("/next"), ElementsAre("shared=1"));
}

TEST_F(RequestTest, EveryRequestSaysWhatUrlmonSaysNow) {
    pages.Add("/picture", "no picture");
    pages.Add("/", "<img src=/picture>");
    std::string agent = "A test's own agent";
    SetSessionUserAgent(agent);
    ASSERT_TRUE(Load(pages.Url("/")));
    EXPECT_EQ(HeaderOf(pages.Requests("/").back(), "User-Agent"), agent);
    EXPECT_EQ(HeaderOf(pages.Requests("/picture").back(), "User-Agent"), agent);
    agent = "Another agent";
    SetSessionUserAgent(agent);
    ASSERT_TRUE(Load(pages.Url("/")));
    EXPECT_EQ(HeaderOf(pages.Requests("/").back(), "User-Agent"), agent);
}

} // namespace
} // namespace legacy_control_test
