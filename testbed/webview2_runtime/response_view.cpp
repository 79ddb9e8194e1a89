// Copies what the engine tells: the host may keep the objects for as long as it likes.
#include "response_view.h"

#include <algorithm>
#include <memory>

#include "com_text.h"

namespace webview2_runtime {

using testbed::chromium::ToUtf16;

HRESULT ResponseHeaders::GetHeader(LPCWSTR name, LPWSTR* value) {
    return Guarded([&]() -> HRESULT {
        if (name == nullptr || value == nullptr) {
            return E_POINTER;
        }
        const auto first = std::ranges::find_if(All(), Named(testbed::chromium::ToUtf8(name)));
        return first == All().end() ? E_INVALIDARG : CopyOut(ToUtf16(first->value), value);
    });
}

ResponseView::ResponseView(const testbed::chromium::Response& response)
    : status_(response.status),
      reason_(ToUtf16(response.reason)),
      headers_(std::make_shared<testbed::chromium::Headers>(response.headers)) {}

HRESULT ResponseView::get_Headers(ICoreWebView2HttpResponseHeaders** headers) {
    return Guarded([&]() -> HRESULT {
        return headers == nullptr ? E_POINTER : HandOut(MakeObject<ResponseHeaders>(headers_), headers);
    });
}

HRESULT ResponseView::get_StatusCode(int* statusCode) {
    return GuardedGet(statusCode, [&] { return status_; });
}

HRESULT ResponseView::get_ReasonPhrase(LPWSTR* reasonPhrase) {
    return Guarded([&] { return CopyOut(reason_, reasonPhrase); });
}

} // namespace webview2_runtime
