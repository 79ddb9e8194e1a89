// Teardown: its calls in order, in every state, twice, from inside itself, and what comes after it.
#include <string>
#include <utility>

#include <gtest/gtest.h>

#include "edge_browser_test.h"
#include "tests/support/webview2/fake_event_args.h"

using Microsoft::WRL::ComPtr;
using test_support::InTurn;
using test_support::Lines;
using test_support::MakeFake;

namespace kelda {
namespace {

using Teardown = EdgeBrowserTest;

const Lines kRemovals = {
    "webView14.remove_ServerCertificateErrorDetected its token",
    "webView5.remove_ClientCertificateRequested its token",
    "webView.remove_WebResourceRequested its token",
    "webView.remove_NavigationStarting its token",
    "webView15.remove_WebResourceResponseReceived its token",
    "webView15.remove_BasicAuthenticationRequested its token",
    "webView.remove_NavigationCompleted its token",
    "webView.RemoveHostObjectFromScript external",
};

const Lines kReleases = {
    "controller gone", "webView gone",   "webView2 gone",    "webView5 gone",
    "webView14 gone",  "webView15 gone", "environment gone", "environment2 gone",
};

const Lines kWhole = InTurn(
    {kRemovals,
     Lines{"webView.RemoveScriptToExecuteOnDocumentCreated script-1", "webView.Stop", "controller.Close"},
     kReleases});

TEST_F(Teardown, OfANavigatingBrowserGoesThroughItsCallsInOrder) {
    BringUp();
    browser->Destroy();
    EXPECT_EQ(TakeTranscript(), kWhole);
}

TEST_F(Teardown, ASecondOneFindsNothingToDo) {
    BringUp();
    browser->Destroy();
    TakeTranscript();
    browser->Destroy();
    EXPECT_EQ(TakeTranscript(), Lines{});
}

TEST_F(Teardown, BeforeCreationDoesNothing) {
    MakeBrowser();
    browser->Destroy();
    EXPECT_EQ(TakeTranscript(), Lines{});
}

TEST_F(Teardown, WhileTheEnvironmentIsPendingDoesNothing) {
    AwaitEnvironment();
    browser->Destroy();
    EXPECT_EQ(TakeTranscript(), Lines{});
}

TEST_F(Teardown, BeforeTheControllerHasArrivedOnlyReleases) {
    AwaitController();
    browser->Destroy();
    EXPECT_EQ(TakeTranscript(), (Lines{"environment gone", "environment2 gone"}));
}

TEST_F(Teardown, BeforeTheScriptIsRegisteredHasNoScriptToRemove) {
    AwaitScript();
    browser->Destroy();
    EXPECT_EQ(TakeTranscript(), InTurn({kRemovals, Lines{"webView.Stop", "controller.Close"}, kReleases}));
}

TEST_F(Teardown, AfterAScriptWithoutAnIdHasNoScriptToRemove) {
    MakeBrowser();
    Create();
    runtime.CompleteEnvironment();
    runtime.CompleteController();
    runtime.CompleteScript(S_OK, nullptr);
    TakeTranscript();
    browser->Destroy();
    EXPECT_EQ(TakeTranscript(), InTurn({kRemovals, Lines{"webView.Stop", "controller.Close"}, kReleases}));
}

TEST_F(Teardown, TheLineOfCloseTellsTheStatusOfStopAndTheRestStillHappens) {
    BringUp();
    runtime.script.answers["webView.Stop"] = E_ABORT;
    browser->Destroy();
    Lines expected = kWhole;
    expected.insert(expected.begin() + 11, "[0] Failed: WebView2 Close() error code: -2147467260");
    expected.insert(expected.begin() + 10, "[0] Failed: WebView2 Stop() error code: -2147467260");
    EXPECT_EQ(TakeTranscript(), expected);
}

TEST_F(Teardown, AFailureOfCloseItselfIsNotTraced) {
    BringUp();
    runtime.script.answers["controller.Close"] = E_FAIL;
    browser->Destroy();
    EXPECT_EQ(TakeTranscript(), kWhole);
}

TEST_F(Teardown, WithoutAWebViewTheControllerIsClosedAllTheSame) {
    runtime.script.answers["controller.get_CoreWebView2"] = E_FAIL;
    AwaitScript();
    browser->Destroy();
    EXPECT_EQ(TakeTranscript(),
              (Lines{"controller.Close", "controller gone", "environment gone", "environment2 gone"}));
}

TEST_F(Teardown, FromInsideCloseFindsNothingToDo) {
    BringUp();
    runtime.script.during["controller.Close"] = [this] {
        browser->Destroy();
        browser->Resize();
    };
    browser->Destroy();
    Lines expected = kWhole;
    expected.insert(expected.begin() + 11, "GetClientRect of the parent");
    EXPECT_EQ(TakeTranscript(), expected);
}

TEST_F(Teardown, DeletedFromInsideCloseItStillReleasesEverything) {
    BringUp();
    runtime.script.during["controller.Close"] = [this] { browser.reset(); };
    browser->Destroy();
    Lines expected = kWhole;
    expected.insert(expected.begin() + 11, {"CoUninitialize", "cookieManager gone"});
    EXPECT_EQ(TakeTranscript(), expected);
}

TEST_F(Teardown, DeletedFromInsideStopItStillClosesAndReleasesEverything) {
    BringUp();
    runtime.script.during["webView.Stop"] = [this] { browser.reset(); };
    browser->Destroy();
    Lines expected = kWhole;
    expected.insert(expected.begin() + 10, {"CoUninitialize", "cookieManager gone"});
    EXPECT_EQ(TakeTranscript(), expected);
}

TEST_F(Teardown, CreatedAgainFromInsideCloseTheNewBrowserIsLeftAlone) {
    BringUp();
    runtime.script.during["controller.Close"] = [this] { Create(); };
    browser->Destroy();
    EXPECT_EQ(runtime.CompleteEnvironment(), S_OK);
    EXPECT_EQ(runtime.CompleteController(), S_OK);
    EXPECT_EQ(runtime.CompleteScript(), S_OK);
    EXPECT_EQ(TakeTranscript().back(), "request gone");
}

TEST_F(Teardown, ASecondOneFromInsideStopDoesNotSpoilTheFirst) {
    BringUp();
    runtime.script.during["webView.Stop"] = [this] { browser->Destroy(); };
    browser->Destroy();
    EXPECT_EQ(TakeTranscript(), kWhole);
}

TEST_F(Teardown, AnEnvironmentThatArrivesAfterItIsAnsweredQuietly) {
    MakeBrowser();
    Create();
    browser->Destroy();
    TakeTranscript();
    EXPECT_EQ(runtime.CompleteEnvironment(), S_OK);
    EXPECT_EQ(TakeTranscript(), Lines{"environment gone"});
}

TEST_F(Teardown, AFailureThatArrivesAfterItIsAnsweredQuietly) {
    MakeBrowser();
    Create();
    browser->Destroy();
    TakeTranscript();
    EXPECT_EQ(runtime.CompleteEnvironment(E_ABORT), S_OK);
    EXPECT_EQ(TakeTranscript(), Lines{kSecondTry});
}

TEST_F(Teardown, AFailureThatArrivesAfterItsDeletionIsTriedAgainWithWhatTheBrowserAskedFor) {
    const test_support::ScopedVariable folder(kBrowserFolderVariable, L"C:\\a runtime");
    MakeBrowser();
    Create();
    browser.reset();
    TakeTranscript();
    EXPECT_EQ(runtime.CompleteEnvironment(E_ABORT), S_OK);
    EXPECT_EQ(TakeTranscript(), Lines{SecondTry("C:\\a runtime")});
}

TEST_F(Teardown, AControllerThatArrivesAfterItIsAnsweredQuietly) {
    AwaitController();
    browser->Destroy();
    TakeTranscript();
    EXPECT_EQ(runtime.CompleteController(), S_OK);
    EXPECT_EQ(TakeTranscript(), Lines{"controller gone"});
}

TEST_F(Teardown, AScriptThatIsRegisteredAfterItStartsNoNavigation) {
    AwaitScript();
    browser->Destroy();
    TakeTranscript();
    EXPECT_EQ(runtime.CompleteScript(), S_OK);
    EXPECT_EQ(TakeTranscript(), Lines{});
}

TEST_F(Teardown, CompletionsAfterDeletionAreAnsweredQuietly) {
    MakeBrowser();
    Create();
    browser.reset();
    TakeTranscript();
    EXPECT_EQ(runtime.CompleteEnvironment(), S_OK);

    AwaitController();
    browser.reset();
    TakeTranscript();
    EXPECT_EQ(runtime.CompleteController(), S_OK);
    EXPECT_EQ(TakeTranscript(), Lines{"controller gone"});

    AwaitScript();
    browser.reset();
    TakeTranscript();
    EXPECT_EQ(runtime.CompleteScript(), S_OK);
    EXPECT_EQ(TakeTranscript(), Lines{});
}

TEST_F(Teardown, AnEventWhoseHandlerCouldNotBeRemovedIsAnsweredQuietly) {
    BringUp();
    runtime.script.answers["webView.remove_NavigationCompleted"] = E_FAIL;
    browser->Destroy();
    TakeTranscript();
    const auto args = MakeFake<test_support::FakeNavigationCompletedArgs>(runtime.script);
    auto* const handler =
        runtime.webView.HandlerOf<ICoreWebView2NavigationCompletedEventHandler>("NavigationCompleted");
    ASSERT_NE(handler, nullptr);
    EXPECT_EQ(handler->Invoke(nullptr, args.Get()), S_OK);
    EXPECT_EQ(TakeTranscript(), Lines{});
}

TEST_F(Teardown, AReportOfThePageAfterItReachesNobody) {
    BringUp();
    const ComPtr<IDispatch> hostObject = runtime.webView.hostObject;
    browser->Destroy();
    TakeTranscript();
    CallPageObject(hostObject.Get());
    EXPECT_EQ(TakeTranscript(), (Lines{kPropertyRead, kCalled, kAsksForCookies}));
    EXPECT_EQ(runtime.CompleteCookies({test_support::CookieContent{L"SID", L"1"}}), S_OK);
    EXPECT_EQ(TakeTranscript(), Lines{"list gone"});
    EXPECT_TRUE(timers.empty());
}

TEST_F(Teardown, ABrowserThatIsCreatedAgainAfterItComesUpAgain) {
    BringUp();
    browser->Destroy();
    Create();
    runtime.CompleteEnvironment();
    runtime.CompleteController();
    runtime.CompleteScript();
    EXPECT_EQ(TakeTranscript().back(), "request gone");
    const auto args = MakeFake<test_support::FakeNavigationCompletedArgs>(runtime.script);
    runtime.webView.HandlerOf<ICoreWebView2NavigationCompletedEventHandler>("NavigationCompleted")
        ->Invoke(nullptr, args.Get());
    EXPECT_EQ(TakeTranscript(), (Lines{"args.get_IsSuccess", "OnNavigationCompleted"}));
}

TEST_F(Teardown, TheFirstEnvironmentOfABrowserThatIsCreatedTwiceIsAnsweredQuietly) {
    MakeBrowser();
    Create();
    const auto first = std::exchange(runtime.environmentCreated, nullptr);
    Create();
    TakeTranscript();
    EXPECT_EQ(first->Invoke(E_FAIL, nullptr), S_OK);
    EXPECT_EQ(TakeTranscript(), Lines{});
}

} // namespace
} // namespace kelda
