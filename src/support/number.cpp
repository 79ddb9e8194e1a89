// Decimal numbers.
#include "support/number.h"

#include <cerrno>
#include <cwchar>
#include <limits>
#include <stdexcept>

namespace kelda {
namespace {

struct ErrorTexts {
    const char* invalid;
    const char* outOfRange;
};

template <typename Number>
Number Convert(const std::wstring& text, const ErrorTexts& errors) {
    using Limits = std::numeric_limits<Number>;
    wchar_t* end = nullptr;
    errno = 0;
    const long long number = std::wcstoll(text.c_str(), &end, 10);
    if (end == text.c_str()) {
        throw std::invalid_argument(errors.invalid);
    }
    if (errno == ERANGE || number < Limits::min() || number > Limits::max()) {
        throw std::out_of_range(errors.outOfRange);
    }
    return static_cast<Number>(number);
}

} // namespace

int ToInt(const std::wstring& text) {
    return Convert<int>(text, {"invalid stoi argument", "stoi argument out of range"});
}

std::int64_t ToInt64(const std::wstring& text) {
    return Convert<std::int64_t>(text, {"invalid stoll argument", "stoll argument out of range"});
}

} // namespace kelda
