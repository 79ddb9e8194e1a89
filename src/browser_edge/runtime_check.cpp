// Detection of the WebView2 runtime and of its version.
#include "browser_edge/runtime_check.h"

#include <string>

#include <windows.h>

#include <objbase.h>

#include "WebView2.h"

#include "browser_edge/browser_folder.h"
#include "dp/environment.h"
#include "du/string_utilities.h"
#include "support/com_text.h"
#include "support/number.h"
#include "support/trace.h"

namespace kelda {
namespace {

constexpr int kMinimumMajorVersion = 115;

void ClearStandardVariables() {
    for (const char* name : {"WEBVIEW2_BROWSER_EXECUTABLE_FOLDER", "WEBVIEW2_USER_DATA_FOLDER",
                             "WEBVIEW2_ADDITIONAL_BROWSER_ARGUMENTS"}) {
        dp::Environment::Put(name, "");
    }
}

/// The version of the runtime that would be used; null where there is none.
ComText FindVersion() {
    const BrowserFolder folder = BrowserFolder::FromEnvironment();
    if (folder.IsGiven()) {
        kWebBrowserEdgeTrace.Info() << "Using WebView2 runtime from environment: " << folder.Text();
    }
    ComText version;
    if (GetAvailableCoreWebView2BrowserVersionString(folder.ForRuntime(), ReceiveText(version)) != S_OK) {
        version.reset();
    }
    return version;
}

} // namespace

bool IsWebView2Available() {
    ClearStandardVariables();
    const ComText version = FindVersion();
    if (version == nullptr) {
        kWebBrowserEdgeTrace.Info() << "WebView2 runtime not found - falling back on legacy browser";
        return false;
    }
    kWebBrowserEdgeTrace.Info() << "WebView2 runtime found, version " << du::WideStrToUtf8(version.get());
    const bool available = ToInt(version.get()) >= kMinimumMajorVersion;
    if (!available) {
        kWebBrowserEdgeTrace.Info() << "WebView2 runtime is below minimum version of " << kMinimumMajorVersion
                                    << " - falling back on legacy browser";
    }
    return available;
}

} // namespace kelda
