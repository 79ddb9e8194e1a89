// Conversions on top of the system's own, so that malformed text becomes U+FFFD exactly as elsewhere on the platform.
#include "du/string_utilities.h"

#include <windows.h>

#include <limits>
#include <stdexcept>

namespace du {

namespace {

int CheckedLength(std::size_t length) {
    if (length > static_cast<std::size_t>(std::numeric_limits<int>::max())) {
        throw std::length_error("text too long to convert");
    }
    return static_cast<int>(length);
}

// With these flags the system refuses a non-empty text only where the result outgrows an int.
std::size_t CheckedResult(int length) {
    if (length <= 0) {
        throw std::length_error("converted text too long");
    }
    return static_cast<std::size_t>(length);
}

} // namespace

std::wstring Utf8ToWideStr(std::string_view text) {
    std::wstring result;
    if (text.empty()) {
        return result;
    }
    const int length = CheckedLength(text.size());
    const int needed = MultiByteToWideChar(CP_UTF8, 0, text.data(), length, nullptr, 0);
    result.resize(CheckedResult(needed));
    MultiByteToWideChar(CP_UTF8, 0, text.data(), length, result.data(), needed);
    return result;
}

std::string WideStrToUtf8(std::wstring_view text) {
    std::string result;
    if (text.empty()) {
        return result;
    }
    const int length = CheckedLength(text.size());
    const int needed = WideCharToMultiByte(CP_UTF8, 0, text.data(), length, nullptr, 0, nullptr, nullptr);
    result.resize(CheckedResult(needed));
    WideCharToMultiByte(CP_UTF8, 0, text.data(), length, result.data(), needed, nullptr, nullptr);
    return result;
}

std::vector<std::string> StringSplit(std::string_view text, std::string_view separator) {
    std::vector<std::string> pieces;
    while (!text.empty()) {
        const std::size_t end = separator.empty() ? std::string_view::npos : text.find(separator);
        const std::string_view piece = text.substr(0, end);
        if (!piece.empty()) {
            pieces.emplace_back(piece);
        }
        text.remove_prefix(end == std::string_view::npos ? text.size() : end + separator.size());
    }
    return pieces;
}

} // namespace du
