// The order of headers, and the bytes of their values.
#include "testbed/chromium/header_text.h"

#include <deque>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include <windows.h>

#include "testbed/chromium/text.h"

namespace testbed::chromium {
namespace {

constexpr std::string_view kBlanks = " \t";

/// Chromium's reading of a byte that stands alone; it has a character for each.
constexpr UINT kLatin = 1252;

std::string InLatinBytes(const std::wstring& text) {
    const int length = static_cast<int>(text.size());
    std::string bytes(static_cast<std::size_t>(
                          WideCharToMultiByte(kLatin, 0, text.data(), length, nullptr, 0, nullptr, nullptr)),
                      '\0');
    WideCharToMultiByte(kLatin, 0, text.data(), length, bytes.data(), static_cast<int>(bytes.size()), nullptr,
                        nullptr);
    return bytes;
}

bool IsUtf8(const std::string& bytes) {
    return MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, bytes.data(), static_cast<int>(bytes.size()),
                               nullptr, 0) != 0;
}

std::string ValueOnTheWire(const std::string& shown) {
    std::string bytes = InLatinBytes(ToUtf16(shown));
    return IsUtf8(bytes) ? bytes : shown;
}

std::vector<std::string> Split(std::string_view text, char separator) {
    std::vector<std::string> parts;
    for (;;) {
        const std::size_t end = text.find(separator);
        parts.emplace_back(text.substr(0, end));
        if (end == std::string_view::npos) {
            return parts;
        }
        text.remove_prefix(end + 1);
    }
}

/// What a line begins with; the whole line if it has no colon.
std::string NameOf(const std::string& line) {
    const std::string name = line.substr(0, line.find(':'));
    return name.substr(0, name.find_last_not_of(kBlanks) + 1);
}

} // namespace

Headers HeadersFrom(const Json& object) {
    Headers headers;
    for (const auto& [name, value] : object.items()) {
        headers.push_back({name, value.get<std::string>()});
    }
    return headers;
}

Headers HeadersOnTheWire(const Json& object, std::string_view text) {
    std::map<std::string, std::deque<std::string>> left;
    for (const auto& [name, values] : object.items()) {
        for (const std::string& value : Split(values.get_ref<const std::string&>(), '\n')) {
            left[name].push_back(ValueOnTheWire(value));
        }
    }
    Headers headers;
    for (const std::string& line : Split(text, '\n')) {
        if (const auto found = left.find(NameOf(line)); found != left.end() && !found->second.empty()) {
            headers.push_back({found->first, std::move(found->second.front())});
            found->second.pop_front();
        }
    }
    for (auto& [name, values] : left) {
        for (std::string& value : values) {
            headers.push_back({name, std::move(value)});
        }
    }
    return headers;
}

void Replace(Headers& headers, const Headers& others) {
    for (const Header& other : others) {
        std::erase_if(headers, [&](const Header& header) { return SameName(header.name, other.name); });
    }
    headers.insert(headers.end(), others.begin(), others.end());
}

} // namespace testbed::chromium
