// Thousands of headers, made from a few by mutation, always the same ones, through the parser and the texts of cookies. Built
// with sanitizers; looks at what holds for every header.
#include <array>
#include <cstdio>
#include <cstring>
#include <random>
#include <stdexcept>
#include <string>

#include <windows.h>

#include "cookies/cookie_record.h"
#include "cookies/cookie_text.h"
#include "cookies/cookie_time.h"
#include "cookies/set_cookie_parser.h"

namespace {

constexpr int kHeaders = 20'000;

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
    // Not only dates of headers: any bits.
    FILETIME time = kelda::FileTimeFromExpires(cookie.expires);
    Expect(kelda::ExpiresFromFileTime(time) == cookie.expires || cookie.expires > 9e11 ||
               cookie.expires < -1e10,
           "an expiry that is a date survives the way to the store and back");
    time.dwHighDateTime ^= 0x80000000U;
    INTERNET_COOKIE2 stored{nullptr, nullptr, nullptr, nullptr, time.dwLowDateTime, time, TRUE};
    Expect(kelda::ToStoreLine(stored).ends_with(L", 0  0 00:00:00 GMT"), "what is no date has no values");
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

} // namespace

int main() {
    Random random(1); // NOLINT(bugprone-random-generator-seed): the same headers in every run
    Outcomes outcomes;
    for (int i = 0; i < kHeaders; ++i) {
        const std::wstring header = MakeHeader(random);
        try {
            Try(header, outcomes);
        } catch (const std::exception& error) {
            std::printf("header %d, \"%ls\": %s\n", i, header.c_str(), error.what());
            return 1;
        }
    }
    std::printf("refused %d, failed %d, session %d, lasting %d\n", outcomes.refused, outcomes.failed,
                outcomes.session, outcomes.lasting);
    return outcomes.refused > 0 && outcomes.failed > 0 && outcomes.session > 0 && outcomes.lasting > 0 ? 0
                                                                                                       : 1;
}
