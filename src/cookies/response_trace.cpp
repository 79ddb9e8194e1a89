// Headers are taken one by one as the runtime lists them: those of one name are never joined.
#include "cookies/response_trace.h"

#include <algorithm>
#include <string_view>

#include <wrl/client.h>

#include "cookies/cookie_record.h"
#include "cookies/cookie_trace.h"
#include "cookies/set_cookie_parser.h"
#include "cookies/text_or_empty.h"
#include "cookies/win_inet_cookies.h"
#include "support/com_boundary.h"
#include "support/com_call.h"
#include "support/com_text.h"
#include "support/failed_call.h"

using Microsoft::WRL::ComPtr;

namespace kelda {
namespace {

using HeaderIterator = ComPtr<ICoreWebView2HttpHeadersCollectionIterator>;

/// @param headers  A collection of request or response headers; may be empty.
template <typename Collection>
HeaderIterator IteratorOf(const ComPtr<Collection>& headers) {
    HeaderIterator iterator;
    CallOn(headers, &Collection::GetIterator, iterator.GetAddressOf());
    return iterator;
}

/// Calls `visit` with name and value of the header that the iterator is at; either may be null. They are freed here.
/// @return whether they could be had.
template <typename Visit>
bool VisitCurrent(const HeaderIterator& iterator, const Visit& visit) {
    ComText name;
    ComText value;
    if (FAILED(iterator->GetCurrentHeader(ReceiveText(name), ReceiveText(value)))) {
        return false;
    }
    visit(name.get(), value.get());
    return true;
}

template <typename Visit>
void ForEachHeader(const HeaderIterator& iterator, const Visit& visit) {
    BOOL hasCurrent = FALSE;
    HRESULT result =
        CallOn(iterator, &ICoreWebView2HttpHeadersCollectionIterator::get_HasCurrentHeader, &hasCurrent);
    while (SUCCEEDED(result) && hasCurrent != FALSE && VisitCurrent(iterator, visit)) {
        hasCurrent = FALSE;
        result = iterator->MoveNext(&hasCurrent);
    }
}

void TraceHeaders(const wchar_t* title, const HeaderIterator& iterator, bool trace) {
    if (!trace) {
        ForEachHeader(iterator, [](const wchar_t*, const wchar_t*) {});
        return;
    }
    TraceLine(title);
    ForEachHeader(iterator, [](const wchar_t* name, const wchar_t* value) {
        TraceLine(TextOrEmpty(name) + L": " + TextOrEmpty(value));
    });
    TraceLine(L"End of headers");
}

/// Whatever the locale: only the letters of ASCII have two cases in a header's name.
bool IsSetCookie(std::wstring_view name) {
    const auto lower = [](wchar_t c) {
        return c >= L'A' && c <= L'Z' ? static_cast<wchar_t>(c - L'A' + L'a') : c;
    };
    return std::ranges::equal(name, std::wstring_view(L"set-cookie"), {}, lower);
}

/// An exception for one cookie, such as an unreadable date, ends here, because the next cookie may be the session's.
void CaptureSetCookie(const std::wstring& uri, const std::wstring& value, bool trace) {
    AtComBoundary(
        [&] {
            CookieRecord cookie;
            ParseSetCookie(cookie, value); // without a "=" it has no name: the writer refuses it
            if (trace) {
                TraceCookieReceived(cookie);
            }
            SetWinInetCookie(cookie, uri);
            return S_OK;
        },
        TraceException);
}

} // namespace

void TraceResponse(ICoreWebView2WebResourceResponseReceivedEventArgs* args, bool trace) {
    ComPtr<ICoreWebView2WebResourceRequest> request;
    args->get_Request(request.GetAddressOf());
    ComPtr<ICoreWebView2WebResourceResponseView> response;
    args->get_Response(response.GetAddressOf());
    int status = 0;
    CallOn(response, &ICoreWebView2WebResourceResponseView::get_StatusCode, &status);
    ComText uri;
    CallOn(request, &ICoreWebView2WebResourceRequest::get_Uri, ReceiveText(uri));
    ComText method;
    CallOn(request, &ICoreWebView2WebResourceRequest::get_Method, ReceiveText(method));
    if (trace) {
        TraceLine(L"Response " + std::to_wstring(status) + L" received for " + TextOrEmpty(method.get()) +
                  L": " + TextOrEmpty(uri.get()));
    }
    ComPtr<ICoreWebView2HttpRequestHeaders> requestHeaders;
    CallOn(request, &ICoreWebView2WebResourceRequest::get_Headers, requestHeaders.GetAddressOf());
    TraceHeaders(L"Request headers:", IteratorOf(requestHeaders), trace);
    ComPtr<ICoreWebView2HttpResponseHeaders> responseHeaders;
    CallOn(response, &ICoreWebView2WebResourceResponseView::get_Headers, responseHeaders.GetAddressOf());
    TraceHeaders(L"Response headers:", IteratorOf(responseHeaders), trace);
}

void CaptureSetCookies(const std::wstring& uri, const ComPtr<ICoreWebView2HttpResponseHeaders>& headers,
                       bool trace) {
    ForEachHeader(IteratorOf(headers), [&](const wchar_t* name, const wchar_t* value) {
        if (IsSetCookie(TextOrEmpty(name))) {
            CaptureSetCookie(uri, TextOrEmpty(value), trace);
        }
    });
}

} // namespace kelda
