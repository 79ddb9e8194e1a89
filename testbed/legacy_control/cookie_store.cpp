// Wine's store tells names and values only. It reads the slashes of a query as the path's, so there is none in what it is
// asked for; scheme and port make no difference to it.
#include "cookie_store.h"

#include <algorithm>
#include <array>
#include <cwchar>
#include <string_view>

#include <windows.h>

#include <wininet.h>

#include "testbed/chromium/text.h"

namespace legacy_control {
namespace {

using testbed::chromium::ToUtf16;
using testbed::chromium::ToUtf8;

constexpr long long kTicksPerSecond = 10'000'000;
/// Centuries away; more would not fit into a time.
constexpr long long kLongestAge = 10'000'000'000;

std::wstring AddressOf(const UrlParts& url) {
    return ToUtf16("http://" + url.host + url.path);
}

std::string CookieLine(const std::wstring& address, DWORD flags) {
    std::wstring line;
    DWORD size = 0;
    do {
        // For too small a buffer Wine tells the size in bytes, which is enough in characters.
        line.assign(size, L'\0');
    } while (InternetGetCookieExW(address.c_str(), nullptr, line.data(), &size, flags, nullptr) == FALSE &&
             GetLastError() == ERROR_INSUFFICIENT_BUFFER);
    line.resize(std::wcslen(line.c_str()));
    return ToUtf8(line);
}

std::vector<StoredCookie> CookiesIn(const std::string& line) {
    constexpr std::string_view kSeparator = "; ";
    std::vector<StoredCookie> cookies;
    for (std::string_view rest = line; !rest.empty();) {
        const std::size_t end = std::min(rest.find(kSeparator), rest.size());
        const std::string_view pair = rest.substr(0, end);
        const std::size_t nameEnd = std::min(pair.find('='), pair.size());
        cookies.push_back({std::string(pair.substr(0, nameEnd)),
                           std::string(pair.substr(std::min(nameEnd + 1, pair.size())))});
        rest.remove_prefix(std::min(end + kSeparator.size(), rest.size()));
    }
    return cookies;
}

/// The time that many seconds from now, as a cookie's text has it.
std::string TimeAfter(long long seconds) {
    FILETIME now{};
    GetSystemTimeAsFileTime(&now);
    ULARGE_INTEGER ticks{};
    ticks.LowPart = now.dwLowDateTime;
    ticks.HighPart = now.dwHighDateTime;
    const long long clamped = std::clamp(seconds, -1LL, kLongestAge);
    ticks.QuadPart += static_cast<ULONGLONG>(clamped * kTicksPerSecond);
    const FILETIME then = {ticks.LowPart, ticks.HighPart};
    SYSTEMTIME time{};
    std::array<wchar_t, INTERNET_RFC1123_BUFSIZE + 1> text{};
    FileTimeToSystemTime(&then, &time);
    InternetTimeFromSystemTimeW(&time, INTERNET_RFC1123_FORMAT, text.data(), sizeof(text));
    return ToUtf8(text.data());
}

/// Wine knows nothing of ages, and refuses a domain of a single label, be it the host itself.
std::string DataOf(const UrlParts& url, const CookieText& cookie) {
    std::string data = cookie.value;
    if (!cookie.path.empty()) {
        data += "; Path=" + cookie.path;
    }
    if (!cookie.domain.empty() && cookie.domain != url.host) {
        data += "; Domain=" + cookie.domain;
    }
    if (cookie.maxAge) {
        data += "; Expires=" + TimeAfter(*cookie.maxAge > 0 ? *cookie.maxAge : -1);
    } else if (!cookie.expires.empty()) {
        data += "; Expires=" + cookie.expires;
    }
    data += cookie.httpOnly ? "; HttpOnly" : "";
    data += cookie.secure ? "; Secure" : "";
    return data;
}

} // namespace

std::vector<StoredCookie> ReadCookieStore(const UrlParts& url) {
    const std::wstring address = AddressOf(url);
    std::vector<StoredCookie> all = CookiesIn(CookieLine(address, INTERNET_COOKIE_HTTPONLY));
    const std::vector<StoredCookie> forScripts = CookiesIn(CookieLine(address, 0));
    for (StoredCookie& cookie : all) {
        cookie.httpOnly = std::ranges::find(forScripts, cookie) == forScripts.end();
    }
    return all;
}

void WriteCookieStore(const UrlParts& url, const CookieText& cookie, bool mayBeHttpOnly) {
    InternetSetCookieExW(AddressOf(url).c_str(), ToUtf16(cookie.name).c_str(),
                         ToUtf16(DataOf(url, cookie)).c_str(), mayBeHttpOnly ? INTERNET_COOKIE_HTTPONLY : 0,
                         0);
}

} // namespace legacy_control
