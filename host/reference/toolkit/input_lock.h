// Keeps a window from taking input while a dialog is modal over it.
#pragma once

#include <windows.h>

namespace host_reference {

/// Several locks may hold one window: it takes input again when the last of them has gone, and only if it did before the
/// first. A window that is destroyed meanwhile does no harm.
class InputLock {
  public:
    /// Null is allowed and locks nothing. May throw std::bad_alloc.
    explicit InputLock(HWND window);
    ~InputLock();
    InputLock(const InputLock&) = delete;
    InputLock& operator=(const InputLock&) = delete;

  private:
    HWND window_;
};

} // namespace host_reference
