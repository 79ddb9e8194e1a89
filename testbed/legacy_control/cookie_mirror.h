// Keeps Chromium's cookies in step with the store's. The store decides; Chromium is told of what it does not know yet.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "cookie_store.h"
#include "cookie_text.h"

namespace testbed::chromium {
class Page;
} // namespace testbed::chromium

namespace legacy_control {

/// Remembers what Chromium has, as nobody can be asked for that in the middle of a request.
class CookieMirror {
  public:
    /// A server has set a cookie in an answer; Chromium has it already.
    void OnServerCookie(const UrlParts& url, const std::string& text);
    /// Likewise a script.
    void OnScriptCookie(const UrlParts& url, const std::string& text);

    /// Has Chromium have what the store has for the URL, and nothing else of what that once had.
    ///
    /// @return what a request for the URL has to carry, as one line: Chromium's own cookies are not those yet. Nothing if they
    ///         are, as far as is known; scripts may have set some the moment before.
    std::optional<std::string> Adjust(const UrlParts& url, testbed::chromium::Page& page);

    /// Chromium has no cookies any more.
    void Clear();

  private:
    struct Known {
        std::string name;
        std::string value;
        std::string domain; // with a leading dot: for its subdomains as well
        std::string path;

        bool GoesTo(const UrlParts& url) const;
    };

    void Remember(const UrlParts& url, const CookieText& cookie);
    std::vector<std::string> ValuesFor(const UrlParts& url, const std::string& name) const;
    void Change(const UrlParts& url, const std::string& name, const std::vector<StoredCookie>& store,
                testbed::chromium::Page& page);
    void Drop(const UrlParts& url, const std::string& name, testbed::chromium::Page& page);

    std::vector<Known> known_;
    std::shared_ptr<int> changes_ = std::make_shared<int>(0); // that Chromium has not confirmed
};

} // namespace legacy_control
