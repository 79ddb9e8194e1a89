// Making a control, bringing it into its site, and its size.
#include <exdispid.h>

#include "tests/unit/legacy_control/control_test.h"

namespace legacy_control_test {
namespace {

using testing::ElementsAre;

RECT PlaceOf(HWND window) {
    RECT placed{};
    GetWindowRect(window, &placed);
    MapWindowPoints(nullptr, GetParent(window), reinterpret_cast<POINT*>(&placed), 2);
    return placed;
}

TEST_F(ControlTest, OleCreateMakesItInItsSite) {
    Create();
    ASSERT_TRUE(control);
    ComPtr<IOleClientSite> site;
    EXPECT_EQ(control->GetClientSite(site.GetAddressOf()), S_OK);
    EXPECT_EQ(site.Get(), &host);
    CLSID id{};
    EXPECT_EQ(control->GetUserClassID(&id), S_OK);
    EXPECT_EQ(id, CLSID_WebBrowser);
    EXPECT_THAT(host.calls, ElementsAre("GetHostInfo"));
}

TEST_F(ControlTest, ActivationCallsTheSiteInTheOrderOfWindows) {
    Create();
    host.calls.clear();
    Activate();
    EXPECT_THAT(host.calls, ElementsAre("CanInPlaceActivate", "GetWindow", "OnInPlaceActivate",
                                        "GetWindowContext", "ShowObject", "GetContainer"));
    EXPECT_EQ(host.frameInformationSize, sizeof(OLEINPLACEFRAMEINFO));
    Activate();
    EXPECT_EQ(host.calls.size(), 6U) << "activated twice";
}

TEST_F(ControlTest, ItsWindowIsAVisibleChildOfTheSites) {
    CreateAndActivate();
    const HWND window = ControlWindow();
    ASSERT_NE(window, nullptr);
    EXPECT_EQ(GetParent(window), host.window);
    EXPECT_NE(IsWindowVisible(window), FALSE);
    const RECT placed = PlaceOf(window);
    EXPECT_NE(EqualRect(&placed, &host.position), FALSE);
}

TEST_F(ControlTest, TheHostMaySizeItWhileItIsActivated) {
    host.position = {};
    host.onCall = [&](const std::string& call) {
        if (call == "OnInPlaceActivate") {
            const RECT wanted = {5, 6, 105, 86};
            EXPECT_EQ(Control<IOleInPlaceObject>()->SetObjectRects(&wanted, &wanted), S_OK);
        }
    };
    CreateAndActivate();
    const RECT placed = PlaceOf(ControlWindow());
    const RECT wanted = {5, 6, 105, 86};
    EXPECT_NE(EqualRect(&placed, &wanted), FALSE);
}

TEST_F(ControlTest, ThePageFollowsTheSize) {
    pages.Add("/", "<title>page</title>");
    CreateAndActivate();
    ASSERT_TRUE(Load(pages.Url("/")));
    EXPECT_TRUE(PumpUntil([&] { return Evaluate("`${innerWidth}x${innerHeight}`") == "300x200"; }));
    const RECT wanted = {10, 20, 331, 143};
    EXPECT_EQ(Control<IOleInPlaceObject>()->SetObjectRects(&wanted, &wanted), S_OK);
    EXPECT_TRUE(PumpUntil([&] { return Evaluate("`${innerWidth}x${innerHeight}`") == "321x123"; }));
}

TEST_F(ControlTest, ItKeepsTheExtentItIsGiven) {
    Create();
    SIZEL size = {2540, 1270};
    EXPECT_EQ(control->SetExtent(DVASPECT_CONTENT, &size), S_OK);
    SIZEL read{};
    EXPECT_EQ(control->GetExtent(DVASPECT_CONTENT, &read), S_OK);
    EXPECT_EQ(read.cx, 2540);
    EXPECT_EQ(read.cy, 1270);
    EXPECT_EQ(control->SetExtent(DVASPECT_ICON, &size), DV_E_DVASPECT);
}

TEST_F(ControlTest, ItIsHiddenAndShownAgain) {
    CreateAndActivate();
    const auto browser = Control<IWebBrowser2>();
    VARIANT_BOOL visible = VARIANT_FALSE;
    EXPECT_EQ(browser->get_Visible(&visible), S_OK);
    EXPECT_EQ(visible, VARIANT_TRUE);
    EXPECT_EQ(browser->put_Visible(VARIANT_FALSE), S_OK);
    EXPECT_EQ(IsWindowVisible(ControlWindow()), FALSE);
    EXPECT_EQ(control->DoVerb(OLEIVERB_SHOW, nullptr, &host, 0, host.window, nullptr), S_OK);
    EXPECT_NE(IsWindowVisible(ControlWindow()), FALSE);
    EXPECT_EQ(control->DoVerb(OLEIVERB_HIDE, nullptr, &host, 0, host.window, nullptr), S_OK);
    EXPECT_EQ(IsWindowVisible(ControlWindow()), FALSE);
}

TEST_F(ControlTest, ItCanBeActivatedAgain) {
    pages.Add("/", "<title>page</title>");
    CreateAndActivate();
    ASSERT_TRUE(Load(pages.Url("/")));
    EXPECT_EQ(Control<IOleInPlaceObject>()->InPlaceDeactivate(), S_OK);
    EXPECT_EQ(host.calls.back(), "OnInPlaceDeactivate");
    EXPECT_EQ(GetWindow(host.window, GW_CHILD), nullptr);
    host.position = {0, 0, 240, 120};
    Activate();
    EXPECT_TRUE(PumpUntil([&] { return Evaluate("`${innerWidth}x${innerHeight}`") == "240x120"; }));
}

TEST_F(ControlTest, AListenerIsAskedForTheEventsInterfaceFirst) {
    Create();
    ASSERT_FALSE(host.sink.Asked().empty());
    EXPECT_EQ(host.sink.Asked().front(), DIID_DWebBrowserEvents2);
}

TEST_F(ControlTest, ThereAreNoOtherEvents) {
    Create();
    ComPtr<IConnectionPoint> point;
    EXPECT_EQ(Control<IConnectionPointContainer>()->FindConnectionPoint(IID_IDispatch, point.GetAddressOf()),
              CONNECT_E_NOCONNECTION);
    EXPECT_FALSE(point);
}

TEST_F(ControlTest, BeforeTheFirstPageThereIsNoDocument) {
    CreateAndActivate();
    ComPtr<IDispatch> document;
    EXPECT_EQ(Control<IWebBrowser2>()->get_Document(document.GetAddressOf()), S_FALSE);
    EXPECT_FALSE(document);
}

TEST_F(ControlTest, SupplyingTwiceIsTheSameAsOnce) {
    EXPECT_TRUE(SupplyLegacyControl());
    WithdrawLegacyControl();
    ComPtr<IOleObject> other;
    const HRESULT result = CoCreateInstance(CLSID_WebBrowser, nullptr, CLSCTX_INPROC_SERVER, IID_IOleObject,
                                            reinterpret_cast<void**>(other.GetAddressOf()));
    EXPECT_EQ(LiveObjects(), 0) << "the platform's own would have come, result " << result;
}

TEST_F(ControlTest, ItCanBeSuppliedAgainAfterComWasClosed) {
    OleUninitialize();
    ASSERT_EQ(OleInitialize(nullptr), S_OK);
    EXPECT_TRUE(SupplyLegacyControl());
    Create();
    EXPECT_EQ(LiveObjects(), 1);
}

} // namespace
} // namespace legacy_control_test
