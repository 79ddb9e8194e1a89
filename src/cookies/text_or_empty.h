// Texts that a store may not give.
#pragma once

#include <string>

namespace kelda {

/// A null text counts as an empty one.
inline std::wstring TextOrEmpty(const wchar_t* text) {
    return text != nullptr ? text : L"";
}

} // namespace kelda
