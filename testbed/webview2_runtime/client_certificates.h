// Client certificates that exist by name only: enough to choose from, with nothing behind them.
#pragma once

#include <string>
#include <vector>

#include "com_object.h"
#include "webview2_not_implemented.h"

namespace webview2_runtime {

class ClientCertificate : public ComObject<webview2::NotImplemented<ICoreWebView2ClientCertificate>,
                                           ICoreWebView2ClientCertificate> {
  public:
    /// @param number 1 to 9, by which they differ.
    explicit ClientCertificate(unsigned int number);

    const std::wstring& Subject() const { return subject_; }

    HRESULT STDMETHODCALLTYPE get_Subject(LPWSTR* value) override;
    HRESULT STDMETHODCALLTYPE get_Issuer(LPWSTR* value) override;
    HRESULT STDMETHODCALLTYPE get_ValidFrom(double* value) override;
    HRESULT STDMETHODCALLTYPE get_ValidTo(double* value) override;
    HRESULT STDMETHODCALLTYPE get_DerEncodedSerialNumber(LPWSTR* value) override;
    HRESULT STDMETHODCALLTYPE get_DisplayName(LPWSTR* value) override;
    HRESULT STDMETHODCALLTYPE get_Kind(COREWEBVIEW2_CLIENT_CERTIFICATE_KIND* value) override;

  private:
    unsigned int number_;
    std::wstring subject_;
};

class ClientCertificateList
    : public ComObject<webview2::NotImplemented<ICoreWebView2ClientCertificateCollection>,
                       ICoreWebView2ClientCertificateCollection> {
  public:
    using Certificates = std::vector<Microsoft::WRL::ComPtr<ClientCertificate>>;

    /// @param length at most 9.
    explicit ClientCertificateList(unsigned int length);

    const Certificates& All() const { return certificates_; }

    HRESULT STDMETHODCALLTYPE get_Count(UINT32* value) override;
    HRESULT STDMETHODCALLTYPE GetValueAtIndex(UINT32 index, ICoreWebView2ClientCertificate** value) override;

  private:
    Certificates certificates_;
};

} // namespace webview2_runtime
