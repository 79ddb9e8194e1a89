// How cookies are written in the trace. The two lines differ on purpose: the record line shows decoded fields, the
// store line the store's raw flags.
#pragma once

#include <string>

#include <windows.h>

#include <wininet.h>

#include "cookies/cookie_record.h"

namespace kelda {

/// The record line, much like a Set-Cookie header. Domain, path and the number of SameSite are always there; "session"
/// tells the record's flag, whatever its expiry is.
std::wstring ToSetCookieString(const CookieRecord& cookie);

/// The store line of a cookie that WinINet holds. A null text reads as an empty one.
std::wstring ToStoreLine(const INTERNET_COOKIE2& cookie);

/// A date as "Wed, 9 Jun 2021 10:18:14 GMT". The fields are used as they are; a weekday or month that there is not has
/// no name.
std::wstring FormatCookieDate(const SYSTEMTIME& time);

} // namespace kelda
