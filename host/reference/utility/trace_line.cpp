// Escaping in one pass over the UTF-8 bytes, and the columns before the text.
#include "utility/trace_line.h"

#include <windows.h>

#include <algorithm>
#include <array>
#include <cstdio>

namespace host_reference {

namespace {

// Bytes of the UTF-8 character that `text` starts with; 0 where it starts with none.
std::size_t CharacterLength(std::string_view text) {
    const auto first = static_cast<unsigned char>(text[0]);
    const std::size_t length = first < 0x80 ? 1 : first < 0xe0 ? 2 : first < 0xf0 ? 3 : 4;
    const bool valid =
        length <= text.size() && MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, text.data(),
                                                     static_cast<int>(length), nullptr, 0) > 0;
    return valid ? length : 0;
}

// True for a character that must not stand in a line as it is.
bool IsControl(std::string_view character) {
    const auto first = static_cast<unsigned char>(character[0]);
    if (first < 0x20 || first == 0x7f) {
        return true;
    }
    // U+0080 to U+009F: among them a line end and the 8-bit twin of ESC [.
    if (first == 0xc2 && static_cast<unsigned char>(character[1]) < 0xa0) {
        return true;
    }
    return character == "\xe2\x80\xa8" || character == "\xe2\x80\xa9"; // line and paragraph separator
}

void AppendEscape(std::string& result, char character) {
    switch (character) {
    case '\r':
        result += "\\r";
        break;
    case '\n':
        result += "\\n";
        break;
    case '\t':
        result += "\\t";
        break;
    default: {
        constexpr std::string_view kDigits = "0123456789abcdef";
        const auto byte = static_cast<unsigned char>(character);
        result += "\\x";
        result += kDigits[byte >> 4U];
        result += kDigits[byte & 0xfU];
    }
    }
}

} // namespace

std::string Escaped(std::string_view text) {
    std::string result;
    result.reserve(text.size());
    while (!text.empty()) {
        const std::size_t length = CharacterLength(text);
        const std::string_view piece = text.substr(0, length == 0 ? 1 : length);
        if (length == 0 || IsControl(piece)) {
            std::for_each(piece.begin(), piece.end(), [&](char byte) { AppendEscape(result, byte); });
        } else {
            result += piece;
        }
        text.remove_prefix(piece.size());
    }
    return result;
}

std::string FormatLine(std::string_view module, std::string_view component, dp::TraceType type,
                       std::string_view escapedText) {
    SYSTEMTIME now = {};
    GetLocalTime(&now);
    std::array<char, 32> time = {};
    std::snprintf(time.data(), time.size(), "%02d:%02d:%02d.%03d", now.wHour, now.wMinute, now.wSecond,
                  now.wMilliseconds);

    std::string line = time.data();
    line.append(1, ' ').append(module);
    line.append(1, ' ').append(component);
    line.append(1, ' ').append(std::to_string(static_cast<int>(type)));
    line.append(1, ' ').append(escapedText);
    return line.append(1, '\n');
}

} // namespace host_reference
