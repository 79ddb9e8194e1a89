// A request: one that the host makes, to navigate with, or one of a page, that waits for the host.
#pragma once

#include <string>
#include <string_view>

#include "request_headers.h"

namespace webview2_runtime {

/// Whether a URI has a scheme: a letter, then letters, digits, "+", "-" and ".", then a colon with something behind it.
bool IsAbsoluteUri(std::wstring_view uri);

/// Where the request comes from decides what may be changed in it.
enum class RequestOrigin {
    Host, ///< everything
    Page  ///< the headers only: putting anything else answers E_NOTIMPL
};

class WebResourceRequest : public ComObject<webview2::NotImplemented<ICoreWebView2WebResourceRequest>,
                                            ICoreWebView2WebResourceRequest> {
  public:
    WebResourceRequest(RequestOrigin origin, std::wstring uri, std::wstring method, IStream* content,
                       SharedHeaders headers);

    HRESULT STDMETHODCALLTYPE get_Uri(LPWSTR* uri) override;
    HRESULT STDMETHODCALLTYPE put_Uri(LPCWSTR uri) override;
    HRESULT STDMETHODCALLTYPE get_Method(LPWSTR* method) override;
    HRESULT STDMETHODCALLTYPE put_Method(LPCWSTR method) override;
    HRESULT STDMETHODCALLTYPE get_Content(IStream** content) override;
    HRESULT STDMETHODCALLTYPE put_Content(IStream* content) override;
    HRESULT STDMETHODCALLTYPE get_Headers(ICoreWebView2HttpRequestHeaders** headers) override;

  private:
    HRESULT PutText(std::wstring& member, LPCWSTR text) const;

    RequestOrigin origin_;
    std::wstring uri_;
    std::wstring method_;
    Microsoft::WRL::ComPtr<IStream> content_;
    SharedHeaders headers_;
};

/// Makes a request of the host's.
///
/// @param headers lines; may be null.
/// @return E_INVALIDARG if the URI is not absolute, the method neither GET nor POST, or a header line malformed.
HRESULT MakeHostRequest(LPCWSTR uri, LPCWSTR method, IStream* content, LPCWSTR headers,
                        Microsoft::WRL::ComPtr<WebResourceRequest>& request);

} // namespace webview2_runtime
