// Chromium does not tell fetch, XMLHttpRequest and event sources apart, so a filter for one of them sees all three.
#include "request_filters.h"

#include <algorithm>

namespace webview2_runtime {
namespace {

using testbed::chromium::ResourceKind;

bool ContextFits(COREWEBVIEW2_WEB_RESOURCE_CONTEXT wanted, ResourceKind kind) {
    switch (wanted) {
    case COREWEBVIEW2_WEB_RESOURCE_CONTEXT_ALL:
        return true;
    case COREWEBVIEW2_WEB_RESOURCE_CONTEXT_FETCH:
    case COREWEBVIEW2_WEB_RESOURCE_CONTEXT_EVENT_SOURCE:
        return kind == ResourceKind::Fetch;
    default:
        return wanted == ContextOf(kind);
    }
}

} // namespace

bool MatchesPattern(std::wstring_view pattern, std::wstring_view text) {
    // After a mismatch the last star takes one character more; earlier stars need no second try.
    std::size_t inPattern = 0;
    std::size_t inText = 0;
    std::size_t star = std::wstring_view::npos;
    std::size_t starText = 0;
    while (inText < text.size()) {
        if (inPattern < pattern.size() && pattern[inPattern] == L'*') {
            star = inPattern++;
            starText = inText;
        } else if (inPattern < pattern.size() &&
                   (pattern[inPattern] == L'?' || pattern[inPattern] == text[inText])) {
            ++inPattern;
            ++inText;
        } else if (star != std::wstring_view::npos) {
            inPattern = star + 1;
            inText = ++starText;
        } else {
            return false;
        }
    }
    return pattern.find_first_not_of(L'*', inPattern) == std::wstring_view::npos;
}

COREWEBVIEW2_WEB_RESOURCE_CONTEXT ContextOf(ResourceKind kind) {
    switch (kind) {
    case ResourceKind::Document:
        return COREWEBVIEW2_WEB_RESOURCE_CONTEXT_DOCUMENT;
    case ResourceKind::Stylesheet:
        return COREWEBVIEW2_WEB_RESOURCE_CONTEXT_STYLESHEET;
    case ResourceKind::Image:
        return COREWEBVIEW2_WEB_RESOURCE_CONTEXT_IMAGE;
    case ResourceKind::Media:
        return COREWEBVIEW2_WEB_RESOURCE_CONTEXT_MEDIA;
    case ResourceKind::Font:
        return COREWEBVIEW2_WEB_RESOURCE_CONTEXT_FONT;
    case ResourceKind::Script:
        return COREWEBVIEW2_WEB_RESOURCE_CONTEXT_SCRIPT;
    case ResourceKind::Fetch:
        return COREWEBVIEW2_WEB_RESOURCE_CONTEXT_XML_HTTP_REQUEST;
    case ResourceKind::Ping:
        return COREWEBVIEW2_WEB_RESOURCE_CONTEXT_PING;
    case ResourceKind::Other:
        break;
    }
    return COREWEBVIEW2_WEB_RESOURCE_CONTEXT_OTHER;
}

void RequestFilters::Add(const std::wstring& pattern, COREWEBVIEW2_WEB_RESOURCE_CONTEXT context) {
    filters_.push_back({pattern, context});
}

bool RequestFilters::Remove(const std::wstring& pattern, COREWEBVIEW2_WEB_RESOURCE_CONTEXT context) {
    const auto found = std::ranges::find(filters_, Filter{pattern, context});
    if (found == filters_.end()) {
        return false;
    }
    filters_.erase(found);
    return true;
}

bool RequestFilters::Match(std::wstring_view uri, ResourceKind kind) const {
    return std::ranges::any_of(filters_, [&](const Filter& filter) {
        return ContextFits(filter.context, kind) && MatchesPattern(filter.pattern, uri);
    });
}

} // namespace webview2_runtime
