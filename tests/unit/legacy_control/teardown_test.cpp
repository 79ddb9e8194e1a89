// The end of a control in every order. What has to be gone is looked at in TearDown.
#include <exdispid.h>

#include <utility>

#include "tests/unit/legacy_control/control_test.h"

namespace legacy_control_test {
namespace {

using testing::IsEmpty;

class ClosingTest : public ControlTest {
  protected:
    explicit ClosingTest(bool sharesChromium = true) : ControlTest(sharesChromium) {}

    void SetUp() override {
        ASSERT_NO_FATAL_FAILURE(ControlTest::SetUp());
        pages.Add("/", "<script>external.norv()</script>");
    }

    void LoadPage() {
        ASSERT_NO_FATAL_FAILURE(CreateAndActivate());
        ASSERT_TRUE(Load(pages.Url("/")));
        Forget();
    }

    void Forget() {
        host.calls.clear();
        host.events.clear();
    }

    /// From now on only what a host gets that has closed the control.
    void ExpectSilence() {
        Forget();
        PumpWaiting();
        EXPECT_THAT(host.calls, IsEmpty());
        EXPECT_THAT(host.events, IsEmpty());
    }
};

/// Chromium has to end as well.
class TeardownTest : public ClosingTest {
  protected:
    TeardownTest() : ClosingTest(false) {}
};

TEST_F(TeardownTest, NeverUsed) {
    Create();
}

TEST_F(TeardownTest, NeverActivated) {
    Create();
    ASSERT_TRUE(Load(pages.Url("/")));
    EXPECT_EQ(ControlWindow(), nullptr);
}

TEST_F(TeardownTest, WhileChromiumStarts) {
    CreateAndActivate();
    EXPECT_EQ(Navigate(pages.Url("/")), S_OK);
    Close();
    ExpectSilence();
}

TEST_F(TeardownTest, WhileAPageIsLoaded) {
    pages.AddStalled("/stalled");
    CreateAndActivate();
    EXPECT_EQ(Navigate(pages.Url("/stalled")), S_OK);
    EXPECT_TRUE(PumpUntil([&] { return !pages.Requests("/stalled").empty(); }));
    Close();
    ExpectSilence();
}

TEST_F(TeardownTest, CloseAloneTellsTheSiteThatItLeaves) {
    LoadPage();
    EXPECT_EQ(control->Close(OLECLOSE_NOSAVE), S_OK);
    EXPECT_THAT(host.calls, testing::ElementsAre("OnInPlaceDeactivate"));
    EXPECT_THAT(Processes(), IsEmpty());
    ExpectSilence();
    EXPECT_EQ(Navigate(pages.Url("/")), E_UNEXPECTED);
    EXPECT_EQ(control->DoVerb(OLEIVERB_INPLACEACTIVATE, nullptr, &host, 0, host.window, nullptr),
              E_UNEXPECTED);
    EXPECT_EQ(control->Close(OLECLOSE_NOSAVE), S_OK);
    ExpectSilence();
}

TEST_F(TeardownTest, LosingTheSiteAloneEndsIt) {
    LoadPage();
    EXPECT_EQ(control->SetClientSite(nullptr), S_OK);
    EXPECT_THAT(host.calls, IsEmpty());
    EXPECT_THAT(Processes(), IsEmpty());
    EXPECT_EQ(GetWindow(host.window, GW_CHILD), nullptr);
    ExpectSilence();
}

TEST_F(TeardownTest, TheLastReleaseAloneEndsIt) {
    LoadPage();
    cookie = 0;
    control.Reset();
    EXPECT_EQ(LiveObjects(), 0);
    EXPECT_THAT(Processes(), IsEmpty());
    EXPECT_EQ(host.References(), 0);
}

TEST_F(TeardownTest, TheSitesWindowMayGoFirst) {
    LoadPage();
    DestroyWindow(host.window);
    EXPECT_EQ(ControlWindow(), nullptr);
    EXPECT_THAT(host.calls, IsEmpty());
    Close();
}

TEST_F(TeardownTest, TheSitesWindowMayGoWhileChromiumStarts) {
    CreateAndActivate();
    EXPECT_EQ(Navigate(pages.Url("/")), S_OK);
    DestroyWindow(host.window);
    EXPECT_TRUE(Await(DISPID_DOCUMENTCOMPLETE, [] {}));
}

TEST_F(TeardownTest, AListenerThatHasLeftHearsNothing) {
    LoadPage();
    const auto points = Control<IConnectionPointContainer>();
    ComPtr<IConnectionPoint> point;
    ASSERT_EQ(points->FindConnectionPoint(DIID_DWebBrowserEvents2, point.GetAddressOf()), S_OK);
    EXPECT_EQ(point->Unadvise(cookie), S_OK);
    EXPECT_EQ(point->Unadvise(std::exchange(cookie, 0)), CONNECT_E_NOCONNECTION);
    EXPECT_EQ(host.sink.References(), 0);
    EXPECT_EQ(Navigate(pages.Url("/")), S_OK);
    EXPECT_TRUE(PumpUntil([&] { return host.scriptCalls.size() == 2; }));
    EXPECT_THAT(host.events, IsEmpty());
}

TEST_F(TeardownTest, TwoControlsShareAChromiumUntilTheLastIsClosed) {
    LoadPage();
    const ComPtr<IOleObject> first = control;
    const DWORD firstCookie = cookie;
    control.Reset();
    CreateAndActivate();
    ASSERT_TRUE(Load(pages.Url("/")));
    Close();
    EXPECT_FALSE(Processes().empty());
    control = first;
    cookie = firstCookie;
}

class TeardownInEventTest : public ClosingTest, public testing::WithParamInterface<DISPID> {};

TEST_P(TeardownInEventTest, CloseWorksInside) {
    pages.Add("/", "<title>page</title>");
    const std::string event = "event " + std::to_string(GetParam());
    CreateAndActivate();
    host.onCall = [&](const std::string& call) {
        if (call == event) {
            Close();
            Forget();
        }
    };
    Navigate(pages.Url("/"));
    EXPECT_TRUE(PumpUntil([&] { return !control; }));
    PumpWaiting();
    EXPECT_THAT(host.events, IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(Events, TeardownInEventTest,
                         testing::Values(DISPID_BEFORENAVIGATE2, DISPID_DOWNLOADBEGIN,
                                         DISPID_COMMANDSTATECHANGE, DISPID_PROGRESSCHANGE,
                                         DISPID_STATUSTEXTCHANGE, DISPID_DOWNLOADCOMPLETE,
                                         DISPID_NAVIGATECOMPLETE2, DISPID_TITLECHANGE,
                                         DISPID_DOCUMENTCOMPLETE));

class TeardownInCallTest : public ClosingTest, public testing::WithParamInterface<const char*> {};

TEST_P(TeardownInCallTest, CloseWorksInside) {
    Create();
    host.onCall = [&](const std::string& call) {
        if (call == GetParam()) {
            host.onCall = nullptr;
            Close();
            Forget();
        }
    };
    const ComPtr<IOleObject> kept = control;
    EXPECT_EQ(kept->DoVerb(OLEIVERB_INPLACEACTIVATE, nullptr, &host, 0, host.window, nullptr), E_UNEXPECTED);
    EXPECT_FALSE(control);
    PumpWaiting();
    EXPECT_THAT(host.calls, IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(Calls, TeardownInCallTest,
                         testing::Values("GetWindow", "OnInPlaceActivate", "GetWindowContext", "ShowObject"));

} // namespace
} // namespace legacy_control_test
