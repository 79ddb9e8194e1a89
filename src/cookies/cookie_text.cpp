// The text forms of cookies.
#include "cookies/cookie_text.h"

#include <array>
#include <cstdint>
#include <cwchar>

#include "cookies/cookie_time.h"
#include "cookies/text_or_empty.h"

namespace kelda {
namespace {

constexpr const wchar_t* kWeekdays[] = {L"Sun", L"Mon", L"Tue", L"Wed", L"Thu", L"Fri", L"Sat"};
constexpr const wchar_t* kMonths[] = {L"Jan", L"Feb", L"Mar", L"Apr", L"May", L"Jun",
                                      L"Jul", L"Aug", L"Sep", L"Oct", L"Nov", L"Dec"};

template <size_t Count>
const wchar_t* NameAt(const wchar_t* const (&names)[Count], size_t index) {
    return index < Count ? names[index] : L"";
}

std::wstring FormatFileTime(const FILETIME& time) {
    SYSTEMTIME fields{};
    FileTimeToSystemTime(&time, &fields);
    return FormatCookieDate(fields);
}

std::wstring ToHexadecimal(DWORD value) {
    std::array<wchar_t, 16> text{};
    std::swprintf(text.data(), text.size(), L"%lx", static_cast<unsigned long>(value));
    return text.data();
}

} // namespace

std::wstring ToSetCookieString(const CookieRecord& cookie) {
    std::wstring line =
        cookie.name + L"=" + cookie.value + L"; domain=" + cookie.domain + L"; path=" + cookie.path;
    if (cookie.httpOnly != 0) {
        line += L"; httponly";
    }
    if (cookie.secure != 0) {
        line += L"; secure";
    }
    if (cookie.session != 0) {
        line += L"; session";
    }
    line += L"; samesite=" + std::to_wstring(static_cast<std::int32_t>(cookie.sameSite));
    if (cookie.expires != CookieRecord::kNoExpiry) {
        line += L"; expires=" + FormatFileTime(FileTimeFromExpires(cookie.expires));
    }
    return line;
}

std::wstring ToStoreLine(const INTERNET_COOKIE2& cookie) {
    std::wstring line = TextOrEmpty(cookie.pwszName) + L"=" + TextOrEmpty(cookie.pwszValue) + L"; domain=" +
                        TextOrEmpty(cookie.pwszDomain) + L"; path=" + TextOrEmpty(cookie.pwszPath) +
                        L"; flags=0x" + ToHexadecimal(cookie.dwFlags);
    if (cookie.fExpiresSet != FALSE) {
        line += L"; Expires=" + FormatFileTime(cookie.ftExpires);
    }
    return line;
}

std::wstring FormatCookieDate(const SYSTEMTIME& time) {
    std::array<wchar_t, 256> text{};
    // "%ls", not "%s": which width the latter stands for in a wide format depends on the C runtime.
    std::swprintf(text.data(), text.size(), L"%ls, %d %ls %d %02d:%02d:%02d GMT",
                  NameAt(kWeekdays, time.wDayOfWeek), int{time.wDay},
                  NameAt(kMonths, size_t{time.wMonth} - 1), int{time.wYear}, int{time.wHour},
                  int{time.wMinute}, int{time.wSecond});
    return text.data();
}

} // namespace kelda
