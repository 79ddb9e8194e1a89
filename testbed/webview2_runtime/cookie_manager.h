// The cookies of a page's profile, through that page.
#pragma once

#include "page_object.h"
#include "webview2_not_implemented.h"

namespace webview2_runtime {

class CookieManager
    : public PageObject<webview2::NotImplemented<ICoreWebView2CookieManager>, ICoreWebView2CookieManager> {
  public:
    explicit CookieManager(SharedPage slot) : PageObject(std::move(slot)) {}

    /// E_INVALIDARG for an empty name, or one with blanks around it.
    HRESULT STDMETHODCALLTYPE CreateCookie(LPCWSTR name, LPCWSTR value, LPCWSTR domain, LPCWSTR path,
                                           ICoreWebView2Cookie** cookie) override;
    HRESULT STDMETHODCALLTYPE CopyCookie(ICoreWebView2Cookie* cookieParam,
                                         ICoreWebView2Cookie** cookie) override;
    /// Those of the whole profile for a null or empty `uri`.
    HRESULT STDMETHODCALLTYPE GetCookies(LPCWSTR uri,
                                         ICoreWebView2GetCookiesCompletedHandler* handler) override;
    /// E_INVALIDARG without a domain, and for a name or a value that cannot be one. What Chromium itself refuses is not
    /// stored, but the call succeeds: it does not wait.
    HRESULT STDMETHODCALLTYPE AddOrUpdateCookie(ICoreWebView2Cookie* cookie) override;
    HRESULT STDMETHODCALLTYPE DeleteCookie(ICoreWebView2Cookie* cookie) override;
    HRESULT STDMETHODCALLTYPE DeleteCookies(LPCWSTR name, LPCWSTR uri) override;
    HRESULT STDMETHODCALLTYPE DeleteCookiesWithDomainAndPath(LPCWSTR name, LPCWSTR domain,
                                                             LPCWSTR path) override;
    HRESULT STDMETHODCALLTYPE DeleteAllCookies() override;
};

} // namespace webview2_runtime
