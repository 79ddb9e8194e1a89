// COM's initialisation and end, and the order in which destruction releases what the browser holds.
#include <utility>

#include <gtest/gtest.h>

#include "edge_browser_test.h"

using test_support::Lines;

namespace kelda {
namespace {

using Com = EdgeBrowserTest;

TEST_F(Com, EveryOutcomeOfItsInitialisationHasItsLineOrNone) {
    const std::pair<HRESULT, Lines> outcomes[] = {
        {S_OK, {"[0] The COM library was initialized successfully"}},
        {S_FALSE, {"[0] The COM library is already initialized on this thread"}},
        {RPC_E_CHANGED_MODE, {"[0] The COM library is already initialized as MTA"}},
        {E_OUTOFMEMORY, {}},
        {E_INVALIDARG, {}},
    };
    MakeBrowser();
    for (const auto& [result, lines] : outcomes) {
        initializeResult = result;
        browser->InitializeCom();
        Lines expected{"CoInitializeEx 2"};
        expected.insert(expected.end(), lines.begin(), lines.end());
        EXPECT_EQ(TakeTranscript(), expected);
    }
}

TEST_F(Com, ItIsEndedOnceWhateverItsInitialisationReturned) {
    for (const HRESULT result : {S_OK, S_FALSE, static_cast<HRESULT>(RPC_E_CHANGED_MODE)}) {
        initializeResult = result;
        MakeBrowser();
        browser->InitializeCom();
        TakeTranscript();
        browser.reset();
        EXPECT_EQ(TakeTranscript(), Lines{"CoUninitialize"});
    }
}

TEST_F(Com, ItIsEndedAlsoWhenItWasNeverInitialised) {
    MakeBrowser();
    browser.reset();
    EXPECT_EQ(TakeTranscript(), Lines{"CoUninitialize"});
}

TEST_F(Com, DestructionEndsItAndThenReleasesFromTheLastObjectToTheFirst) {
    BringUp();
    browser.reset();
    EXPECT_EQ(TakeTranscript(), (Lines{"CoUninitialize", "cookieManager gone", "environment2 gone",
                                       "environment gone", "webView15 gone", "webView14 gone",
                                       "webView5 gone", "webView2 gone", "webView gone", "controller gone"}));
}

TEST_F(Com, AfterTeardownOnlyTheCookieManagerIsLeftToRelease) {
    BringUp();
    browser->Destroy();
    TakeTranscript();
    browser.reset();
    EXPECT_EQ(TakeTranscript(), (Lines{"CoUninitialize", "cookieManager gone"}));
}

} // namespace
} // namespace kelda
