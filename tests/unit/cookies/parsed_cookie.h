// What the tests of the parser share: a clock that stands still, and records as texts that can be compared.
#pragma once

#include <string>

#include <gtest/gtest.h>
#include <windows.h>

#include "cookies/cookie_record.h"
#include "cookies/set_cookie_parser.h"
#include "tests/support/replaced_import.h"
#include "tests/support/transcript.h"

namespace kelda {

/// Name and value in brackets, and whatever else differs from the defaults. A double is shown with all its digits.
inline std::wstring Show(const CookieRecord& cookie) {
    const CookieRecord defaults;
    std::wstring shown = L"[" + cookie.name + L"]=[" + cookie.value + L"]";
    const auto add = [&shown](const wchar_t* field, const std::wstring& value) {
        shown += std::wstring(L" ") + field + L"=" + value;
    };
    if (!cookie.domain.empty()) {
        add(L"domain", cookie.domain);
    }
    if (!cookie.path.empty()) {
        add(L"path", cookie.path);
    }
    if (cookie.expires != defaults.expires) {
        add(L"expires", std::to_wstring(cookie.expires));
    }
    if (cookie.httpOnly != defaults.httpOnly) {
        add(L"httpOnly", std::to_wstring(cookie.httpOnly));
    }
    if (cookie.sameSite != defaults.sameSite) {
        add(L"sameSite", std::to_wstring(static_cast<int>(cookie.sameSite)));
    }
    if (cookie.secure != defaults.secure) {
        add(L"secure", std::to_wstring(cookie.secure));
    }
    if (cookie.session != defaults.session) {
        add(L"session", std::to_wstring(cookie.session));
    }
    return shown;
}

/// The record that a header makes of the defaults.
inline CookieRecord Parsed(const std::wstring& header) {
    CookieRecord cookie;
    EXPECT_TRUE(ParseSetCookie(cookie, header));
    return cookie;
}

class ParsedCookieTest : public test_support::TranscriptTest {
  protected:
    ParsedCookieTest() : TranscriptTest("ZanWebBrowserEdge") {}

    /// 2021-06-09 10:18:14.9999999 UTC.
    static constexpr double kNow = 1623233894.0;
    FILETIME clock{0xc23b8d7f, 0x01d75d18};

  private:
    test_support::ReplacedImport<struct Clock, decltype(GetSystemTimeAsFileTime)> readClock_{
        "KERNEL32.dll", "GetSystemTimeAsFileTime", [this](FILETIME* time) { *time = clock; }};
};

} // namespace kelda
