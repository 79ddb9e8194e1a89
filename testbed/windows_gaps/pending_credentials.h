// Gets credentials into a bind that urlmon makes: Wine's urlmon connects without any, although its WinINet answers a Basic
// challenge with those that the connection was opened with.
#pragma once

#include "offered_credentials.h"

namespace windows_gaps {

/// Makes urlmon open its connections through this file, from now on; calling it again changes nothing.
///
/// @return false if urlmon is not loaded or does not connect in the way that Wine's does.
bool InstallPendingCredentials();

/// While it lives, the first connection that urlmon opens on this thread is opened with the credentials. Those must
/// outlive it. Objects on one thread nest.
class PendingCredentials {
  public:
    explicit PendingCredentials(const OfferedCredentials& credentials);
    ~PendingCredentials();
    PendingCredentials(const PendingCredentials&) = delete;
    PendingCredentials& operator=(const PendingCredentials&) = delete;

  private:
    const OfferedCredentials* outer_;
};

} // namespace windows_gaps
