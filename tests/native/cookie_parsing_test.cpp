// Thousands of headers, made from a few by mutation, always the same ones, through the parser and the texts of cookies.
// Built with sanitizers; looks at what holds for every header.
#include <array>
#include <cstdio>
#include <cstring>
#include <exception>
#include <functional>
#include <random>
#include <stdexcept>
#include <string>
#include <string_view>

#include <windows.h>

#include "cookies/cookie_record.h"
#include "cookies/cookie_text.h"
#include "cookies/cookie_time.h"
#include "cookies/set_cookie_parser.h"

namespace {

constexpr int kHeaders = 20'000;

/// Of 30827: dates of the year after it are shown, but not read.
constexpr double kLastSecondOfDates = 910670515199;

const std::array<std::wstring, 5> kSeeds = {
    L"SID=abc",
    L" SID = \"abc\" ; Path=/; HttpOnly; Domain=.Example.COM; Secure; SameSite=Strict",
    L"a=b; Expires=Wed, 09 Jun 2021 10:18:14 GMT; Max-Age=60",
    L"a=b; Max-Age=9223372036854775807; SameSite=None",
    L"a=b;;; ; Expires=Fri, 31-Dec-9999 23:59:59 GMT",
};
const std::array<std::wstring, 20> kPieces = {L"=",
                                              L";",
                                              L" ",
                                              L"\t",
                                              L"\"",
                                              L"-",
                                              L":",
                                              L",",
                                              L"0",
                                              L"99999",
                                              L"9223372036854775808",
                                              L"x",
                                              L"GMT",
                                              L"Feb",
                                              L"Expires=",
                                              L"; Max-Age=",
                                              L"; SameSite=",
                                              L"; Expires=Thu, 01 Jan 1970 00:00:00 GMT",
                                              std::wstring(1, L'\0'),
                                              L"\u00e4"};

using Random = std::mt19937;

size_t Below(Random& random, size_t limit) {
    return random() % limit;
}

std::wstring MakeHeader(Random& random) {
    std::wstring header = kSeeds[Below(random, kSeeds.size())];
    for (size_t changes = Below(random, 6); changes > 0; --changes) {
        const size_t at = Below(random, header.size() + 1);
        switch (Below(random, 3)) {
        case 0:
            header.erase(at, Below(random, 8));
            break;
        case 1:
            header.insert(at, kPieces[Below(random, kPieces.size())]);
            break;
        default:
            header.insert(at, header.substr(Below(random, header.size() + 1), Below(random, 40)));
            break;
        }
    }
    return header;
}

/// How many headers ended in which way; a test in which one of them never happens looks at nothing.
struct Outcomes {
    int refused = 0;
    int failed = 0;
    int session = 0;
    int lasting = 0;
};

void Expect(bool holds, const char* what) {
    if (!holds) {
        throw std::runtime_error(what);
    }
}

bool IsUntouched(const kelda::CookieRecord& cookie) {
    return kelda::ToSetCookieString(cookie) == L"=; domain=; path=; session; samesite=1";
}

void ExpectWhole(const kelda::CookieRecord& cookie, const std::wstring& header) {
    std::wstring name = header.substr(0, header.find(L'='));
    kelda::TrimBlanks(name);
    Expect(cookie.name == name, "the name is what is before the first equals sign");
    Expect(header.find(cookie.value) != std::wstring::npos, "the value is a part of the header");
    const auto sameSite = static_cast<int>(cookie.sameSite);
    Expect(sameSite >= 0 && sameSite <= 2, "the policy is a known one");
    Expect((cookie.session != 0) == (cookie.expires == kelda::CookieRecord::kNoExpiry),
           "a session cookie has no expiry, and no other cookie has none");
    const std::wstring line = kelda::ToSetCookieString(cookie);
    Expect(line.starts_with(cookie.name + L"=" + cookie.value + L"; domain="),
           "the line begins with the name");
    Expect(line.ends_with(L" GMT") == (cookie.session == 0), "the line ends with the expiry");
    const FILETIME time = kelda::FileTimeFromExpires(cookie.expires);
    Expect(kelda::ExpiresFromFileTime(time) == cookie.expires || cookie.expires > 9e11 ||
               cookie.expires < -1e10,
           "an expiry that is a date survives the way to the store and back");
}

/// The store's expiries need not be dates.
void TryStoreLine(const FILETIME& time, DWORD flags) {
    const std::wstring line =
        kelda::ToStoreLine(INTERNET_COOKIE2{nullptr, nullptr, nullptr, nullptr, flags, time, TRUE});
    Expect(line.starts_with(L"=; domain=; path=; flags=0x"), "the line of a cookie without texts");
    const std::wstring_view mark = L"; Expires=";
    const std::wstring shown = line.substr(line.find(mark) + mark.size());
    if ((time.dwHighDateTime >> 31U) != 0) {
        Expect(shown == L"Sun, 0  0 00:00:00 GMT", "what is no date has no values");
        return;
    }
    const double expires = kelda::ExpiresFromFileTime(time);
    if (expires > kLastSecondOfDates) {
        return;
    }
    kelda::CookieRecord read;
    kelda::ParseExpires(read, shown);
    // Before 1970 a fraction of a second leads to the second after it, but is shown as the one before.
    Expect(read.expires == expires || (expires <= 0 && read.expires == expires - 1),
           "the date of the line is that of the cookie");
}

void Try(const std::wstring& header, Outcomes& outcomes) {
    kelda::CookieRecord cookie;
    bool parsed = false;
    try {
        parsed = kelda::ParseSetCookie(cookie, header);
    } catch (const std::invalid_argument& error) {
        Expect(std::strcmp(error.what(), "invalid stoi argument") == 0, "the text of the error");
        Expect(IsUntouched(cookie), "an error leaves nothing behind");
        ++outcomes.failed;
        return;
    } catch (const std::out_of_range& error) {
        Expect(std::strcmp(error.what(), "stoi argument out of range") == 0, "the text of the error");
        Expect(IsUntouched(cookie), "an error leaves nothing behind");
        ++outcomes.failed;
        return;
    }
    Expect(parsed == (header.find(L'=') != std::wstring::npos),
           "only a header without an equals sign is refused");
    if (!parsed) {
        Expect(IsUntouched(cookie), "a refused header leaves nothing behind");
        ++outcomes.refused;
        return;
    }
    ExpectWhole(cookie, header);
    ++(cookie.session != 0 ? outcomes.session : outcomes.lasting);
}

void TryGreatDay() {
    kelda::CookieRecord cookie;
    kelda::ParseExpires(cookie, L"Wed, 265 Jun 2021 10:18:14 GMT"); // the ninth, by its low bits
    Expect(cookie.expires == kelda::CookieRecord::kNoExpiry, "what no month has is no day");
}

std::string Escaped(const std::wstring& text) {
    std::string escaped;
    for (const wchar_t c : text) {
        std::array<char, 16> code{};
        const bool isPlain = c >= L' ' && c <= L'~' && c != L'\\';
        std::snprintf(code.data(), code.size(), isPlain ? "%c" : "\\x{%x}", static_cast<unsigned>(c));
        escaped += code.data();
    }
    return escaped;
}

/// False, and a line, where the check throws.
bool Holds(const std::string& subject, const std::function<void()>& check) {
    try {
        check();
        return true;
    } catch (const std::exception& error) {
        std::printf("%s: %s\n", subject.c_str(), error.what());
        return false;
    }
}

} // namespace

int main() {
    if (!Holds("a great day", &TryGreatDay)) {
        return 1;
    }
    Random random(1); // NOLINT(bugprone-random-generator-seed): the same headers in every run
    Outcomes outcomes;
    for (int i = 0; i < kHeaders; ++i) {
        const std::wstring header = MakeHeader(random);
        const FILETIME time = {static_cast<DWORD>(random()), static_cast<DWORD>(random())};
        const auto flags = static_cast<DWORD>(random());
        if (!Holds("header " + std::to_string(i) + ", \"" + Escaped(header) + "\"", [&] {
                Try(header, outcomes);
                TryStoreLine(time, flags);
            })) {
            return 1;
        }
    }
    std::printf("refused %d, failed %d, session %d, lasting %d\n", outcomes.refused, outcomes.failed,
                outcomes.session, outcomes.lasting);
    return outcomes.refused > 0 && outcomes.failed > 0 && outcomes.session > 0 && outcomes.lasting > 0 ? 0
                                                                                                       : 1;
}
