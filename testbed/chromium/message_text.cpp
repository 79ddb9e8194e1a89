// Chromium writes half a surrogate pair as an escape of its own, which the parser refuses together with all around it.
#include "testbed/chromium/message_text.h"

#include <algorithm>
#include <charconv>
#include <string_view>

namespace testbed::chromium {
namespace {

constexpr std::size_t kEscapeSize = 6; // \uXXXX
constexpr unsigned kSurrogates = 0xD800;
constexpr unsigned kLowSurrogates = 0xDC00;
constexpr unsigned kBehindSurrogates = 0xE000;

/// The number of the escape at the front; 0 if there is none.
unsigned EscapeAt(std::string_view text) {
    unsigned unit = 0;
    if (text.size() >= kEscapeSize && text.starts_with("\\u")) {
        std::from_chars(text.data() + 2, text.data() + kEscapeSize, unit, 16);
    }
    return unit;
}

/// How much at the front is to be kept together; 0 where half a pair is.
std::size_t WholeAt(std::string_view text) {
    const unsigned unit = EscapeAt(text);
    if (unit < kSurrogates || unit >= kBehindSurrogates) {
        return text.starts_with('\\') ? 2 : 1;
    }
    const unsigned next = EscapeAt(text.substr(kEscapeSize));
    const bool pair = unit < kLowSurrogates && next >= kLowSurrogates && next < kBehindSurrogates;
    return pair ? 2 * kEscapeSize : 0;
}

std::string WithoutHalfPairs(std::string_view text) {
    std::string whole;
    while (!text.empty()) {
        const std::size_t size = WholeAt(text);
        whole += size == 0 ? std::string_view("\\ufffd") : text.substr(0, size);
        text.remove_prefix(std::min(size == 0 ? kEscapeSize : size, text.size()));
    }
    return whole;
}

} // namespace

nlohmann::json ParseMessage(const std::string& text) {
    auto message = nlohmann::json::parse(text, nullptr, false);
    return message.is_discarded() ? nlohmann::json::parse(WithoutHalfPairs(text)) : message;
}

} // namespace testbed::chromium
