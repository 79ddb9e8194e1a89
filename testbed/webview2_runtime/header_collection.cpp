// Names and values are kept in UTF-8, as Chromium is spoken to.
#include "header_collection.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "com_text.h"

namespace webview2_runtime {
namespace {

using Microsoft::WRL::ComPtr;
using testbed::chromium::Header;
using testbed::chromium::Headers;
using testbed::chromium::ToUtf16;

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
            HRESULT result = CopyOut(ToUtf16(header.name), name);
            if (SUCCEEDED(result)) {
                result = CopyOut(ToUtf16(header.value), value);
            }
            if (FAILED(result)) {
                CoTaskMemFree(std::exchange(*name, nullptr));
            }
            return result;
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

} // namespace

Headers HeadersNamed(const Headers& headers, LPCWSTR name) {
    Headers named;
    std::ranges::copy_if(headers, std::back_inserter(named), Named(testbed::chromium::ToUtf8(name)));
    return named;
}

ComPtr<ICoreWebView2HttpHeadersCollectionIterator> MakeHeaderIterator(SharedHeaders headers) {
    return MakeObject<HeaderIterator>(std::move(headers));
}

} // namespace webview2_runtime
