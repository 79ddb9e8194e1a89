// The controller: its window, its end in every state, and the thread that it belongs to.
#include <thread>

#include <objbase.h>

#include "tests/unit/webview2_runtime/runtime_test.h"

namespace webview2_runtime_test {
namespace {

using test_support::Answer;
using test_support::CannedAnswer;
using test_support::CannedServer;

const HRESULT kClosed = HRESULT_FROM_WIN32(ERROR_INVALID_STATE);

CannedAnswer AnyPage(const std::string& /*request*/) {
    return Answer(200, "Content-Type: text/html\r\n", "<title>page</title>");
}

/// An answer that does not come while the server lives.
CannedAnswer NoPage(const std::string& /*request*/) {
    return {"", ""};
}

HWND ChildOf(HWND parent) {
    return GetWindow(parent, GW_CHILD);
}

TEST_F(WebViewTest, BoundsPlaceAVisibleChildWindow) {
    const RECT bounds = {10, 20, 210, 170};
    EXPECT_EQ(controller->put_Bounds(bounds), S_OK);
    RECT read{};
    EXPECT_EQ(controller->get_Bounds(&read), S_OK);
    EXPECT_TRUE(EqualRect(&read, &bounds));
    const HWND child = ChildOf(parent);
    ASSERT_NE(child, nullptr);
    RECT placed{};
    GetWindowRect(child, &placed);
    MapWindowPoints(nullptr, parent, reinterpret_cast<POINT*>(&placed), 2);
    EXPECT_TRUE(EqualRect(&placed, &bounds));
    EXPECT_NE(IsWindowVisible(child), FALSE);
    BOOL visible = FALSE;
    EXPECT_EQ(controller->get_IsVisible(&visible), S_OK);
    EXPECT_EQ(visible, TRUE);
    EXPECT_EQ(controller->put_IsVisible(FALSE), S_OK);
    EXPECT_EQ(IsWindowVisible(child), FALSE);
}

TEST_F(WebViewTest, ThePageFollowsTheBounds) {
    EXPECT_EQ(controller->put_Bounds({0, 0, 321, 123}), S_OK);
    EXPECT_TRUE(PumpUntil([&] { return Run(L"`${innerWidth}x${innerHeight}`") == L"\"321x123\""; }));
}

TEST_F(WebViewTest, TheParentWindowCanBeExchanged) {
    const HWND other = CreateWindowExW(0, L"STATIC", L"", WS_OVERLAPPEDWINDOW, 0, 0, 300, 300, nullptr,
                                       nullptr, nullptr, nullptr);
    EXPECT_EQ(controller->put_ParentWindow(other), S_OK);
    HWND read = nullptr;
    EXPECT_EQ(controller->get_ParentWindow(&read), S_OK);
    EXPECT_EQ(read, other);
    EXPECT_NE(ChildOf(other), nullptr);
    EXPECT_EQ(ChildOf(parent), nullptr);
    EXPECT_EQ(controller->NotifyParentWindowPositionChanged(), S_OK);
    DestroyWindow(other);
    EXPECT_EQ(controller->put_ParentWindow(other), HRESULT_FROM_WIN32(ERROR_INVALID_WINDOW_HANDLE));
}

TEST_F(WebViewTest, MoveFocusGivesThePageTheKeyboard) {
    EXPECT_EQ(controller->MoveFocus(COREWEBVIEW2_MOVE_FOCUS_REASON_PROGRAMMATIC), S_OK);
    EXPECT_TRUE(PumpUntil([&] { return GetFocus() != nullptr && IsChild(parent, GetFocus()) != FALSE; }));
}

TEST_F(WebViewTest, WhatHasNoCounterpartIsKept) {
    ComPtr<ICoreWebView2Controller4> controller4;
    ASSERT_EQ(controller.As(&controller4), S_OK);
    BOOL allowed = FALSE;
    EXPECT_EQ(controller4->get_AllowExternalDrop(&allowed), S_OK);
    EXPECT_EQ(allowed, TRUE);
    EXPECT_EQ(controller4->put_AllowExternalDrop(FALSE), S_OK);
    EXPECT_EQ(controller4->get_AllowExternalDrop(&allowed), S_OK);
    EXPECT_EQ(allowed, FALSE);
    EXPECT_EQ(controller4->put_ZoomFactor(1.5), S_OK);
    EXPECT_EQ(controller4->put_ZoomFactor(0), E_INVALIDARG);
    double zoom = 0;
    EXPECT_EQ(controller4->get_ZoomFactor(&zoom), S_OK);
    EXPECT_EQ(zoom, 1.5);
    EXPECT_EQ(controller4->get_ZoomFactor(nullptr), E_POINTER);
}

TEST_F(WebViewTest, SettingsStartOnAndAreKept) {
    ComPtr<ICoreWebView2Settings> settings;
    ComPtr<ICoreWebView2Settings3> settings3;
    ASSERT_EQ(view->get_Settings(&settings), S_OK);
    ASSERT_EQ(settings.As(&settings3), S_OK);
    BOOL enabled = FALSE;
    EXPECT_EQ(settings3->get_AreDevToolsEnabled(&enabled), S_OK);
    EXPECT_EQ(enabled, TRUE);
    EXPECT_EQ(settings3->put_AreDevToolsEnabled(FALSE), S_OK);
    EXPECT_EQ(settings3->put_AreBrowserAcceleratorKeysEnabled(FALSE), S_OK);
    EXPECT_EQ(settings->get_AreDevToolsEnabled(&enabled), S_OK);
    EXPECT_EQ(enabled, FALSE);
    EXPECT_EQ(settings3->get_AreBrowserAcceleratorKeysEnabled(&enabled), S_OK);
    EXPECT_EQ(enabled, FALSE);
    EXPECT_EQ(settings3->get_IsScriptEnabled(nullptr), E_POINTER);
}

TEST_F(WebViewTest, WithScriptsDisabledPagesRunNone) {
    const CannedServer server([](const std::string&) {
        return Answer(200, "Content-Type: text/html\r\n", "<body><script>document.title='ran'</script>");
    });
    ComPtr<ICoreWebView2Settings> settings;
    ASSERT_EQ(view->get_Settings(&settings), S_OK);
    EXPECT_EQ(settings->put_IsScriptEnabled(FALSE), S_OK);
    ASSERT_TRUE(Load(server.Url()));
    EXPECT_EQ(Run(L"document.title"), L"\"\"");
    EXPECT_EQ(settings->put_IsScriptEnabled(TRUE), S_OK);
    ASSERT_TRUE(Load(server.Url()));
    EXPECT_EQ(Run(L"document.title"), L"\"ran\"");
}

TEST_F(RuntimeTest, AControllerNeedsAWindowAndAHandler) {
    ShareChromium();
    environment = MakeEnvironment(folder).environment;
    ASSERT_TRUE(environment);
    const auto handler = MakeHandler<ICoreWebView2CreateCoreWebView2ControllerCompletedHandler>(
        [](HRESULT, ICoreWebView2Controller*) { ADD_FAILURE() << "called"; });
    EXPECT_EQ(environment->CreateCoreWebView2Controller(parent, nullptr), E_POINTER);
    EXPECT_EQ(environment->CreateCoreWebView2Controller(nullptr, handler.Get()),
              HRESULT_FROM_WIN32(ERROR_INVALID_WINDOW_HANDLE));
}

TEST_F(RuntimeTest, AParentDestroyedDuringCreationCompletesItWithAbortAtOnce) {
    ShareChromium();
    environment = MakeEnvironment(folder).environment;
    ASSERT_TRUE(environment);
    const auto results = std::make_shared<std::vector<HRESULT>>();
    ASSERT_EQ(environment->CreateCoreWebView2Controller(
                  parent, MakeHandler<ICoreWebView2CreateCoreWebView2ControllerCompletedHandler>(
                              [results](HRESULT result, ICoreWebView2Controller* created) {
                                  results->push_back(result);
                                  EXPECT_EQ(created, nullptr);
                              })
                              .Get()),
              S_OK);
    DestroyWindow(parent);
    EXPECT_EQ(*results, std::vector<HRESULT>{E_ABORT});
    environment.Reset();
    EXPECT_TRUE(PumpUntil([] { return LiveObjects() == 0; }));
    EXPECT_EQ(results->size(), 1U);
}

TEST_F(RuntimeTest, AControllerCompletesAfterItsEnvironmentWasReleased) {
    ShareChromium();
    environment = MakeEnvironment(folder).environment;
    ASSERT_TRUE(environment);
    controller =
        Completed<ICoreWebView2CreateCoreWebView2ControllerCompletedHandler, ComPtr<ICoreWebView2Controller>>(
            [&](auto* handler) {
                const HRESULT started = environment->CreateCoreWebView2Controller(parent, handler);
                environment.Reset();
                return started;
            },
            [](HRESULT, ICoreWebView2Controller* created) { return created; })
            .value_or(nullptr);
    ASSERT_TRUE(controller);
    EXPECT_EQ(controller->Close(), S_OK);
}

TEST_F(RuntimeTest, AControllerThatNobodyKeepsClosesItself) {
    ShareChromium();
    environment = MakeEnvironment(folder).environment;
    ASSERT_TRUE(environment);
    const auto result = Completed<ICoreWebView2CreateCoreWebView2ControllerCompletedHandler, HRESULT>(
        [&](auto* handler) { return environment->CreateCoreWebView2Controller(parent, handler); },
        [](HRESULT code, ICoreWebView2Controller*) { return code; });
    EXPECT_EQ(result, S_OK);
    EXPECT_TRUE(PumpUntil([] { return LiveObjects() == 1; }));
    EXPECT_EQ(ChildOf(parent), nullptr);
}

TEST_F(WebViewTest, AfterCloseCallsFailAndTheWindowIsGone) {
    ComPtr<ICoreWebView2Settings> settings;
    ComPtr<ICoreWebView2CookieManager> cookies;
    ASSERT_EQ(view->get_Settings(&settings), S_OK);
    ASSERT_EQ(view->get_CookieManager(&cookies), S_OK);
    EXPECT_EQ(controller->Close(), S_OK);
    EXPECT_EQ(ChildOf(parent), nullptr);

    LPWSTR text = nullptr;
    BOOL flag = FALSE;
    EventRegistrationToken token{};
    ComPtr<ICoreWebView2> again;
    EXPECT_EQ(controller->Close(), kClosed);
    EXPECT_EQ(controller->put_IsVisible(TRUE), kClosed);
    EXPECT_EQ(controller->get_CoreWebView2(&again), kClosed);
    EXPECT_EQ(view->get_Source(&text), kClosed);
    EXPECT_EQ(view->Navigate(L"about:blank"), kClosed);
    EXPECT_EQ(view->Stop(), kClosed);
    EXPECT_EQ(view->remove_NavigationStarting(token), kClosed);
    EXPECT_EQ(view->RemoveHostObjectFromScript(L"external"), kClosed);
    EXPECT_EQ(settings->get_IsScriptEnabled(&flag), kClosed);
    EXPECT_EQ(settings->put_IsScriptEnabled(TRUE), kClosed);
    EXPECT_EQ(cookies->DeleteAllCookies(), kClosed);
}

TEST_F(WebViewTest, ReleasingTheControllerCloses) {
    controller.Reset();
    EXPECT_EQ(ChildOf(parent), nullptr);
    EXPECT_EQ(view->Stop(), kClosed);
}

TEST_F(WebViewTest, ObjectsMayBeReleasedInAnyOrderAfterComIsGone) {
    ComPtr<ICoreWebView2CookieManager> cookies;
    ComPtr<ICoreWebView2Settings> settings;
    ASSERT_EQ(view->get_CookieManager(&cookies), S_OK);
    ASSERT_EQ(view->get_Settings(&settings), S_OK);
    EXPECT_EQ(controller->Close(), S_OK);
    CoUninitialize();
    environment.Reset();
    controller.Reset();
    view.Reset();
    settings.Reset();
    EXPECT_EQ(LiveObjects(), 1U);
    EXPECT_EQ(cookies->DeleteAllCookies(), kClosed);
    cookies.Reset();
    EXPECT_EQ(LiveObjects(), 0U);
    CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
}

TEST_F(WebViewTest, AnUnclosedWebViewMayBeReleasedAfterComIsGone) {
    CoUninitialize();
    environment.Reset();
    view.Reset();
    controller.Reset();
    EXPECT_EQ(LiveObjects(), 0U);
    CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
}

TEST_F(WebViewTest, CloseDropsWhatIsPendingUncalled) {
    const CannedServer server(NoPage);
    const auto uncalled = [](auto...) { ADD_FAILURE() << "called after Close"; };
    EventRegistrationToken token{};
    ComPtr<ICoreWebView2CookieManager> cookies;
    ASSERT_EQ(view->get_CookieManager(&cookies), S_OK);
    ASSERT_EQ(view->add_NavigationCompleted(
                  MakeHandler<ICoreWebView2NavigationCompletedEventHandler>(uncalled).Get(), &token),
              S_OK);
    ASSERT_EQ(view->AddWebResourceRequestedFilter(L"*", COREWEBVIEW2_WEB_RESOURCE_CONTEXT_ALL), S_OK);
    ASSERT_EQ(view->Navigate(server.Url().c_str()), S_OK);
    ASSERT_TRUE(PumpUntil([&] { return !server.Requests().empty(); }));
    ASSERT_EQ(view->ExecuteScript(L"new Promise(() => {})",
                                  MakeHandler<ICoreWebView2ExecuteScriptCompletedHandler>(uncalled).Get()),
              S_OK);
    ASSERT_EQ(
        cookies->GetCookies(nullptr, MakeHandler<ICoreWebView2GetCookiesCompletedHandler>(uncalled).Get()),
        S_OK);
    EXPECT_EQ(controller->Close(), S_OK);
    EXPECT_EQ(liveHandlers, 0);
    PumpWaiting();
}

TEST_F(WebViewTest, CloseWorksFromInsideAnyHandler) {
    const CannedServer server(AnyPage);
    OnStarting([&](auto*) {
        controller->Close();
        ReleaseAll();
    });
    ASSERT_EQ(view->Navigate(server.Url().c_str()), S_OK);
    EXPECT_TRUE(PumpUntil([] { return LiveObjects() == 0; }));
    EXPECT_TRUE(server.Requests().empty());
}

TEST_F(WebViewTest, CloseWorksFromInsideARequestHandler) {
    const CannedServer server(AnyPage);
    ASSERT_EQ(view->AddWebResourceRequestedFilter(L"*", COREWEBVIEW2_WEB_RESOURCE_CONTEXT_ALL), S_OK);
    OnRequested([&](auto*) {
        controller->Close();
        ReleaseAll();
    });
    ASSERT_EQ(view->Navigate(server.Url().c_str()), S_OK);
    EXPECT_TRUE(PumpUntil([] { return LiveObjects() == 0; }));
}

TEST_F(WebViewTest, CloseWorksFromInsideTheCompletion) {
    const CannedServer server(AnyPage);
    EventRegistrationToken token{};
    ASSERT_EQ(
        view->add_NavigationCompleted(MakeHandler<ICoreWebView2NavigationCompletedEventHandler>([&](auto...) {
                                          controller->Close();
                                          ReleaseAll();
                                      }).Get(),
                                      &token),
        S_OK);
    ASSERT_EQ(view->Navigate(server.Url().c_str()), S_OK);
    EXPECT_TRUE(PumpUntil([] { return LiveObjects() == 0; }));
}

TEST_F(WebViewTest, CallsFromAnotherThreadAreRefused) {
    ComPtr<ICoreWebView2Settings> settings;
    ComPtr<ICoreWebView2CookieManager> cookies;
    ASSERT_EQ(view->get_Settings(&settings), S_OK);
    ASSERT_EQ(view->get_CookieManager(&cookies), S_OK);
    std::thread([&] {
        LPWSTR text = nullptr;
        BOOL flag = FALSE;
        EventRegistrationToken token{};
        EXPECT_EQ(environment->get_BrowserVersionString(&text), RPC_E_WRONG_THREAD);
        EXPECT_EQ(view->get_Source(&text), RPC_E_WRONG_THREAD);
        EXPECT_EQ(view->Navigate(L"about:blank"), RPC_E_WRONG_THREAD);
        EXPECT_EQ(view->remove_NavigationStarting(token), RPC_E_WRONG_THREAD);
        EXPECT_EQ(controller->Close(), RPC_E_WRONG_THREAD);
        EXPECT_EQ(settings->get_IsScriptEnabled(&flag), RPC_E_WRONG_THREAD);
        EXPECT_EQ(settings->put_IsScriptEnabled(FALSE), RPC_E_WRONG_THREAD);
        EXPECT_EQ(cookies->DeleteAllCookies(), RPC_E_WRONG_THREAD);
    }).join();
    EXPECT_EQ(view->Stop(), S_OK);
}

} // namespace
} // namespace webview2_runtime_test
