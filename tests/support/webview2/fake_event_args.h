// Fakes of the events' arguments; tests set what they say and read what handlers decided.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include <wrl/client.h>

#include "tests/support/webview2/com_copy.h"
#include "tests/support/webview2/fake_runtime_object.h"

namespace test_support {

class FakeNavigationStartingArgs final : public FakeRuntimeObject<ICoreWebView2NavigationStartingEventArgs> {
  public:
    FakeNavigationStartingArgs(CallScript& script, std::wstring uri)
        : FakeRuntimeObject(script, "args"), uri_(std::move(uri)) {}

    HRESULT STDMETHODCALLTYPE get_Uri(LPWSTR* uri) override {
        const HRESULT result = Called("get_Uri");
        *uri = SUCCEEDED(result) ? ComCopy(uri_) : nullptr;
        return result;
    }
    HRESULT STDMETHODCALLTYPE put_Cancel(BOOL cancel) override {
        return Called("put_Cancel", std::to_string(cancel));
    }

  private:
    std::wstring uri_;
};

class FakeNavigationCompletedArgs final
    : public FakeRuntimeObject<ICoreWebView2NavigationCompletedEventArgs> {
  public:
    explicit FakeNavigationCompletedArgs(CallScript& script, bool success = true)
        : FakeRuntimeObject(script, "args"), success_(success) {}

    HRESULT STDMETHODCALLTYPE get_IsSuccess(BOOL* success) override {
        *success = success_ ? TRUE : FALSE;
        return Called("get_IsSuccess");
    }

  private:
    bool success_;
};

class FakeRequestHeaders final : public FakeRuntimeObject<ICoreWebView2HttpRequestHeaders> {
  public:
    using FakeRuntimeObject::FakeRuntimeObject;

    HRESULT STDMETHODCALLTYPE SetHeader(LPCWSTR name, LPCWSTR value) override {
        return Called("SetHeader", Narrow(name) + ": " + Narrow(value));
    }
};

class FakeRequested final : public FakeRuntimeObject<ICoreWebView2WebResourceRequest> {
  public:
    using FakeRuntimeObject::FakeRuntimeObject;

    HRESULT STDMETHODCALLTYPE get_Headers(ICoreWebView2HttpRequestHeaders** headers) override {
        return GiveObject(
            "get_Headers", "", [this] { return new FakeRequestHeaders(Script(), "headers"); }, headers);
    }
};

class FakeWebResourceRequestedArgs final
    : public FakeRuntimeObject<ICoreWebView2WebResourceRequestedEventArgs> {
  public:
    explicit FakeWebResourceRequestedArgs(CallScript& script) : FakeRuntimeObject(script, "args") {}

    HRESULT STDMETHODCALLTYPE get_ResourceContext(COREWEBVIEW2_WEB_RESOURCE_CONTEXT* context) override {
        *context = COREWEBVIEW2_WEB_RESOURCE_CONTEXT_IMAGE;
        return Called("get_ResourceContext");
    }
    HRESULT STDMETHODCALLTYPE get_Request(ICoreWebView2WebResourceRequest** request) override {
        return GiveObject(
            "get_Request", "", [this] { return new FakeRequested(Script(), "request"); }, request);
    }
};

class FakeServerCertificateArgs final
    : public FakeRuntimeObject<ICoreWebView2ServerCertificateErrorDetectedEventArgs> {
  public:
    FakeServerCertificateArgs(CallScript& script, COREWEBVIEW2_WEB_ERROR_STATUS status)
        : FakeRuntimeObject(script, "args"), status_(status) {}

    HRESULT STDMETHODCALLTYPE get_ErrorStatus(COREWEBVIEW2_WEB_ERROR_STATUS* status) override {
        const HRESULT result = Called("get_ErrorStatus");
        if (SUCCEEDED(result)) {
            *status = status_;
        }
        return result;
    }
    HRESULT STDMETHODCALLTYPE put_Action(COREWEBVIEW2_SERVER_CERTIFICATE_ERROR_ACTION action) override {
        return Called("put_Action", std::to_string(action));
    }

  private:
    COREWEBVIEW2_WEB_ERROR_STATUS status_;
};

class FakeClientCertificate final : public FakeRuntimeObject<ICoreWebView2ClientCertificate> {
  public:
    using FakeRuntimeObject::FakeRuntimeObject;
};

class FakeClientCertificates final : public FakeRuntimeObject<ICoreWebView2ClientCertificateCollection> {
  public:
    FakeClientCertificates(CallScript& script, UINT32 count)
        : FakeRuntimeObject(script, "certificates"), count_(count) {}

    HRESULT STDMETHODCALLTYPE get_Count(UINT32* count) override {
        const HRESULT result = Called("get_Count");
        if (SUCCEEDED(result)) {
            *count = count_;
        }
        return result;
    }
    HRESULT STDMETHODCALLTYPE GetValueAtIndex(UINT32 index,
                                              ICoreWebView2ClientCertificate** certificate) override {
        return GiveObject(
            "GetValueAtIndex", std::to_string(index),
            [this] { return new FakeClientCertificate(Script(), "certificate"); }, certificate);
    }

  private:
    UINT32 count_;
};

class FakeClientCertificateArgs final
    : public FakeRuntimeObject<ICoreWebView2ClientCertificateRequestedEventArgs> {
  public:
    FakeClientCertificateArgs(CallScript& script, UINT32 count)
        : FakeRuntimeObject(script, "args"), count_(count) {}

    HRESULT STDMETHODCALLTYPE
    get_MutuallyTrustedCertificates(ICoreWebView2ClientCertificateCollection** certificates) override {
        return GiveObject(
            "get_MutuallyTrustedCertificates", "",
            [this] { return new FakeClientCertificates(Script(), count_); }, certificates);
    }
    HRESULT STDMETHODCALLTYPE put_SelectedCertificate(ICoreWebView2ClientCertificate* certificate) override {
        return Called("put_SelectedCertificate", certificate != nullptr ? "certificate" : "(null)");
    }
    HRESULT STDMETHODCALLTYPE put_Handled(BOOL handled) override {
        return Called("put_Handled", std::to_string(handled));
    }

  private:
    UINT32 count_;
};

class FakeBasicAuthenticationArgs final
    : public FakeRuntimeObject<ICoreWebView2BasicAuthenticationRequestedEventArgs> {
  public:
    explicit FakeBasicAuthenticationArgs(CallScript& script) : FakeRuntimeObject(script, "args") {}
};

} // namespace test_support
