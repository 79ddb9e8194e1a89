// Cookies between the two stores: which are carried over, in which order, and what is traced of it.
#include <new>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <gtest/gtest.h>
#include <wrl/client.h>

#include "cookies/cookie_copy.h"
#include "tests/support/fake_win_inet_store.h"
#include "tests/support/transcript.h"
#include "tests/support/webview2/fake_cookies.h"

using Microsoft::WRL::ComPtr;
using test_support::CookieContent;
using test_support::FakeCookieList;
using test_support::FakeCookieManager;
using test_support::InTurn;
using test_support::Lines;
using test_support::MakeFake;

namespace kelda {
namespace {

const std::wstring kUrl = L"http://server/page";
constexpr const char* kReads = "InternetGetCookieEx2 http://server/page name=(null) with 0x00001000";

class CookieCopy : public test_support::TranscriptTest {
  protected:
    CookieCopy() : TranscriptTest("ZanWebBrowserEdge") {}

    test_support::FakeWinInetStore store;
    test_support::CallScript script;
    test_support::CookiesAsked asked;
};

/// Before the login.
class LoadBalancer : public CookieCopy {
  protected:
    Lines PrePopulate(bool trace = false) {
        PrePopulateLoadBalancerCookies(kUrl, MakeFake<FakeCookieManager>(script, asked, "manager"), trace);
        return TakeTranscript();
    }

    /// The names of the cookies that were copied.
    Lines Copied() {
        Lines names;
        for (const std::string& line : PrePopulate()) {
            constexpr std::string_view kCreates = "manager.CreateCookie ";
            if (line.starts_with(kCreates)) {
                names.push_back(line.substr(kCreates.size(), line.find('=') - kCreates.size()));
            }
        }
        return names;
    }
};

/// The calls that make a cookie without an expiry in the runtime.
Lines Makes(const std::string& name, const std::string& value) {
    return {"manager.CreateCookie " + name + "=" + value + " domain=server path=/",
            "cookie.put_Expires -1.000000",
            "cookie.put_IsHttpOnly 0",
            "cookie.put_SameSite 0",
            "cookie.put_IsSecure 0",
            "manager.AddOrUpdateCookie cookie",
            "cookie gone"};
}

TEST_F(LoadBalancer, SessionCookieAloneCopiesNothing) {
    store.Hold(L"JSESSIONID", L"1");
    store.Hold(L"TSabc", L"2");
    EXPECT_EQ(PrePopulate(true), (Lines{kReads, "InternetFreeCookies 2", "manager gone"}));
}

TEST_F(LoadBalancer, CookieBringsItselfTheSessionAndTheOtherBalancersButNoOther) {
    store.Hold(L"BIGipServer~pool", L"1");
    store.Hold(L"JSESSIONID", L"2");
    store.Hold(L"TS01", L"3");
    store.Hold(L"other", L"4");
    EXPECT_EQ(PrePopulate(), InTurn({Lines{kReads}, Makes("BIGipServer~pool", "1"), Makes("JSESSIONID", "2"),
                                     Makes("TS01", "3"), Lines{"InternetFreeCookies 4", "manager gone"}}));
}

TEST_F(LoadBalancer, CookieThatComesLastBringsThoseBeforeItInTheStoresOrder) {
    store.Hold(L"TS", L"1");
    store.Hold(L"JSESSIONID", L"2");
    store.Hold(L"BIGipServer", L"3");
    EXPECT_EQ(Copied(), (Lines{"TS", "JSESSIONID", "BIGipServer"}));
}

TEST_F(LoadBalancer, NamesQualifyByCaseAndBeginning) {
    store.Hold(L"BIGipServer", L"1");
    for (const wchar_t* name : {L"jsessionid", L"JSESSIONID2", L"XJSESSIONID", L"JSESSIONI", L"ts01", L"Ts01",
                                L"T", L"XTS", L"bigipserver", L"BIGipServe", L"BIGIPSERVER", L""}) {
        store.Hold(name, L"2");
    }
    store.Hold(nullptr, L"3");
    EXPECT_EQ(Copied(), Lines{"BIGipServer"});
}

TEST_F(LoadBalancer, NameInAnotherCaseOrPlaceIsNone) {
    for (const wchar_t* name : {L"bigipserver", L"BIGIPSERVER", L"XBIGipServer", L"BIGipServe"}) {
        store.cookies.clear();
        store.Hold(name, L"1");
        store.Hold(L"JSESSIONID", L"2");
        EXPECT_EQ(Copied(), Lines{});
    }
}

TEST_F(LoadBalancer, SeveralCookiesOfOneNameAreAllCopied) {
    store.Hold(L"BIGipServer~a", L"1");
    store.Hold(L"BIGipServer~b", L"2");
    store.Hold(L"JSESSIONID", L"3");
    store.Hold(L"JSESSIONID", L"4");
    EXPECT_EQ(Copied(), (Lines{"BIGipServer~a", "BIGipServer~b", "JSESSIONID", "JSESSIONID"}));
}

TEST_F(LoadBalancer, CookieIsCopiedWithAllThatTheStoreKnows) {
    store.Hold(L"BIGipServer", L"1",
               INTERNET_COOKIE_IS_SECURE | INTERNET_COOKIE_HTTPONLY | INTERNET_COOKIE_SAME_SITE_LAX);
    store.cookies.back().ftExpires = {0xD53E8000, 0x019DB1DE}; // 1970-01-01
    store.cookies.back().fExpiresSet = TRUE;
    EXPECT_EQ(PrePopulate(),
              (Lines{kReads, "manager.CreateCookie BIGipServer=1 domain=server path=/",
                     "cookie.put_Expires 0.000000", "cookie.put_IsHttpOnly 1", "cookie.put_SameSite 1",
                     "cookie.put_IsSecure 1", "manager.AddOrUpdateCookie cookie", "cookie gone",
                     "InternetFreeCookies 1", "manager gone"}));
}

TEST_F(LoadBalancer, CookieWithoutDomainAndPathIsCopiedWithEmptyOnes) {
    store.Hold(L"BIGipServer", nullptr);
    store.cookies.back().pwszDomain = nullptr;
    store.cookies.back().pwszPath = nullptr;
    EXPECT_EQ(PrePopulate().at(1), "manager.CreateCookie BIGipServer= domain= path=");
}

TEST_F(LoadBalancer, CookiesAreTracedOneByOneWhereTracingIsOn) {
    store.Hold(L"BIGipServer", L"1");
    store.Hold(L"other", L"2");
    store.Hold(L"JSESSIONID", L"\u00E4", INTERNET_COOKIE_HTTPONLY);
    script.answers["manager.CreateCookie BIGipServer=1 domain=server path=/"] = E_FAIL;
    PrePopulateLoadBalancerCookies(L"http://b\u00FCro/",
                                   MakeFake<FakeCookieManager>(script, asked, "manager"), true);
    EXPECT_EQ(
        TakeTraceLines(),
        (Lines{"[0] Pre-populating LB cookies for http://b\xC3\xBCro/",
               "[0] Failed to create WebView2 cookie",
               "[0] Failed to process BIGipServer=1; domain=server; path=/; session; samesite=0",
               "[0] Processed JSESSIONID=\xC3\xA4; domain=server; path=/; httponly; session; samesite=0"}));
}

TEST_F(LoadBalancer, CookiesAreTracedAfterTheirCalls) {
    store.Hold(L"BIGipServer", L"1");
    EXPECT_EQ(PrePopulate(true),
              InTurn({Lines{kReads, "[0] Pre-populating LB cookies for http://server/page"},
                      Makes("BIGipServer", "1"),
                      Lines{"[0] Processed BIGipServer=1; domain=server; path=/; session; samesite=0",
                            "InternetFreeCookies 1", "manager gone"}}));
}

TEST_F(LoadBalancer, CookieThatCannotBeMadeOrStoredDoesNotStopTheOthers) {
    store.Hold(L"BIGipServer", L"1");
    store.Hold(L"JSESSIONID", L"2");
    script.answers["manager.CreateCookie BIGipServer=1 domain=server path=/"] = E_FAIL;
    EXPECT_EQ(PrePopulate(),
              InTurn({Lines{kReads, "manager.CreateCookie BIGipServer=1 domain=server path=/",
                            "[0] Failed to create WebView2 cookie"},
                      Makes("JSESSIONID", "2"), Lines{"InternetFreeCookies 2", "manager gone"}}));
    script.answers = {{"manager.AddOrUpdateCookie", E_FAIL}};
    PrePopulateLoadBalancerCookies(kUrl, MakeFake<FakeCookieManager>(script, asked, "manager"), true);
    EXPECT_EQ(
        TakeTraceLines(),
        (Lines{"[0] Pre-populating LB cookies for http://server/page",
               "[0] AddOrUpdateCookie failed for: BIGipServer=1; domain=server; path=/; session; samesite=0",
               "[0] Failed to process BIGipServer=1; domain=server; path=/; session; samesite=0",
               "[0] AddOrUpdateCookie failed for: JSESSIONID=2; domain=server; path=/; session; samesite=0",
               "[0] Failed to process JSESSIONID=2; domain=server; path=/; session; samesite=0"}));
}

TEST_F(LoadBalancer, StoreThatCannotBeReadCopiesNothing) {
    store.Hold(L"BIGipServer", L"1");
    store.getterResult = ERROR_INTERNET_INVALID_URL;
    EXPECT_EQ(PrePopulate(true), (Lines{kReads, "manager gone"}));
}

TEST_F(LoadBalancer, StoreThatIsEmptyCopiesNothing) {
    EXPECT_EQ(PrePopulate(true), (Lines{kReads, "manager gone"}));
}

TEST_F(LoadBalancer, WithoutAManagerEveryCookieIsTracedAsNotMade) {
    store.Hold(L"BIGipServer", L"1");
    store.Hold(L"TS", L"2");
    PrePopulateLoadBalancerCookies(kUrl, nullptr, false);
    EXPECT_EQ(TakeTranscript(), (Lines{kReads, "[0] Failed to create WebView2 cookie",
                                       "[0] Failed to create WebView2 cookie", "InternetFreeCookies 2"}));
}

TEST_F(LoadBalancer, TheManagerIsHeldWhileItsCookiesAreMadeAlsoWhereTheCallerLetsItGo) {
    store.Hold(L"BIGipServer", L"1");
    auto made = MakeFake<FakeCookieManager>(script, asked, "manager");
    FakeCookieManager& manager = *made.Get();
    ComPtr<ICoreWebView2CookieManager> callers = std::move(made);
    ULONG during = 0;
    script.during["manager.AddOrUpdateCookie"] = [&] {
        callers.Reset();
        during = manager.Count();
    };
    PrePopulateLoadBalancerCookies(kUrl, callers, false);
    EXPECT_EQ(during, 2U) << "one of the call, one of its call for the cookie";
    EXPECT_EQ(TakeTranscript().back(), "manager gone");
}

TEST_F(LoadBalancer, CookiesAreFreedAlsoWhenMemoryRunsOutOnTheWay) {
    store.Hold(L"BIGipServer", L"1");
    script.during["manager.CreateCookie"] = [] { throw std::bad_alloc(); };
    EXPECT_THROW(PrePopulate(), std::bad_alloc);
    EXPECT_EQ(TakeTranscript(), (Lines{kReads, "manager.CreateCookie BIGipServer=1 domain=server path=/",
                                       "InternetFreeCookies 1", "manager gone"}));
}

/// After the login. Calls of the runtime's objects are recorded where a test is about them.
class AfterLogin : public CookieCopy {
  protected:
    AfterLogin() { script.recordsCalls = false; }

    Lines Copy(const std::vector<std::optional<CookieContent>>& cookies, bool trace = false) {
        CopyCookiesToWinInet(MakeFake<FakeCookieList>(script, cookies).Get(), kUrl, trace);
        return TakeTranscript();
    }

    static std::string Writes(const std::string& name, const std::string& flags = "0x00000000",
                              const std::string& expires = "none") {
        return "InternetSetCookieEx2 http://server/page " + name + "=1 domain=server path=/ flags=" + flags +
               " expires=" + expires + " with 0x00001000";
    }
};

TEST_F(AfterLogin, NoCookiesAreTracedAsNone) {
    EXPECT_EQ(Copy({}), (Lines{"[0] No cookies found for http://server/page", "list gone"}));
}

TEST_F(AfterLogin, NoListIsNoCookies) {
    CopyCookiesToWinInet(nullptr, kUrl, false);
    EXPECT_EQ(TakeTranscript(), Lines{"[0] No cookies found for http://server/page"});
}

TEST_F(AfterLogin, ACountThatCannotBeReadIsNoCookies) {
    script.answers["list.get_Count"] = E_FAIL;
    EXPECT_EQ(Copy({CookieContent{L"SID", L"1"}}),
              (Lines{"[0] No cookies found for http://server/page", "list gone"}));
}

TEST_F(AfterLogin, ASessionCookieIsWrittenWithoutAnExpiry) {
    EXPECT_EQ(Copy({CookieContent{L"SID", L"1"}}), (Lines{Writes("SID"), "cookie0 gone", "list gone"}));
}

TEST_F(AfterLogin, ACookieIsWrittenWithAllThatTheRuntimeKnows) {
    EXPECT_EQ(Copy({CookieContent{L"SID", L"1", L"server", L"/", 0.0, TRUE,
                                  COREWEBVIEW2_COOKIE_SAME_SITE_KIND_STRICT, TRUE, FALSE}}),
              (Lines{Writes("SID", "0x00102001", "116444736000000000"), "cookie0 gone", "list gone"}));
}

TEST_F(AfterLogin, CookiesAreWrittenInTheirOrderEachBeforeTheNextIsRead) {
    EXPECT_EQ(Copy({CookieContent{L"c", L"1"}, CookieContent{L"a", L"1"}, CookieContent{L"b", L"1"}}),
              (Lines{Writes("c"), "cookie0 gone", Writes("a"), "cookie1 gone", Writes("b"), "cookie2 gone",
                     "list gone"}));
}

TEST_F(AfterLogin, OneThatCannotBeHadIsLeftOut) {
    script.answers["list.GetValueAtIndex 1"] = E_FAIL;
    EXPECT_EQ(
        Copy({CookieContent{L"a", L"1"}, CookieContent{L"b", L"1"}, std::nullopt, CookieContent{L"d", L"1"}}),
        (Lines{Writes("a"), "cookie0 gone", Writes("d"), "cookie3 gone", "list gone"}));
}

TEST_F(AfterLogin, OneThatCannotBeWrittenDoesNotStopTheOthers) {
    store.setterAnswers[L"b"] = {ERROR_ACCESS_DENIED, COOKIE_STATE_UNKNOWN};
    store.setterAnswers[L"c"] = {ERROR_SUCCESS, COOKIE_STATE_REJECT};
    EXPECT_EQ(Copy({CookieContent{L"a", L"1"}, CookieContent{L"b", L"1"}, CookieContent{L"c", L"1"},
                    CookieContent{L"d", L"1"}}),
              (Lines{Writes("a"), "cookie0 gone", Writes("b"), "[0] Cookie not accepted; res=5 state=0",
                     "cookie1 gone", Writes("c"), "[0] Cookie not accepted; res=0 state=5", "cookie2 gone",
                     Writes("d"), "cookie3 gone", "list gone"}));
}

TEST_F(AfterLogin, OneWhoseNameCannotBeReadIsTracedAsInvalid) {
    script.answers["cookie0.get_Name"] = E_FAIL;
    EXPECT_EQ(Copy({CookieContent{L"a", L"1"}, CookieContent{L"b", L"1"}}),
              (Lines{"[0] Invalid cookie", "cookie0 gone", Writes("b"), "cookie1 gone", "list gone"}));
}

TEST_F(AfterLogin, WhatOneCookieSaysIsNotLeftOverForTheNext) {
    CookieContent first{L"a", L"1", L"server", L"/", 0.0, TRUE, COREWEBVIEW2_COOKIE_SAME_SITE_KIND_STRICT};
    script.answers = {{"cookie1.get_Expires", E_FAIL},
                      {"cookie1.get_IsHttpOnly", E_FAIL},
                      {"cookie1.get_SameSite", E_FAIL}};
    EXPECT_EQ(Copy({first, CookieContent{L"b", L"1"}}).at(2), Writes("b", "0x00200000"));
}

TEST_F(AfterLogin, WhereTracingIsOnEachCookieAndThenTheStoreIsShown) {
    store.Hold(L"SID", L"1");
    EXPECT_EQ(
        Copy({CookieContent{L"SID", L"1"}, CookieContent{L"\u00E4", L"1"}}, true),
        (Lines{"[0] Cookie received: SID=1; domain=server; path=/; session; samesite=0", Writes("SID"),
               "cookie0 gone", "[0] Cookie received: \xC3\xA4=1; domain=server; path=/; session; samesite=0",
               Writes("\xC3\xA4"), "cookie1 gone", "[0] WinInet cookies for http://server/page", kReads,
               "[0] SID=1; domain=server; path=/; flags=0x0", "InternetFreeCookies 1", "list gone"}));
}

TEST_F(AfterLogin, WhereTracingIsOnTheStoreIsShownAlsoWithoutCookies) {
    EXPECT_EQ(Copy({}, true), (Lines{"[0] No cookies found for http://server/page",
                                     "[0] WinInet cookies for http://server/page", kReads, "list gone"}));
}

} // namespace
} // namespace kelda
