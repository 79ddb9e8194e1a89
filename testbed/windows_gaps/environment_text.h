// Environment variables as this process has them at the moment of asking.
#pragma once

#include <optional>
#include <string>

#include <windows.h>

namespace windows_gaps {

/// @return nothing if the variable is not set or empty.
inline std::optional<std::wstring> EnvironmentText(const wchar_t* name) {
    std::wstring text(GetEnvironmentVariableW(name, nullptr, 0), L'\0');
    if (text.empty()) {
        return std::nullopt;
    }
    text.resize(GetEnvironmentVariableW(name, text.data(), static_cast<DWORD>(text.size())));
    return text.empty() ? std::nullopt : std::optional(text);
}

} // namespace windows_gaps
