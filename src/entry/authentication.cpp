// The exported functions: one probe, and the decision of what follows it.
#include "kelda/kelda.h"

#include "dialog/form_based_authentication_dialog.h"
#include "probe/server_basic_authentication.h"
#include "support/trace.h"

namespace kelda {

bool AuthenticateServer(const std::wstring& promptText, const std::wstring& captionText,
                        const char* ownerDevice, const char* serverUrl, const char* urlPath) {
    const AuthenticationStatus status = ApplyBasicAuthentication(
        promptText, captionText, ownerDevice, serverUrl, urlPath != nullptr ? urlPath : "");
    if (status == AuthenticationStatus::FormBasedRequired) {
        return RunFormBasedAuthentication(promptText, serverUrl);
    }
    return status == AuthenticationStatus::Authenticated;
}

AuthenticationStatus ApplyBasicAuthentication(const std::wstring& promptText, const std::wstring& captionText,
                                              const std::string& ownerDevice, const std::string& serverUrl,
                                              const std::string& urlPath) {
    kBasicAuthenticationTrace.Info() << "Authentication URL is " << serverUrl;
    kBasicAuthenticationTrace.Info() << "Authentication URL path is " << urlPath;
    ServerBasicAuthentication authentication(promptText, captionText, serverUrl, urlPath, ownerDevice);
    return ProbeServer(authentication);
}

} // namespace kelda
