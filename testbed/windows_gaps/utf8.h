// Between UTF-8, which the prompt's script and log are written in, and the UTF-16 of Windows. Not for secrets to come.
#pragma once

#include <string>
#include <string_view>

#include <windows.h>

#include "secret_text.h"

namespace windows_gaps {

/// Characters that are no Unicode come out as U+FFFD.
inline std::string ToUtf8(std::wstring_view text) {
    const int length = static_cast<int>(text.size());
    std::string result(static_cast<std::size_t>(WideCharToMultiByte(CP_UTF8, 0, text.data(), length, nullptr,
                                                                    0, nullptr, nullptr)),
                       '\0');
    WideCharToMultiByte(CP_UTF8, 0, text.data(), length, result.data(), static_cast<int>(result.size()),
                        nullptr, nullptr);
    return result;
}

inline SecretText FromUtf8(std::string_view text) {
    const int length = static_cast<int>(text.size());
    SecretText result(
        static_cast<std::size_t>(MultiByteToWideChar(CP_UTF8, 0, text.data(), length, nullptr, 0)));
    MultiByteToWideChar(CP_UTF8, 0, text.data(), length, result.Data(), static_cast<int>(result.Size()));
    return result;
}

} // namespace windows_gaps
