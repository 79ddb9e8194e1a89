// WinINet's cookies, which downloads of the process have in common with the pages of controls.
#pragma once

#include <string>
#include <vector>

#include "cookie_text.h"

namespace legacy_control {

struct StoredCookie {
    std::string name;
    std::string value;
    bool httpOnly = false;

    bool operator==(const StoredCookie&) const = default;
};

/// Those that go with a request for the URL.
std::vector<StoredCookie> ReadCookieStore(const UrlParts& url);

/// Sets a cookie, or deletes it if it is over. What the store does not take is lost.
///
/// @param mayBeHttpOnly whether a cookie that scripts must not see may be set, and changed; scripts may not.
void WriteCookieStore(const UrlParts& url, const CookieText& cookie, bool mayBeHttpOnly);

} // namespace legacy_control
