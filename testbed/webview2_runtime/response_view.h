// An answer of a server's as the host sees it: it only shows what came.
#pragma once

#include <string>

#include "header_collection.h"

namespace webview2_runtime {

class ResponseHeaders : public HeaderCollection<ICoreWebView2HttpResponseHeaders> {
  public:
    using HeaderCollection::HeaderCollection;

    /// The first of several headers of that name; E_INVALIDARG if there is none.
    HRESULT STDMETHODCALLTYPE GetHeader(LPCWSTR name, LPWSTR* value) override;
};

class ResponseView : public ComObject<webview2::NotImplemented<ICoreWebView2WebResourceResponseView>,
                                      ICoreWebView2WebResourceResponseView> {
  public:
    explicit ResponseView(const testbed::chromium::Response& response);

    HRESULT STDMETHODCALLTYPE get_Headers(ICoreWebView2HttpResponseHeaders** headers) override;
    HRESULT STDMETHODCALLTYPE get_StatusCode(int* statusCode) override;
    HRESULT STDMETHODCALLTYPE get_ReasonPhrase(LPWSTR* reasonPhrase) override;

  private:
    int status_;
    std::wstring reason_;
    SharedHeaders headers_;
};

} // namespace webview2_runtime
