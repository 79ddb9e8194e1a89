// Reading and writing of the WinINet store, call by call.
#include <cstdint>
#include <string>
#include <utility>

#include <gtest/gtest.h>

#include "cookies/win_inet_cookies.h"
#include "tests/support/fake_win_inet_store.h"
#include "tests/support/transcript.h"

using test_support::Lines;

namespace kelda {
namespace {

const std::wstring kPageUrl = L"http://server/dir/page";

class WinInetStore : public test_support::TranscriptTest {
  protected:
    WinInetStore() : TranscriptTest("ZanWebBrowserEdge") {}

    /// The cookie "SID=abc" as a cookie with the defaults.
    static CookieRecord Sid() {
        CookieRecord cookie;
        cookie.name = L"SID";
        cookie.value = L"abc";
        return cookie;
    }

    /// The write of such a cookie.
    static std::string Write(const std::string& flags, const std::string& expires = "none") {
        return "InternetSetCookieEx2 http://server/dir/page SID=abc domain=(null) path=(null) flags=" +
               flags + " expires=" + expires + " with 0x00001000";
    }

    test_support::FakeWinInetStore store;
};

TEST_F(WinInetStore, ACookieWithoutANameIsNotWritten) {
    CookieRecord cookie;
    cookie.value = L"abc";
    EXPECT_FALSE(SetWinInetCookie(cookie, kPageUrl));
    EXPECT_EQ(TakeTranscript(), Lines{"[0] Invalid cookie"});
}

TEST_F(WinInetStore, WhatACookieDoesNotGiveIsLeftToTheAddress) {
    EXPECT_TRUE(SetWinInetCookie(Sid(), kPageUrl));
    EXPECT_EQ(TakeTranscript(), Lines{Write("0x00200000")});
}

TEST_F(WinInetStore, DomainAndPathAreWrittenAsTheyAre) {
    CookieRecord cookie = Sid();
    cookie.value = L"";
    cookie.domain = L".server";
    cookie.path = L"/d\u00FCr";
    EXPECT_TRUE(SetWinInetCookie(cookie, kPageUrl));
    EXPECT_EQ(TakeTranscript(),
              Lines{"InternetSetCookieEx2 http://server/dir/page SID= domain=.server path=/d\xC3\xBCr "
                    "flags=0x00200000 expires=none with 0x00001000"});
}

TEST_F(WinInetStore, EveryCombinationOfFlagsHasItsWord) {
    struct Flags {
        std::int32_t secure;
        std::int32_t httpOnly;
        CookieSameSite sameSite;
        const char* word;
    };
    const Flags table[] = {
        {0, 0, CookieSameSite::None, "0x00000000"},   {1, 0, CookieSameSite::None, "0x00000001"},
        {0, 1, CookieSameSite::None, "0x00002000"},   {1, 1, CookieSameSite::None, "0x00002001"},
        {0, 0, CookieSameSite::Lax, "0x00200000"},    {1, 0, CookieSameSite::Lax, "0x00200001"},
        {0, 1, CookieSameSite::Lax, "0x00202000"},    {1, 1, CookieSameSite::Lax, "0x00202001"},
        {0, 0, CookieSameSite::Strict, "0x00100000"}, {1, 0, CookieSameSite::Strict, "0x00100001"},
        {0, 1, CookieSameSite::Strict, "0x00102000"}, {1, 1, CookieSameSite::Strict, "0x00102001"},
        {-1, 7, CookieSameSite::None, "0x00002001"},
    };
    for (const Flags& flags : table) {
        CookieRecord cookie = Sid();
        cookie.secure = flags.secure;
        cookie.httpOnly = flags.httpOnly;
        cookie.sameSite = flags.sameSite;
        EXPECT_TRUE(SetWinInetCookie(cookie, kPageUrl));
        EXPECT_EQ(TakeTranscript(), Lines{Write(flags.word)});
    }
}

TEST_F(WinInetStore, ACookieWithoutSameSiteIsWrittenWithoutItsBits) {
    CookieRecord cookie = Sid();
    cookie.sameSite = CookieSameSite::None;
    SetWinInetCookie(cookie, kPageUrl);
    EXPECT_EQ(TakeTranscript(), Lines{Write("0x00000000")});
}

TEST_F(WinInetStore, TheExpiryAloneDecidesWhetherItIsWritten) {
    const std::pair<double, const char*> table[] = {
        {-1.0, "none"},
        {0.0, "116444736000000000"},
        {-2.0, "116444735980000000"},
        {1623233894.9, "132677074940000000"},
        {-11644473600.0, "10000000"},
    };
    for (const std::int32_t session : {0, 1}) {
        for (const auto& [expires, written] : table) {
            CookieRecord cookie = Sid();
            cookie.expires = expires;
            cookie.session = session;
            EXPECT_TRUE(SetWinInetCookie(cookie, kPageUrl));
            EXPECT_EQ(TakeTranscript(), Lines{Write("0x00200000", written)});
        }
    }
}

TEST_F(WinInetStore, EveryAnswerButPlainAcceptanceIsTracedAndOnlyAFailedCallCountsAsFailed) {
    struct Answer {
        DWORD result;
        DWORD state;
        bool written;
        const char* line;
    };
    const Answer table[] = {
        {ERROR_SUCCESS, COOKIE_STATE_ACCEPT, true, ""},
        {ERROR_SUCCESS, COOKIE_STATE_UNKNOWN, true, "res=0 state=0"},
        {ERROR_SUCCESS, COOKIE_STATE_PROMPT, true, "res=0 state=2"},
        {ERROR_SUCCESS, COOKIE_STATE_LEASH, true, "res=0 state=3"},
        {ERROR_SUCCESS, COOKIE_STATE_DOWNGRADE, true, "res=0 state=4"},
        {ERROR_SUCCESS, COOKIE_STATE_REJECT, true, "res=0 state=5"},
        {ERROR_INVALID_PARAMETER, COOKIE_STATE_ACCEPT, false, "res=87 state=1"},
        {0xFFFFFFFF, 0x80000000, false, "res=4294967295 state=2147483648"},
    };
    for (const Answer& answer : table) {
        store.setterAnswer = {answer.result, answer.state};
        EXPECT_EQ(SetWinInetCookie(Sid(), kPageUrl), answer.written);
        Lines expected{Write("0x00200000")};
        if (*answer.line != '\0') {
            expected.push_back(std::string("[0] Cookie not accepted; ") + answer.line);
        }
        EXPECT_EQ(TakeTranscript(), expected);
    }
}

TEST_F(WinInetStore, ASetterThatSaysNoStateCountsAsUnknown) {
    store.setterAnswer.result = ERROR_ACCESS_DENIED;
    store.reportsState = false;
    EXPECT_FALSE(SetWinInetCookie(Sid(), kPageUrl));
    EXPECT_EQ(TakeTraceLines(), Lines{"[0] Cookie not accepted; res=5 state=0"});
}

/// A cookie of the store with all that it can have.
INTERNET_COOKIE2 WholeCookie() {
    INTERNET_COOKIE2 cookie{};
    cookie.pwszName = const_cast<PWSTR>(L"SID");
    cookie.pwszValue = const_cast<PWSTR>(L"abc");
    cookie.pwszDomain = const_cast<PWSTR>(L".server");
    cookie.pwszPath = const_cast<PWSTR>(L"/dir");
    cookie.dwFlags = INTERNET_COOKIE_IS_SECURE | INTERNET_COOKIE_HTTPONLY | INTERNET_COOKIE_SAME_SITE_STRICT;
    cookie.ftExpires = {0xC1A2F700, 0x01D75D18}; // 132677074940000000
    cookie.fExpiresSet = TRUE;
    return cookie;
}

TEST(FromWinInet, TakesTextsFlagsAndExpiry) {
    CookieRecord cookie;
    FromWinInetCookie(cookie, WholeCookie());
    EXPECT_EQ(cookie.name, L"SID");
    EXPECT_EQ(cookie.value, L"abc");
    EXPECT_EQ(cookie.domain, L".server");
    EXPECT_EQ(cookie.path, L"/dir");
    EXPECT_EQ(cookie.secure, 1);
    EXPECT_EQ(cookie.httpOnly, 1);
    EXPECT_EQ(cookie.sameSite, CookieSameSite::Strict);
    EXPECT_EQ(cookie.expires, 1623233894.0);
}

TEST(FromWinInet, ReadsEachFlagFromItsBitAlone) {
    struct Flags {
        DWORD word;
        std::int32_t secure;
        std::int32_t httpOnly;
        CookieSameSite sameSite;
    };
    const Flags table[] = {
        {0, 0, 0, CookieSameSite::None},
        {INTERNET_COOKIE_IS_SECURE, 1, 0, CookieSameSite::None},
        {INTERNET_COOKIE_HTTPONLY, 0, 1, CookieSameSite::None},
        {INTERNET_COOKIE_SAME_SITE_LAX, 0, 0, CookieSameSite::Lax},
        {INTERNET_COOKIE_SAME_SITE_STRICT, 0, 0, CookieSameSite::Strict},
        {~static_cast<DWORD>(INTERNET_COOKIE_IS_SECURE | INTERNET_COOKIE_HTTPONLY |
                             INTERNET_COOKIE_SAME_SITE_LAX | INTERNET_COOKIE_SAME_SITE_STRICT),
         0, 0, CookieSameSite::None},
    };
    for (const Flags& flags : table) {
        INTERNET_COOKIE2 source = WholeCookie();
        source.dwFlags = flags.word;
        CookieRecord cookie;
        FromWinInetCookie(cookie, source);
        EXPECT_EQ(cookie.secure, flags.secure);
        EXPECT_EQ(cookie.httpOnly, flags.httpOnly);
        EXPECT_EQ(cookie.sameSite, flags.sameSite);
    }
}

TEST(FromWinInet, LaxAndStrictTogetherAreLax) {
    INTERNET_COOKIE2 source = WholeCookie();
    source.dwFlags = INTERNET_COOKIE_SAME_SITE_LAX | INTERNET_COOKIE_SAME_SITE_STRICT;
    CookieRecord cookie;
    FromWinInetCookie(cookie, source);
    EXPECT_EQ(cookie.sameSite, CookieSameSite::Lax);
}

TEST(FromWinInet, AnExpiryCountsOnlyWhereItIsSet) {
    INTERNET_COOKIE2 source = WholeCookie();
    CookieRecord cookie;
    FromWinInetCookie(cookie, source);
    EXPECT_EQ(cookie.expires, 1623233894.0);
    source.fExpiresSet = FALSE;
    FromWinInetCookie(cookie, source);
    EXPECT_EQ(cookie.expires, CookieRecord::kNoExpiry);
}

TEST(FromWinInet, LeavesTheSessionFlagAlone) {
    for (const std::int32_t session : {0, 1}) {
        CookieRecord cookie;
        cookie.session = session;
        FromWinInetCookie(cookie, WholeCookie());
        EXPECT_EQ(cookie.session, session);
    }
}

TEST(FromWinInet, NullTextsCountAsEmpty) {
    CookieRecord cookie;
    cookie.name = cookie.value = cookie.domain = cookie.path = L"left over";
    FromWinInetCookie(cookie, INTERNET_COOKIE2{});
    EXPECT_EQ(cookie.name + cookie.value + cookie.domain + cookie.path, L"");
}

TEST_F(WinInetStore, IsTracedALineACookie) {
    store.Hold(L"SID", L"abc", 0x2001);
    store.Hold(L"other", L"");
    store.cookies.push_back(WholeCookie());
    TraceWinInetCookies(kPageUrl);
    EXPECT_EQ(
        TakeTranscript(),
        (Lines{"[0] WinInet cookies for http://server/dir/page",
               "InternetGetCookieEx2 http://server/dir/page name=(null) with 0x00001000",
               "[0] SID=abc; domain=server; path=/; flags=0x2001",
               "[0] other=; domain=server; path=/; flags=0x0",
               "[0] SID=abc; domain=.server; path=/dir; flags=0x102001; Expires=Wed, 9 Jun 2021 10:18:14 GMT",
               "InternetFreeCookies 3"}));
}

TEST_F(WinInetStore, ACookieWithoutTextsIsTracedWithEmptyOnes) {
    store.Hold(nullptr, nullptr);
    store.cookies.back().pwszDomain = nullptr;
    store.cookies.back().pwszPath = nullptr;
    TraceWinInetCookies(kPageUrl);
    EXPECT_EQ(TakeTraceLines(),
              (Lines{"[0] WinInet cookies for http://server/dir/page", "[0] =; domain=; path=; flags=0x0"}));
}

TEST_F(WinInetStore, AnEmptyOneIsTracedByItsAddressAlone) {
    TraceWinInetCookies(L"http://b\u00FCro/");
    EXPECT_EQ(TakeTranscript(),
              (Lines{"[0] WinInet cookies for http://b\xC3\xBCro/",
                     "InternetGetCookieEx2 http://b\xC3\xBCro/ name=(null) with 0x00001000"}));
}

TEST_F(WinInetStore, ThatCannotBeReadIsTracedAsIfItWereEmpty) {
    store.Hold(L"SID", L"abc");
    store.getterResult = ERROR_INTERNET_INVALID_URL;
    TraceWinInetCookies(kPageUrl);
    EXPECT_EQ(TakeTraceLines(), Lines{"[0] WinInet cookies for http://server/dir/page"});
}

TEST_F(WinInetStore, ACountWithoutCookiesIsNone) {
    store.Hold(L"SID", L"abc");
    store.handsOutArrays = false;
    EXPECT_TRUE(WinInetCookies(kPageUrl).All().empty());
    store.handsOutArrays = true;
    EXPECT_EQ(WinInetCookies(kPageUrl).All().size(), 1U);
}

TEST_F(WinInetStore, WhatAFailedReadLeavesBehindIsNeitherReadNorFreed) {
    store.Hold(L"SID", L"abc");
    store.getterResult = ERROR_INVALID_PARAMETER;
    store.leavesRubbish = true;
    EXPECT_TRUE(WinInetCookies(kPageUrl).All().empty());
    EXPECT_EQ(TakeTranscript(),
              Lines{"InternetGetCookieEx2 http://server/dir/page name=(null) with 0x00001000"});
}

} // namespace
} // namespace kelda
