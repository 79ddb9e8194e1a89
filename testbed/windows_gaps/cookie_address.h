// Where a URL stands among cookies: which host, which path, and which cookies cover it.
#pragma once

#include <string>
#include <string_view>

#include <windows.h>

namespace windows_gaps {

struct CookieAddress {
    std::wstring host; ///< in lower case
    std::wstring path; ///< begins with a slash; without query and fragment
};

/// @return `ERROR_SUCCESS`; `ERROR_INTERNET_INVALID_URL` for a URL without a host; else the error of taking it apart.
DWORD ResolveCookieAddress(const wchar_t* url, CookieAddress& address);

/// The path up to its last slash, which a cookie that names no path gets.
std::wstring_view DirectoryOf(std::wstring_view path);

/// `domain` in lower case and without the dot that it may begin with.
std::wstring BareDomain(std::wstring_view domain);

/// Whether a cookie of that domain belongs to the host. `bareDomain` is one that `BareDomain` has made.
bool DomainCovers(std::wstring_view bareDomain, std::wstring_view host);

/// Whether Wine's store sends a cookie of that path to the URL's: it compares the beginning of the URL's directory. So
/// a cookie for `/docs` goes to `/docs/`, but also to `/docs-old/`, and not to `/docs`.
bool PathCovers(std::wstring_view cookiePath, std::wstring_view path);

/// ASCII letters as small ones: upper and lower case are the same in Wine's store, other letters' cases are not.
std::wstring InLowerCase(std::wstring_view text);

} // namespace windows_gaps
