// Which cookies are carried from one store to the other, and what is traced of it.
#include "cookies/cookie_copy.h"

#include <algorithm>
#include <string_view>

#include "cookies/cookie_text.h"
#include "cookies/cookie_trace.h"
#include "cookies/text_or_empty.h"
#include "cookies/web_view2_cookies.h"
#include "cookies/win_inet_cookies.h"
#include "du/string_utilities.h"
#include "support/trace.h"

using Microsoft::WRL::ComPtr;

namespace kelda {
namespace {

/// A cookie's name, or how such names begin. Case matters.
struct CookieName {
    std::wstring_view text;
    bool isBeginning;

    bool Covers(std::wstring_view name) const { return isBeginning ? name.starts_with(text) : name == text; }
};

/// The one that tells that there is a load balancer at all.
constexpr CookieName kLoadBalancer = {L"BIGipServer", true};

/// The session's, and those by which a load balancer knows its clients again.
constexpr CookieName kCopiedNames[] = {{L"JSESSIONID", false}, kLoadBalancer, {L"TS", true}};

bool IsOfLoadBalancer(const INTERNET_COOKIE2& cookie) {
    return kLoadBalancer.Covers(TextOrEmpty(cookie.pwszName));
}

bool IsCopied(const INTERNET_COOKIE2& cookie) {
    const std::wstring name = TextOrEmpty(cookie.pwszName);
    return std::ranges::any_of(kCopiedNames, [&](const CookieName& copied) { return copied.Covers(name); });
}

void CopyToRuntime(const INTERNET_COOKIE2& source, const ComPtr<ICoreWebView2CookieManager>& manager,
                   bool trace) {
    CookieRecord cookie;
    FromWinInetCookie(cookie, source);
    const bool done = ToWebView2Cookie(cookie, manager);
    if (trace) {
        kWebBrowserEdgeTrace.Info() << (done ? "Processed " : "Failed to process ")
                                    << du::WideStrToUtf8(ToSetCookieString(cookie));
    }
}

void CopyToWinInet(ICoreWebView2Cookie* source, const std::wstring& url, bool trace) {
    CookieRecord cookie;
    FromWebView2Cookie(cookie, source);
    if (trace) {
        TraceCookieReceived(cookie);
    }
    SetWinInetCookie(cookie, url);
}

} // namespace

// A server without a load balancer gets nothing, not even the session that is there. What the runtime holds already is
// overwritten.
// NOLINTNEXTLINE(performance-unnecessary-value-param): the call holds a reference of its own
void PrePopulateLoadBalancerCookies(const std::wstring& url, ComPtr<ICoreWebView2CookieManager> manager,
                                    bool trace) {
    const WinInetCookies stored(url);
    if (std::ranges::none_of(stored.All(), IsOfLoadBalancer)) {
        return;
    }
    if (trace) {
        kWebBrowserEdgeTrace.Info() << "Pre-populating LB cookies for " << du::WideStrToUtf8(url);
    }
    for (const INTERNET_COOKIE2& cookie : stored.All()) {
        if (IsCopied(cookie)) {
            CopyToRuntime(cookie, manager, trace);
        }
    }
}

void CopyCookiesToWinInet(ICoreWebView2CookieList* list, const std::wstring& url, bool trace) {
    UINT32 count = 0;
    if (list != nullptr) {
        list->get_Count(&count);
    }
    if (count == 0) {
        kWebBrowserEdgeTrace.Info() << "No cookies found for " << du::WideStrToUtf8(url);
    }
    for (UINT32 index = 0; index < count; ++index) {
        ComPtr<ICoreWebView2Cookie> cookie;
        list->GetValueAtIndex(index, cookie.GetAddressOf());
        if (cookie) {
            CopyToWinInet(cookie.Get(), url, trace);
        }
    }
    if (trace) {
        TraceWinInetCookies(url);
    }
}

} // namespace kelda
