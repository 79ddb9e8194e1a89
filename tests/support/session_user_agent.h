// The User-Agent that urlmon has for this process.
#pragma once

#include <string>

#include <windows.h>

#include <urlmon.h>

namespace test_support {

inline std::string SessionUserAgent() {
    DWORD size = 0;
    UrlMkGetSessionOption(URLMON_OPTION_USERAGENT, nullptr, 0, &size, 0);
    std::string text(size, '\0');
    UrlMkGetSessionOption(URLMON_OPTION_USERAGENT, text.data(), size, &size, 0);
    return text.substr(0, text.find('\0'));
}

inline void SetSessionUserAgent(const std::string& agent) {
    std::string text = agent; // urlmon takes no constant text
    UrlMkSetSessionOption(URLMON_OPTION_USERAGENT, text.data(), static_cast<DWORD>(text.size() + 1), 0);
}

} // namespace test_support
