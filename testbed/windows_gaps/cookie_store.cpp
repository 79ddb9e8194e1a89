// Spells cookies as `Set-Cookie` lines and reads them as `Cookie` lines.
#include "cookie_store.h"

#include <algorithm>
#include <cwchar>
#include <string_view>

namespace windows_gaps {
namespace {

constexpr std::wstring_view kSeparator = L"; ";

/// Without query, whose slashes Wine takes for the path's, and with the host in the case that Wine's downloads use.
std::wstring UrlOf(const CookieAddress& address) {
    return L"http://" + address.host + address.path;
}

std::wstring CookieLine(const CookieAddress& address, DWORD flags) {
    const std::wstring url = UrlOf(address);
    std::wstring line;
    DWORD size = 0;
    do {
        // For too small a buffer Wine tells the size in bytes, which is enough in characters. By then the store may
        // have grown.
        line.assign(size, L'\0');
    } while (InternetGetCookieExW(url.c_str(), nullptr, line.data(), &size, flags, nullptr) == FALSE &&
             GetLastError() == ERROR_INSUFFICIENT_BUFFER);
    line.resize(std::wcslen(line.c_str()));
    return line;
}

StoredCookie Understand(std::wstring_view pair) {
    const std::size_t nameEnd = std::min(pair.find(L'='), pair.size());
    return {std::wstring(pair.substr(0, nameEnd)),
            std::wstring(pair.substr(std::min(nameEnd + 1, pair.size())))};
}

std::wstring AttributesOf(const CookieAddress& address, const CookieDetails& cookie,
                          const std::wstring& expiryText) {
    std::wstring attributes = L"; Path=" + cookie.path;
    // Wine refuses a domain of a single label, be it the host itself.
    if (const std::wstring domain = BareDomain(cookie.domain); domain != address.host) {
        attributes += L"; Domain=" + domain;
    }
    if (!expiryText.empty()) {
        attributes += L"; Expires=" + expiryText;
    }
    if ((cookie.flags & INTERNET_COOKIE_HTTPONLY) != 0) {
        attributes += L"; HttpOnly";
    }
    if ((cookie.flags & INTERNET_COOKIE_IS_SECURE) != 0) {
        attributes += L"; Secure";
    }
    return attributes;
}

} // namespace

std::vector<StoredCookie> ReadCookieStore(const CookieAddress& address, bool withHttpOnly) {
    const std::wstring line = CookieLine(address, withHttpOnly ? INTERNET_COOKIE_HTTPONLY : 0);
    std::vector<StoredCookie> cookies;
    for (std::wstring_view rest = line; !rest.empty();) {
        const std::size_t end = std::min(rest.find(kSeparator), rest.size());
        cookies.push_back(Understand(rest.substr(0, end)));
        rest.remove_prefix(std::min(end + kSeparator.size(), rest.size()));
    }
    return cookies;
}

DWORD WriteCookieStore(const CookieAddress& address, const CookieDetails& cookie,
                       const std::wstring& expiryText, bool mayBeHttpOnly) {
    const std::wstring data = cookie.SentValue() + AttributesOf(address, cookie, expiryText);
    return InternetSetCookieExW(UrlOf(address).c_str(), cookie.SentName().c_str(), data.c_str(),
                                mayBeHttpOnly ? INTERNET_COOKIE_HTTPONLY : 0, 0);
}

} // namespace windows_gaps
