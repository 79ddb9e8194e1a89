// A cookie as a local object, and a list of them. Nothing here reaches Chromium: see cookie_manager.h.
#pragma once

#include <vector>

#include "com_object.h"
#include "testbed/chromium/page.h"
#include "webview2_not_implemented.h"

namespace webview2_runtime {

class Cookie : public ComObject<webview2::NotImplemented<ICoreWebView2Cookie>, ICoreWebView2Cookie> {
  public:
    explicit Cookie(testbed::chromium::Cookie cookie) : cookie_(std::move(cookie)) {}

    HRESULT STDMETHODCALLTYPE get_Name(LPWSTR* name) override;
    HRESULT STDMETHODCALLTYPE get_Value(LPWSTR* value) override;
    HRESULT STDMETHODCALLTYPE put_Value(LPCWSTR value) override;
    HRESULT STDMETHODCALLTYPE get_Domain(LPWSTR* domain) override;
    HRESULT STDMETHODCALLTYPE get_Path(LPWSTR* path) override;
    HRESULT STDMETHODCALLTYPE get_Expires(double* expires) override;
    /// Seconds since 1970, or -1 for the session; other negative numbers and what is no number are refused.
    HRESULT STDMETHODCALLTYPE put_Expires(double expires) override;
    HRESULT STDMETHODCALLTYPE get_IsHttpOnly(BOOL* isHttpOnly) override;
    HRESULT STDMETHODCALLTYPE put_IsHttpOnly(BOOL isHttpOnly) override;
    HRESULT STDMETHODCALLTYPE get_SameSite(COREWEBVIEW2_COOKIE_SAME_SITE_KIND* sameSite) override;
    HRESULT STDMETHODCALLTYPE put_SameSite(COREWEBVIEW2_COOKIE_SAME_SITE_KIND sameSite) override;
    HRESULT STDMETHODCALLTYPE get_IsSecure(BOOL* isSecure) override;
    HRESULT STDMETHODCALLTYPE put_IsSecure(BOOL isSecure) override;
    HRESULT STDMETHODCALLTYPE get_IsSession(BOOL* isSession) override;

  private:
    testbed::chromium::Cookie cookie_;
};

class CookieList
    : public ComObject<webview2::NotImplemented<ICoreWebView2CookieList>, ICoreWebView2CookieList> {
  public:
    /// Sorts: longer paths first, then by name, then by domain.
    explicit CookieList(std::vector<testbed::chromium::Cookie> cookies);

    HRESULT STDMETHODCALLTYPE get_Count(UINT32* value) override;
    HRESULT STDMETHODCALLTYPE GetValueAtIndex(UINT32 index, ICoreWebView2Cookie** value) override;

  private:
    std::vector<Microsoft::WRL::ComPtr<Cookie>> cookies_;
};

/// Reads a cookie of whatever class.
///
/// @return what a getter failed with.
HRESULT ReadCookie(ICoreWebView2Cookie* source, testbed::chromium::Cookie& cookie);

} // namespace webview2_runtime
