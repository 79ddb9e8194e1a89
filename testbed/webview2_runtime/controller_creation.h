// Making a controller: a page of the environment's Chromium, and a window below the host's.
#pragma once

#include <windows.h>

#include <objbase.h>

#include "WebView2.h"

namespace webview2_runtime {

class Environment;

/// Starts it; `handler` is called once, from the message loop. If the parent window is destroyed before that, it is called
/// with E_ABORT at once, while the window goes.
///
/// @param environment kept until then.
/// @return why it was not started: E_POINTER without a handler, or the code of ERROR_INVALID_WINDOW_HANDLE.
HRESULT CreateController(Environment& environment, HWND parent, bool inPrivate,
                         ICoreWebView2CreateCoreWebView2ControllerCompletedHandler* handler);

} // namespace webview2_runtime
