// Cookies as servers and scripts set them, and where a URL stands among them.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace legacy_control {

struct UrlParts {
    std::string scheme;
    std::string host; ///< in lower case
    std::string path; ///< begins with a slash; without query and fragment
};

/// @param url as Chromium writes it.
/// @return nothing for what is not of http or https.
std::optional<UrlParts> TakeApart(std::string_view url);

/// Of a Set-Cookie header, or of a text that a script has assigned to document.cookie.
struct CookieText {
    std::string name;
    std::string value;
    std::string domain;              ///< in lower case and without a dot before it; empty where none is named
    std::string path;                ///< empty where none is named
    std::string expires;             ///< as it was written
    std::optional<long long> maxAge; ///< in seconds
    bool httpOnly = false;
    bool secure = false;
    bool sameSiteNone = false;
};

/// @return nothing for a cookie without a name.
std::optional<CookieText> ReadCookieText(std::string_view text);

/// The path that a cookie has whose text names none.
std::string DefaultPath(const UrlParts& url);

} // namespace legacy_control
