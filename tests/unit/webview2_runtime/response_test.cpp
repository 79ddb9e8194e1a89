// Answers of servers as handlers see them: one event for each, with what was on the wire.
#include <algorithm>

#include "tests/unit/webview2_runtime/runtime_test.h"

namespace webview2_runtime_test {
namespace {

using test_support::Answer;
using test_support::Asks;
using test_support::CannedAnswer;
using test_support::CannedServer;
using test_support::HeaderOf;
using ResponseEventArgs = ICoreWebView2WebResourceResponseReceivedEventArgs;

constexpr int kManyCookies = 20;
constexpr char kPage[] = "<link rel=icon href=data:,><body>page";

std::string ManyCookies() {
    std::string lines;
    for (int number = 1; number <= kManyCookies; ++number) {
        // Neither the order of the names nor that of the values is that of the lines.
        const std::string name = std::to_string(number * 7 % kManyCookies);
        lines += (number % 2 == 0 ? "Set-Cookie: c" : "set-cookie: c") + name + "=" + std::to_string(number) +
                 "; Path=/; HttpOnly\r\n";
    }
    return lines;
}

CannedAnswer ResponseSite(const std::string& request) {
    if (Asks(request, "/first")) {
        return Answer(302, "Location: /second\r\nSet-Cookie: one=1; Path=/\r\n", "");
    }
    if (Asks(request, "/second")) {
        return Answer(302, "Location: /page\r\nSet-Cookie: two=2; Path=/\r\n", "");
    }
    if (Asks(request, "/cookies")) {
        return Answer(200, "Content-Type: text/html\r\n" + ManyCookies(), kPage);
    }
    if (Asks(request, "/missing")) {
        return Answer(404, "Content-Type: text/html\r\n", kPage);
    }
    if (Asks(request, "/odd")) {
        return {"HTTP/1.1 299 Quite all right\r\nContent-Length: 0\r\nX-Empty:\r\nX-Latin: gr\xFCn\r\n\r\n"};
    }
    if (Asks(request, "/bare")) {
        return {"HTTP/1.1 200\r\nConnection: close\r\nContent-Length: 0\r\n\r\n"};
    }
    if (Asks(request, "/data")) {
        return Answer(200, "Content-Type: text/plain\r\n", "data");
    }
    return Answer(200, "Content-Type: text/html\r\nX-Twice: a\r\nx-twice: b\r\n", kPage);
}

struct HeaderLine {
    std::wstring name;
    std::wstring value;

    bool operator==(const HeaderLine&) const = default;
};

std::vector<HeaderLine> ReadAll(ICoreWebView2HttpHeadersCollectionIterator* iterator) {
    std::vector<HeaderLine> lines;
    BOOL more = FALSE;
    EXPECT_EQ(iterator->get_HasCurrentHeader(&more), S_OK);
    while (more != FALSE) {
        HeaderLine line;
        line.value = TextFrom([&](LPWSTR* value) {
            LPWSTR name = nullptr;
            const HRESULT result = iterator->GetCurrentHeader(&name, value);
            line.name = name == nullptr ? L"" : name;
            CoTaskMemFree(name);
            return result;
        });
        lines.push_back(line);
        EXPECT_EQ(iterator->MoveNext(&more), S_OK);
    }
    return lines;
}

ComPtr<ICoreWebView2WebResourceRequest> RequestOf(ResponseEventArgs* arguments) {
    ComPtr<ICoreWebView2WebResourceRequest> request;
    EXPECT_EQ(arguments->get_Request(&request), S_OK);
    return request;
}

ComPtr<ICoreWebView2HttpRequestHeaders> RequestHeadersOf(ResponseEventArgs* arguments) {
    ComPtr<ICoreWebView2HttpRequestHeaders> headers;
    EXPECT_EQ(RequestOf(arguments)->get_Headers(&headers), S_OK);
    return headers;
}

ComPtr<ICoreWebView2WebResourceResponseView> ResponseOf(ResponseEventArgs* arguments) {
    ComPtr<ICoreWebView2WebResourceResponseView> response;
    EXPECT_EQ(arguments->get_Response(&response), S_OK);
    return response;
}

ComPtr<ICoreWebView2HttpResponseHeaders> HeadersOf(ResponseEventArgs* arguments) {
    ComPtr<ICoreWebView2HttpResponseHeaders> headers;
    EXPECT_EQ(ResponseOf(arguments)->get_Headers(&headers), S_OK);
    return headers;
}

std::vector<HeaderLine> AllOf(ICoreWebView2HttpResponseHeaders* headers) {
    ComPtr<ICoreWebView2HttpHeadersCollectionIterator> iterator;
    EXPECT_EQ(headers->GetIterator(&iterator), S_OK);
    return ReadAll(iterator.Get());
}

std::vector<HeaderLine> Named(ICoreWebView2HttpResponseHeaders* headers, const wchar_t* name) {
    ComPtr<ICoreWebView2HttpHeadersCollectionIterator> iterator;
    EXPECT_EQ(headers->GetHeaders(name, &iterator), S_OK);
    return ReadAll(iterator.Get());
}

class ResponseTest : public WebViewTest {
  protected:
    std::wstring PathOf(ResponseEventArgs* arguments) const {
        const auto request = RequestOf(arguments);
        return TextFrom([&](LPWSTR* text) { return request->get_Uri(text); }).substr(server.Url(L"").size());
    }

    static int StatusOf(ResponseEventArgs* arguments) {
        int status = 0;
        EXPECT_EQ(ResponseOf(arguments)->get_StatusCode(&status), S_OK);
        return status;
    }

    /// Keeps the headers of the answer for a path.
    std::shared_ptr<ComPtr<ICoreWebView2HttpResponseHeaders>> KeepHeaders(const std::wstring& path) const {
        auto kept = std::make_shared<ComPtr<ICoreWebView2HttpResponseHeaders>>();
        OnResponse([this, path, kept](auto* arguments) {
            if (PathOf(arguments) == path) {
                *kept = HeadersOf(arguments);
            }
        });
        return kept;
    }

    CannedServer server{ResponseSite};
};

TEST_F(ResponseTest, SaysWhatWasAskedAndWhatWasAnswered) {
    int calls = 0;
    ASSERT_TRUE(Load(server.Url(L"/first")));
    OnResponse([&](auto* arguments) {
        ++calls;
        const auto response = ResponseOf(arguments);
        const auto request = RequestOf(arguments);
        const auto requestHeaders = RequestHeadersOf(arguments);
        EXPECT_EQ(TextFrom([&](LPWSTR* text) { return request->get_Uri(text); }), server.Url(L"/page"));
        EXPECT_EQ(TextFrom([&](LPWSTR* text) { return request->get_Method(text); }), L"GET");
        EXPECT_EQ(TextFrom([&](LPWSTR* text) { return requestHeaders->GetHeader(L"Cookie", text); }),
                  L"one=1; two=2");
        EXPECT_EQ(StatusOf(arguments), 200);
        EXPECT_EQ(TextFrom([&](LPWSTR* text) { return response->get_ReasonPhrase(text); }), L"Canned");
        EXPECT_EQ(
            TextFrom([&](LPWSTR* text) { return HeadersOf(arguments)->GetHeader(L"content-type", text); }),
            L"text/html");
    });
    ASSERT_TRUE(Load(server.Url(L"/page")));
    EXPECT_EQ(calls, 1);
}

TEST_F(ResponseTest, RequestHeadersAreThoseThatWentOut) {
    std::wstring seen;
    ASSERT_EQ(view->AddWebResourceRequestedFilter(L"*", COREWEBVIEW2_WEB_RESOURCE_CONTEXT_ALL), S_OK);
    OnRequested([](auto* arguments) {
        ComPtr<ICoreWebView2WebResourceRequest> request;
        ComPtr<ICoreWebView2HttpRequestHeaders> headers;
        EXPECT_EQ(arguments->get_Request(&request), S_OK);
        EXPECT_EQ(request->get_Headers(&headers), S_OK);
        EXPECT_EQ(headers->SetHeader(L"X-Added", L"by the host"), S_OK);
    });
    OnResponse([&](auto* arguments) {
        seen =
            TextFrom([&](LPWSTR* text) { return RequestHeadersOf(arguments)->GetHeader(L"x-added", text); });
    });
    ASSERT_TRUE(Load(server.Url(L"/page")));
    EXPECT_EQ(seen, L"by the host");
    EXPECT_EQ(HeaderOf(server.Requests().front(), "X-Added"), "by the host");
}

TEST_F(ResponseTest, ComesForEachRedirectBeforeTheNavigationIsCompleted) {
    std::wstring order;
    OnResponse([&](auto* arguments) {
        order += PathOf(arguments) + L" " + std::to_wstring(StatusOf(arguments));
        for (const HeaderLine& cookie : Named(HeadersOf(arguments).Get(), L"Set-Cookie")) {
            order += L" " + cookie.value;
        }
        order += L"\n";
    });
    EventRegistrationToken token{};
    ASSERT_EQ(view->add_NavigationCompleted(
                  MakeHandler<ICoreWebView2NavigationCompletedEventHandler>([&](ICoreWebView2*, auto*) {
                      order += L"completed\n";
                  }).Get(),
                  &token),
              S_OK);
    ASSERT_TRUE(Load(server.Url(L"/first")));
    EXPECT_EQ(order, L"/first 302 one=1; Path=/\n"
                     L"/second 302 two=2; Path=/\n"
                     L"/page 200\n"
                     L"completed\n");
}

TEST_F(ResponseTest, CookiesComeAsOftenAndInTheOrderInWhichTheyWereSent) {
    const auto headers = KeepHeaders(L"/cookies");
    ASSERT_TRUE(Load(server.Url(L"/cookies")));
    ASSERT_TRUE(*headers);
    std::wstring lines;
    std::wstring allLines;
    for (const HeaderLine& cookie : Named(headers->Get(), L"SET-COOKIE")) {
        lines += cookie.name + L": " + cookie.value + L"\r\n";
    }
    for (const HeaderLine& header : AllOf(headers->Get())) {
        allLines += header.name + L": " + header.value + L"\r\n";
    }
    const std::string sent = ManyCookies();
    EXPECT_EQ(lines, std::wstring(sent.begin(), sent.end()));
    EXPECT_NE(allLines.find(lines), std::wstring::npos) << allLines;
}

TEST_F(ResponseTest, OfSeveralHeadersOneGetterGivesTheFirst) {
    const auto headers = KeepHeaders(L"/page");
    ASSERT_TRUE(Load(server.Url(L"/page")));
    ASSERT_TRUE(*headers);
    EXPECT_EQ(TextFrom([&](LPWSTR* text) { return (*headers)->GetHeader(L"X-TWICE", text); }), L"a");
    EXPECT_EQ(Named(headers->Get(), L"X-TWICE"),
              (std::vector<HeaderLine>{{L"X-Twice", L"a"}, {L"x-twice", L"b"}}));
}

TEST_F(ResponseTest, StatusReasonAndValuesAreThoseOfTheServer) {
    int status = 0;
    std::wstring reason;
    OnResponse([&](auto* arguments) {
        if (PathOf(arguments) == L"/favicon.ico") {
            return;
        }
        status = StatusOf(arguments);
        const auto response = ResponseOf(arguments);
        reason = TextFrom([&](LPWSTR* text) { return response->get_ReasonPhrase(text); });
    });
    const auto headers = KeepHeaders(L"/odd");
    ASSERT_TRUE(Load(server.Url(L"/odd")));
    ASSERT_TRUE(*headers);
    EXPECT_EQ(status, 299);
    EXPECT_EQ(reason, L"Quite all right");
    EXPECT_EQ(Named(headers->Get(), L"X-Empty"), (std::vector<HeaderLine>{{L"X-Empty", L""}}));
    EXPECT_EQ(Named(headers->Get(), L"X-Latin"), (std::vector<HeaderLine>{{L"X-Latin", L"gr\u00fcn"}}));
    ASSERT_TRUE(Load(server.Url(L"/missing")));
    EXPECT_EQ(status, 404);
    ASSERT_TRUE(Load(server.Url(L"/bare")));
    EXPECT_EQ(status, 200);
    EXPECT_EQ(reason, L"");
}

TEST_F(ResponseTest, ComesForWhatScriptsFetchAsWell) {
    std::wstring paths;
    ASSERT_TRUE(Load(server.Url(L"/page")));
    OnResponse([&](auto* arguments) { paths += PathOf(arguments); });
    EXPECT_EQ(Run(L"fetch('/data').then((answer) => answer.text())"), L"\"data\"");
    EXPECT_TRUE(PumpUntil([&] { return !paths.empty(); }));
    EXPECT_EQ(paths, L"/data");
}

TEST_F(ResponseTest, NothingOfItCanBeChanged) {
    int calls = 0;
    OnResponse([&](auto* arguments) {
        ++calls;
        const auto request = RequestOf(arguments);
        EXPECT_EQ(HeadersOf(arguments)->AppendHeader(L"X-Late", L"1"), E_NOTIMPL);
        EXPECT_EQ(request->put_Uri(L"http://elsewhere/"), E_NOTIMPL);
        EXPECT_EQ(request->put_Method(L"POST"), E_NOTIMPL);
        EXPECT_EQ(RequestHeadersOf(arguments)->SetHeader(L"X-Late", L"1"), S_OK);
    });
    ASSERT_TRUE(Load(server.Url(L"/page")));
    EXPECT_EQ(calls, 1);
    EXPECT_EQ(HeaderOf(server.Requests().front(), "X-Late"), "");
}

TEST_F(ResponseTest, WhatIsNotThereIsRefused) {
    int calls = 0;
    OnResponse([&](auto* arguments) {
        ++calls;
        LPWSTR text = nullptr;
        BOOL contains = TRUE;
        const auto headers = HeadersOf(arguments);
        EXPECT_EQ(headers->GetHeader(L"X-None", &text), E_INVALIDARG);
        EXPECT_EQ(headers->Contains(L"X-None", &contains), S_OK);
        EXPECT_EQ(contains, FALSE);
        EXPECT_EQ(headers->Contains(L"CONTENT-TYPE", &contains), S_OK);
        EXPECT_EQ(contains, TRUE);
        EXPECT_TRUE(Named(headers.Get(), L"X-None").empty());
        EXPECT_EQ(ResponseOf(arguments)->GetContent(nullptr), E_NOTIMPL);
        EXPECT_EQ(arguments->get_Request(nullptr), E_POINTER);
        EXPECT_EQ(arguments->get_Response(nullptr), E_POINTER);
        EXPECT_EQ(ResponseOf(arguments)->get_Headers(nullptr), E_POINTER);
        EXPECT_EQ(ResponseOf(arguments)->get_StatusCode(nullptr), E_POINTER);
        EXPECT_EQ(ResponseOf(arguments)->get_ReasonPhrase(nullptr), E_POINTER);
        EXPECT_EQ(headers->GetHeader(nullptr, &text), E_POINTER);
        EXPECT_EQ(headers->GetHeader(L"Content-Type", nullptr), E_POINTER);
        EXPECT_EQ(headers->GetHeaders(nullptr, nullptr), E_POINTER);
        EXPECT_EQ(headers->Contains(L"Content-Type", nullptr), E_POINTER);
        EXPECT_EQ(headers->GetIterator(nullptr), E_POINTER);
    });
    ASSERT_TRUE(Load(server.Url(L"/page")));
    EXPECT_EQ(calls, 1);
}

TEST_F(ResponseTest, ObjectsMayBeKeptLongerThanTheWebView) {
    const auto headers = KeepHeaders(L"/page");
    ASSERT_TRUE(Load(server.Url(L"/page")));
    EXPECT_EQ(controller->Close(), S_OK);
    ASSERT_TRUE(*headers);
    EXPECT_EQ(TextFrom([&](LPWSTR* text) { return (*headers)->GetHeader(L"Content-Type", text); }),
              L"text/html");
}

TEST_F(ResponseTest, ARemovedHandlerIsNotCalled) {
    int calls = 0;
    const EventRegistrationToken token =
        OnResponse([](auto*) { ADD_FAILURE() << "called after its removal"; });
    OnResponse([&](auto*) { ++calls; });
    EXPECT_EQ(view->remove_WebResourceResponseReceived(token), S_OK);
    ASSERT_TRUE(Load(server.Url(L"/page")));
    EXPECT_EQ(calls, 1);
}

TEST_F(ResponseTest, CloseWorksFromInsideTheHandler) {
    int calls = 0;
    OnResponse([&](auto*) {
        ++calls;
        controller->Close();
        ReleaseAll();
    });
    ASSERT_EQ(view->Navigate(server.Url(L"/first").c_str()), S_OK);
    EXPECT_TRUE(PumpUntil([] { return LiveObjects() == 0; }));
    PumpWaiting();
    EXPECT_EQ(calls, 1);
}

} // namespace
} // namespace webview2_runtime_test
