// Wine's own cookie store, by way of the older functions, which both Wine and its downloads know.
#pragma once

#include <string>
#include <vector>

#include <windows.h>

#include <wininet.h>

#include "cookie_address.h"
#include "cookie_details.h"

namespace windows_gaps {

/// All that the store tells of a cookie.
struct StoredCookie {
    std::wstring name;
    std::wstring value;
};

/// What would be sent to the address, in the order of sending; cookies that are HttpOnly where they are asked for.
std::vector<StoredCookie> ReadCookieStore(const CookieAddress& address, bool withHttpOnly);

/// Nothing of the cookie may hold a character that ends an attribute. Overwriting a cookie that is HttpOnly needs
/// `mayBeHttpOnly` as well.
///
/// @param expiryText the expiry in the form of an HTTP date, or an empty text; what is in the past deletes.
/// @return the store's word: `COOKIE_STATE_UNKNOWN` for a foreign domain, `COOKIE_STATE_REJECT` for what only
///         `mayBeHttpOnly` permits.
DWORD WriteCookieStore(const CookieAddress& address, const CookieDetails& cookie,
                       const std::wstring& expiryText, bool mayBeHttpOnly);

} // namespace windows_gaps
