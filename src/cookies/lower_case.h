// Lower-casing of what a header spells in any case.
#pragma once

#include <algorithm>
#include <cwctype>
#include <string>
#include <string_view>

namespace kelda {

/// Character by character, by the runtime's current locale.
inline std::wstring ToLower(std::wstring_view text) {
    std::wstring lower(text);
    std::ranges::transform(lower, lower.begin(),
                           [](wchar_t c) { return static_cast<wchar_t>(std::towlower(c)); });
    return lower;
}

} // namespace kelda
