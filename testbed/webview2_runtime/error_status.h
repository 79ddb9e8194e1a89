// The engine's errors in the runtime's words.
#pragma once

#include <windows.h>

#include <objbase.h>

#include "WebView2.h"
#include "testbed/chromium/page_client.h"

namespace webview2_runtime {

/// Chosen by the name; errors without a counterpart are unknown ones.
COREWEBVIEW2_WEB_ERROR_STATUS StatusOf(testbed::chromium::NavigationError error);

} // namespace webview2_runtime
