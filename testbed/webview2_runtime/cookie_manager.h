// The cookies of a page's profile, through that page.
#pragma once

#include "com_object.h"
#include "page_slot.h"
#include "webview2_not_implemented.h"

namespace webview2_runtime {

/// Outlives its web view without harm: then it answers `ClosedError`.
class CookieManager
    : public ComObject<webview2::NotImplemented<ICoreWebView2CookieManager>, ICoreWebView2CookieManager> {
  public:
    explicit CookieManager(SharedPage slot) : slot_(std::move(slot)) {}

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

  private:
    template <typename Body>
    HRESULT WithPage(Body&& body) const noexcept {
        return Guarded(
            [&]() -> HRESULT { return slot_->page == nullptr ? ClosedError() : body(*slot_->page); });
    }

    SharedPage slot_;
};

} // namespace webview2_runtime
