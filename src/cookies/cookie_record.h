// The value type that all cookie code passes around.
#pragma once

#include <cstdint>
#include <string>

namespace kelda {

/// The numbers are those of COREWEBVIEW2_COOKIE_SAME_SITE_KIND; the trace prints them too.
enum class CookieSameSite : std::int32_t { None = 0, Lax = 1, Strict = 2 };

/// A cookie, without judgement on whether a store would take it. The flags are 32-bit booleans, as the runtime wants
/// them.
struct CookieRecord {
    static constexpr double kNoExpiry = -1.0;

    std::wstring name;
    std::wstring value;         ///< without surrounding double quotes
    std::wstring domain;        ///< as given; empty means the host of the URL
    std::wstring path;          ///< as given; empty means the default path
    double expires = kNoExpiry; ///< whole seconds since 1970-01-01 00:00:00 UTC
    std::int32_t httpOnly = 0;
    CookieSameSite sameSite = CookieSameSite::Lax;
    std::int32_t secure = 0;
    std::int32_t session = 1; ///< whether there is no expiry
};

} // namespace kelda
