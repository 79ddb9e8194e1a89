// COM's initialisation and end.
#include <utility>

#include <gtest/gtest.h>

#include "ie_browser_test.h"

using test_support::Lines;

namespace kelda {
namespace {

using Com = IEBrowserTest;

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
        EXPECT_EQ(TakeTranscript(), test_support::InTurn({{"CoInitializeEx 2"}, lines}));
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

} // namespace
} // namespace kelda
