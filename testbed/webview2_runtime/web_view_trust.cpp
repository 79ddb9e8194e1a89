// What the host is asked about both sides of a connection: server certificates, challenges, client certificates.
#include "web_view.h"

#include <string>

#include "certificate_arguments.h"
#include "certificate_dialog.h"
#include "challenge_arguments.h"
#include "error_status.h"
#include "testbed/windows_gaps/environment_text.h"

namespace webview2_runtime {
namespace {

using testbed::chromium::AuthenticationAnswer;
using testbed::chromium::AuthenticationChallenge;
using testbed::chromium::CertificateDecision;
using testbed::chromium::CertificateProblem;
using testbed::chromium::NavigationError;
using testbed::chromium::Request;
using testbed::chromium::ToUtf16;

/// A revoked certificate is one that Chromium cannot be brought to find here, so a variable says that it has found one.
NavigationError ErrorOf(const CertificateProblem& problem) {
    return windows_gaps::EnvironmentText(L"KELDA_TEST_CERTIFICATE_ERROR") == L"revoked"
               ? NavigationError::CertificateRevoked
               : problem.error;
}

} // namespace

CertificateDecision WebView::OnCertificateError(const CertificateProblem& problem) {
    auto decision = CertificateDecision::Cancel;
    DuringEvent([&] {
        const auto arguments =
            MakeObject<ServerCertificateErrorArguments>(ToUtf16(problem.url), StatusOf(ErrorOf(problem)));
        serverCertificateErrorDetected_
            .Raise<ICoreWebView2, ICoreWebView2ServerCertificateErrorDetectedEventArgs>(this,
                                                                                        arguments.Get());
        if (arguments->Allowed()) {
            decision = CertificateDecision::AlwaysAllow;
        }
    });
    return decision;
}

AuthenticationAnswer WebView::OnAuthenticationRequested(const AuthenticationChallenge& challenge) {
    AuthenticationAnswer answer;
    DuringEvent([&] {
        const auto arguments = MakeObject<BasicAuthenticationArguments>(challenge);
        basicAuthenticationRequested_
            .Raise<ICoreWebView2, ICoreWebView2BasicAuthenticationRequestedEventArgs>(this, arguments.Get());
        answer = arguments->Answer();
    });
    return answer;
}

bool WebView::SettleClientCertificate(const Request& request, const Origin& server) {
    const auto certificates = MakeObject<ClientCertificateList>(clientCertificates_.Count());
    const auto arguments = MakeObject<ClientCertificateArguments>(server, certificates);
    clientCertificateRequested_.Raise<ICoreWebView2, ICoreWebView2ClientCertificateRequestedEventArgs>(
        this, arguments.Get());
    if (IsClosed()) {
        return false;
    }
    if (arguments->Cancelled()) {
        if (request.mainDocument) {
            Slot()->page->Stop();
        }
        return !request.mainDocument;
    }
    std::optional<std::wstring> subject;
    if (!arguments->Handled()) {
        const auto& all = certificates->All();
        if (!all.empty() && ShowCertificateDialog(parentWindow_, server, all)) {
            subject = all.front()->Subject();
        }
    } else if (arguments->Selected()) {
        subject = arguments->Selected()->Subject();
    }
    clientCertificates_.Decide(server, subject);
    return true;
}

} // namespace webview2_runtime
