// Plain values with their checks.
#include "cookie.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <tuple>
#include <utility>

#include "com_text.h"
#include "testbed/chromium/text.h"

namespace webview2_runtime {
namespace {

using testbed::chromium::SameSite;
using testbed::chromium::ToUtf16;
using testbed::chromium::ToUtf8;

constexpr double kSession = -1;

/// What a site has not said counts as Lax.
COREWEBVIEW2_COOKIE_SAME_SITE_KIND KindOf(SameSite sameSite) {
    switch (sameSite) {
    case SameSite::None:
        return COREWEBVIEW2_COOKIE_SAME_SITE_KIND_NONE;
    case SameSite::Strict:
        return COREWEBVIEW2_COOKIE_SAME_SITE_KIND_STRICT;
    case SameSite::Unspecified:
    case SameSite::Lax:
        break;
    }
    return COREWEBVIEW2_COOKIE_SAME_SITE_KIND_LAX;
}

SameSite SameSiteOf(COREWEBVIEW2_COOKIE_SAME_SITE_KIND kind) {
    switch (kind) {
    case COREWEBVIEW2_COOKIE_SAME_SITE_KIND_NONE:
        return SameSite::None;
    case COREWEBVIEW2_COOKIE_SAME_SITE_KIND_STRICT:
        return SameSite::Strict;
    case COREWEBVIEW2_COOKIE_SAME_SITE_KIND_LAX:
        break;
    }
    return SameSite::Lax;
}

BOOL ToBool(bool value) {
    return value ? TRUE : FALSE;
}

/// Calls one getter of a cookie unless an earlier one has failed.
class CookieReader {
  public:
    explicit CookieReader(ICoreWebView2Cookie* source) : source_(source) {}

    template <typename Value, typename Getter>
    Value Read(Getter getter, Value value) {
        if (SUCCEEDED(result_)) {
            result_ = (source_->*getter)(&value);
        }
        return value;
    }

    template <typename Getter>
    std::string ReadText(Getter getter) {
        ReceivedText text;
        if (SUCCEEDED(result_)) {
            result_ = (source_->*getter)(text.Receive());
        }
        return ToUtf8(text.Text());
    }

    HRESULT Result() const { return result_; }

  private:
    ICoreWebView2Cookie* source_;
    HRESULT result_ = S_OK;
};

} // namespace

HRESULT ReadCookie(ICoreWebView2Cookie* source, testbed::chromium::Cookie& cookie) {
    using Source = ICoreWebView2Cookie;
    CookieReader reader(source);
    cookie.name = reader.ReadText(&Source::get_Name);
    cookie.value = reader.ReadText(&Source::get_Value);
    cookie.domain = reader.ReadText(&Source::get_Domain);
    cookie.path = reader.ReadText(&Source::get_Path);
    cookie.expires = reader.Read(&Source::get_Expires, kSession);
    cookie.httpOnly = reader.Read(&Source::get_IsHttpOnly, FALSE) != FALSE;
    cookie.secure = reader.Read(&Source::get_IsSecure, FALSE) != FALSE;
    cookie.sameSite = SameSiteOf(reader.Read(&Source::get_SameSite, COREWEBVIEW2_COOKIE_SAME_SITE_KIND_LAX));
    return reader.Result();
}

HRESULT Cookie::get_Name(LPWSTR* name) {
    return Guarded([&] { return CopyOut(ToUtf16(cookie_.name), name); });
}

HRESULT Cookie::get_Value(LPWSTR* value) {
    return Guarded([&] { return CopyOut(ToUtf16(cookie_.value), value); });
}

HRESULT Cookie::put_Value(LPCWSTR value) {
    return Guarded([&]() -> HRESULT {
        if (value == nullptr) {
            return E_POINTER;
        }
        cookie_.value = ToUtf8(value);
        return S_OK;
    });
}

HRESULT Cookie::get_Domain(LPWSTR* domain) {
    return Guarded([&] { return CopyOut(ToUtf16(cookie_.domain), domain); });
}

HRESULT Cookie::get_Path(LPWSTR* path) {
    return Guarded([&] { return CopyOut(ToUtf16(cookie_.path), path); });
}

HRESULT Cookie::get_Expires(double* expires) {
    return GuardedGet(expires, [&] { return cookie_.expires; });
}

HRESULT Cookie::put_Expires(double expires) {
    return Guarded([&]() -> HRESULT {
        if (!std::isfinite(expires) || (expires < 0 && expires != kSession)) {
            return E_INVALIDARG;
        }
        cookie_.expires = expires;
        return S_OK;
    });
}

HRESULT Cookie::get_IsHttpOnly(BOOL* isHttpOnly) {
    return GuardedGet(isHttpOnly, [&] { return ToBool(cookie_.httpOnly); });
}

HRESULT Cookie::put_IsHttpOnly(BOOL isHttpOnly) {
    return Guarded([&] {
        cookie_.httpOnly = isHttpOnly != FALSE;
        return S_OK;
    });
}

HRESULT Cookie::get_SameSite(COREWEBVIEW2_COOKIE_SAME_SITE_KIND* sameSite) {
    return GuardedGet(sameSite, [&] { return KindOf(cookie_.sameSite); });
}

HRESULT Cookie::put_SameSite(COREWEBVIEW2_COOKIE_SAME_SITE_KIND sameSite) {
    return Guarded([&] {
        cookie_.sameSite = SameSiteOf(sameSite);
        return S_OK;
    });
}

HRESULT Cookie::get_IsSecure(BOOL* isSecure) {
    return GuardedGet(isSecure, [&] { return ToBool(cookie_.secure); });
}

HRESULT Cookie::put_IsSecure(BOOL isSecure) {
    return Guarded([&] {
        cookie_.secure = isSecure != FALSE;
        return S_OK;
    });
}

HRESULT Cookie::get_IsSession(BOOL* isSession) {
    return GuardedGet(isSession, [&] { return ToBool(cookie_.expires == kSession); });
}

CookieList::CookieList(std::vector<testbed::chromium::Cookie> cookies) {
    std::ranges::sort(cookies, [](const auto& left, const auto& right) {
        return std::make_tuple(right.path.size(), std::cref(left.name), std::cref(left.domain)) <
               std::make_tuple(left.path.size(), std::cref(right.name), std::cref(right.domain));
    });
    for (testbed::chromium::Cookie& cookie : cookies) {
        cookies_.push_back(MakeObject<Cookie>(std::move(cookie)));
    }
}

HRESULT CookieList::get_Count(UINT32* value) {
    return GuardedGet(value, [&] { return static_cast<UINT32>(cookies_.size()); });
}

HRESULT CookieList::GetValueAtIndex(UINT32 index, ICoreWebView2Cookie** value) {
    return Guarded([&]() -> HRESULT {
        if (value == nullptr) {
            return E_POINTER;
        }
        return index < cookies_.size() ? HandOut(cookies_[index], value) : E_INVALIDARG;
    });
}

} // namespace webview2_runtime
