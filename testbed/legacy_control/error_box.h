// The box about a script's error, where the host does not take it.
#pragma once

#include <windows.h>

#include "document.h"

namespace legacy_control {

/// One box at a time. Belongs to the thread that shows it.
class ErrorBox {
  public:
    ErrorBox() = default;
    ErrorBox(const ErrorBox&) = delete;
    ErrorBox& operator=(const ErrorBox&) = delete;

    /// Waits, in a message loop, until somebody has answered it, or it is closed.
    ///
    /// @param owner may be null.
    void Show(const ScriptError& error, HWND owner);

    /// Takes the box away, if there is one.
    void Close();

  private:
    static LRESULT CALLBACK OnHook(int code, WPARAM wParam, LPARAM lParam) noexcept;

    HWND box_ = nullptr;
};

} // namespace legacy_control
