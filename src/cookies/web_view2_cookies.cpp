// Conversion between records and the runtime's cookies.
#include "cookies/web_view2_cookies.h"

#include "cookies/cookie_text.h"
#include "du/string_utilities.h"
#include "support/com_call.h"
#include "support/com_text.h"
#include "support/trace.h"

using Microsoft::WRL::ComPtr;

namespace kelda {
namespace {

constexpr bool HasNumberOf(CookieSameSite sameSite, COREWEBVIEW2_COOKIE_SAME_SITE_KIND kind) {
    return static_cast<COREWEBVIEW2_COOKIE_SAME_SITE_KIND>(sameSite) == kind;
}
static_assert(HasNumberOf(CookieSameSite::None, COREWEBVIEW2_COOKIE_SAME_SITE_KIND_NONE));
static_assert(HasNumberOf(CookieSameSite::Lax, COREWEBVIEW2_COOKIE_SAME_SITE_KIND_LAX));
static_assert(HasNumberOf(CookieSameSite::Strict, COREWEBVIEW2_COOKIE_SAME_SITE_KIND_STRICT));

using TextGetter = HRESULT (STDMETHODCALLTYPE ICoreWebView2Cookie::*)(LPWSTR*);

void ReadText(std::wstring& text, ICoreWebView2Cookie* source, TextGetter getter) {
    ComText given;
    (source->*getter)(ReceiveText(given));
    if (given != nullptr) {
        text = given.get();
    }
}

} // namespace

void FromWebView2Cookie(CookieRecord& cookie, ICoreWebView2Cookie* source) {
    ReadText(cookie.name, source, &ICoreWebView2Cookie::get_Name);
    ReadText(cookie.value, source, &ICoreWebView2Cookie::get_Value);
    ReadText(cookie.domain, source, &ICoreWebView2Cookie::get_Domain);
    ReadText(cookie.path, source, &ICoreWebView2Cookie::get_Path);
    source->get_Expires(&cookie.expires);
    source->get_IsHttpOnly(&cookie.httpOnly);
    auto sameSite = static_cast<COREWEBVIEW2_COOKIE_SAME_SITE_KIND>(cookie.sameSite);
    source->get_SameSite(&sameSite);
    cookie.sameSite = static_cast<CookieSameSite>(sameSite);
    source->get_IsSecure(&cookie.secure);
    source->get_IsSession(&cookie.session);
}

// The manager comes by value: the call holds a reference of its own.
// NOLINTNEXTLINE(performance-unnecessary-value-param)
bool ToWebView2Cookie(const CookieRecord& cookie, ComPtr<ICoreWebView2CookieManager> manager) {
    ComPtr<ICoreWebView2Cookie> made;
    const HRESULT result =
        CallOn(manager, &ICoreWebView2CookieManager::CreateCookie, cookie.name.c_str(), cookie.value.c_str(),
               cookie.domain.c_str(), cookie.path.c_str(), made.GetAddressOf());
    if (FAILED(result) || !made) {
        kWebBrowserEdgeTrace.Info() << "Failed to create WebView2 cookie";
        return false;
    }
    made->put_Expires(cookie.expires); // also the number that stands for none
    made->put_IsHttpOnly(cookie.httpOnly);
    made->put_SameSite(static_cast<COREWEBVIEW2_COOKIE_SAME_SITE_KIND>(cookie.sameSite));
    made->put_IsSecure(cookie.secure);
    if (FAILED(manager->AddOrUpdateCookie(made.Get()))) {
        kWebBrowserEdgeTrace.Info() << "AddOrUpdateCookie failed for: "
                                    << du::WideStrToUtf8(ToSetCookieString(cookie));
        return false;
    }
    return true;
}

} // namespace kelda
