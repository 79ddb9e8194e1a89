// The store tells no paths and domains. What comes from there alone goes into Chromium for the whole host, and is taken out
// again before a request that it does not belong to.
#include "cookie_mirror.h"

#include <algorithm>
#include <iterator>
#include <set>

#include "testbed/chromium/page.h"

namespace legacy_control {
namespace {

bool PathCovers(const std::string& cookiePath, const std::string& path) {
    return path.starts_with(cookiePath) &&
           (path.size() == cookiePath.size() || cookiePath.ends_with('/') || path[cookiePath.size()] == '/');
}

/// Chromium has stricter rules than the store.
bool RefusedByChromium(const UrlParts& url, const CookieText& cookie) {
    const bool trusted = url.scheme == "https" || url.host == "localhost" || url.host.starts_with("127.");
    return (cookie.sameSiteNone && !cookie.secure) || (cookie.secure && !trusted);
}

/// An address of numbers has no subdomains: Chromium keeps such a cookie for the host alone.
std::string DomainOf(const UrlParts& url, const CookieText& cookie) {
    const bool isNumber = !url.host.empty() && url.host.back() >= '0' && url.host.back() <= '9';
    return cookie.domain.empty() || isNumber ? url.host : "." + cookie.domain;
}

std::string LineOf(const std::vector<StoredCookie>& cookies) {
    std::string line;
    for (const StoredCookie& cookie : cookies) {
        line += (line.empty() ? "" : "; ") + cookie.name + "=" + cookie.value;
    }
    return line;
}

std::vector<std::string> ValuesIn(const std::vector<StoredCookie>& store, const std::string& name) {
    std::vector<std::string> values;
    for (const StoredCookie& cookie : store) {
        if (cookie.name == name) {
            values.push_back(cookie.value);
        }
    }
    std::ranges::sort(values);
    return values;
}

} // namespace

bool CookieMirror::Known::GoesTo(const UrlParts& url) const {
    const bool sameHost = domain.starts_with('.') ? ("." + url.host).ends_with(domain) : url.host == domain;
    return sameHost && PathCovers(path, url.path);
}

void CookieMirror::OnServerCookie(const UrlParts& url, const std::string& text) {
    if (const auto cookie = ReadCookieText(text)) {
        WriteCookieStore(url, *cookie, true);
        Remember(url, *cookie);
    }
}

void CookieMirror::OnScriptCookie(const UrlParts& url, const std::string& text) {
    if (const auto cookie = ReadCookieText(text); cookie && !cookie->httpOnly) {
        WriteCookieStore(url, *cookie, false);
        Remember(url, *cookie);
    }
}

void CookieMirror::Remember(const UrlParts& url, const CookieText& cookie) {
    const Known known = {cookie.name, cookie.value, DomainOf(url, cookie),
                         cookie.path.empty() ? DefaultPath(url) : cookie.path};
    std::erase_if(known_, [&](const Known& other) {
        return other.name == known.name && other.domain == known.domain && other.path == known.path;
    });
    if (!RefusedByChromium(url, cookie)) {
        known_.push_back(known);
    }
}

std::vector<std::string> CookieMirror::ValuesFor(const UrlParts& url, const std::string& name) const {
    std::vector<std::string> values;
    for (const Known& known : known_) {
        if (known.name == name && known.GoesTo(url)) {
            values.push_back(known.value);
        }
    }
    std::ranges::sort(values);
    return values;
}

void CookieMirror::Drop(const UrlParts& url, const std::string& name, testbed::chromium::Page& page) {
    const auto goes = [&](const Known& known) { return known.name == name && known.GoesTo(url); };
    for (const Known& known : known_) {
        if (goes(known)) {
            page.DeleteCookies(known.name, known.domain, known.path);
        }
    }
    std::erase_if(known_, goes);
}

void CookieMirror::Change(const UrlParts& url, const std::string& name,
                          const std::vector<StoredCookie>& store, testbed::chromium::Page& page) {
    Drop(url, name, page);
    const auto stored = std::ranges::find(store, name, &StoredCookie::name);
    if (stored != store.end()) {
        testbed::chromium::Cookie cookie;
        cookie.name = name;
        cookie.value = stored->value;
        cookie.domain = url.host;
        cookie.httpOnly = stored->httpOnly;
        page.SetCookie(cookie);
        known_.push_back({name, stored->value, url.host, "/"});
    }
    ++*changes_;
    // What is read shows what was changed before.
    page.GetCookies({}, [changes = changes_](const auto& /*cookies*/) { --*changes; });
}

std::optional<std::string> CookieMirror::Adjust(const UrlParts& url, testbed::chromium::Page& page) {
    const std::vector<StoredCookie> store = ReadCookieStore(url);
    std::set<std::string> names;
    for (const StoredCookie& cookie : store) {
        names.insert(cookie.name);
    }
    for (const Known& known : known_) {
        if (known.GoesTo(url)) {
            names.insert(known.name);
        }
    }
    for (const std::string& name : names) {
        if (ValuesFor(url, name) != ValuesIn(store, name)) {
            Change(url, name, store, page);
        }
    }
    return *changes_ == 0 ? std::nullopt : std::optional(LineOf(store));
}

void CookieMirror::Clear() {
    known_.clear();
    changes_ = std::make_shared<int>(0);
}

} // namespace legacy_control
