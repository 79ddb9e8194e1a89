// Reading and writing of the WinINet cookie store.
#include "cookies/win_inet_cookies.h"

#include "cookies/cookie_text.h"
#include "cookies/cookie_time.h"
#include "cookies/text_or_empty.h"
#include "du/string_utilities.h"
#include "support/trace.h"

namespace kelda {
namespace {

DWORD FlagsOf(const CookieRecord& cookie) {
    DWORD flags = 0;
    if (cookie.secure != 0) {
        flags |= INTERNET_COOKIE_IS_SECURE;
    }
    if (cookie.httpOnly != 0) {
        flags |= INTERNET_COOKIE_HTTPONLY;
    }
    if (cookie.sameSite == CookieSameSite::Lax) {
        flags |= INTERNET_COOKIE_SAME_SITE_LAX;
    } else if (cookie.sameSite == CookieSameSite::Strict) {
        flags |= INTERNET_COOKIE_SAME_SITE_STRICT;
    }
    return flags;
}

CookieSameSite SameSiteOf(DWORD flags) {
    if ((flags & INTERNET_COOKIE_SAME_SITE_LAX) != 0) {
        return CookieSameSite::Lax;
    }
    return (flags & INTERNET_COOKIE_SAME_SITE_STRICT) != 0 ? CookieSameSite::Strict : CookieSameSite::None;
}

/// The structure serves reading and writing, so that its texts are not const; a store that is written to leaves them
/// alone.
PWSTR Borrow(const std::wstring& text) {
    return const_cast<PWSTR>(text.c_str());
}

/// What is not given, the store takes from the address.
PWSTR BorrowIfGiven(const std::wstring& text) {
    return text.empty() ? nullptr : Borrow(text);
}

} // namespace

WinInetCookies::WinInetCookies(const std::wstring& url) {
    const DWORD result =
        InternetGetCookieEx2(url.c_str(), nullptr, INTERNET_COOKIE_NON_SCRIPT, &cookies_, &count_);
    if (result != ERROR_SUCCESS || cookies_ == nullptr) {
        cookies_ = nullptr;
        count_ = 0;
    }
}

WinInetCookies::~WinInetCookies() {
    if (cookies_ != nullptr) {
        InternetFreeCookies(cookies_, count_);
    }
}

bool SetWinInetCookie(const CookieRecord& cookie, const std::wstring& url) {
    if (cookie.name.empty()) {
        kWebBrowserEdgeTrace.Info() << "Invalid cookie";
        return false;
    }
    INTERNET_COOKIE2 stored{};
    stored.pwszName = Borrow(cookie.name);
    stored.pwszValue = Borrow(cookie.value);
    stored.pwszDomain = BorrowIfGiven(cookie.domain);
    stored.pwszPath = BorrowIfGiven(cookie.path);
    stored.dwFlags = FlagsOf(cookie);
    // The expiry alone decides: the record's `session` may say otherwise.
    if (cookie.expires != CookieRecord::kNoExpiry) {
        stored.ftExpires = FileTimeFromExpires(cookie.expires);
        stored.fExpiresSet = TRUE;
    }
    DWORD state = COOKIE_STATE_UNKNOWN;
    const DWORD result =
        InternetSetCookieEx2(url.c_str(), &stored, nullptr, INTERNET_COOKIE_NON_SCRIPT, &state);
    if (result != ERROR_SUCCESS || state != COOKIE_STATE_ACCEPT) {
        kWebBrowserEdgeTrace.Info() << "Cookie not accepted; res=" << result << " state=" << state;
    }
    return result == ERROR_SUCCESS;
}

void FromWinInetCookie(CookieRecord& cookie, const INTERNET_COOKIE2& source) {
    cookie.name = TextOrEmpty(source.pwszName);
    cookie.value = TextOrEmpty(source.pwszValue);
    cookie.domain = TextOrEmpty(source.pwszDomain);
    cookie.path = TextOrEmpty(source.pwszPath);
    cookie.secure = (source.dwFlags & INTERNET_COOKIE_IS_SECURE) != 0 ? 1 : 0;
    cookie.httpOnly = (source.dwFlags & INTERNET_COOKIE_HTTPONLY) != 0 ? 1 : 0;
    cookie.sameSite = SameSiteOf(source.dwFlags);
    cookie.expires =
        source.fExpiresSet != FALSE ? ExpiresFromFileTime(source.ftExpires) : CookieRecord::kNoExpiry;
}

void TraceWinInetCookies(const std::wstring& url) {
    kWebBrowserEdgeTrace.Info() << "WinInet cookies for " << du::WideStrToUtf8(url);
    const WinInetCookies stored(url);
    for (const INTERNET_COOKIE2& cookie : stored.All()) {
        kWebBrowserEdgeTrace.Info() << du::WideStrToUtf8(ToStoreLine(cookie));
    }
}

} // namespace kelda
