// The browser coming up: every call in its order, with its arguments.
#include <algorithm>
#include <memory>
#include <new>

#include <gtest/gtest.h>

#include "ie_browser_test.h"

using test_support::InTurn;
using test_support::Lines;

namespace kelda {
namespace {

const Lines kMakesControl = {
    "GetClientRect of the parent",
    "OleCreate WebBrowser IOleObject 1",
    "oleObject.DoVerb -5 its site 0 0x00004711 0,0 640x480",
    "OleLockRunning the control 1 0",
    "control.QueryInterface IOleInPlaceObject",
    "inPlaceObject.SetObjectRects 0,0 640x480 0,0 640x480",
    "control.QueryInterface IWebBrowser2",
    "GetClientRect of the parent",
    "oleObject.SetExtent 1 16933x10160",
    "inPlaceObject.SetObjectRects 0,0 640x480 0,0 640x480",
    "webBrowser.put_Visible -1",
};

const Lines kConnects = {
    "control.QueryInterface IConnectionPointContainer",
    "container.FindConnectionPoint DWebBrowserEvents2",
    "container gone",
    "eventSource.Advise",
    "eventSource gone",
};

const Lines kLooksAtUserAgent = {
    "UrlMkGetSessionOption 0x10000001 (null) 0",
    "UrlMkGetSessionOption 0x10000001 24",
    "[0] User-Agent: Agent (Windows NT 10.0)",
};

const Lines kNavigates = {
    "webBrowser.Navigate http://server/qxcore/jsp/qvs/vislogon.jsp unsigned 2 (null) (null) (null)",
};

class Creation : public IEBrowserTest {
  protected:
    void FailToAllocateTexts() {
        allocateText = std::make_unique<AllocateText>("oleaut32.dll", "SysAllocStringLen",
                                                      [](const OLECHAR*, UINT) -> BSTR { return nullptr; });
    }

  private:
    using AllocateText = test_support::ReplacedImport<struct AllocateTextTag, decltype(SysAllocStringLen)>;
    std::unique_ptr<AllocateText> allocateText;
};

TEST_F(Creation, GoesThroughItsCallsInOrder) {
    MakeBrowser();
    browser->InitializeCom();
    EXPECT_EQ(TakeTranscript(),
              (Lines{"CoInitializeEx 2", "[0] The COM library was initialized successfully"}));
    Create();
    EXPECT_EQ(TakeTranscript(), InTurn({kMakesControl, kConnects, kLooksAtUserAgent, kNavigates}));
}

TEST_F(Creation, MakingTheBrowserTouchesNothing) {
    MakeBrowser();
    EXPECT_EQ(TakeTranscript(), Lines{});
}

TEST_F(Creation, TheCheckHasItsOwnAddress) {
    browser = std::make_unique<ZanWebBrowserIE>("http://server/", 1);
    Create();
    EXPECT_EQ(TakeTranscript().back(),
              "webBrowser.Navigate http://server/ARPublish/veltauth/check_authenticated_access.txt "
              "unsigned 2 (null) (null) (null)");
}

TEST_F(Creation, TheAddressIsTakenAsUtf8) {
    browser = std::make_unique<ZanWebBrowserIE>("http://s\xC3\xA4rver/\xE2\x82\xAC", 0);
    Create();
    EXPECT_EQ(TakeTranscript().back(), "webBrowser.Navigate http://s\xC3\xA4rver/\xE2\x82\xAC"
                                       "/qxcore/jsp/qvs/vislogon.jsp unsigned 2 (null) (null) (null)");
}

TEST_F(Creation, TheStorageIsTheBrowsersOwnAndTakesTheControlsClass) {
    BringUp();
    ASSERT_NE(control.storage, nullptr);
    EXPECT_EQ(control.storage->SetClass(CLSID_WebBrowser), S_OK);
}

TEST_F(Creation, TheSinkOfTheEventsIsTheExternalObject) {
    BringUp();
    EXPECT_EQ(control.sink.Get(), control.Site<IDispatch>().Get());
}

TEST_F(Creation, NoOwnerIsAllowed) {
    MakeBrowser();
    browser->Create(nullptr, parent);
    EXPECT_EQ(TakeTranscript(), InTurn({kMakesControl, kConnects, kLooksAtUserAgent, kNavigates}));
}

TEST_F(Creation, ABrowserThatIsConnectedConnectsNoSecondTime) {
    BringUp();
    Create();
    const Lines again = TakeTranscript();
    EXPECT_EQ(std::count(again.begin(), again.end(), "eventSource.Advise"), 0);
    EXPECT_EQ(again.back(), kNavigates.back());
}

TEST_F(Creation, ABrowserThatIsTakenDownWhileItConnectsIsNotConnectedAndLoadsNothing) {
    MakeBrowser();
    control.script.during["eventSource.Advise"] = [this] { browser->Destroy(); };
    Create();
    const Lines lines = TakeTranscript();
    EXPECT_EQ(std::count(lines.begin(), lines.end(), "eventSource.Unadvise 71"), 1);
    EXPECT_EQ(lines.back(), "eventSource gone");
    EXPECT_EQ(control.sink.Get(), nullptr);
}

TEST_F(Creation, ABrowserThatIsCreatedAgainAfterItsTeardownComesUpAgain) {
    BringUp();
    browser->Destroy();
    TakeTranscript();
    Create();
    EXPECT_EQ(TakeTranscript(), InTurn({kMakesControl, kConnects, kLooksAtUserAgent, kNavigates}));
}

TEST_F(Creation, TheLackOfMemoryForTheAddressReachesTheCaller) {
    FailToAllocateTexts();
    MakeBrowser();
    EXPECT_THROW(Create(), std::bad_alloc);
    EXPECT_EQ(TakeTranscript(), InTurn({kMakesControl, kConnects, kLooksAtUserAgent}));
}

TEST_F(Creation, ABrowserThatLackedMemoryCanBeTakenDown) {
    FailToAllocateTexts();
    MakeBrowser();
    EXPECT_THROW(Create(), std::bad_alloc);
    TakeTranscript();
    browser->Destroy();
    EXPECT_EQ(TakeTranscript().back(), "control gone");
    EXPECT_EQ(control.sink, nullptr);
}

TEST_F(Creation, AnOwnerThatTakesTheBrowserDownMeanwhileGetsNoBrowser) {
    control.script.during["oleObject.DoVerb"] = [this] { browser->Destroy(); };
    MakeBrowser();
    Create();
    EXPECT_EQ(TakeTraceLines(), Lines{"[0] Failed to set visuble"});
    EXPECT_EQ(control.sink, nullptr);
    EXPECT_EQ(browser->GetWindowHandle(), nullptr);
}

} // namespace
} // namespace kelda
