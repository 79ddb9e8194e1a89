// Nothing here talks to Chromium: the web view carries over what was edited.
#include "web_resource_request.h"

#include <algorithm>
#include <memory>
#include <string_view>
#include <utility>

#include "com_text.h"

namespace webview2_runtime {
namespace {

bool IsLetter(wchar_t character) {
    return (character >= L'a' && character <= L'z') || (character >= L'A' && character <= L'Z');
}

bool IsSchemeCharacter(wchar_t character) {
    return IsLetter(character) || (character >= L'0' && character <= L'9') ||
           std::wstring_view(L"+-.").find(character) != std::wstring_view::npos;
}

} // namespace

bool IsAbsoluteUri(std::wstring_view uri) {
    const std::size_t colon = uri.find(L':');
    return colon != std::wstring_view::npos && colon + 1 < uri.size() && IsLetter(uri.front()) &&
           std::ranges::all_of(uri.substr(0, colon), IsSchemeCharacter);
}

WebResourceRequest::WebResourceRequest(RequestOrigin origin, std::wstring uri, std::wstring method,
                                       IStream* content, SharedHeaders headers)
    : origin_(origin),
      uri_(std::move(uri)),
      method_(std::move(method)),
      content_(content),
      headers_(std::move(headers)) {}

HRESULT WebResourceRequest::PutText(std::wstring& member, LPCWSTR text) const {
    return Guarded([&]() -> HRESULT {
        if (text == nullptr) {
            return E_POINTER;
        }
        if (origin_ == RequestOrigin::Page) {
            return E_NOTIMPL;
        }
        member = text;
        return S_OK;
    });
}

HRESULT WebResourceRequest::get_Uri(LPWSTR* uri) {
    return Guarded([&] { return CopyOut(uri_, uri); });
}

HRESULT WebResourceRequest::put_Uri(LPCWSTR uri) {
    return PutText(uri_, uri);
}

HRESULT WebResourceRequest::get_Method(LPWSTR* method) {
    return Guarded([&] { return CopyOut(method_, method); });
}

HRESULT WebResourceRequest::put_Method(LPCWSTR method) {
    return PutText(method_, method);
}

HRESULT WebResourceRequest::get_Content(IStream** content) {
    return Guarded([&]() -> HRESULT { return content == nullptr ? E_POINTER : content_.CopyTo(content); });
}

HRESULT WebResourceRequest::put_Content(IStream* content) {
    return Guarded([&]() -> HRESULT {
        if (origin_ == RequestOrigin::Page) {
            return E_NOTIMPL;
        }
        content_ = content;
        return S_OK;
    });
}

HRESULT WebResourceRequest::get_Headers(ICoreWebView2HttpRequestHeaders** headers) {
    return Guarded([&]() -> HRESULT {
        return headers == nullptr ? E_POINTER : HandOut(MakeObject<RequestHeaders>(headers_), headers);
    });
}

HRESULT MakeHostRequest(LPCWSTR uri, LPCWSTR method, IStream* content, LPCWSTR headers,
                        Microsoft::WRL::ComPtr<WebResourceRequest>& request) {
    if (uri == nullptr || method == nullptr) {
        return E_POINTER;
    }
    const std::wstring_view verb = method;
    if (!IsAbsoluteUri(uri) || (verb != L"GET" && verb != L"POST")) {
        return E_INVALIDARG;
    }
    auto parsed = std::make_shared<testbed::chromium::Headers>();
    const HRESULT result = ParseHeaderLines(headers == nullptr ? L"" : headers, *parsed);
    if (SUCCEEDED(result)) {
        request =
            MakeObject<WebResourceRequest>(RequestOrigin::Host, uri, method, content, std::move(parsed));
    }
    return result;
}

} // namespace webview2_runtime
