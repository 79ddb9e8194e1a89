// Urlmon reports a failure also where it has filled the buffer, so only the length counts.
#include "user_agent.h"

#include <cstring>

#include <windows.h>

#include <urlmon.h>

namespace legacy_control {

std::string CurrentUserAgent() {
    DWORD size = 0;
    UrlMkGetSessionOption(URLMON_OPTION_USERAGENT, nullptr, 0, &size, 0);
    std::string text(size, '\0');
    if (size != 0) {
        UrlMkGetSessionOption(URLMON_OPTION_USERAGENT, text.data(), size, &size, 0);
    }
    text.resize(std::strlen(text.c_str())); // the length counts what ends the text
    return text;
}

} // namespace legacy_control
