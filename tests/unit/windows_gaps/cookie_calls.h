// Calls of the supplied cookie functions, by way of this program's own imports.
#pragma once

#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include <windows.h>

#include <gtest/gtest.h>
#include <wininet.h>

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

namespace windows_gaps_test {

using Lines = std::vector<std::string>;

/// A cookie to write; what is not there is null in the structure.
struct NewCookie {
    std::optional<std::wstring> name;
    std::optional<std::wstring> value;
    std::optional<std::wstring> domain = std::nullopt;
    std::optional<std::wstring> path = std::nullopt;
    DWORD flags = 0;
    std::optional<FILETIME> expires = std::nullopt;
};

/// What a write has come to.
struct Written {
    DWORD error;
    DWORD state;
    bool operator==(const Written&) const = default;
};

constexpr Written kAccepted = {ERROR_SUCCESS, COOKIE_STATE_ACCEPT};
constexpr Written kInvalid = {ERROR_INVALID_PARAMETER, COOKIE_STATE_UNKNOWN};

std::ostream& operator<<(std::ostream& stream, const Written& written);

Written Write(const std::wstring& url, NewCookie cookie, DWORD flags = INTERNET_COOKIE_NON_SCRIPT);

/// "NAME=VALUE, DOMAIN, PATH, FLAGS" and, with an expiry, ", until FILETIME" for each cookie; a null text is "(null)".
/// On failure one line, "error CODE".
Lines Read(const std::wstring& url, DWORD flags = INTERNET_COOKIE_NON_SCRIPT, PCWSTR name = nullptr);

/// The result of `Read` if no cookie matches.
inline const Lines kNoCookies = {"error 259"};

/// A moment so many seconds from now, or before now.
FILETIME SecondsFromNow(int seconds);

/// The `, until FILETIME` of `Read`.
std::string Until(const FILETIME& time);

/// Each test has a host of its own, and its cookies go when it ends: those that expire would stay in the prefix.
class CookieTest : public ::testing::Test {
  protected:
    CookieTest();
    void SetUp() override;
    void TearDown() override;

    /// "TEST.test", in small letters.
    const std::string& Host() const { return host_; }

    std::wstring Url(const std::wstring& path = L"/") const;

  private:
    std::string host_;
};

/// Deletes all that is seen at a URL and belongs to just the domain and path that are told.
void DeleteCookies(const std::wstring& url);

} // namespace windows_gaps_test
