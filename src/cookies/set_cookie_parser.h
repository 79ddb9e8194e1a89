// Parsing of Set-Cookie response headers. Forgiving: seven attributes are known, all others are ignored, and a value
// that is not understood changes nothing. Only a number in a date that cannot be read costs the cookie.
#pragma once

#include <string>

#include "cookies/cookie_record.h"

namespace kelda {

/// Reads the value of one Set-Cookie header, in one pass.
///
/// @param cookie  Holds the defaults. Untouched where there is no "=" in the header, and where this throws.
/// @param header  What follows the header's name and colon.
/// @return false only where the header holds no "=".
/// Throws std::invalid_argument "invalid stoi argument" or std::out_of_range "stoi argument out of range" where a
/// well-shaped Expires holds a number that is none or too great. No half-written record is left for a store.
bool ParseSetCookie(CookieRecord& cookie, std::wstring header);

/// Sets the expiry to so many seconds from now, which may lie in the past; a text that starts with no 64-bit number is
/// traced and changes nothing.
void ParseMaxAge(CookieRecord& cookie, const std::wstring& text);

/// Sets the expiry to a date of the form "Wed, 09 Jun 2021 10:18:14 GMT"; another one is traced and changes nothing.
/// So is a date that there is not. Throws as ParseSetCookie does.
void ParseExpires(CookieRecord& cookie, std::wstring text);

/// Removes spaces and tabs, and nothing else, from both ends.
void TrimBlanks(std::wstring& text);

} // namespace kelda
