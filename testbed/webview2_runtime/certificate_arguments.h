// What the handlers of the events about certificates get: ServerCertificateErrorDetected and ClientCertificateRequested.
#pragma once

#include <algorithm>
#include <string>
#include <utility>

#include "client_certificate_requests.h"
#include "client_certificates.h"
#include "com_text.h"
#include "testbed/chromium/text.h"

namespace webview2_runtime {

class ServerCertificateErrorArguments
    : public ComObject<webview2::NotImplemented<ICoreWebView2ServerCertificateErrorDetectedEventArgs>,
                       ICoreWebView2ServerCertificateErrorDetectedEventArgs> {
  public:
    ServerCertificateErrorArguments(std::wstring uri, COREWEBVIEW2_WEB_ERROR_STATUS status)
        : uri_(std::move(uri)), status_(status) {}

    bool Allowed() const { return action_ == COREWEBVIEW2_SERVER_CERTIFICATE_ERROR_ACTION_ALWAYS_ALLOW; }

    HRESULT STDMETHODCALLTYPE get_ErrorStatus(COREWEBVIEW2_WEB_ERROR_STATUS* value) override {
        return GuardedGet(value, [&] { return status_; });
    }
    HRESULT STDMETHODCALLTYPE get_RequestUri(LPWSTR* value) override {
        return Guarded([&] { return CopyOut(uri_, value); });
    }
    HRESULT STDMETHODCALLTYPE get_Action(COREWEBVIEW2_SERVER_CERTIFICATE_ERROR_ACTION* value) override {
        return GuardedGet(value, [&] { return action_; });
    }
    HRESULT STDMETHODCALLTYPE put_Action(COREWEBVIEW2_SERVER_CERTIFICATE_ERROR_ACTION value) override {
        return Guarded([&]() -> HRESULT {
            switch (value) {
            case COREWEBVIEW2_SERVER_CERTIFICATE_ERROR_ACTION_ALWAYS_ALLOW:
            case COREWEBVIEW2_SERVER_CERTIFICATE_ERROR_ACTION_CANCEL:
            case COREWEBVIEW2_SERVER_CERTIFICATE_ERROR_ACTION_DEFAULT:
                action_ = value;
                return S_OK;
            }
            return E_INVALIDARG;
        });
    }

  private:
    std::wstring uri_;
    COREWEBVIEW2_WEB_ERROR_STATUS status_;
    COREWEBVIEW2_SERVER_CERTIFICATE_ERROR_ACTION action_ =
        COREWEBVIEW2_SERVER_CERTIFICATE_ERROR_ACTION_DEFAULT;
};

class ClientCertificateArguments
    : public ComObject<webview2::NotImplemented<ICoreWebView2ClientCertificateRequestedEventArgs>,
                       ICoreWebView2ClientCertificateRequestedEventArgs> {
  public:
    ClientCertificateArguments(Origin server, Microsoft::WRL::ComPtr<ClientCertificateList> certificates)
        : server_(std::move(server)), certificates_(std::move(certificates)) {}

    bool Cancelled() const { return cancelled_; }
    bool Handled() const { return handled_; }
    /// Null for none.
    const Microsoft::WRL::ComPtr<ClientCertificate>& Selected() const { return selected_; }

    HRESULT STDMETHODCALLTYPE get_Host(LPWSTR* value) override {
        return Guarded([&] { return CopyOut(testbed::chromium::ToUtf16(server_.host), value); });
    }
    HRESULT STDMETHODCALLTYPE get_Port(int* value) override {
        return GuardedGet(value, [&] { return server_.port; });
    }
    HRESULT STDMETHODCALLTYPE get_IsProxy(BOOL* value) override {
        return GuardedGet(value, [] { return FALSE; });
    }
    HRESULT STDMETHODCALLTYPE
    get_MutuallyTrustedCertificates(ICoreWebView2ClientCertificateCollection** value) override {
        return Guarded(
            [&]() -> HRESULT { return value == nullptr ? E_POINTER : HandOut(certificates_, value); });
    }
    HRESULT STDMETHODCALLTYPE get_SelectedCertificate(ICoreWebView2ClientCertificate** value) override {
        return Guarded([&]() -> HRESULT {
            if (value == nullptr) {
                return E_POINTER;
            }
            *value = nullptr;
            return selected_ ? HandOut(selected_, value) : S_OK;
        });
    }
    /// E_INVALIDARG for what is not of the event's own list.
    HRESULT STDMETHODCALLTYPE put_SelectedCertificate(ICoreWebView2ClientCertificate* value) override {
        return Guarded([&]() -> HRESULT {
            if (value == nullptr) {
                return E_POINTER;
            }
            const auto& all = certificates_->All();
            const auto found = std::ranges::find(all, value, [](const auto& one) { return one.Get(); });
            if (found == all.end()) {
                return E_INVALIDARG;
            }
            selected_ = *found;
            return S_OK;
        });
    }
    HRESULT STDMETHODCALLTYPE get_Cancel(BOOL* value) override {
        return GuardedGet(value, [&] { return cancelled_ ? TRUE : FALSE; });
    }
    HRESULT STDMETHODCALLTYPE put_Cancel(BOOL value) override {
        return Guarded([&] {
            cancelled_ = value != FALSE;
            return S_OK;
        });
    }
    HRESULT STDMETHODCALLTYPE get_Handled(BOOL* value) override {
        return GuardedGet(value, [&] { return handled_ ? TRUE : FALSE; });
    }
    HRESULT STDMETHODCALLTYPE put_Handled(BOOL value) override {
        return Guarded([&] {
            handled_ = value != FALSE;
            return S_OK;
        });
    }

  private:
    Origin server_;
    Microsoft::WRL::ComPtr<ClientCertificateList> certificates_;
    Microsoft::WRL::ComPtr<ClientCertificate> selected_;
    bool cancelled_ = false;
    bool handled_ = false;
};

} // namespace webview2_runtime
