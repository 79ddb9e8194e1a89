// The HTTP side of a bind: what is sent, what the server's status means, certificates, and challenges for credentials.
#include "probe/authentication_stream.h"

#include "du/string_utilities.h"
#include "probe/credentials.h"
#include "probe/header_trace.h"
#include "support/com_boundary.h"
#include "support/com_text.h"
#include "support/failed_call.h"
#include "support/trace.h"
#include "support/wipe.h"

namespace kelda {
namespace {

constexpr DWORD kHttpOk = 200;
constexpr DWORD kHttpUnauthorized = 401;

/// UTF-8 to a text that the stack can take over.
ComText CredentialToComText(const std::string& credential) {
    std::wstring wide = du::Utf8ToWideStr(credential);
    const WipeOnExit wipe(wide);
    return CopyToComText(wide);
}

} // namespace

HRESULT AuthenticationStream::BeginningTransaction(LPCWSTR /*url*/, LPCWSTR /*headers*/, DWORD /*reserved*/,
                                                   LPWSTR* additionalHeaders) {
    ComText headers = CopyToComText(additionalHeaders_);
    *additionalHeaders = headers.release(); // the caller's
    return *additionalHeaders != nullptr ? S_OK : E_OUTOFMEMORY;
}

HRESULT AuthenticationStream::OnResponse(DWORD responseCode, LPCWSTR responseHeaders,
                                         LPCWSTR /*requestHeaders*/, LPWSTR* /*additionalRequestHeaders*/) {
    httpStatus_ = static_cast<std::int32_t>(responseCode);
    if (responseCode != kHttpOk) {
        // A challenge that is still to be answered does not come here, so a 401 is the server's last word.
        status_ = responseCode == kHttpUnauthorized ? AuthenticationStatus::Unauthorized
                                                    : AuthenticationStatus::Failed;
        AtComBoundary(
            [&] {
                TraceRefusedResponse(responseCode, responseHeaders);
                return S_OK;
            },
            TraceProbeException);
        return E_ABORT;
    }
    if (status_ == AuthenticationStatus::FormBasedRequired) {
        status_ =
            AuthenticationStatus::Authenticated; // credentials were handed over before, and they are accepted
    } else if (status_ == AuthenticationStatus::None) {
        status_ = AuthenticationStatus::
            FormBasedRequired; // an answer without a challenge: there must be a login form
    }
    return S_OK;
}

HRESULT AuthenticationStream::GetWindow(REFGUID /*reason*/, HWND* window) {
    if (window == nullptr) {
        return E_INVALIDARG;
    }
    *window = GetDesktopWindow();
    return S_OK;
}

HRESULT AuthenticationStream::OnSecurityProblem(DWORD /*problem*/) {
    return S_FALSE; // left to the system
}

HRESULT AuthenticationStream::Authenticate(HWND* window, LPWSTR* userName, LPWSTR* password) {
    *window = GetDesktopWindow();
    return AtComBoundary(
        [this, userName, password] {
            ComText givenUserName;
            ComText givenPassword;
            const DWORD error = AskUser(givenUserName, givenPassword);
            switch (error) {
            case ERROR_SUCCESS:
                kBasicAuthenticationTrace.Info()
                    << "Credentials were sent successfully to server following Authenticate() callback";
                // Last, as nothing can fail any more: a caller that is told of a failure takes no credentials over.
                *userName = givenUserName.release();
                *password = givenPassword.release();
                status_ = AuthenticationStatus::
                    FormBasedRequired; // turned into Authenticated by a 200 that follows
                return S_OK;
            case ERROR_CANCELLED:
                status_ = AuthenticationStatus::Cancelled;
                kBasicAuthenticationTrace.Info() << "Sending of Credentials to server following "
                                                    "Authenticate() callback was cancelled by user";
                return E_INVALIDARG; // ends the binding
            default:
                // The stack goes on without credentials, and the server's final answer decides.
                kBasicAuthenticationTrace.Failure()
                    << "CredUIPromptForCredentials() failed. Error code = " << error;
                return S_OK;
            }
        },
        TraceProbeException);
}

DWORD AuthenticationStream::AskUser(ComText& userName, ComText& password) {
    std::string givenUserName;
    const WipeOnExit wipeUserName(givenUserName);
    std::string givenPassword;
    const WipeOnExit wipePassword(givenPassword);
    const DWORD error = PromptForCredentials(*this, promptText_, captionText_, givenUserName, givenPassword);
    if (error != ERROR_SUCCESS) {
        return error;
    }
    userName = CredentialToComText(givenUserName);
    password = CredentialToComText(givenPassword);
    return userName && password ? ERROR_SUCCESS : ERROR_OUTOFMEMORY;
}

} // namespace kelda
