// Navigations on a real Chromium: what is reported, what can be cancelled, and in which order handlers are called.
#include <algorithm>
#include <memory>

#include "tests/unit/webview2_runtime/runtime_test.h"

namespace webview2_runtime_test {
namespace {

using test_support::Answer;
using test_support::Asks;
using test_support::CannedAnswer;
using test_support::CannedServer;

constexpr char kHtml[] = "Content-Type: text/html\r\n";

CannedAnswer NavigationSite(const std::string& request) {
    if (Asks(request, "/missing")) {
        return Answer(404, kHtml, "missing");
    }
    if (Asks(request, "/broken")) {
        return Answer(500, kHtml, "broken");
    }
    if (Asks(request, "/first")) {
        return Answer(302, "Location: /second\r\n", "");
    }
    if (Asks(request, "/second")) {
        return Answer(302, "Location: /third\r\n", "");
    }
    if (Asks(request, "/never")) {
        return {"", ""};
    }
    return Answer(200, kHtml, "<a id=link href=/linked>link</a>");
}

std::size_t Count(const CannedServer& server, const std::string& path) {
    const auto requests = server.Requests();
    return static_cast<std::size_t>(
        std::ranges::count_if(requests, [&](const std::string& request) { return Asks(request, path); }));
}

class NavigationTest : public WebViewTest {
  protected:
    /// @return what it completes with, and `E_PENDING` before; shared with the handler, which may outlive the deadline.
    std::shared_ptr<HRESULT> StartScript(const wchar_t* script) {
        auto answer = std::make_shared<HRESULT>(E_PENDING);
        const auto handler = MakeHandler<ICoreWebView2ExecuteScriptCompletedHandler>(
            [answer](HRESULT result, LPCWSTR /*json*/) { *answer = result; });
        EXPECT_EQ(view->ExecuteScript(script, handler.Get()), S_OK);
        return answer;
    }

    CannedServer server{NavigationSite};
};

struct Start {
    std::wstring uri;
    bool redirected = false;
    UINT64 id = 0;
};

Start Read(ICoreWebView2NavigationStartingEventArgs* arguments) {
    Start start;
    BOOL redirected = FALSE;
    start.uri = TextFrom([&](LPWSTR* text) { return arguments->get_Uri(text); });
    EXPECT_EQ(arguments->get_IsRedirected(&redirected), S_OK);
    EXPECT_EQ(arguments->get_NavigationId(&start.id), S_OK);
    start.redirected = redirected != FALSE;
    return start;
}

TEST_F(NavigationTest, APageThatLoadsIsASuccess) {
    EXPECT_EQ(TextFrom([&](LPWSTR* text) { return view->get_Source(text); }), L"about:blank");
    std::vector<Start> starts;
    OnStarting([&](auto* arguments) { starts.push_back(Read(arguments)); });
    const auto completion = Load(server.Url(L"/page"));
    ASSERT_TRUE(completion);
    EXPECT_TRUE(completion->succeeded);
    EXPECT_EQ(completion->status, COREWEBVIEW2_WEB_ERROR_STATUS_UNKNOWN);
    ASSERT_EQ(starts.size(), 1U);
    EXPECT_EQ(starts[0].uri, server.Url(L"/page"));
    EXPECT_FALSE(starts[0].redirected);
    EXPECT_EQ(starts[0].id, completion->id);
    EXPECT_EQ(TextFrom([&](LPWSTR* text) { return view->get_Source(text); }), server.Url(L"/page"));
}

TEST_F(NavigationTest, AnErrorStatusIsAFailureThoughItsPageIsShown) {
    for (const wchar_t* path : {L"/missing", L"/broken"}) {
        const auto completion = Load(server.Url(path));
        ASSERT_TRUE(completion);
        EXPECT_FALSE(completion->succeeded) << path;
        EXPECT_EQ(completion->status, COREWEBVIEW2_WEB_ERROR_STATUS_UNKNOWN) << path;
        EXPECT_EQ(Run(L"'/' + document.body.textContent"), L"\"" + std::wstring(path) + L"\"");
    }
}

TEST_F(NavigationTest, AnUnreachableServerIsNamedAsTheReason) {
    std::wstring closed;
    {
        const CannedServer gone(NavigationSite);
        closed = gone.Url();
    }
    auto completion = Load(closed);
    ASSERT_TRUE(completion);
    EXPECT_FALSE(completion->succeeded);
    EXPECT_EQ(completion->status, COREWEBVIEW2_WEB_ERROR_STATUS_CANNOT_CONNECT);
    completion = Load(L"http://no-such-host.invalid/");
    ASSERT_TRUE(completion);
    EXPECT_EQ(completion->status, COREWEBVIEW2_WEB_ERROR_STATUS_HOST_NAME_NOT_RESOLVED);
}

TEST_F(NavigationTest, RedirectsKeepTheIdAndSayWhereTheyLead) {
    std::vector<Start> starts;
    OnStarting([&](auto* arguments) { starts.push_back(Read(arguments)); });
    const auto completion = Load(server.Url(L"/first"));
    ASSERT_TRUE(completion);
    EXPECT_TRUE(completion->succeeded);
    ASSERT_EQ(starts.size(), 3U);
    const std::vector<std::wstring> paths = {L"/first", L"/second", L"/third"};
    for (std::size_t i = 0; i < starts.size(); ++i) {
        EXPECT_EQ(starts[i].uri, server.Url(paths[i]));
        EXPECT_EQ(starts[i].redirected, i != 0);
        EXPECT_EQ(starts[i].id, completion->id);
    }
}

TEST_F(NavigationTest, ACancelledNavigationReachesNoServerAndKeepsThePage) {
    ASSERT_TRUE(Load(server.Url(L"/page")));
    OnStarting([](auto* arguments) {
        BOOL cancelled = TRUE;
        EXPECT_EQ(arguments->get_Cancel(&cancelled), S_OK);
        EXPECT_EQ(cancelled, FALSE);
        EXPECT_EQ(arguments->put_Cancel(TRUE), S_OK);
    });
    const auto byLink = CompletionAfter([&] { Run(L"document.getElementById('link').click()"); });
    ASSERT_TRUE(byLink);
    EXPECT_FALSE(byLink->succeeded);
    EXPECT_EQ(byLink->status, COREWEBVIEW2_WEB_ERROR_STATUS_OPERATION_CANCELED);
    const auto byHost = Load(server.Url(L"/cancelled"));
    ASSERT_TRUE(byHost);
    EXPECT_EQ(byHost->status, COREWEBVIEW2_WEB_ERROR_STATUS_OPERATION_CANCELED);
    EXPECT_NE(byHost->id, byLink->id);
    EXPECT_EQ(Count(server, "/linked") + Count(server, "/cancelled"), 0U);
    EXPECT_EQ(TextFrom([&](LPWSTR* text) { return view->get_Source(text); }), server.Url(L"/page"));
}

TEST_F(NavigationTest, ARedirectCanBeCancelled) {
    OnStarting([](auto* arguments) {
        if (Read(arguments).redirected) {
            arguments->put_Cancel(TRUE);
        }
    });
    const auto completion = Load(server.Url(L"/first"));
    ASSERT_TRUE(completion);
    EXPECT_EQ(completion->status, COREWEBVIEW2_WEB_ERROR_STATUS_OPERATION_CANCELED);
    EXPECT_EQ(Count(server, "/first"), 1U);
    EXPECT_EQ(Count(server, "/second"), 0U);
}

TEST_F(NavigationTest, StopEndsWhatIsBeingLoaded) {
    const auto completion = CompletionAfter([&] {
        ASSERT_EQ(view->Navigate(server.Url(L"/never").c_str()), S_OK);
        ASSERT_TRUE(PumpUntil([&] { return Count(server, "/never") == 1; }));
        EXPECT_EQ(view->Stop(), S_OK);
    });
    ASSERT_TRUE(completion);
    EXPECT_FALSE(completion->succeeded);
    EXPECT_EQ(completion->status, COREWEBVIEW2_WEB_ERROR_STATUS_OPERATION_CANCELED);
}

TEST_F(NavigationTest, ReloadLoadsThePageAgain) {
    ASSERT_TRUE(Load(server.Url(L"/page")));
    const auto completion = CompletionAfter([&] { EXPECT_EQ(view->Reload(), S_OK); });
    ASSERT_TRUE(completion);
    EXPECT_TRUE(completion->succeeded);
    EXPECT_EQ(Count(server, "/page"), 2U);
}

TEST_F(NavigationTest, NavigatingToAFragmentRaisesNoEvent) {
    ASSERT_TRUE(Load(server.Url(L"/page")));
    int starts = 0;
    OnStarting([&](auto*) { ++starts; });
    ASSERT_EQ(view->Navigate(server.Url(L"/page#part").c_str()), S_OK);
    EXPECT_TRUE(PumpUntil([&] { return Run(L"location.hash") == L"\"#part\""; }));
    const auto next = Load(server.Url(L"/other"));
    ASSERT_TRUE(next);
    EXPECT_EQ(starts, 1);
    EXPECT_TRUE(next->succeeded);
    EXPECT_EQ(TextFrom([&](LPWSTR* text) { return view->get_Source(text); }), server.Url(L"/other"));
}

TEST_F(NavigationTest, WhatIsNoAbsoluteUriIsRefusedAtOnce) {
    for (const wchar_t* uri : {L"", L"page", L"/page", L"1http://host/", L"http:"}) {
        EXPECT_EQ(view->Navigate(uri), E_INVALIDARG) << uri;
    }
    EXPECT_EQ(view->Navigate(nullptr), E_POINTER);
}

TEST_F(NavigationTest, HandlersAreCalledInTheOrderOfTheirRegistration) {
    std::string order;
    OnStarting([&](auto*) { order += "1"; });
    const EventRegistrationToken second = OnStarting([&](auto*) { order += "2"; });
    const EventRegistrationToken third = OnStarting([&](auto*) { order += "3"; });
    EXPECT_NE(second.value, third.value);
    ASSERT_TRUE(Load(server.Url()));
    EXPECT_EQ(order, "123");
    EXPECT_EQ(view->remove_NavigationStarting(second), S_OK);
    ASSERT_TRUE(Load(server.Url()));
    EXPECT_EQ(order, "12313");
    EXPECT_EQ(view->remove_NavigationStarting(second), S_OK);
    EXPECT_EQ(view->remove_NavigationStarting({987654321}), S_OK);
}

TEST_F(NavigationTest, AHandlerMayRemoveItselfAndTheNext) {
    std::string order;
    EventRegistrationToken first{};
    EventRegistrationToken second{};
    first = OnStarting([&](auto*) {
        order += "1";
        EXPECT_EQ(view->remove_NavigationStarting(first), S_OK);
        EXPECT_EQ(view->remove_NavigationStarting(second), S_OK);
    });
    second = OnStarting([&](auto*) { order += "2"; });
    OnStarting([&](auto*) { order += "3"; });
    ASSERT_TRUE(Load(server.Url()));
    EXPECT_EQ(order, "13");
    EXPECT_EQ(liveHandlers, 1);
    ASSERT_TRUE(Load(server.Url()));
    EXPECT_EQ(order, "133");
}

/// Adds a handler of an event, and takes it back.
template <typename Handler, typename Add, typename Remove>
EventRegistrationToken Register(ICoreWebView2_15* view, Add add, Remove remove) {
    EventRegistrationToken token{};
    const auto handler = MakeHandler<Handler>([](auto...) {});
    EXPECT_EQ((view->*add)(handler.Get(), nullptr), E_POINTER);
    EXPECT_EQ((view->*add)(nullptr, &token), E_POINTER);
    EXPECT_EQ((view->*add)(handler.Get(), &token), S_OK);
    EXPECT_EQ((view->*remove)(token), S_OK);
    return token;
}

TEST_F(NavigationTest, EveryEventOfTheLibraryTakesHandlersWithTokensOfTheirOwn) {
    using View = ICoreWebView2_15;
    std::vector<__int64> tokens = {
        Register<ICoreWebView2NavigationStartingEventHandler>(view.Get(), &View::add_NavigationStarting,
                                                              &View::remove_NavigationStarting)
            .value,
        Register<ICoreWebView2NavigationCompletedEventHandler>(view.Get(), &View::add_NavigationCompleted,
                                                               &View::remove_NavigationCompleted)
            .value,
        Register<ICoreWebView2WebResourceRequestedEventHandler>(view.Get(), &View::add_WebResourceRequested,
                                                                &View::remove_WebResourceRequested)
            .value,
        Register<ICoreWebView2WebResourceResponseReceivedEventHandler>(
            view.Get(), &View::add_WebResourceResponseReceived, &View::remove_WebResourceResponseReceived)
            .value,
        Register<ICoreWebView2BasicAuthenticationRequestedEventHandler>(
            view.Get(), &View::add_BasicAuthenticationRequested, &View::remove_BasicAuthenticationRequested)
            .value,
        Register<ICoreWebView2ServerCertificateErrorDetectedEventHandler>(
            view.Get(), &View::add_ServerCertificateErrorDetected,
            &View::remove_ServerCertificateErrorDetected)
            .value,
        Register<ICoreWebView2ClientCertificateRequestedEventHandler>(
            view.Get(), &View::add_ClientCertificateRequested, &View::remove_ClientCertificateRequested)
            .value};
    std::ranges::sort(tokens);
    EXPECT_EQ(std::ranges::adjacent_find(tokens), tokens.end());
    EXPECT_EQ(liveHandlers, 0);
}

TEST_F(NavigationTest, ARendererThatDiesFailsItsScriptAndTheNextNavigationWorks) {
    const auto answer = StartScript(L"new Promise(() => {})");
    ASSERT_EQ(view->Navigate(L"chrome://crash/"), S_OK);
    ASSERT_TRUE(PumpUntil([&] { return *answer != E_PENDING; }));
    EXPECT_EQ(*answer, E_FAIL);
    const auto next = Load(server.Url(L"/page"));
    ASSERT_TRUE(next);
    EXPECT_TRUE(next->succeeded);
}

TEST_F(NavigationTest, AnOpenNavigationFailsWhenChromiumDies) {
    ASSERT_NO_FATAL_FAILURE(UseChromiumOfItsOwn());
    const auto completion = CompletionAfter([&] {
        ASSERT_EQ(view->Navigate(server.Url(L"/never").c_str()), S_OK);
        ASSERT_TRUE(PumpUntil([&] { return Count(server, "/never") == 1; }));
        KillChromium();
    });
    ASSERT_TRUE(completion);
    EXPECT_FALSE(completion->succeeded);
    const auto next = Load(server.Url(L"/page"));
    ASSERT_TRUE(next) << "what is asked for afterwards is not completed";
    EXPECT_FALSE(next->succeeded);
    const auto answer = StartScript(L"1");
    EXPECT_TRUE(PumpUntil([&] { return *answer != E_PENDING; }));
    EXPECT_EQ(*answer, E_FAIL);
    EXPECT_EQ(controller->Close(), S_OK);
}

} // namespace
} // namespace webview2_runtime_test
