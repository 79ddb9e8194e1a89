// A cookie as the functions of Windows describe it.
#pragma once

#include <optional>
#include <string>

#include <windows.h>

namespace windows_gaps {

struct CookieDetails {
    std::optional<std::wstring> name; ///< this or the value is there
    std::optional<std::wstring> value;
    std::wstring domain;
    std::wstring path;
    DWORD flags = 0;
    std::optional<FILETIME> expires;

    /// A cookie without a name is sent as its value alone, and just so is one that has an empty value.
    const std::wstring& SentName() const { return name ? *name : *value; }
    std::wstring SentValue() const { return name ? value.value_or(L"") : L""; }

    bool IsOver() const {
        FILETIME now{};
        GetSystemTimeAsFileTime(&now);
        return expires && CompareFileTime(&*expires, &now) <= 0;
    }
};

} // namespace windows_gaps
