// Shortening of URLs for titles and prompts.
#include "support/url_display.h"

#include <algorithm>

namespace kelda {
namespace {

constexpr size_t kEllipsisLength = 3;

bool StartsCharacter(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0U) != 0x80U;
}

/// Bytes taken by the first `count` characters of `text`, which has more of them.
size_t BytesOfCharacters(const std::string& text, size_t count) {
    size_t bytes = 0;
    for (; count > 0 || !StartsCharacter(text[bytes]); ++bytes) {
        if (StartsCharacter(text[bytes])) {
            --count;
        }
    }
    return bytes;
}

} // namespace

std::string TrimUrlForDisplay(const std::string& text, size_t maxLength) {
    std::string result = text;
    if (result.ends_with('/')) {
        result.pop_back();
    }
    const auto length = static_cast<size_t>(std::count_if(result.begin(), result.end(), StartsCharacter));
    if (maxLength > 0 && maxLength < length) {
        const size_t ellipsis = std::min(maxLength, kEllipsisLength);
        result.resize(BytesOfCharacters(result, maxLength - ellipsis));
        result.append(ellipsis, '.');
    }
    return result;
}

} // namespace kelda
