// Fakes of the runtime's cookies, of lists of them and of their store.
#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <wrl/client.h>

#include "tests/support/webview2/com_copy.h"
#include "tests/support/webview2/fake_runtime_object.h"

namespace test_support {

/// What a cookie of the runtime says.
struct CookieContent {
    std::wstring name;
    std::wstring value;
    std::wstring domain = L"server";
    std::wstring path = L"/";
    double expires = -1.0;
    BOOL httpOnly = FALSE;
    COREWEBVIEW2_COOKIE_SAME_SITE_KIND sameSite = COREWEBVIEW2_COOKIE_SAME_SITE_KIND_NONE;
    BOOL secure = FALSE;
    BOOL session = TRUE;
};

/// A getter that fails gives nothing. What is put is recorded, not kept.
class FakeCookie final : public FakeRuntimeObject<ICoreWebView2Cookie> {
  public:
    FakeCookie(CallScript& script, CookieContent content, std::string name = "cookie")
        : FakeRuntimeObject(script, std::move(name)), content_(std::move(content)) {}

    HRESULT STDMETHODCALLTYPE get_Name(LPWSTR* name) override {
        return GiveText("get_Name", content_.name, name);
    }
    HRESULT STDMETHODCALLTYPE get_Value(LPWSTR* value) override {
        return GiveText("get_Value", content_.value, value);
    }
    HRESULT STDMETHODCALLTYPE get_Domain(LPWSTR* domain) override {
        return GiveText("get_Domain", content_.domain, domain);
    }
    HRESULT STDMETHODCALLTYPE get_Path(LPWSTR* path) override {
        return GiveText("get_Path", content_.path, path);
    }
    HRESULT STDMETHODCALLTYPE get_Expires(double* expires) override {
        return Give("get_Expires", content_.expires, expires);
    }
    HRESULT STDMETHODCALLTYPE get_IsHttpOnly(BOOL* httpOnly) override {
        return Give("get_IsHttpOnly", content_.httpOnly, httpOnly);
    }
    HRESULT STDMETHODCALLTYPE get_SameSite(COREWEBVIEW2_COOKIE_SAME_SITE_KIND* sameSite) override {
        return Give("get_SameSite", content_.sameSite, sameSite);
    }
    HRESULT STDMETHODCALLTYPE get_IsSecure(BOOL* secure) override {
        return Give("get_IsSecure", content_.secure, secure);
    }
    HRESULT STDMETHODCALLTYPE get_IsSession(BOOL* session) override {
        return Give("get_IsSession", content_.session, session);
    }
    HRESULT STDMETHODCALLTYPE put_Expires(double expires) override {
        return Called("put_Expires", std::to_string(expires));
    }
    HRESULT STDMETHODCALLTYPE put_IsHttpOnly(BOOL httpOnly) override {
        return Called("put_IsHttpOnly", std::to_string(httpOnly));
    }
    HRESULT STDMETHODCALLTYPE put_SameSite(COREWEBVIEW2_COOKIE_SAME_SITE_KIND sameSite) override {
        return Called("put_SameSite", std::to_string(sameSite));
    }
    HRESULT STDMETHODCALLTYPE put_IsSecure(BOOL secure) override {
        return Called("put_IsSecure", std::to_string(secure));
    }

  private:
    template <typename Value>
    HRESULT Give(const char* getter, const Value& value, Value* out) const {
        const HRESULT result = Called(getter);
        if (SUCCEEDED(result)) {
            *out = value;
        }
        return result;
    }
    HRESULT GiveText(const char* getter, const std::wstring& text, LPWSTR* out) const {
        const HRESULT result = Called(getter);
        *out = SUCCEEDED(result) ? ComCopy(text) : nullptr;
        return result;
    }

    CookieContent content_;
};

/// Its cookies are called "cookie0" and so on. An entry without content is one that cannot be had.
class FakeCookieList final : public FakeRuntimeObject<ICoreWebView2CookieList> {
  public:
    FakeCookieList(CallScript& script, std::vector<std::optional<CookieContent>> cookies)
        : FakeRuntimeObject(script, "list"), cookies_(std::move(cookies)) {}

    HRESULT STDMETHODCALLTYPE get_Count(UINT32* count) override {
        const HRESULT result = Called("get_Count");
        if (SUCCEEDED(result)) {
            *count = static_cast<UINT32>(cookies_.size());
        }
        return result;
    }
    HRESULT STDMETHODCALLTYPE GetValueAtIndex(UINT32 index, ICoreWebView2Cookie** cookie) override {
        return GiveObject(
            "GetValueAtIndex", std::to_string(index),
            [&]() -> ICoreWebView2Cookie* {
                const auto& content = cookies_.at(index);
                return content ? new FakeCookie(Script(), *content, "cookie" + std::to_string(index))
                               : nullptr;
            },
            cookie);
    }

  private:
    std::vector<std::optional<CookieContent>> cookies_;
};

/// The completions of calls for a list of cookies, until a test calls them.
using CookiesAsked = std::vector<Microsoft::WRL::ComPtr<ICoreWebView2GetCookiesCompletedHandler>>;

class FakeCookieManager final : public FakeRuntimeObject<ICoreWebView2CookieManager> {
  public:
    FakeCookieManager(CallScript& script, CookiesAsked& asked, std::string name = "cookieManager")
        : FakeRuntimeObject(script, std::move(name)), asked_(asked) {}

    HRESULT STDMETHODCALLTYPE CreateCookie(LPCWSTR name, LPCWSTR value, LPCWSTR domain, LPCWSTR path,
                                           ICoreWebView2Cookie** cookie) override {
        return GiveObject(
            "CreateCookie",
            Narrow(name) + "=" + Narrow(value) + " domain=" + Narrow(domain) + " path=" + Narrow(path),
            [&]() -> ICoreWebView2Cookie* {
                return givesCookies ? new FakeCookie(Script(), {name, value, domain, path}) : nullptr;
            },
            cookie);
    }
    HRESULT STDMETHODCALLTYPE AddOrUpdateCookie(ICoreWebView2Cookie* cookie) override {
        return Called("AddOrUpdateCookie", cookie != nullptr ? "cookie" : "(null)");
    }
    HRESULT STDMETHODCALLTYPE GetCookies(LPCWSTR uri,
                                         ICoreWebView2GetCookiesCompletedHandler* handler) override {
        const HRESULT result = Called("GetCookies", Narrow(uri));
        if (SUCCEEDED(result)) {
            asked_.emplace_back(handler);
        }
        return result;
    }

    /// False: cookies are created with success, but none is given.
    bool givesCookies = true;

  private:
    CookiesAsked& asked_;
};

} // namespace test_support
