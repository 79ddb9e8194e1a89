// Attributes are separated by semicolons, their names compared without regard to case.
#include "cookie_text.h"

#include <algorithm>
#include <charconv>
#include <system_error>
#include <utility>

#include "testbed/chromium/text.h"

namespace legacy_control {
namespace {

using testbed::chromium::SameName;

std::string_view Trimmed(std::string_view text) {
    constexpr std::string_view kBlanks = " \t";
    const std::size_t first = text.find_first_not_of(kBlanks);
    return first == std::string_view::npos ? std::string_view()
                                           : text.substr(first, text.find_last_not_of(kBlanks) + 1 - first);
}

std::string InLowerCase(std::string_view text) {
    std::string result(text);
    std::ranges::transform(result, result.begin(), [](char character) {
        return character >= 'A' && character <= 'Z' ? static_cast<char>(character - 'A' + 'a') : character;
    });
    return result;
}

/// What stands before a separator; the rest is left.
std::string_view TakeUpTo(std::string_view& rest, char separator) {
    const std::size_t end = std::min(rest.find(separator), rest.size());
    const std::string_view taken = rest.substr(0, end);
    rest.remove_prefix(std::min(end + 1, rest.size()));
    return taken;
}

std::optional<long long> NumberIn(std::string_view text) {
    long long number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc() && end == text.data() + text.size() ? std::optional(number) : std::nullopt;
}

void ReadAttribute(std::string_view attribute, CookieText& cookie) {
    const std::string_view name = Trimmed(TakeUpTo(attribute, '='));
    const std::string_view value = Trimmed(attribute);
    if (SameName(name, "Domain")) {
        cookie.domain = InLowerCase(value.substr(value.starts_with('.') ? 1 : 0));
    } else if (SameName(name, "Path")) {
        cookie.path = value.starts_with('/') ? value : std::string_view();
    } else if (SameName(name, "Expires")) {
        cookie.expires = value;
    } else if (SameName(name, "Max-Age")) {
        cookie.maxAge = NumberIn(value);
    } else if (SameName(name, "HttpOnly")) {
        cookie.httpOnly = true;
    } else if (SameName(name, "Secure")) {
        cookie.secure = true;
    } else if (SameName(name, "SameSite")) {
        cookie.sameSiteNone = SameName(value, "None");
    }
}

} // namespace

std::optional<UrlParts> TakeApart(std::string_view url) {
    UrlParts parts;
    parts.scheme = TakeUpTo(url, ':');
    if ((parts.scheme != "http" && parts.scheme != "https") || !url.starts_with("//")) {
        return std::nullopt;
    }
    url.remove_prefix(2);
    const std::size_t pathStart = std::min(url.find_first_of("/?#"), url.size());
    std::string_view server = url.substr(0, pathStart);
    server.remove_prefix(server.find('@') + 1); // to the beginning where there is none
    parts.host = InLowerCase(server.substr(0, server.rfind(':')));
    url.remove_prefix(pathStart);
    parts.path = url.substr(0, url.find_first_of("?#"));
    if (parts.path.empty()) {
        parts.path = "/";
    }
    return parts;
}

std::optional<CookieText> ReadCookieText(std::string_view text) {
    CookieText cookie;
    std::string_view pair = TakeUpTo(text, ';');
    if (pair.find('=') == std::string_view::npos) {
        return std::nullopt;
    }
    cookie.name = Trimmed(TakeUpTo(pair, '='));
    cookie.value = Trimmed(pair);
    while (!text.empty()) {
        ReadAttribute(TakeUpTo(text, ';'), cookie);
    }
    return cookie.name.empty() ? std::nullopt : std::optional(std::move(cookie));
}

std::string DefaultPath(const UrlParts& url) {
    return url.path.substr(0, std::max<std::size_t>(url.path.rfind('/'), 1));
}

} // namespace legacy_control
