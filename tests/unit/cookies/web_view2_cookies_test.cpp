// Conversion from and to the runtime's cookies, call by call.
#include <string>
#include <utility>

#include <gtest/gtest.h>
#include <wrl/client.h>

#include "cookies/cookie_text.h"
#include "cookies/web_view2_cookies.h"
#include "du/string_utilities.h"
#include "tests/support/replaced_import.h"
#include "tests/support/transcript.h"
#include "tests/support/webview2/fake_cookies.h"

using Microsoft::WRL::ComPtr;
using test_support::CookieContent;
using test_support::FakeCookie;
using test_support::FakeCookieManager;
using test_support::Lines;
using test_support::MakeFake;

namespace kelda {
namespace {

class RuntimeCookie : public test_support::TranscriptTest {
  protected:
    RuntimeCookie() : TranscriptTest("ZanWebBrowserEdge") {}

    /// All of a record in one line.
    static std::string Describe(const CookieRecord& cookie) {
        return du::WideStrToUtf8(ToSetCookieString(cookie));
    }
    CookieRecord From(const CookieContent& content, CookieRecord cookie = {}) {
        FromWebView2Cookie(cookie, MakeFake<FakeCookie>(script, content).Get());
        return cookie;
    }

    /// The number of texts that were handed out and freed.
    int textsFreed = 0;
    test_support::ReplacedImport<struct Free, decltype(CoTaskMemFree)> free{
        "ole32.dll", "CoTaskMemFree", [this](void* block) {
            textsFreed += block != nullptr ? 1 : 0;
            decltype(free)::Original(block);
        }};

    test_support::CallScript script;
    test_support::CookiesAsked asked;
};

/// A cookie that has nothing in common with the defaults.
const CookieContent kWhole = {
    L"SID", L"abc", L".server", L"/dir", 1623233894.0, TRUE, COREWEBVIEW2_COOKIE_SAME_SITE_KIND_STRICT,
    TRUE,   FALSE};

const Lines kGetters = {"cookie.get_Name",     "cookie.get_Value",    "cookie.get_Domain",
                        "cookie.get_Path",     "cookie.get_Expires",  "cookie.get_IsHttpOnly",
                        "cookie.get_SameSite", "cookie.get_IsSecure", "cookie.get_IsSession"};

TEST_F(RuntimeCookie, IsReadThroughItsGettersInOrder) {
    const CookieRecord cookie = From(kWhole);
    Lines expected = kGetters;
    expected.emplace_back("cookie gone");
    EXPECT_EQ(TakeTranscript(), expected);
    EXPECT_EQ(Describe(cookie), "SID=abc; domain=.server; path=/dir; httponly; secure; samesite=2; "
                                "expires=Wed, 9 Jun 2021 10:18:14 GMT");
    EXPECT_EQ(cookie.session, 0);
    EXPECT_EQ(textsFreed, 4);
}

TEST_F(RuntimeCookie, NumbersAndFlagsAreTakenAsTheyAre) {
    CookieContent content = kWhole;
    content.expires = 0.5;
    content.httpOnly = -1;
    content.secure = 7;
    content.session = 2;
    content.sameSite = COREWEBVIEW2_COOKIE_SAME_SITE_KIND_NONE;
    const CookieRecord cookie = From(content);
    EXPECT_EQ(cookie.expires, 0.5);
    EXPECT_EQ(cookie.httpOnly, -1);
    EXPECT_EQ(cookie.secure, 7);
    EXPECT_EQ(cookie.session, 2);
    EXPECT_EQ(cookie.sameSite, CookieSameSite::None);
}

TEST_F(RuntimeCookie, EveryKindOfSameSiteIsTheRecordsOfThatName) {
    CookieContent content = kWhole;
    for (const auto& [kind, sameSite] :
         {std::pair{COREWEBVIEW2_COOKIE_SAME_SITE_KIND_NONE, CookieSameSite::None},
          std::pair{COREWEBVIEW2_COOKIE_SAME_SITE_KIND_LAX, CookieSameSite::Lax},
          std::pair{COREWEBVIEW2_COOKIE_SAME_SITE_KIND_STRICT, CookieSameSite::Strict}}) {
        content.sameSite = kind;
        EXPECT_EQ(From(content).sameSite, sameSite);
    }
}

TEST_F(RuntimeCookie, AGetterThatFailsLeavesItsFieldAndTheOthersAreStillRead) {
    const std::pair<const char*, const char*> table[] = {
        {"cookie.get_Name", "=abc; domain=.server; path=/dir; httponly; secure; samesite=2; "
                            "expires=Wed, 9 Jun 2021 10:18:14 GMT"},
        {"cookie.get_Value", "SID=; domain=.server; path=/dir; httponly; secure; samesite=2; "
                             "expires=Wed, 9 Jun 2021 10:18:14 GMT"},
        {"cookie.get_Domain", "SID=abc; domain=; path=/dir; httponly; secure; samesite=2; "
                              "expires=Wed, 9 Jun 2021 10:18:14 GMT"},
        {"cookie.get_Path", "SID=abc; domain=.server; path=; httponly; secure; samesite=2; "
                            "expires=Wed, 9 Jun 2021 10:18:14 GMT"},
        {"cookie.get_Expires", "SID=abc; domain=.server; path=/dir; httponly; secure; samesite=2"},
        {"cookie.get_IsHttpOnly", "SID=abc; domain=.server; path=/dir; secure; samesite=2; "
                                  "expires=Wed, 9 Jun 2021 10:18:14 GMT"},
        {"cookie.get_SameSite", "SID=abc; domain=.server; path=/dir; httponly; secure; samesite=1; "
                                "expires=Wed, 9 Jun 2021 10:18:14 GMT"},
        {"cookie.get_IsSecure", "SID=abc; domain=.server; path=/dir; httponly; samesite=2; "
                                "expires=Wed, 9 Jun 2021 10:18:14 GMT"},
        {"cookie.get_IsSession", "SID=abc; domain=.server; path=/dir; httponly; secure; session; samesite=2; "
                                 "expires=Wed, 9 Jun 2021 10:18:14 GMT"},
    };
    for (const auto& [getter, line] : table) {
        script.answers = {{getter, E_FAIL}};
        EXPECT_EQ(Describe(From(kWhole)), line);
        Lines expected = kGetters;
        expected.emplace_back("cookie gone");
        EXPECT_EQ(TakeTranscript(), expected);
    }
}

CookieRecord WholeRecord() {
    CookieRecord cookie;
    cookie.name = L"SID";
    cookie.value = L"abc";
    cookie.domain = L".server";
    cookie.path = L"/dir";
    cookie.expires = 1623233894.0;
    cookie.httpOnly = 1;
    cookie.sameSite = CookieSameSite::Strict;
    cookie.secure = 1;
    cookie.session = 0;
    return cookie;
}

const Lines kMakes = {"manager.CreateCookie SID=abc domain=.server path=/dir",
                      "cookie.put_Expires 1623233894.000000",
                      "cookie.put_IsHttpOnly 1",
                      "cookie.put_SameSite 2",
                      "cookie.put_IsSecure 1",
                      "manager.AddOrUpdateCookie cookie",
                      "cookie gone"};

TEST_F(RuntimeCookie, IsMadeAndStoredInOrder) {
    const auto manager = MakeFake<FakeCookieManager>(script, asked, "manager");
    EXPECT_TRUE(ToWebView2Cookie(WholeRecord(), manager));
    EXPECT_EQ(TakeTranscript(), kMakes);
}

TEST_F(RuntimeCookie, OfARecordWithTheDefaultsHasEmptyTextsAndNoExpiry) {
    const auto manager = MakeFake<FakeCookieManager>(script, asked, "manager");
    EXPECT_TRUE(ToWebView2Cookie({}, manager));
    EXPECT_EQ(TakeTranscript(),
              (Lines{"manager.CreateCookie = domain= path=", "cookie.put_Expires -1.000000",
                     "cookie.put_IsHttpOnly 0", "cookie.put_SameSite 1", "cookie.put_IsSecure 0",
                     "manager.AddOrUpdateCookie cookie", "cookie gone"}));
}

TEST_F(RuntimeCookie, IsStoredAlthoughASetterFails) {
    const auto manager = MakeFake<FakeCookieManager>(script, asked, "manager");
    for (const char* setter :
         {"cookie.put_Expires", "cookie.put_IsHttpOnly", "cookie.put_SameSite", "cookie.put_IsSecure"}) {
        script.answers = {{setter, E_INVALIDARG}};
        EXPECT_TRUE(ToWebView2Cookie(WholeRecord(), manager));
        EXPECT_EQ(TakeTranscript(), kMakes);
    }
}

TEST_F(RuntimeCookie, ThatCannotBeMadeIsTraced) {
    const auto manager = MakeFake<FakeCookieManager>(script, asked, "manager");
    script.answers["manager.CreateCookie"] = E_INVALIDARG;
    EXPECT_FALSE(ToWebView2Cookie(WholeRecord(), manager));
    EXPECT_EQ(TakeTranscript(), (Lines{kMakes[0], "[0] Failed to create WebView2 cookie"}));
}

TEST_F(RuntimeCookie, ThatIsNotGivenIsTracedAsNotMade) {
    const auto manager = MakeFake<FakeCookieManager>(script, asked, "manager");
    manager->givesCookies = false;
    EXPECT_FALSE(ToWebView2Cookie(WholeRecord(), manager));
    EXPECT_EQ(TakeTranscript(), (Lines{kMakes[0], "[0] Failed to create WebView2 cookie"}));
}

TEST_F(RuntimeCookie, WithoutAManagerIsTracedAsNotMade) {
    EXPECT_FALSE(ToWebView2Cookie(WholeRecord(), nullptr));
    EXPECT_EQ(TakeTranscript(), Lines{"[0] Failed to create WebView2 cookie"});
}

TEST_F(RuntimeCookie, ThatCannotBeStoredIsTracedWithItsRecord) {
    const auto manager = MakeFake<FakeCookieManager>(script, asked, "manager");
    script.answers["manager.AddOrUpdateCookie"] = E_FAIL;
    CookieRecord cookie = WholeRecord();
    cookie.value = L"\u00E4";
    EXPECT_FALSE(ToWebView2Cookie(cookie, manager));
    EXPECT_EQ(TakeTraceLines(),
              Lines{"[0] AddOrUpdateCookie failed for: SID=\xC3\xA4; domain=.server; path=/dir; httponly; "
                    "secure; samesite=2; expires=Wed, 9 Jun 2021 10:18:14 GMT"});
}

TEST_F(RuntimeCookie, IsMadeWithAReferenceToTheManagerOfItsOwn) {
    const auto manager = MakeFake<FakeCookieManager>(script, asked, "manager");
    const ComPtr<ICoreWebView2CookieManager> callers = manager;
    ULONG during = 0;
    script.during["manager.AddOrUpdateCookie"] = [&] { during = manager->Count(); };
    ToWebView2Cookie(WholeRecord(), callers);
    EXPECT_EQ(during, 3U) << "the test's two and the call's";
    EXPECT_EQ(manager->Count(), 2U);
    TakeTranscript();
}

} // namespace
} // namespace kelda
