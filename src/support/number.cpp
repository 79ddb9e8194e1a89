// Decimal numbers.
#include "support/number.h"

#include <cerrno>
#include <cwchar>
#include <stdexcept>

namespace kelda {

int ToInt(const std::wstring& text) {
    wchar_t* end = nullptr;
    errno = 0;
    const long number = std::wcstol(text.c_str(), &end, 10);
    if (end == text.c_str()) {
        throw std::invalid_argument("invalid stoi argument");
    }
    static_assert(sizeof(long) == sizeof(int), "the range of the conversion is that of the result");
    if (errno == ERANGE) {
        throw std::out_of_range("stoi argument out of range");
    }
    return number;
}

} // namespace kelda
