// What the browser asks when it meets a certificate, or a challenge for a user name and a password.
#include <cstring>

#include "browser_edge/impl.h"
#include "dp/environment.h"
#include "support/com_call.h"
#include "support/trace.h"

using Microsoft::WRL::ComPtr;

namespace kelda {
namespace {

/// Expired and invalid ones only, and only where the variable says so: never a wrong name, never a revoked one.
bool MayBeAllowed(COREWEBVIEW2_WEB_ERROR_STATUS status) {
    return _stricmp(dp::Environment::Get("MERIDO_IGNORE_CERT_INVALID").c_str(), "true") == 0 &&
           (status == COREWEBVIEW2_WEB_ERROR_STATUS_CERTIFICATE_IS_INVALID ||
            status == COREWEBVIEW2_WEB_ERROR_STATUS_CERTIFICATE_EXPIRED);
}

} // namespace

HRESULT ZanWebBrowserEdge::Impl::OnServerCertificateErrorDetected(
    ICoreWebView2* /*sender*/, ICoreWebView2ServerCertificateErrorDetectedEventArgs* args) {
    COREWEBVIEW2_WEB_ERROR_STATUS status = COREWEBVIEW2_WEB_ERROR_STATUS_UNKNOWN;
    args->get_ErrorStatus(&status);
    if (MayBeAllowed(status)) {
        kWebBrowserEdgeTrace.Info() << "Allowing invalid/expired certificate (" << static_cast<int>(status)
                                    << ")";
        args->put_Action(COREWEBVIEW2_SERVER_CERTIFICATE_ERROR_ACTION_ALWAYS_ALLOW);
    } else {
        // The blank before the parenthesis has always been there.
        kWebBrowserEdgeTrace.Info() << "Invalid server certificate (" << static_cast<int>(status)
                                    << " ); cancelling request";
        args->put_Action(COREWEBVIEW2_SERVER_CERTIFICATE_ERROR_ACTION_CANCEL);
    }
    return S_OK;
}

// One matching certificate is taken without asking; with several the runtime's own dialog asks. One that cannot be had
// counts as none: the request goes on without.
HRESULT ZanWebBrowserEdge::Impl::OnClientCertificateRequested(
    ICoreWebView2* /*sender*/, ICoreWebView2ClientCertificateRequestedEventArgs* args) {
    ComPtr<ICoreWebView2ClientCertificateCollection> certificates;
    args->get_MutuallyTrustedCertificates(certificates.GetAddressOf());
    UINT32 count = 0;
    CallOn(certificates, &ICoreWebView2ClientCertificateCollection::get_Count, &count);
    kWebBrowserEdgeTrace.Info() << "Client certificate requested; found " << count << " matching cert(s)";
    if (count == 1) {
        ComPtr<ICoreWebView2ClientCertificate> certificate;
        certificates->GetValueAtIndex(0, certificate.GetAddressOf());
        if (certificate) {
            args->put_SelectedCertificate(certificate.Get());
        }
    }
    args->put_Handled(count <= 1 ? TRUE : FALSE);
    return S_OK;
}

// Credentials are the probe's business; the browser's own handling stays as it is.
HRESULT ZanWebBrowserEdge::Impl::OnBasicAuthenticationRequested(
    ICoreWebView2* /*sender*/, ICoreWebView2BasicAuthenticationRequestedEventArgs* /*args*/) {
    kWebBrowserEdgeTrace.Info() << "Unexpected Basic Auth request";
    return S_OK;
}

} // namespace kelda
