// What the probe's stream needs of whoever runs the probe.
#pragma once

#include <windows.h>

namespace kelda {

/// Told of the probe's outcome and asked for the window of its owner, on the probing thread.
class ServerAuthenticationCallback {
  public:
    /// The binding has stopped with this `AuthenticationStatus`, given as a number.
    virtual void SessionAuthenticationComplete(int status) = 0;

    /// The window that owns the probe's user interface.
    virtual HWND GetParentWindow() = 0;

  protected:
    ~ServerAuthenticationCallback() = default;
};

} // namespace kelda
