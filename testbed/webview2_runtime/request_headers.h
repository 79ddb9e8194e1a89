// The headers of a request as the host sees and edits them.
#pragma once

#include <string>

#include "header_collection.h"

namespace webview2_runtime {

/// Reads lines "Name: value", which CR LF separates; the last CR LF may be missing.
///
/// @return E_INVALIDARG for a line without a colon, or without a name before it.
HRESULT ParseHeaderLines(const std::wstring& lines, testbed::chromium::Headers& headers);

class RequestHeaders : public HeaderCollection<ICoreWebView2HttpRequestHeaders> {
  public:
    using HeaderCollection::HeaderCollection;

    /// Several headers of that name are joined by ", "; E_INVALIDARG if there is none.
    HRESULT STDMETHODCALLTYPE GetHeader(LPCWSTR name, LPWSTR* value) override;
    HRESULT STDMETHODCALLTYPE SetHeader(LPCWSTR name, LPCWSTR value) override;
    /// E_INVALIDARG if there is none of that name.
    HRESULT STDMETHODCALLTYPE RemoveHeader(LPCWSTR name) override;
};

} // namespace webview2_runtime
