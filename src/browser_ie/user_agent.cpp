// Servers turn away browsers of systems that they take for too old, and urlmon names an old one.
#include "browser_ie/user_agent.h"

#include <regex>
#include <string>

#include <windows.h>

#include <urlmon.h>

#include "dp/environment.h"
#include "support/trace.h"

namespace kelda {
namespace {

constexpr const char* kVariable = "MERIDO_ZANWEBBROWSER_USER_AGENT";
constexpr const char* kUrlmonsOwn = "default";

/// The results are not looked at: urlmon reports a lack of memory also when it has given the text.
std::string CurrentUserAgent() {
    DWORD size = 0;
    UrlMkGetSessionOption(URLMON_OPTION_USERAGENT, nullptr, 0, &size, 0);
    if (size == 0) {
        return {};
    }
    std::string buffer(size, '\0');
    UrlMkGetSessionOption(URLMON_OPTION_USERAGENT, buffer.data(), size, &size, 0);
    return buffer.substr(0, buffer.find('\0'));
}

std::string WithCurrentWindows(const std::string& userAgent) {
    try {
        const std::regex oldWindows(R"((Windows NT [6789]\.[0-9]+))");
        return std::regex_replace(userAgent, oldWindows, "Windows NT 10.0");
    } catch (const std::regex_error&) { // the library's limits, with a text beyond all measure
        return userAgent;
    }
}

/// @return an empty text where urlmon's own may stay.
std::string RewrittenUserAgent() {
    const std::string current = CurrentUserAgent();
    if (current.empty()) {
        return {};
    }
    kWebBrowserIETrace.Info() << "User-Agent: " << current;
    const std::string rewritten = WithCurrentWindows(current);
    return rewritten == current ? std::string() : rewritten;
}

/// @return an empty text where there is nothing to set.
std::string ChosenUserAgent() {
    std::string given = dp::Environment::Get(kVariable);
    if (given == kUrlmonsOwn) {
        kWebBrowserIETrace.Info() << "Using default User-Agent";
        return {};
    }
    if (given.empty()) {
        return RewrittenUserAgent();
    }
    kWebBrowserIETrace.Info() << "Using environment User-Agent";
    return given;
}

} // namespace

void ApplyUserAgent() {
    std::string userAgent = ChosenUserAgent();
    if (userAgent.empty()) {
        return;
    }
    kWebBrowserIETrace.Info() << "Setting User-Agent to " << userAgent;
    UrlMkSetSessionOption(URLMON_OPTION_USERAGENT, userAgent.data(), static_cast<DWORD>(userAgent.size() + 1),
                          0);
}

} // namespace kelda
