// The headers of a request as the host sees and edits them, and the iterator over them.
#pragma once

#include <memory>
#include <string>

#include "com_object.h"
#include "testbed/chromium/page_client.h"
#include "webview2_not_implemented.h"

namespace webview2_runtime {

/// Shared by the collection, its iterators and the request: the iterators see what is edited under them.
using SharedHeaders = std::shared_ptr<testbed::chromium::Headers>;

/// Reads lines "Name: value", which CR LF separates; the last CR LF may be missing.
///
/// @return E_INVALIDARG for a line without a colon, or without a name before it.
HRESULT ParseHeaderLines(const std::wstring& lines, testbed::chromium::Headers& headers);

/// Names are compared without regard to the case of ASCII letters.
class RequestHeaders : public ComObject<webview2::NotImplemented<ICoreWebView2HttpRequestHeaders>,
                                        ICoreWebView2HttpRequestHeaders> {
  public:
    explicit RequestHeaders(SharedHeaders headers) : headers_(std::move(headers)) {}

    /// Several headers of that name are joined by ", "; E_INVALIDARG if there is none.
    HRESULT STDMETHODCALLTYPE GetHeader(LPCWSTR name, LPWSTR* value) override;
    HRESULT STDMETHODCALLTYPE GetHeaders(LPCWSTR name,
                                         ICoreWebView2HttpHeadersCollectionIterator** value) override;
    HRESULT STDMETHODCALLTYPE Contains(LPCWSTR name, BOOL* value) override;
    HRESULT STDMETHODCALLTYPE SetHeader(LPCWSTR name, LPCWSTR value) override;
    /// E_INVALIDARG if there is none of that name.
    HRESULT STDMETHODCALLTYPE RemoveHeader(LPCWSTR name) override;
    HRESULT STDMETHODCALLTYPE GetIterator(ICoreWebView2HttpHeadersCollectionIterator** value) override;

  private:
    SharedHeaders headers_;
};

} // namespace webview2_runtime
