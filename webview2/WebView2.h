// The part of the WebView2 SDK that the library calls: its interfaces with all their bases, its enumerations and the
// loader's functions, under the SDK's own names. Where the SDK itself is there (KELDA_WEBVIEW2_SDK), its header of the
// same name takes this one's place.
#pragma once

#include "declarations/controller.h"
#include "declarations/cookies.h"
#include "declarations/environment.h"
#include "declarations/navigation_events.h"
#include "declarations/requests.h"
#include "declarations/settings.h"
#include "declarations/trust_events.h"
#include "declarations/web_view.h"
#include "declarations/web_view_versions.h"

/// Starts making an environment, with the browser of `browserExecutableFolder` (null: the installed one) and its profile
/// in `userDataFolder`. The handler is called later, from the calling thread's message loop.
STDAPI CreateCoreWebView2EnvironmentWithOptions(
    PCWSTR browserExecutableFolder, PCWSTR userDataFolder,
    ICoreWebView2EnvironmentOptions* environmentOptions,
    ICoreWebView2CreateCoreWebView2EnvironmentCompletedHandler* environmentCreatedHandler);

/// The version of that folder's browser (null: the installed one), to be freed with CoTaskMemFree.
STDAPI GetAvailableCoreWebView2BrowserVersionString(PCWSTR browserExecutableFolder, LPWSTR* versionInfo);
