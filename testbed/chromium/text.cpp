// Conversions, and names that are compared without regard to case.
#include "testbed/chromium/text.h"

#include <algorithm>

#include <windows.h>

namespace testbed::chromium {
namespace {

char Lower(char character) {
    return character >= 'A' && character <= 'Z' ? static_cast<char>(character - 'A' + 'a') : character;
}

} // namespace

std::string ToUtf8(std::wstring_view text) {
    const int length = static_cast<int>(text.size());
    std::string result(static_cast<std::size_t>(WideCharToMultiByte(CP_UTF8, 0, text.data(), length, nullptr,
                                                                    0, nullptr, nullptr)),
                       '\0');
    WideCharToMultiByte(CP_UTF8, 0, text.data(), length, result.data(), static_cast<int>(result.size()),
                        nullptr, nullptr);
    return result;
}

std::wstring ToUtf16(std::string_view text) {
    const int length = static_cast<int>(text.size());
    std::wstring result(
        static_cast<std::size_t>(MultiByteToWideChar(CP_UTF8, 0, text.data(), length, nullptr, 0)), L'\0');
    MultiByteToWideChar(CP_UTF8, 0, text.data(), length, result.data(), static_cast<int>(result.size()));
    return result;
}

bool SameName(std::string_view one, std::string_view other) {
    return std::ranges::equal(one, other, {}, &Lower, &Lower);
}

} // namespace testbed::chromium
