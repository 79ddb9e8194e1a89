// Fakes of a response that the page got, of its request, and of their headers.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "tests/support/webview2/com_copy.h"
#include "tests/support/webview2/fake_runtime_object.h"

namespace test_support {

using HeaderFields = std::vector<std::pair<std::wstring, std::wstring>>;

/// Whether a call that takes texts gives any. S_FALSE is a success that gives none.
inline bool GivesTexts(HRESULT result) {
    return result == S_OK;
}

/// What an exchange with a server says.
struct ExchangeContent {
    std::wstring uri = L"http://server/login";
    std::wstring method = L"GET";
    HeaderFields requestHeaders;
    int status = 200;
    HeaderFields responseHeaders;
};

/// The number of a header is the argument of the calls that get it or move to it.
class FakeHeaderIterator final : public FakeRuntimeObject<ICoreWebView2HttpHeadersCollectionIterator> {
  public:
    FakeHeaderIterator(CallScript& script, std::string name, HeaderFields headers)
        : FakeRuntimeObject(script, std::move(name)), headers_(std::move(headers)) {}

    HRESULT STDMETHODCALLTYPE get_HasCurrentHeader(BOOL* hasCurrent) override {
        return Tell("get_HasCurrentHeader", "", hasCurrent);
    }
    HRESULT STDMETHODCALLTYPE GetCurrentHeader(LPWSTR* name, LPWSTR* value) override {
        const HRESULT result = Called("GetCurrentHeader", std::to_string(position_));
        *name = GivesTexts(result) ? ComCopy(headers_.at(position_).first) : nullptr;
        *value = GivesTexts(result) ? ComCopy(headers_.at(position_).second) : nullptr;
        return result;
    }
    HRESULT STDMETHODCALLTYPE MoveNext(BOOL* hasNext) override {
        ++position_;
        return Tell("MoveNext", std::to_string(position_), hasNext);
    }

  private:
    HRESULT Tell(const char* method, const std::string& arguments, BOOL* hasCurrent) const {
        *hasCurrent = position_ < headers_.size() ? TRUE : FALSE; // also where the call fails
        return Called(method, arguments);
    }

    HeaderFields headers_;
    std::size_t position_ = 0;
};

/// The collection of a request's headers, or of a response's.
template <typename Collection>
class FakeHeaders final : public FakeRuntimeObject<Collection> {
  public:
    FakeHeaders(CallScript& script, std::string name, HeaderFields headers)
        : FakeRuntimeObject<Collection>(script, std::move(name)), headers_(std::move(headers)) {}

    HRESULT STDMETHODCALLTYPE GetIterator(ICoreWebView2HttpHeadersCollectionIterator** iterator) override {
        return this->GiveObject(
            "GetIterator", "",
            [this] { return new FakeHeaderIterator(this->Script(), this->Name() + " iterator", headers_); },
            iterator);
    }

  private:
    HeaderFields headers_;
};

class FakeAnsweredRequest final : public FakeRuntimeObject<ICoreWebView2WebResourceRequest> {
  public:
    FakeAnsweredRequest(CallScript& script, ExchangeContent content)
        : FakeRuntimeObject(script, "request"), content_(std::move(content)) {}

    HRESULT STDMETHODCALLTYPE get_Uri(LPWSTR* uri) override { return GiveText("get_Uri", content_.uri, uri); }
    HRESULT STDMETHODCALLTYPE get_Method(LPWSTR* method) override {
        return GiveText("get_Method", content_.method, method);
    }
    HRESULT STDMETHODCALLTYPE get_Headers(ICoreWebView2HttpRequestHeaders** headers) override {
        return GiveObject(
            "get_Headers", "",
            [this] {
                return new FakeHeaders<ICoreWebView2HttpRequestHeaders>(Script(), "request headers",
                                                                        content_.requestHeaders);
            },
            headers);
    }

  private:
    HRESULT GiveText(const char* getter, const std::wstring& text, LPWSTR* out) const {
        const HRESULT result = Called(getter);
        *out = GivesTexts(result) ? ComCopy(text) : nullptr;
        return result;
    }

    ExchangeContent content_;
};

class FakeResponseView final : public FakeRuntimeObject<ICoreWebView2WebResourceResponseView> {
  public:
    FakeResponseView(CallScript& script, ExchangeContent content)
        : FakeRuntimeObject(script, "response"), content_(std::move(content)) {}

    HRESULT STDMETHODCALLTYPE get_StatusCode(int* status) override {
        const HRESULT result = Called("get_StatusCode");
        if (SUCCEEDED(result)) {
            *status = content_.status;
        }
        return result;
    }
    HRESULT STDMETHODCALLTYPE get_Headers(ICoreWebView2HttpResponseHeaders** headers) override {
        return GiveObject(
            "get_Headers", "",
            [this] {
                return new FakeHeaders<ICoreWebView2HttpResponseHeaders>(Script(), "response headers",
                                                                         content_.responseHeaders);
            },
            headers);
    }

  private:
    ExchangeContent content_;
};

class FakeResponseReceivedArgs final
    : public FakeRuntimeObject<ICoreWebView2WebResourceResponseReceivedEventArgs> {
  public:
    FakeResponseReceivedArgs(CallScript& script, ExchangeContent content)
        : FakeRuntimeObject(script, "args"), content_(std::move(content)) {}

    HRESULT STDMETHODCALLTYPE get_Request(ICoreWebView2WebResourceRequest** request) override {
        return GiveObject(
            "get_Request", "", [this] { return new FakeAnsweredRequest(Script(), content_); }, request);
    }
    HRESULT STDMETHODCALLTYPE get_Response(ICoreWebView2WebResourceResponseView** response) override {
        return GiveObject(
            "get_Response", "", [this] { return new FakeResponseView(Script(), content_); }, response);
    }

  private:
    ExchangeContent content_;
};

} // namespace test_support
