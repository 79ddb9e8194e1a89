// The module that this code is in.
#pragma once

namespace webview2_runtime {

/// Keeps the module loaded until the process ends: work is posted to message loops, and Chromium's answers come as messages.
void KeepModuleLoaded();

} // namespace webview2_runtime
