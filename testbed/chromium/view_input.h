// Window messages of mouse and keyboard in the words of Chromium's protocol.
#pragma once

#include <optional>

#include <windows.h>

#include "testbed/chromium/connection.h"

namespace testbed::chromium {

/// @return parameters of Input.dispatchMouseEvent, or nothing if the message is none of the mouse.
std::optional<Json> MouseInput(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

/// Keyboard messages come in pieces where a character takes two of them.
class KeyInput {
  public:
    /// @return parameters of Input.dispatchKeyEvent, or nothing if there is nothing to pass on.
    std::optional<Json> Translate(UINT message, WPARAM wParam, LPARAM lParam);

  private:
    std::optional<Json> Character(wchar_t unit);

    wchar_t highSurrogate_ = 0;
};

} // namespace testbed::chromium
