// Names and values are kept in UTF-8, as Chromium is spoken to.
#include "request_headers.h"

#include <algorithm>
#include <string_view>

#include "com_text.h"

namespace webview2_runtime {
namespace {

using testbed::chromium::Headers;
using testbed::chromium::ToUtf16;
using testbed::chromium::ToUtf8;

std::string_view WithoutBlanks(std::string_view text) {
    const std::size_t first = text.find_first_not_of(" \t");
    if (first == std::string_view::npos) {
        return {};
    }
    return text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

} // namespace

HRESULT ParseHeaderLines(const std::wstring& lines, Headers& headers) {
    const std::string text = ToUtf8(lines);
    for (std::size_t start = 0; start < text.size();) {
        const std::size_t end = std::min(text.find("\r\n", start), text.size());
        const std::string_view line(text.data() + start, end - start);
        const std::size_t colon = line.find(':');
        if (colon == std::string_view::npos || WithoutBlanks(line.substr(0, colon)).empty()) {
            return E_INVALIDARG;
        }
        headers.push_back({std::string(WithoutBlanks(line.substr(0, colon))),
                           std::string(WithoutBlanks(line.substr(colon + 1)))});
        start = end + 2;
    }
    return S_OK;
}

HRESULT RequestHeaders::GetHeader(LPCWSTR name, LPWSTR* value) {
    return Guarded([&]() -> HRESULT {
        if (name == nullptr || value == nullptr) {
            return E_POINTER;
        }
        const Headers named = HeadersNamed(All(), name);
        if (named.empty()) {
            return E_INVALIDARG;
        }
        std::string joined = named.front().value;
        for (std::size_t i = 1; i < named.size(); ++i) {
            joined += ", " + named.at(i).value;
        }
        return CopyOut(ToUtf16(joined), value);
    });
}

HRESULT RequestHeaders::SetHeader(LPCWSTR name, LPCWSTR value) {
    return Guarded([&]() -> HRESULT {
        if (name == nullptr || value == nullptr) {
            return E_POINTER;
        }
        if (*name == L'\0') {
            return E_INVALIDARG;
        }
        const std::string newName = ToUtf8(name);
        const auto first = std::ranges::find_if(All(), Named(newName));
        if (first == All().end()) {
            All().push_back({newName, ToUtf8(value)});
            return S_OK;
        }
        first->value = ToUtf8(value);
        All().erase(std::remove_if(first + 1, All().end(), Named(newName)), All().end());
        return S_OK;
    });
}

HRESULT RequestHeaders::RemoveHeader(LPCWSTR name) {
    return Guarded([&]() -> HRESULT {
        if (name == nullptr) {
            return E_POINTER;
        }
        return std::erase_if(All(), Named(ToUtf8(name))) == 0 ? E_INVALIDARG : S_OK;
    });
}

} // namespace webview2_runtime
