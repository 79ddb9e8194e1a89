// Loading pages, and the events about it.
#include "web_view.h"

#include <algorithm>
#include <string>

#include "com_text.h"
#include "error_status.h"
#include "navigation_arguments.h"
#include "testbed/chromium/text.h"
#include "web_resource_request.h"

namespace webview2_runtime {
namespace {

using Microsoft::WRL::ComPtr;
using testbed::chromium::Headers;
using testbed::chromium::NavigationOutcome;
using testbed::chromium::NavigationStart;
using testbed::chromium::Page;
using testbed::chromium::ToUtf8;

HRESULT ReadHeaders(ICoreWebView2WebResourceRequest* request, Headers& headers) {
    ComPtr<ICoreWebView2HttpRequestHeaders> collection;
    ComPtr<ICoreWebView2HttpHeadersCollectionIterator> iterator;
    HRESULT result = request->get_Headers(&collection);
    if (SUCCEEDED(result)) {
        result = collection->GetIterator(&iterator);
    }
    BOOL more = FALSE;
    if (SUCCEEDED(result)) {
        result = iterator->get_HasCurrentHeader(&more);
    }
    while (SUCCEEDED(result) && more != FALSE) {
        ReceivedText name;
        ReceivedText value;
        result = iterator->GetCurrentHeader(name.Receive(), value.Receive());
        if (SUCCEEDED(result)) {
            headers.push_back({ToUtf8(name.Text()), ToUtf8(value.Text())});
            result = iterator->MoveNext(&more);
        }
    }
    return result;
}

/// The host's headers go before Chromium's own, but for the cookies, which are the profile's alone.
void RemoveCookies(Headers& headers) {
    std::erase_if(headers, [](const testbed::chromium::Header& header) {
        return CompareStringOrdinal(testbed::chromium::ToUtf16(header.name).c_str(), -1, L"Cookie", -1,
                                    TRUE) == CSTR_EQUAL;
    });
}

} // namespace

HRESULT WebView::Navigate(LPCWSTR uri) {
    return WithPage([&](Page& page) -> HRESULT {
        if (uri == nullptr) {
            return E_POINTER;
        }
        if (!IsAbsoluteUri(uri)) {
            return E_INVALIDARG;
        }
        page.Navigate(ToUtf8(uri));
        return S_OK;
    });
}

HRESULT WebView::NavigateWithWebResourceRequest(ICoreWebView2WebResourceRequest* request) {
    return WithPage([&](Page& page) -> HRESULT {
        if (request == nullptr) {
            return E_POINTER;
        }
        ReceivedText uri;
        ReceivedText method;
        Headers headers;
        HRESULT result = request->get_Uri(uri.Receive());
        if (SUCCEEDED(result)) {
            result = request->get_Method(method.Receive());
        }
        if (SUCCEEDED(result)) {
            result = ReadHeaders(request, headers);
        }
        if (FAILED(result)) {
            return result;
        }
        if (method.Text() != L"GET") {
            return method.Text() == L"POST" ? E_NOTIMPL : E_INVALIDARG;
        }
        if (!IsAbsoluteUri(uri.Text())) {
            return E_INVALIDARG;
        }
        RemoveCookies(headers);
        page.Navigate(ToUtf8(uri.Text()), headers);
        return S_OK;
    });
}

HRESULT WebView::Reload() {
    return WithPage([](Page& page) {
        page.Evaluate("location.reload()", {});
        return S_OK;
    });
}

HRESULT WebView::Stop() {
    return WithPage([](Page& page) {
        page.Stop();
        return S_OK;
    });
}

bool WebView::OnNavigationStarting(const NavigationStart& start) {
    bool goesOn = true;
    DuringEvent([&] {
        const auto arguments = MakeObject<NavigationStartingArguments>(start);
        navigationStarting_.Raise<ICoreWebView2, ICoreWebView2NavigationStartingEventArgs>(this,
                                                                                           arguments.Get());
        goesOn = !arguments->Cancelled();
    });
    return goesOn;
}

void WebView::OnNavigationCompleted(const NavigationOutcome& outcome) {
    DuringEvent([&] {
        const auto arguments =
            MakeObject<NavigationCompletedArguments>(outcome.id, outcome.success, StatusOf(outcome.error));
        navigationCompleted_.Raise<ICoreWebView2, ICoreWebView2NavigationCompletedEventArgs>(this,
                                                                                             arguments.Get());
    });
}

} // namespace webview2_runtime
