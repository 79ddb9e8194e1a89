// One probe as its caller asks for it.
#include "probe/server_basic_authentication.h"

#include <memory>
#include <utility>

#include "probe/authentication_stream.h"
#include "support/trace.h"
#include "ui/ui.h"

namespace kelda {

ServerBasicAuthentication::ServerBasicAuthentication(std::wstring promptText, std::wstring captionText,
                                                     std::string serverUrl, std::string urlPath,
                                                     std::string ownerDevice)
    : promptText_(std::move(promptText)),
      captionText_(std::move(captionText)),
      serverUrl_(std::move(serverUrl)),
      urlPath_(std::move(urlPath)),
      ownerDevice_(std::move(ownerDevice)) {}

void ServerBasicAuthentication::SessionAuthenticationComplete(int status) {
    kBasicAuthenticationTrace.Info() << "SessionAuthenticationComplete. status = " << status;
    status_ = status;
}

HWND ServerBasicAuthentication::GetParentWindow() {
    HWND window = nullptr;
    const char* const device = ownerDevice_.c_str();
    if (ui_do_operation(device, device, kUiOperationGetNativeWindow, 0, &window, 0) != 0) {
        return GetDesktopWindow();
    }
    return window;
}

AuthenticationStatus ProbeServer(ServerBasicAuthentication& authentication) {
    // Owned here and destroyed here whatever its reference count is then: nothing of the bind outlives the probe.
    const auto stream =
        std::make_unique<AuthenticationStream>(authentication, authentication.PromptText(),
                                               authentication.CaptionText(), authentication.ServerUrl());
    // What came of it is in the stream's status, also where the stream could not be opened.
    stream->Open(authentication.ServerUrl() + authentication.UrlPath(), std::wstring());
    return stream->Status();
}

} // namespace kelda
