// Requests on their way to the server: which of them handlers see, and that their edits are what arrives.
#include <algorithm>

#include "tests/unit/webview2_runtime/runtime_test.h"

namespace webview2_runtime_test {
namespace {

using test_support::Answer;
using test_support::Asks;
using test_support::CannedAnswer;
using test_support::CannedServer;
using test_support::HeaderOf;

CannedAnswer RequestSite(const std::string& request) {
    if (Asks(request, "/moved")) {
        return Answer(302, "Location: /page\r\n", "");
    }
    if (Asks(request, "/style.css")) {
        return Answer(200, "Content-Type: text/css\r\n", "body { color: black }");
    }
    if (Asks(request, "/script.js")) {
        return Answer(200, "Content-Type: text/javascript\r\n", "window.loaded = true;");
    }
    if (Asks(request, "/data")) {
        return Answer(200, "Content-Type: text/plain\r\n", "data");
    }
    return Answer(200, "Content-Type: text/html\r\n",
                  "<link rel=icon href=data:,><link rel=stylesheet href=/style.css>"
                  "<script src=/script.js></script><body>page");
}

ComPtr<ICoreWebView2HttpRequestHeaders> HeadersOf(ICoreWebView2WebResourceRequestedEventArgs* arguments) {
    ComPtr<ICoreWebView2WebResourceRequest> request;
    ComPtr<ICoreWebView2HttpRequestHeaders> headers;
    EXPECT_EQ(arguments->get_Request(&request), S_OK);
    EXPECT_EQ(request->get_Headers(&headers), S_OK);
    return headers;
}

class RequestTest : public WebViewTest {
  protected:
    /// The first request of that path, or an empty text.
    std::string RequestOf(const std::string& path) const {
        const auto requests = server.Requests();
        const auto found =
            std::ranges::find_if(requests, [&](const auto& request) { return Asks(request, path); });
        return found == requests.end() ? std::string() : *found;
    }

    /// Records the paths that a filter lets through.
    void RecordPaths(std::vector<std::wstring>& paths) {
        OnRequested([this, &paths](auto* arguments) {
            ComPtr<ICoreWebView2WebResourceRequest> request;
            EXPECT_EQ(arguments->get_Request(&request), S_OK);
            const std::wstring uri = TextFrom([&](LPWSTR* text) { return request->get_Uri(text); });
            paths.push_back(uri.substr(server.Url(L"").size()));
        });
    }

    HRESULT NavigateWith(const std::wstring& url, const wchar_t* headers, const wchar_t* method = L"GET") {
        ComPtr<ICoreWebView2Environment2> environment2;
        ComPtr<ICoreWebView2WebResourceRequest> request;
        EXPECT_EQ(environment.As(&environment2), S_OK);
        EXPECT_EQ(environment2->CreateWebResourceRequest(url.c_str(), method, nullptr, headers, &request),
                  S_OK);
        return view->NavigateWithWebResourceRequest(request.Get());
    }

    CannedServer server{RequestSite};
};

TEST_F(RequestTest, EditedHeadersAreWhatTheServerGets) {
    ASSERT_EQ(view->AddWebResourceRequestedFilter(L"*", COREWEBVIEW2_WEB_RESOURCE_CONTEXT_ALL), S_OK);
    OnRequested([](auto* arguments) {
        const auto headers = HeadersOf(arguments);
        BOOL contains = FALSE;
        EXPECT_EQ(headers->Contains(L"user-agent", &contains), S_OK);
        EXPECT_EQ(contains, TRUE);
        EXPECT_EQ(headers->SetHeader(L"accept", L"*/*"), S_OK);
        EXPECT_EQ(headers->SetHeader(L"X-Added", L"gr\u00fcn"), S_OK);
        EXPECT_EQ(headers->RemoveHeader(L"User-Agent"), S_OK);
    });
    ASSERT_TRUE(Load(server.Url(L"/page")));
    for (const char* path : {"/page", "/style.css", "/script.js"}) {
        const std::string request = RequestOf(path);
        EXPECT_EQ(HeaderOf(request, "Accept"), "*/*") << request;
        EXPECT_FALSE(HeaderOf(request, "X-Added").empty()) << request;
    }
}

TEST_F(RequestTest, WithoutAFilterNoHandlerIsCalled) {
    std::vector<std::wstring> paths;
    RecordPaths(paths);
    ASSERT_TRUE(Load(server.Url(L"/page")));
    EXPECT_TRUE(paths.empty());
}

TEST_F(RequestTest, FiltersChooseByPatternAndByContext) {
    std::vector<std::wstring> paths;
    RecordPaths(paths);
    ASSERT_EQ(view->AddWebResourceRequestedFilter(L"*/s*.?s", COREWEBVIEW2_WEB_RESOURCE_CONTEXT_ALL), S_OK);
    ASSERT_EQ(view->AddWebResourceRequestedFilter(L"*", COREWEBVIEW2_WEB_RESOURCE_CONTEXT_STYLESHEET), S_OK);
    ASSERT_TRUE(Load(server.Url(L"/page")));
    std::ranges::sort(paths);
    EXPECT_EQ(paths, (std::vector<std::wstring>{L"/script.js", L"/style.css"}));
}

TEST_F(RequestTest, AFilterIsRemovedAsOftenAsItWasAdded) {
    std::vector<std::wstring> paths;
    RecordPaths(paths);
    constexpr auto kDocument = COREWEBVIEW2_WEB_RESOURCE_CONTEXT_DOCUMENT;
    ASSERT_EQ(view->AddWebResourceRequestedFilter(L"*", kDocument), S_OK);
    ASSERT_EQ(view->AddWebResourceRequestedFilter(L"*", kDocument), S_OK);
    EXPECT_EQ(view->RemoveWebResourceRequestedFilter(L"*", COREWEBVIEW2_WEB_RESOURCE_CONTEXT_ALL),
              E_INVALIDARG);
    EXPECT_EQ(view->RemoveWebResourceRequestedFilter(L"*", kDocument), S_OK);
    ASSERT_TRUE(Load(server.Url(L"/page")));
    EXPECT_EQ(paths.size(), 1U);
    EXPECT_EQ(view->RemoveWebResourceRequestedFilter(L"*", kDocument), S_OK);
    EXPECT_EQ(view->RemoveWebResourceRequestedFilter(L"*", kDocument), E_INVALIDARG);
    ASSERT_TRUE(Load(server.Url(L"/page")));
    EXPECT_EQ(paths.size(), 1U);
}

TEST_F(RequestTest, TheContextSaysWhatIsAskedFor) {
    std::vector<int> contexts;
    ASSERT_EQ(view->AddWebResourceRequestedFilter(L"*", COREWEBVIEW2_WEB_RESOURCE_CONTEXT_ALL), S_OK);
    OnRequested([&](auto* arguments) {
        COREWEBVIEW2_WEB_RESOURCE_CONTEXT context{};
        EXPECT_EQ(arguments->get_ResourceContext(&context), S_OK);
        contexts.push_back(context);
    });
    ASSERT_TRUE(Load(server.Url(L"/page")));
    EXPECT_EQ(Run(L"fetch('/data').then((answer) => answer.text())"), L"\"data\"");
    std::ranges::sort(contexts);
    EXPECT_EQ(contexts, (std::vector<int>{COREWEBVIEW2_WEB_RESOURCE_CONTEXT_DOCUMENT,
                                          COREWEBVIEW2_WEB_RESOURCE_CONTEXT_STYLESHEET,
                                          COREWEBVIEW2_WEB_RESOURCE_CONTEXT_SCRIPT,
                                          COREWEBVIEW2_WEB_RESOURCE_CONTEXT_XML_HTTP_REQUEST}));
}

TEST_F(RequestTest, TheHandlersRunForEachRedirectAfterTheNavigationsOwn) {
    std::string order;
    ASSERT_EQ(view->AddWebResourceRequestedFilter(L"*", COREWEBVIEW2_WEB_RESOURCE_CONTEXT_DOCUMENT), S_OK);
    OnStarting([&](auto*) { order += "S"; });
    OnRequested([&](auto* arguments) {
        order += "R";
        EXPECT_EQ(HeadersOf(arguments)->SetHeader(L"Accept", L"text/x"), S_OK);
    });
    ASSERT_TRUE(Load(server.Url(L"/moved")));
    EXPECT_EQ(order, "SRSR");
    EXPECT_EQ(HeaderOf(RequestOf("/moved"), "Accept"), "text/x");
    EXPECT_EQ(HeaderOf(RequestOf("/page"), "Accept"), "text/x");
}

TEST_F(RequestTest, HeadersOfTheNavigationsRequestGoOutOnceAndHandlersSeeThem) {
    std::wstring seen;
    ASSERT_EQ(view->AddWebResourceRequestedFilter(L"*/moved", COREWEBVIEW2_WEB_RESOURCE_CONTEXT_ALL), S_OK);
    OnRequested([&](auto* arguments) {
        seen = TextFrom([&](LPWSTR* text) { return HeadersOf(arguments)->GetHeader(L"Pragma", text); });
    });
    const auto completion = CompletionAfter([&] {
        EXPECT_EQ(NavigateWith(server.Url(L"/moved"), L"Accept: */*\r\nPragma: no-cache\r\nCookie: no=1\r\n"),
                  S_OK);
    });
    ASSERT_TRUE(completion);
    EXPECT_TRUE(completion->succeeded);
    EXPECT_EQ(seen, L"no-cache");
    EXPECT_EQ(HeaderOf(RequestOf("/moved"), "Accept"), "*/*");
    EXPECT_EQ(HeaderOf(RequestOf("/moved"), "Pragma"), "no-cache");
    EXPECT_EQ(HeaderOf(RequestOf("/moved"), "Cookie"), "");
    EXPECT_EQ(HeaderOf(RequestOf("/page"), "Pragma"), "");
    EXPECT_NE(HeaderOf(RequestOf("/page"), "Accept"), "*/*");
}

TEST_F(RequestTest, NavigatingWithNoRequestOrWithContentIsRefused) {
    EXPECT_EQ(view->NavigateWithWebResourceRequest(nullptr), E_POINTER);
    EXPECT_EQ(NavigateWith(server.Url(L"/page"), nullptr, L"POST"), E_NOTIMPL);
}

TEST_F(RequestTest, OnlyTheHeadersOfAPagesRequestCanBeChanged) {
    int calls = 0;
    ASSERT_EQ(view->AddWebResourceRequestedFilter(L"*/page", COREWEBVIEW2_WEB_RESOURCE_CONTEXT_ALL), S_OK);
    OnRequested([&](auto* arguments) {
        ++calls;
        ComPtr<ICoreWebView2WebResourceRequest> request;
        ComPtr<ICoreWebView2WebResourceResponse> response;
        ASSERT_EQ(arguments->get_Request(&request), S_OK);
        EXPECT_EQ(TextFrom([&](LPWSTR* text) { return request->get_Method(text); }), L"GET");
        EXPECT_EQ(request->put_Uri(L"http://elsewhere/"), E_NOTIMPL);
        EXPECT_EQ(request->put_Method(L"POST"), E_NOTIMPL);
        EXPECT_EQ(arguments->get_Response(&response), S_OK);
        EXPECT_FALSE(response);
    });
    ASSERT_TRUE(Load(server.Url(L"/page")));
    EXPECT_EQ(calls, 1);
}

TEST_F(RequestTest, RequestObjectsMayBeKeptLongerThanTheRequest) {
    ComPtr<ICoreWebView2HttpRequestHeaders> kept;
    ASSERT_EQ(view->AddWebResourceRequestedFilter(L"*/page", COREWEBVIEW2_WEB_RESOURCE_CONTEXT_ALL), S_OK);
    OnRequested([&](auto* arguments) { kept = HeadersOf(arguments); });
    ASSERT_TRUE(Load(server.Url(L"/page")));
    EXPECT_EQ(controller->Close(), S_OK);
    EXPECT_EQ(kept->SetHeader(L"Late", L"1"), S_OK);
    EXPECT_EQ(TextFrom([&](LPWSTR* text) { return kept->GetHeader(L"late", text); }), L"1");
}

} // namespace
} // namespace webview2_runtime_test
