// Making an environment: from the host's arguments to a running Chromium.
#pragma once

#include <windows.h>

#include <objbase.h>

#include "WebView2.h"

namespace webview2_runtime {

/// Starts it; `handler` is called once, from the message loop. Arguments as in CreateCoreWebView2EnvironmentWithOptions.
///
/// @return why it was not started: E_POINTER without a handler; CO_E_NOTINITIALIZED; RPC_E_CHANGED_MODE outside a
///         single-threaded apartment; what reading the options failed with.
HRESULT CreateEnvironment(PCWSTR browserFolder, PCWSTR userDataFolder,
                          ICoreWebView2EnvironmentOptions* options,
                          ICoreWebView2CreateCoreWebView2EnvironmentCompletedHandler* handler);

} // namespace webview2_runtime
