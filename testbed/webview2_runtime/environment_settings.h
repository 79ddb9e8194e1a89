// What an environment is made with: the host's options, and where its profile is kept.
#pragma once

#include <string>

#include <windows.h>

#include <objbase.h>

#include "WebView2.h"

namespace webview2_runtime {

/// The options as the host gave them. Kept and compared; Chromium is started alike whatever they say.
struct EnvironmentSettings {
    std::wstring additionalBrowserArguments;
    std::wstring language;
    std::wstring targetCompatibleBrowserVersion;
    bool allowSingleSignOn = false;
    bool customCrashReporting = false;

    bool operator==(const EnvironmentSettings&) const = default;
};

/// Reads the host's object, which may be null and may lack the later interfaces.
///
/// @return what a getter failed with.
HRESULT ReadSettings(ICoreWebView2EnvironmentOptions* options, EnvironmentSettings& settings);

/// The full path of the profile: WEBVIEW2_USER_DATA_FOLDER, if set and not empty; else `given`; else, where that is null or
/// empty, the program's path with ".WebView2" behind it. A relative path is relative to the program's folder.
/// Without a separator at its end, so that one folder has one name; a drive's root keeps its own.
std::wstring UserDataFolder(PCWSTR given);

} // namespace webview2_runtime
