// Decimal numbers.
#include "support/number.h"

#include <algorithm>
#include <limits>
#include <stdexcept>

namespace kelda {
namespace {

struct ErrorTexts {
    const char* invalid;
    const char* outOfRange;
};

bool IsWhiteSpace(wchar_t c) {
    return c == L' ' || (c >= L'\t' && c <= L'\r');
}

bool IsDigit(wchar_t c) {
    return c >= L'0' && c <= L'9';
}

template <typename Number>
Number Convert(const std::wstring& text, const ErrorTexts& errors) {
    using Limits = std::numeric_limits<Number>;
    auto next = std::ranges::find_if_not(text, IsWhiteSpace);
    const bool isNegative = next != text.end() && *next == L'-';
    if (isNegative || (next != text.end() && *next == L'+')) {
        ++next;
    }
    if (next == text.end() || !IsDigit(*next)) {
        throw std::invalid_argument(errors.invalid);
    }
    // Counted downwards: the range reaches further there.
    Number number = 0;
    for (; next != text.end() && IsDigit(*next); ++next) {
        const int digit = *next - L'0';
        if (number < (Limits::min() + digit) / 10) {
            throw std::out_of_range(errors.outOfRange);
        }
        number = number * 10 - digit;
    }
    if (!isNegative && number == Limits::min()) {
        throw std::out_of_range(errors.outOfRange);
    }
    return isNegative ? number : -number;
}

} // namespace

int ToInt(const std::wstring& text) {
    return Convert<int>(text, {"invalid stoi argument", "stoi argument out of range"});
}

std::int64_t ToInt64(const std::wstring& text) {
    return Convert<std::int64_t>(text, {"invalid stoll argument", "stoll argument out of range"});
}

} // namespace kelda
