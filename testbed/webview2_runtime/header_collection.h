// What the headers of requests and of responses have in common: how the host reads them, and the iterator over them.
#pragma once

#include <memory>
#include <string>
#include <utility>

#include "com_object.h"
#include "testbed/chromium/page_client.h"
#include "testbed/chromium/text.h"
#include "webview2_not_implemented.h"

namespace webview2_runtime {

/// Shared by the collection, its iterators and a request: the iterators see what is edited under them.
using SharedHeaders = std::shared_ptr<testbed::chromium::Headers>;

/// Whether a header has a name; the case of ASCII letters does not matter.
inline auto Named(std::string name) {
    return [name = std::move(name)](const testbed::chromium::Header& header) {
        return testbed::chromium::SameName(header.name, name);
    };
}

testbed::chromium::Headers HeadersNamed(const testbed::chromium::Headers& headers, LPCWSTR name);

Microsoft::WRL::ComPtr<ICoreWebView2HttpHeadersCollectionIterator> MakeHeaderIterator(SharedHeaders headers);

/// `Interface` is the collection of a request or that of a response.
template <typename Interface>
class HeaderCollection : public ComObject<webview2::NotImplemented<Interface>, Interface> {
  public:
    explicit HeaderCollection(SharedHeaders headers) : headers_(std::move(headers)) {}

    HRESULT STDMETHODCALLTYPE GetHeaders(LPCWSTR name,
                                         ICoreWebView2HttpHeadersCollectionIterator** value) override {
        return this->Guarded([&]() -> HRESULT {
            if (name == nullptr || value == nullptr) {
                return E_POINTER;
            }
            return HandOut(MakeHeaderIterator(
                               std::make_shared<testbed::chromium::Headers>(HeadersNamed(*headers_, name))),
                           value);
        });
    }
    HRESULT STDMETHODCALLTYPE Contains(LPCWSTR name, BOOL* value) override {
        return this->Guarded([&]() -> HRESULT {
            if (name == nullptr || value == nullptr) {
                return E_POINTER;
            }
            *value = HeadersNamed(*headers_, name).empty() ? FALSE : TRUE;
            return S_OK;
        });
    }
    HRESULT STDMETHODCALLTYPE GetIterator(ICoreWebView2HttpHeadersCollectionIterator** value) override {
        return this->Guarded([&]() -> HRESULT {
            return value == nullptr ? E_POINTER : HandOut(MakeHeaderIterator(headers_), value);
        });
    }

  protected:
    testbed::chromium::Headers& All() const { return *headers_; }

  private:
    SharedHeaders headers_;
};

} // namespace webview2_runtime
