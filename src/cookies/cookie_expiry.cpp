// The two attributes that give a cookie an expiry.
#include <algorithm>
#include <cstdint>
#include <iterator>
#include <limits>
#include <optional>
#include <sstream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <windows.h>

#include "cookies/cookie_time.h"
#include "cookies/lower_case.h"
#include "cookies/set_cookie_parser.h"
#include "du/string_utilities.h"
#include "support/number.h"
#include "support/trace.h"

namespace kelda {
namespace {

constexpr std::wstring_view kLowerCaseMonths[] = {L"jan", L"feb", L"mar", L"apr", L"may", L"jun",
                                                  L"jul", L"aug", L"sep", L"oct", L"nov", L"dec"};

/// The exact sum where it fits, else that of the rounded numbers: a cookie that outlives the scale does not wrap into
/// the past.
double Sum(std::int64_t now, std::int64_t number) {
    using Limits = std::numeric_limits<std::int64_t>;
    const bool overflows = now > 0 ? number > Limits::max() - now : number < Limits::min() - now;
    return overflows ? static_cast<double>(now) + static_cast<double>(number)
                     : static_cast<double>(now + number);
}

/// 1 to 12; 0, which is no month, for another word.
int MonthNumber(const std::wstring& word) {
    const auto month = std::ranges::find(kLowerCaseMonths, ToLower(word));
    return month == std::end(kLowerCaseMonths) ? 0
                                               : static_cast<int>(month - std::begin(kLowerCaseMonths)) + 1;
}

/// The words of a date: weekday, day, month, year, hour, minute, second, zone.
constexpr size_t kWordsOfDate = 8;

/// At most one word more than a date has, however long the text is.
std::vector<std::wstring> SplitWords(const std::wstring& text) {
    std::wistringstream stream(text);
    std::vector<std::wstring> words;
    for (std::wstring word; words.size() <= kWordsOfDate && stream >> word;) {
        words.push_back(word);
    }
    return words;
}

/// Throws where a number is none or does not fit an int; all of them are converted before any is judged. Nothing for a
/// number that no date has room for.
std::optional<SYSTEMTIME> ReadFields(const std::vector<std::wstring>& words) {
    SYSTEMTIME time{};
    const std::pair<WORD SYSTEMTIME::*, int> fields[] = {
        {&SYSTEMTIME::wDay, ToInt(words[1])},    {&SYSTEMTIME::wMonth, MonthNumber(words[2])},
        {&SYSTEMTIME::wYear, ToInt(words[3])},   {&SYSTEMTIME::wHour, ToInt(words[4])},
        {&SYSTEMTIME::wMinute, ToInt(words[5])}, {&SYSTEMTIME::wSecond, ToInt(words[6])},
    };
    for (const auto& [field, number] : fields) {
        if (!std::in_range<WORD>(number)) {
            return std::nullopt;
        }
        time.*field = static_cast<WORD>(number);
    }
    return time;
}

/// Nothing for a text of another shape, and for a date that there is not.
std::optional<FILETIME> ReadDate(const std::wstring& text) {
    const std::vector<std::wstring> words = SplitWords(text);
    if (words.size() != kWordsOfDate || words.back() != L"GMT") {
        return std::nullopt;
    }
    const std::optional<SYSTEMTIME> fields = ReadFields(words);
    FILETIME time{};
    if (!fields.has_value() || SystemTimeToFileTime(&*fields, &time) == FALSE) {
        return std::nullopt;
    }
    return time;
}

} // namespace

void ParseMaxAge(CookieRecord& cookie, const std::wstring& text) {
    FILETIME now{};
    GetSystemTimeAsFileTime(&now);
    try {
        cookie.expires = Sum(SecondsSince1970(now), ToInt64(text));
    } catch (const std::logic_error&) {
        kWebBrowserEdgeTrace.Info() << "Invalid Max-Age: " << du::WideStrToUtf8(text);
    }
}

void ParseExpires(CookieRecord& cookie, std::wstring text) {
    std::ranges::replace_if(
        text, [](wchar_t c) { return c == L':' || c == L'-'; }, L' ');
    if (const std::optional<FILETIME> date = ReadDate(text)) {
        cookie.expires = ExpiresFromFileTime(*date);
    } else {
        kWebBrowserEdgeTrace.Info() << "Invalid Expires: " << du::WideStrToUtf8(text);
    }
}

} // namespace kelda
