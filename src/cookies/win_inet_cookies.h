// The system's WinINet cookie store. It is shared by the whole process, the host's downloads included; no lock is taken
// here.
#pragma once

#include <span>
#include <string>

#include <windows.h>

#include <wininet.h>

#include "cookies/cookie_record.h"

#if defined(__MINGW32__)
// That toolchain's import library has these, its header does not.
extern "C" {
DWORD WINAPI InternetGetCookieEx2(PCWSTR url, PCWSTR cookieName, DWORD flags, INTERNET_COOKIE2** cookies,
                                  PDWORD count);
DWORD WINAPI InternetSetCookieEx2(PCWSTR url, const INTERNET_COOKIE2* cookie, PCWSTR p3pPolicy, DWORD flags,
                                  PDWORD cookieState);
void WINAPI InternetFreeCookies(INTERNET_COOKIE2* cookies, DWORD count);
}
#endif

namespace kelda {

/// What the store would send to an address when it is asked: cookies of every name, HttpOnly ones included. A call that
/// fails finds none. Their texts may be null. Freed with this object.
class WinInetCookies {
  public:
    explicit WinInetCookies(const std::wstring& url);
    ~WinInetCookies();
    WinInetCookies(const WinInetCookies&) = delete;
    WinInetCookies& operator=(const WinInetCookies&) = delete;

    std::span<const INTERNET_COOKIE2> All() const { return {cookies_, count_}; }

  private:
    INTERNET_COOKIE2* cookies_ = nullptr;
    DWORD count_ = 0;
};

/// Writes a cookie, HttpOnly ones included, into the store for `url`. What the store refuses is traced.
/// @return whether the call succeeded, even if the store has refused or changed the cookie.
bool SetWinInetCookie(const CookieRecord& cookie, const std::wstring& url);

/// Fills `cookie`, which holds the defaults, from one of the store; a null text counts as empty. Its `session` is left
/// as it is.
void FromWinInetCookie(CookieRecord& cookie, const INTERNET_COOKIE2& source);

/// Traces what the store would send to `url`, a line a cookie.
void TraceWinInetCookies(const std::wstring& url);

} // namespace kelda
