// The structures and arrays around a call, and their spelling.
#include "cookie_calls.h"

#include <algorithm>
#include <cctype>
#include <iterator>
#include <ostream>

#include "testbed/windows_gaps/windows_gaps.h"
#include "tests/support/transcript.h"

namespace windows_gaps_test {
namespace {

PWSTR Data(std::optional<std::wstring>& text) {
    return text ? text->data() : nullptr;
}

/// Test texts are ASCII.
std::string Narrow(const wchar_t* text) {
    std::string result;
    for (; text != nullptr && *text != L'\0'; ++text) {
        result += static_cast<char>(*text);
    }
    return text == nullptr ? "(null)" : result;
}

std::string Describe(const INTERNET_COOKIE2& cookie) {
    return Narrow(cookie.pwszName) + "=" + Narrow(cookie.pwszValue) + ", " + Narrow(cookie.pwszDomain) +
           ", " + Narrow(cookie.pwszPath) + ", " + test_support::Hexadecimal(cookie.dwFlags) +
           (cookie.fExpiresSet != FALSE ? Until(cookie.ftExpires) : "");
}

} // namespace

std::ostream& operator<<(std::ostream& stream, const Written& written) {
    return stream << "error " << written.error << ", state " << written.state;
}

Written Write(const std::wstring& url, NewCookie cookie, DWORD flags) {
    const INTERNET_COOKIE2 structure = {
        Data(cookie.name),         Data(cookie.value), Data(cookie.domain),
        Data(cookie.path),         cookie.flags,       cookie.expires.value_or(FILETIME{}),
        cookie.expires.has_value()};
    Written written = {ERROR_SUCCESS, COOKIE_STATE_MAX + 1};
    written.error = InternetSetCookieEx2(url.c_str(), &structure, nullptr, flags, &written.state);
    return written;
}

Lines Read(const std::wstring& url, DWORD flags, PCWSTR name) {
    INTERNET_COOKIE2* cookies = nullptr;
    DWORD count = 0;
    if (const DWORD error = InternetGetCookieEx2(url.c_str(), name, flags, &cookies, &count);
        error != ERROR_SUCCESS) {
        EXPECT_EQ(cookies, nullptr);
        EXPECT_EQ(count, 0U);
        return {"error " + std::to_string(error)};
    }
    Lines lines;
    std::transform(cookies, cookies + count, std::back_inserter(lines), Describe);
    InternetFreeCookies(cookies, count);
    return lines;
}

FILETIME SecondsFromNow(int seconds) {
    FILETIME now{};
    GetSystemTimeAsFileTime(&now);
    ULARGE_INTEGER time{};
    time.LowPart = now.dwLowDateTime;
    time.HighPart = now.dwHighDateTime;
    time.QuadPart = static_cast<ULONGLONG>(static_cast<LONGLONG>(time.QuadPart) + seconds * 10'000'000LL);
    return {time.LowPart, time.HighPart};
}

std::string Until(const FILETIME& time) {
    return ", until " + test_support::Hexadecimal(time.dwHighDateTime) +
           test_support::Hexadecimal(time.dwLowDateTime).substr(2);
}

void DeleteCookies(const std::wstring& url) {
    INTERNET_COOKIE2* cookies = nullptr;
    DWORD count = 0;
    InternetGetCookieEx2(url.c_str(), nullptr, INTERNET_COOKIE_NON_SCRIPT, &cookies, &count);
    for (DWORD index = 0; index < count; ++index) {
        INTERNET_COOKIE2 over = cookies[index];
        over.fExpiresSet = TRUE;
        over.ftExpires = SecondsFromNow(-10);
        DWORD state = COOKIE_STATE_UNKNOWN;
        InternetSetCookieEx2(url.c_str(), &over, nullptr, INTERNET_COOKIE_NON_SCRIPT, &state);
    }
    InternetFreeCookies(cookies, count);
}

CookieTest::CookieTest()
    : host_(std::string(::testing::UnitTest::GetInstance()->current_test_info()->name()) + ".test") {
    std::ranges::transform(host_, host_.begin(),
                           [](unsigned char letter) { return static_cast<char>(std::tolower(letter)); });
}

void CookieTest::SetUp() {
    ASSERT_TRUE(SupplyWindowsGaps(GetModuleHandleW(nullptr)));
    DeleteCookies(Url());
}

void CookieTest::TearDown() {
    DeleteCookies(Url());
}

std::wstring CookieTest::Url(const std::wstring& path) const {
    return L"http://" + std::wstring(host_.begin(), host_.end()) + path;
}

} // namespace windows_gaps_test
