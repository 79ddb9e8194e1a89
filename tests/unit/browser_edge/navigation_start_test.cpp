// The navigation that the document script's completion starts: the cookies that go before it, its request, and its end
// in between.
#include <algorithm>
#include <functional>
#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "edge_browser_test.h"

using test_support::InTurn;
using test_support::Lines;
using test_support::ScopedVariable;

namespace kelda {
namespace {

class NavigationStart : public EdgeBrowserTest {
  protected:
    /// What is recorded of a start in whose `call` the owner closes the browser.
    Lines ClosedDuring(const std::string& call) {
        AwaitScript();
        runtime.script.during[call] = [this] {
            browser->Destroy();
            TakeTranscript();
        };
        EXPECT_EQ(runtime.CompleteScript(), S_OK);
        return TakeTranscript();
    }

    /// The same for an owner who deletes it.
    Lines DeletedDuring(const std::string& call) {
        AwaitScript();
        runtime.script.during[call] = [this] {
            browser.reset();
            TakeTranscript();
        };
        EXPECT_EQ(runtime.CompleteScript(), S_OK);
        return TakeTranscript();
    }
};

TEST_F(NavigationStart, TakesPlaceAlsoAfterASuccessOtherThanOk) {
    AwaitScript();
    EXPECT_EQ(runtime.CompleteScript(S_FALSE), S_OK);
    EXPECT_EQ(TakeTranscript(), kNavigates);
}

TEST_F(NavigationStart, IsOffAfterAFailedScriptRegistrationWhichLeavesNoScriptToRemove) {
    AwaitScript();
    EXPECT_EQ(runtime.CompleteScript(E_FAIL), S_OK);
    EXPECT_EQ(TakeTranscript(),
              Lines{"[0] Failed: ICoreWebView2AddScriptToExecuteOnDocumentCreatedCompletedHandler error "
                    "code: -2147467259"});
    browser->Destroy();
    const Lines teardown = TakeTranscript();
    EXPECT_EQ(std::count(teardown.begin(), teardown.end(), "webView.Stop"), 1);
    EXPECT_EQ(std::count(teardown.begin(), teardown.end(),
                         "webView.RemoveScriptToExecuteOnDocumentCreated script-1"),
              0);
}

TEST_F(NavigationStart, InCheckModeNavigatesToTheCheckFileWithNoSlashPutInBetween) {
    for (const std::string server : {"http://server/", "http://server"}) {
        browser = std::make_unique<ZanWebBrowserEdge>(server.c_str(), 1);
        Create();
        runtime.CompleteEnvironment();
        runtime.CompleteController();
        TakeTranscript();
        runtime.CompleteScript();
        const std::string url = server + "ARPublish/veltauth/check_authenticated_access.txt";
        EXPECT_EQ(TakeTranscript(),
                  (Lines{"InternetGetCookieEx2 " + url + " name=(null) with 0x00001000",
                         "environment2.CreateWebResourceRequest " + url +
                             " GET [Accept: */*\r\nPragma: no-cache\r\n]",
                         "webView15.NavigateWithWebResourceRequest request", "request gone"}));
        browser->Destroy();
    }
}

TEST_F(NavigationStart, TheLoadBalancersCookiesGoToTheRuntimeBeforeTheNavigation) {
    winInet.Hold(L"BIGipServer~pool", L"1");
    winInet.Hold(L"other", L"2");
    AwaitScript();
    EXPECT_EQ(runtime.CompleteScript(), S_OK);
    Lines expected = kNavigates;
    expected.insert(expected.begin() + 1,
                    {"cookieManager.CreateCookie BIGipServer~pool=1 domain=server path=/",
                     "cookie.put_Expires -1.000000", "cookie.put_IsHttpOnly 0", "cookie.put_SameSite 0",
                     "cookie.put_IsSecure 0", "cookieManager.AddOrUpdateCookie cookie", "cookie gone",
                     "InternetFreeCookies 2"});
    EXPECT_EQ(TakeTranscript(), expected);
}

TEST_F(NavigationStart, InAVerboseTraceTheStoreIsShownBeforeItsCookiesAreCopied) {
    const ScopedVariable variable(kImplementationVariable, L"trace");
    winInet.Hold(L"BIGipServer~pool", L"1");
    AwaitScript();
    EXPECT_EQ(runtime.CompleteScript(), S_OK);
    const std::string url = "http://server/qxcore/jsp/qvs/vislogon.jsp";
    EXPECT_EQ(TakeTraceLines(),
              (Lines{"[0] WinInet cookies before navigating to " + url, "[0] WinInet cookies for " + url,
                     "[0] BIGipServer~pool=1; domain=server; path=/; flags=0x0",
                     "[0] Pre-populating LB cookies for " + url,
                     "[0] Processed BIGipServer~pool=1; domain=server; path=/; session; samesite=0",
                     "[0] Navigating to " + url}));
}

TEST_F(NavigationStart, WithoutACookieManagerItNavigatesAllTheSame) {
    runtime.script.answers["webView2.get_CookieManager"] = E_FAIL;
    winInet.Hold(L"BIGipServer~pool", L"1");
    AwaitScript();
    EXPECT_EQ(runtime.CompleteScript(), S_OK);
    Lines expected = kNavigates;
    expected.insert(expected.begin() + 1, {"[0] Failed to create WebView2 cookie", "InternetFreeCookies 1"});
    EXPECT_EQ(TakeTranscript(), expected);
}

TEST_F(NavigationStart, TheFirstRequestThatCannotBeMadeIsTracedTogetherWithTheNavigationWithoutIt) {
    runtime.script.answers["environment2.CreateWebResourceRequest"] = E_INVALIDARG;
    runtime.script.answers["webView15.NavigateWithWebResourceRequest"] = E_POINTER;
    AwaitScript();
    EXPECT_EQ(runtime.CompleteScript(), S_OK);
    EXPECT_EQ(TakeTraceLines(),
              (Lines{"[0] Failed: CreateWebResourceRequest error code: -2147024809",
                     "[0] Failed: NavigateWithWebResourceRequest error code: -2147467261"}));
}

/// What is left of the copy of one cookie that was just being created, and nothing after it.
const Lines kEndsCopy = {
    "cookie.put_Expires -1.000000",
    "cookie.put_IsHttpOnly 0",
    "cookie.put_SameSite 0",
    "cookie.put_IsSecure 0",
    "cookieManager.AddOrUpdateCookie cookie",
    "cookie gone",
};

TEST_F(NavigationStart, EndsQuietlyWhereTheBrowserIsClosedWhileItGetsItsCookies) {
    const ScopedVariable variable(kImplementationVariable, L"trace");
    winInet.Hold(L"BIGipServer~pool", L"1");
    EXPECT_EQ(ClosedDuring("cookieManager.CreateCookie"),
              InTurn({kEndsCopy, Lines{"[0] Processed BIGipServer~pool=1; domain=server; path=/; session; "
                                       "samesite=0",
                                       "InternetFreeCookies 1"}}));
}

TEST_F(NavigationStart, EndsQuietlyWhereTheBrowserIsDeletedWhileItGetsItsCookies) {
    winInet.Hold(L"BIGipServer~pool", L"1");
    EXPECT_EQ(DeletedDuring("cookieManager.CreateCookie"),
              InTurn({kEndsCopy, Lines{"InternetFreeCookies 1", "cookieManager gone"}}));
}

TEST_F(NavigationStart, EndsQuietlyWhereTheBrowserIsClosedWhileItMakesItsRequest) {
    EXPECT_EQ(ClosedDuring("environment2.CreateWebResourceRequest"),
              (Lines{"environment2 gone", "request gone"}));
    runtime.script.answers["environment2.CreateWebResourceRequest"] = E_ABORT;
    EXPECT_EQ(ClosedDuring("environment2.CreateWebResourceRequest"), Lines{"environment2 gone"});
}

TEST_F(NavigationStart, EndsQuietlyWhereTheBrowserIsDeletedWhileItMakesItsRequest) {
    EXPECT_EQ(DeletedDuring("environment2.CreateWebResourceRequest"),
              (Lines{"environment2 gone", "request gone"}));
    runtime.script.answers["environment2.CreateWebResourceRequest"] = E_ABORT;
    EXPECT_EQ(DeletedDuring("environment2.CreateWebResourceRequest"), Lines{"environment2 gone"});
}

TEST_F(NavigationStart, EndsQuietlyWhereTheBrowserIsDeletedInATraceLine) {
    const ScopedVariable variable(kImplementationVariable, L"trace");
    winInet.Hold(L"BIGipServer~pool", L"1");
    for (const char* const text : {"WinInet cookies before navigating to ", "WinInet cookies for ",
                                   "Pre-populating LB cookies for ", "Navigating to "}) {
        AwaitScript();
        InsideTraceLine(text, [this] { browser.reset(); });
        EXPECT_EQ(runtime.CompleteScript(), S_OK);
        EXPECT_EQ(browser, nullptr) << text;
        const Lines lines = TakeTranscript();
        EXPECT_EQ(std::count(lines.begin(), lines.end(), kNavigates[1]), 0) << text;
    }
}

TEST_F(NavigationStart, EndsQuietlyWhereTheBrowserIsDeletedInTheTraceLineOfAFailure) {
    runtime.script.answers["environment2.CreateWebResourceRequest"] = E_INVALIDARG;
    AwaitScript();
    InsideTraceLine("CreateWebResourceRequest", [this] { browser.reset(); });
    EXPECT_EQ(runtime.CompleteScript(), S_OK);
    const Lines lines = TakeTranscript();
    EXPECT_EQ(std::count(lines.begin(), lines.end(), "webView15.NavigateWithWebResourceRequest (null)"), 0);
}

TEST_F(NavigationStart, IsLeftToTheNewBrowserWhereItIsCreatedAgainMeanwhile) {
    AwaitScript();
    runtime.script.during["environment2.CreateWebResourceRequest"] = [this] {
        browser->Destroy();
        Create();
        TakeTranscript();
    };
    EXPECT_EQ(runtime.CompleteScript(), S_OK);
    EXPECT_EQ(TakeTranscript(), (Lines{"environment2 gone", "request gone"}));
    runtime.script.during.clear();
    runtime.CompleteEnvironment();
    runtime.CompleteController();
    TakeTranscript();
    EXPECT_EQ(runtime.CompleteScript(), S_OK);
    EXPECT_EQ(TakeTranscript(), kNavigates);
}

} // namespace
} // namespace kelda
