// Takes URLs apart as WinINet does, so that its errors are those of the older cookie functions.
#include "cookie_address.h"

#include <algorithm>
#include <iterator>

#include <wininet.h>

namespace windows_gaps {

DWORD ResolveCookieAddress(const wchar_t* url, CookieAddress& address) {
    URL_COMPONENTSW parts{};
    parts.dwStructSize = sizeof(parts);
    parts.dwHostNameLength = 1; // asks for pointers into the URL
    parts.dwUrlPathLength = 1;
    parts.dwExtraInfoLength = 1; // keeps query and fragment out of the path
    if (InternetCrackUrlW(url, 0, 0, &parts) == FALSE) {
        return GetLastError();
    }
    if (parts.lpszHostName == nullptr || parts.dwHostNameLength == 0) {
        return ERROR_INTERNET_INVALID_URL;
    }
    address.host = InLowerCase({parts.lpszHostName, parts.dwHostNameLength});
    address.path = parts.dwUrlPathLength == 0 ? L"/" : std::wstring(parts.lpszUrlPath, parts.dwUrlPathLength);
    return ERROR_SUCCESS;
}

std::wstring_view DirectoryOf(std::wstring_view path) {
    return path.substr(0, path.rfind(L'/') + 1);
}

std::wstring BareDomain(std::wstring_view domain) {
    return InLowerCase(domain.starts_with(L'.') ? domain.substr(1) : domain);
}

bool DomainCovers(std::wstring_view bareDomain, std::wstring_view host) {
    if (!host.ends_with(bareDomain)) {
        return false;
    }
    const std::wstring_view below = host.substr(0, host.size() - bareDomain.size());
    return below.empty() || below.ends_with(L'.');
}

bool PathCovers(std::wstring_view cookiePath, std::wstring_view path) {
    return InLowerCase(DirectoryOf(path)).starts_with(InLowerCase(cookiePath));
}

std::wstring InLowerCase(std::wstring_view text) {
    std::wstring result;
    result.reserve(text.size());
    std::ranges::transform(text, std::back_inserter(result), [](wchar_t character) {
        return character >= L'A' && character <= L'Z' ? static_cast<wchar_t>(character - L'A' + L'a')
                                                      : character;
    });
    return result;
}

} // namespace windows_gaps
