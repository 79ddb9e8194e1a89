// The report of a session: the cookies on their way into WinINet, the toolkit's timer, and the owner being told once.
#include <algorithm>
#include <functional>
#include <new>
#include <stdexcept>
#include <string>
#include <utility>

#include <gtest/gtest.h>

#include "edge_browser_test.h"

using test_support::CookieContent;
using test_support::InTurn;
using test_support::Lines;
using test_support::ScopedVariable;

namespace kelda {
namespace {

constexpr const char* kNoCookies = "[0] No cookies found for http://server/qxcore/jsp/qvs/vislogon.jsp";

/// The write of the cookie "SID=1" of the runtime's.
constexpr const char* kWritesSid =
    "InternetSetCookieEx2 http://server/qxcore/jsp/qvs/vislogon.jsp SID=1 domain=server path=/ "
    "flags=0x00000000 expires=none with 0x00001000";

const CookieContent kSid = {L"SID", L"1"};

class Session : public EdgeBrowserTest {
  protected:
    /// The page of a new browser reports its session; what was recorded is dropped.
    void AwaitCookies() {
        BringUp();
        EXPECT_EQ(CallPageObject(), S_OK);
        TakeTranscript();
    }
    void AwaitTimer() {
        AwaitCookies();
        EXPECT_EQ(runtime.CompleteCookies(), S_OK);
        TakeTranscript();
    }

    /// A browser whose owner is `other`, with the page's report done as far as the timer.
    void AwaitTimerOf(ZanWebBrowser::Callback& other) {
        BringUpFor(&other);
        CallPageObject();
        runtime.CompleteCookies();
        TakeTranscript();
    }

    Lines LinesOfTheTimer() {
        FireTimer();
        return TakeTranscript();
    }
};

/// An owner that does something when it is told of the session.
class ActingOwner final : public ZanWebBrowser::Callback {
  public:
    explicit ActingOwner(std::function<void()> act) : act_(std::move(act)) {}
    void OnNavigationCompleted() override {}
    void OnSessionAuthenticated() override {
        test_support::Record("OnSessionAuthenticated");
        act_();
    }
    void OnSessionAuthenticatedFailed() override {}

  private:
    std::function<void()> act_;
};

TEST_F(Session, CopiesItsCookiesAndReachesTheOwnerFromTheMessageLoop) {
    BringUp();
    EXPECT_EQ(CallPageObject(), S_OK);
    EXPECT_EQ(TakeTranscript(), (Lines{kPropertyRead, kCalled, kAsksForCookies}));
    EXPECT_EQ(runtime.CompleteCookies({kSid}), S_OK);
    EXPECT_EQ(TakeTranscript(),
              (Lines{"list.get_Count", "list.GetValueAtIndex 0", "cookie0.get_Name", "cookie0.get_Value",
                     "cookie0.get_Domain", "cookie0.get_Path", "cookie0.get_Expires",
                     "cookie0.get_IsHttpOnly", "cookie0.get_SameSite", "cookie0.get_IsSecure",
                     "cookie0.get_IsSession", kWritesSid, "cookie0 gone", "ui_set_timer 1", "list gone"}));
    EXPECT_EQ(LinesOfTheTimer(), kReport);
}

TEST_F(Session, WithoutCookiesIsReportedAllTheSame) {
    AwaitCookies();
    EXPECT_EQ(runtime.CompleteCookies(), S_OK);
    EXPECT_EQ(TakeTranscript(), (Lines{"list.get_Count", kNoCookies, "ui_set_timer 1", "list gone"}));
    EXPECT_EQ(LinesOfTheTimer(), kReport);
}

TEST_F(Session, WithoutAListIsReportedAllTheSame) {
    AwaitCookies();
    EXPECT_EQ(std::exchange(runtime.webView.cookiesAsked.at(0), nullptr)->Invoke(S_OK, nullptr), S_OK);
    EXPECT_EQ(TakeTranscript(), (Lines{kNoCookies, "ui_set_timer 1"}));
    EXPECT_EQ(LinesOfTheTimer(), kReport);
}

TEST_F(Session, WithACookieThatCannotBeWrittenIsReportedAllTheSame) {
    winInet.setterAnswer = {ERROR_INVALID_PARAMETER, COOKIE_STATE_UNKNOWN};
    AwaitCookies();
    EXPECT_EQ(runtime.CompleteCookies({kSid}), S_OK);
    EXPECT_EQ(TakeTraceLines(), Lines{"[0] Cookie not accepted; res=87 state=0"});
    EXPECT_EQ(LinesOfTheTimer(), kReport);
}

TEST_F(Session, InAVerboseTraceShowsWhatIsCopiedAndWhatTheStoreThenHolds) {
    const ScopedVariable variable(kImplementationVariable, L"trace");
    winInet.Hold(L"SID", L"1", 0x2000);
    AwaitCookies();
    EXPECT_EQ(runtime.CompleteCookies({kSid}), S_OK);
    EXPECT_EQ(TakeTraceLines(),
              (Lines{"[0] Cookie received: SID=1; domain=server; path=/; session; samesite=0",
                     "[0] WinInet cookies for http://server/qxcore/jsp/qvs/vislogon.jsp",
                     "[0] SID=1; domain=server; path=/; flags=0x2000"}));
    EXPECT_EQ(LinesOfTheTimer(), kReport);
}

TEST_F(Session, WhoseCookiesCannotBeReadIsNotReportedUntilThePageCallsAgain) {
    AwaitCookies();
    EXPECT_EQ(runtime.CompleteCookies({}, E_ABORT), E_ABORT);
    EXPECT_EQ(TakeTranscript(),
              Lines{"[0] Failed: ICoreWebView2GetCookiesCompletedHandler error code: -2147467260"});
    EXPECT_TRUE(timers.empty());
    CallPageObject();
    runtime.CompleteCookies();
    TakeTranscript();
    EXPECT_EQ(LinesOfTheTimer(), kReport);
}

TEST_F(Session, WhoseCookiesCannotBeAskedForIsNotReportedUntilThePageCallsAgain) {
    BringUp();
    runtime.script.answers["cookieManager.GetCookies"] = E_FAIL;
    EXPECT_EQ(CallPageObject(), S_OK);
    EXPECT_EQ(TakeTranscript(), (Lines{kPropertyRead, kCalled, kAsksForCookies,
                                       "[0] Failed: GetCookies error code: -2147467259"}));
    runtime.script.answers.clear();
    CallPageObject();
    runtime.CompleteCookies();
    TakeTranscript();
    EXPECT_EQ(LinesOfTheTimer(), kReport);
}

TEST_F(Session, WithoutACookieManagerIsTracedAsFailed) {
    runtime.script.answers["webView2.get_CookieManager"] = E_NOTIMPL;
    BringUp();
    EXPECT_EQ(CallPageObject(), S_OK);
    EXPECT_EQ(TakeTranscript(),
              (Lines{kPropertyRead, kCalled, "[0] Failed: GetCookies error code: -2147467261"}));
}

TEST_F(Session, ReportedAgainUntilTheOwnerIsToldAsksForItsCookiesOnce) {
    AwaitCookies();
    CallPageObject();
    EXPECT_EQ(TakeTranscript(), (Lines{kPropertyRead, kCalled}));
    runtime.CompleteCookies({kSid});
    TakeTranscript();
    CallPageObject();
    EXPECT_EQ(TakeTranscript(), (Lines{kPropertyRead, kCalled}));
    EXPECT_EQ(LinesOfTheTimer(), kReport);
}

TEST_F(Session, ReportedAgainAfterTheOwnerWasToldIsCopiedAgainAndToldToNobody) {
    AwaitTimer();
    FireTimer();
    TakeTranscript();
    CallPageObject();
    EXPECT_EQ(TakeTranscript(), (Lines{kPropertyRead, kCalled, kAsksForCookies}));
    runtime.CompleteCookies({kSid});
    const Lines lines = TakeTranscript();
    EXPECT_EQ(std::count(lines.begin(), lines.end(), kWritesSid), 1);
    EXPECT_EQ(LinesOfTheTimer(), Lines{});
}

TEST_F(Session, OfABrowserThatIsCreatedAgainDoesNotWaitForTheReportBefore) {
    AwaitCookies();
    Create();
    runtime.CompleteEnvironment();
    runtime.CompleteController();
    runtime.CompleteScript();
    TakeTranscript();
    CallPageObject();
    EXPECT_EQ(TakeTranscript(), (Lines{kPropertyRead, kCalled, kAsksForCookies}));
}

TEST_F(Session, OfACheckIsOfTheAddressOfTheCheck) {
    BringUp(1);
    CallPageObject();
    EXPECT_EQ(TakeTranscript().back(),
              "cookieManager.GetCookies http://serverARPublish/veltauth/check_authenticated_access.txt");
    runtime.CompleteCookies();
    EXPECT_EQ(TakeTraceLines(), Lines{"[0] No cookies found for "
                                      "http://serverARPublish/veltauth/check_authenticated_access.txt"});
}

TEST_F(Session, WithoutAnOwnerIsCopiedAndToldToNobody) {
    BringUpFor(nullptr);
    CallPageObject();
    TakeTranscript();
    runtime.CompleteCookies({kSid});
    const Lines lines = TakeTranscript();
    EXPECT_EQ(std::count(lines.begin(), lines.end(), kWritesSid), 1);
    EXPECT_EQ(LinesOfTheTimer(), Lines{});
}

TEST_F(Session, WithTheWordParseIsReportedAtOnceWithoutItsCookies) {
    const ScopedVariable variable(kImplementationVariable, L"parse");
    BringUp();
    CallPageObject();
    EXPECT_EQ(TakeTranscript(), InTurn({Lines{kPropertyRead, kCalled}, kReport}));
    CallPageObject();
    EXPECT_EQ(TakeTranscript(), (Lines{kPropertyRead, kCalled}));
}

TEST_F(Session, WithTheWordsParseAndTraceTheStoreIsShownBeforeTheReport) {
    const ScopedVariable variable(kImplementationVariable, L"parse trace");
    BringUp();
    winInet.Hold(L"SID", L"1");
    CallPageObject();
    EXPECT_EQ(TakeTranscript(),
              InTurn({Lines{kPropertyRead, kCalled,
                            "[0] WinInet cookies for http://server/qxcore/jsp/qvs/vislogon.jsp", kReadsStore,
                            "[0] SID=1; domain=server; path=/; flags=0x0", "InternetFreeCookies 1"},
                      kReport}));
}

TEST_F(Session, IsCopiedOrNotAsTheWordsSaidWhenTheBrowserWasMade) {
    BringUp();
    const ScopedVariable variable(kImplementationVariable, L"parse trace");
    CallPageObject();
    EXPECT_EQ(TakeTranscript(), (Lines{kPropertyRead, kCalled, kAsksForCookies}));
}

TEST_F(Session, WhoseTimerCannotBeSetIsTracedAndNotReportedUntilThePageCallsAgain) {
    AwaitCookies();
    timerResult = 7;
    timerIsSet = false;
    EXPECT_EQ(runtime.CompleteCookies(), S_OK);
    EXPECT_EQ(TakeTranscript(), (Lines{"list.get_Count", kNoCookies, "ui_set_timer 1",
                                       "[0] Failed: ui_set_timer error code: 7", "list gone"}));
    timerResult = 0;
    timerIsSet = true;
    CallPageObject();
    runtime.CompleteCookies();
    TakeTranscript();
    EXPECT_EQ(LinesOfTheTimer(), kReport);
}

TEST_F(Session, WhoseTimerIsAnsweredWithANumberIsReportedAllTheSame) {
    AwaitCookies();
    timerResult = 7;
    runtime.CompleteCookies();
    TakeTranscript();
    EXPECT_EQ(LinesOfTheTimer(), kReport);
}

TEST_F(Session, WhoseBrowserIsDeletedInTheTraceOfTheReportIsToldToNobody) {
    AwaitTimer();
    InsideTraceLine("OnSessionAuthenticated();", [this] { browser.reset(); });
    const Lines lines = LinesOfTheTimer();
    EXPECT_EQ(browser, nullptr);
    EXPECT_EQ(lines.front(), "[0] OnSessionAuthenticated();");
    EXPECT_EQ(std::count(lines.begin(), lines.end(), "OnSessionAuthenticated"), 0);
}

TEST_F(Session, WhoseTimerFiresAfterTeardownIsToldToNobody) {
    AwaitTimer();
    browser->Destroy();
    TakeTranscript();
    EXPECT_EQ(LinesOfTheTimer(), Lines{});
}

TEST_F(Session, WhoseTimerFiresAfterDeletionIsToldToNobody) {
    AwaitTimer();
    browser.reset();
    TakeTranscript();
    EXPECT_EQ(LinesOfTheTimer(), Lines{});
}

TEST_F(Session, OfABrowserThatHasBeenCreatedAgainSinceIsToldToNobody) {
    AwaitTimer();
    browser->Destroy();
    Create();
    TakeTranscript();
    EXPECT_EQ(LinesOfTheTimer(), Lines{});
}

TEST_F(Session, WhoseCookiesArriveAfterTeardownOrDeletionIsNotCopied) {
    for (const bool deleted : {false, true}) {
        AwaitCookies();
        browser->Destroy();
        if (deleted) {
            browser.reset();
        }
        TakeTranscript();
        EXPECT_EQ(runtime.CompleteCookies({kSid}), S_OK);
        EXPECT_EQ(TakeTranscript(), Lines{"list gone"});
        EXPECT_TRUE(timers.empty());
    }
}

TEST_F(Session, WhoseBrowserIsDeletedWhileItsCookiesAreWrittenIsCopiedAndToldToNobody) {
    AwaitCookies();
    winInet.duringSet = [this] { browser.reset(); };
    EXPECT_EQ(runtime.CompleteCookies({kSid, CookieContent{L"SID", L"1"}}), S_OK);
    const Lines lines = TakeTranscript();
    EXPECT_EQ(std::count(lines.begin(), lines.end(), kWritesSid), 2);
    EXPECT_EQ(LinesOfTheTimer(), Lines{});
}

TEST_F(Session, MayEndTheBrowserWhenTheOwnerIsTold) {
    for (const bool deleted : {false, true}) {
        ActingOwner closing([&] {
            browser->Destroy();
            if (deleted) {
                browser.reset();
            }
        });
        AwaitTimerOf(closing);
        FireTimer();
        EXPECT_EQ(runtime.webView.hostObject, nullptr);
        EXPECT_EQ(browser == nullptr, deleted);
    }
}

TEST_F(Session, MayCloseTheBrowserFromInsideThePagesCall) {
    const ScopedVariable variable(kImplementationVariable, L"parse");
    ActingOwner closing([this] { browser->Destroy(); });
    BringUpFor(&closing);
    const Microsoft::WRL::ComPtr<IDispatch> page = runtime.webView.hostObject;
    EXPECT_EQ(CallPageObject(page.Get()), S_OK);
    EXPECT_EQ(runtime.webView.hostObject, nullptr);
}

TEST_F(Session, ReportedAgainFromInsideTheReportReachesNobody) {
    const ScopedVariable variable(kImplementationVariable, L"parse");
    ActingOwner asking([this] { CallPageObject(); });
    BringUpFor(&asking);
    CallPageObject();
    EXPECT_EQ(TakeTranscript(),
              InTurn({Lines{kPropertyRead, kCalled}, kReport, Lines{kPropertyRead, kCalled}}));
}

TEST_F(Session, WhoseOwnerThrowsDoesNotReachTheToolkit) {
    ActingOwner throwing([] { throw std::runtime_error("no owner today"); });
    AwaitTimerOf(throwing);
    EXPECT_EQ(LinesOfTheTimer(),
              InTurn({kReport, Lines{"[0] Failed: no owner today error code: -2147467259"}}));
}

TEST_F(Session, WhoseOwnerThrowsDoesNotReachThePage) {
    const ScopedVariable variable(kImplementationVariable, L"parse");
    ActingOwner throwing([] { throw std::runtime_error("no owner today"); });
    BringUpFor(&throwing);
    EXPECT_EQ(CallPageObject(), E_FAIL);
    EXPECT_EQ(TakeTraceLines().back(), "[0] Failed: no owner today error code: -2147467259");
}

TEST_F(Session, WithoutMemoryForTheCopyTellsTheRuntimeAndSetsNoTimer) {
    AwaitCookies();
    runtime.script.during["list.get_Count"] = [] { throw std::bad_alloc(); };
    EXPECT_EQ(runtime.CompleteCookies({kSid}), E_OUTOFMEMORY);
    EXPECT_EQ(TakeTraceLines(), Lines{"[0] Failed: std::bad_alloc error code: -2147024882"});
    EXPECT_TRUE(timers.empty());
}

} // namespace
} // namespace kelda
