// Names and values are kept in UTF-8, as Chromium is spoken to.
#include "request_headers.h"

#include <algorithm>
#include <string_view>

#include "com_text.h"
#include "testbed/chromium/text.h"

namespace webview2_runtime {
namespace {

using testbed::chromium::Header;
using testbed::chromium::Headers;
using testbed::chromium::SameName;
using testbed::chromium::ToUtf16;
using testbed::chromium::ToUtf8;

auto Named(const std::string& name) {
    return [name](const Header& header) { return SameName(header.name, name); };
}

class HeaderIterator : public ComObject<webview2::NotImplemented<ICoreWebView2HttpHeadersCollectionIterator>,
                                        ICoreWebView2HttpHeadersCollectionIterator> {
  public:
    explicit HeaderIterator(SharedHeaders headers) : headers_(std::move(headers)) {}

    HRESULT STDMETHODCALLTYPE GetCurrentHeader(LPWSTR* name, LPWSTR* value) override {
        return Guarded([&]() -> HRESULT {
            if (name == nullptr || value == nullptr) {
                return E_POINTER;
            }
            if (!HasCurrent()) {
                return E_INVALIDARG;
            }
            const Header& header = headers_->at(position_);
            const HRESULT result = CopyOut(ToUtf16(header.name), name);
            return FAILED(result) ? result : CopyOut(ToUtf16(header.value), value);
        });
    }

    HRESULT STDMETHODCALLTYPE get_HasCurrentHeader(BOOL* hasCurrent) override {
        return GuardedGet(hasCurrent, [&] { return HasCurrent() ? TRUE : FALSE; });
    }

    HRESULT STDMETHODCALLTYPE MoveNext(BOOL* hasNext) override {
        return GuardedGet(hasNext, [&] {
            if (HasCurrent()) {
                ++position_;
            }
            return HasCurrent() ? TRUE : FALSE;
        });
    }

  private:
    bool HasCurrent() const { return position_ < headers_->size(); }

    SharedHeaders headers_;
    std::size_t position_ = 0;
};

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
        std::string joined;
        bool found = false;
        for (const Header& header : *headers_) {
            if (SameName(header.name, ToUtf8(name))) {
                joined += (found ? ", " : "") + header.value;
                found = true;
            }
        }
        return found ? CopyOut(ToUtf16(joined), value) : E_INVALIDARG;
    });
}

HRESULT RequestHeaders::GetHeaders(LPCWSTR name, ICoreWebView2HttpHeadersCollectionIterator** value) {
    return Guarded([&]() -> HRESULT {
        if (name == nullptr || value == nullptr) {
            return E_POINTER;
        }
        auto named = std::make_shared<Headers>();
        std::ranges::copy_if(*headers_, std::back_inserter(*named), Named(ToUtf8(name)));
        return HandOut(MakeObject<HeaderIterator>(std::move(named)), value);
    });
}

HRESULT RequestHeaders::Contains(LPCWSTR name, BOOL* value) {
    return Guarded([&]() -> HRESULT {
        if (name == nullptr || value == nullptr) {
            return E_POINTER;
        }
        *value = std::ranges::any_of(*headers_, Named(ToUtf8(name))) ? TRUE : FALSE;
        return S_OK;
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
        const auto first = std::ranges::find_if(*headers_, Named(newName));
        if (first == headers_->end()) {
            headers_->push_back({newName, ToUtf8(value)});
            return S_OK;
        }
        first->value = ToUtf8(value);
        headers_->erase(std::remove_if(first + 1, headers_->end(), Named(newName)), headers_->end());
        return S_OK;
    });
}

HRESULT RequestHeaders::RemoveHeader(LPCWSTR name) {
    return Guarded([&]() -> HRESULT {
        if (name == nullptr) {
            return E_POINTER;
        }
        return std::erase_if(*headers_, Named(ToUtf8(name))) == 0 ? E_INVALIDARG : S_OK;
    });
}

HRESULT RequestHeaders::GetIterator(ICoreWebView2HttpHeadersCollectionIterator** value) {
    return Guarded([&]() -> HRESULT {
        return value == nullptr ? E_POINTER : HandOut(MakeObject<HeaderIterator>(headers_), value);
    });
}

} // namespace webview2_runtime
