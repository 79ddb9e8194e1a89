// The module that this code is in.
#pragma once

#include <windows.h>

namespace webview2_runtime {

HINSTANCE ThisModule();

/// Keeps the module loaded until the process ends: work is posted to message loops, and Chromium's answers come as messages.
void KeepModuleLoaded();

} // namespace webview2_runtime
