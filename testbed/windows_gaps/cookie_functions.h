// Replacements of the functions of wininet.dll that deal in cookies as structures. Callable on any thread; they throw
// nothing.
#pragma once

#include <windows.h>

#include <wininet.h>

namespace windows_gaps {

/// Stands for `InternetGetCookieEx2`.
///
/// @param name null for cookies of every name.
/// @param flags `INTERNET_COOKIE_NON_SCRIPT` for HttpOnly ones as well, `INTERNET_COOKIE_SAME_SITE_LEVEL_CROSS_SITE` to
///        leave out those with a SameSite flag; others are ignored.
/// @param cookies receives null or an array that the caller gives to `FreeCookies`.
/// @return `ERROR_NO_MORE_ITEMS` if there is none; `ERROR_INVALID_PARAMETER` for a null argument; WinINet's error for a
///         URL that is none. On failure the array is null and the count 0.
DWORD WINAPI GetCookies(PCWSTR url, PCWSTR name, DWORD flags, INTERNET_COOKIE2** cookies, DWORD* count);

/// Stands for `InternetSetCookieEx2`.
///
/// @param cookie name or value may be null. Without domain or path, the URL's host or directory is taken.
/// @param policy ignored.
/// @param flags `INTERNET_COOKIE_NON_SCRIPT` permits HttpOnly cookies, and to overwrite them; others are ignored.
/// @param state receives an `InternetCookieState`: `COOKIE_STATE_REJECT` for a domain that the URL's host does not
///        belong to.
/// @return `ERROR_INVALID_OPERATION` for an HttpOnly cookie that is not permitted; `ERROR_INVALID_PARAMETER` for a null
///         argument, a cookie with neither name nor value, a text that would change the cookie's attributes, an expiry
///         that is no time; WinINet's error for a URL that is none.
DWORD WINAPI SetCookie(PCWSTR url, const INTERNET_COOKIE2* cookie, PCWSTR policy, DWORD flags, DWORD* state);

/// Stands for `InternetFreeCookies`. `cookies` may be null.
void WINAPI FreeCookies(INTERNET_COOKIE2* cookies, DWORD count);

} // namespace windows_gaps
