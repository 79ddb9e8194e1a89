// One probe as its caller asks for it, and the operation that runs it.
#pragma once

#include <string>

#include "kelda/kelda.h"
#include "probe/server_authentication_callback.h"

namespace kelda {

/// The request of one probe: texts of the prompt, address and owner, and the last status that was reported for it.
class ServerBasicAuthentication final : public ServerAuthenticationCallback {
  public:
    ServerBasicAuthentication(std::wstring promptText, std::wstring captionText, std::string serverUrl,
                              std::string urlPath, std::string ownerDevice);

    /// Traces the status and keeps it.
    void SessionAuthenticationComplete(int status) override;

    /// The window of the owner device, or the desktop's where the host does not know that device.
    HWND GetParentWindow() override;

    int Status() const { return status_; }
    const std::wstring& PromptText() const { return promptText_; }
    const std::wstring& CaptionText() const { return captionText_; }
    const std::string& ServerUrl() const { return serverUrl_; }
    const std::string& UrlPath() const { return urlPath_; }

  private:
    int status_ = 0;
    std::wstring promptText_;
    std::wstring captionText_;
    std::string serverUrl_;
    std::string urlPath_;
    std::string ownerDevice_;
};

/// Runs the probe on the calling thread, where COM must be initialised, and returns once the bind has ended. `None`
/// means that nothing was decided. Throws what copying texts throws.
/// @param authentication  Stays the caller's; it is told the status before this returns, unless the bind never stopped.
AuthenticationStatus ProbeServer(ServerBasicAuthentication& authentication);

} // namespace kelda
