// Which requests of a page the host wants to see.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include <windows.h>

#include <objbase.h>

#include "WebView2.h"
#include "testbed/chromium/page_client.h"

namespace webview2_runtime {

/// Whether a pattern fits all of a text: "*" stands for any characters or none, "?" for one.
bool MatchesPattern(std::wstring_view pattern, std::wstring_view text);

/// The context that a request is reported under.
COREWEBVIEW2_WEB_RESOURCE_CONTEXT ContextOf(testbed::chromium::ResourceKind kind);

class RequestFilters {
  public:
    void Add(const std::wstring& pattern, COREWEBVIEW2_WEB_RESOURCE_CONTEXT context);

    /// Takes back one addition.
    ///
    /// @return false if there is none.
    bool Remove(const std::wstring& pattern, COREWEBVIEW2_WEB_RESOURCE_CONTEXT context);

    void Clear() { filters_.clear(); }
    bool Empty() const { return filters_.empty(); }
    bool Match(std::wstring_view uri, testbed::chromium::ResourceKind kind) const;

  private:
    struct Filter {
        std::wstring pattern;
        COREWEBVIEW2_WEB_RESOURCE_CONTEXT context;

        bool operator==(const Filter&) const = default;
    };

    std::vector<Filter> filters_;
};

} // namespace webview2_runtime
