// The exported functions: one probe, and the decision of what follows it.
#include "kelda/kelda.h"

#include <atomic>

#include "dialog/form_based_authentication_dialog.h"
#include "probe/server_basic_authentication.h"
#include "support/trace.h"

namespace kelda {
namespace {

// Hosts are compiled against these numbers.
static_assert(sizeof(AuthenticationStatus) == 4);
static_assert(static_cast<int>(AuthenticationStatus::None) == 0);
static_assert(static_cast<int>(AuthenticationStatus::FormBasedRequired) == 1);
static_assert(static_cast<int>(AuthenticationStatus::Authenticated) == 2);
static_assert(static_cast<int>(AuthenticationStatus::Failed) == 3);
static_assert(static_cast<int>(AuthenticationStatus::Cancelled) == 4);
static_assert(static_cast<int>(AuthenticationStatus::Unauthorized) == 5);

/// Taken by the authentication that is going on in this process.
std::atomic_flag goingOn;

struct GoingOnReset {
    GoingOnReset() = default;
    ~GoingOnReset() { goingOn.clear(); }
    GoingOnReset(const GoingOnReset&) = delete;
    GoingOnReset& operator=(const GoingOnReset&) = delete;
};

} // namespace

bool AuthenticateServer(const std::wstring& promptText, const std::wstring& captionText,
                        const char* ownerDevice, const char* serverUrl, const char* urlPath) {
    // A second one would take the first one's keys, and toolkits run one modal loop.
    if (goingOn.test_and_set()) {
        kBasicAuthenticationTrace.Info()
            << "AuthenticateServer() is still going on in this process - not started again";
        return false;
    }
    const GoingOnReset reset;
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
