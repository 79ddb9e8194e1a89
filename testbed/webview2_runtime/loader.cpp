// What the loader exports: the four functions of a WebView2 loader, and a look inside for tests.
#include <optional>
#include <string>

#include <windows.h>

#include "WebView2.h"
#include "com_object.h"
#include "com_text.h"
#include "environment_creation.h"
#include "runtime_version.h"

// The library calls two of them only.
STDAPI CreateCoreWebView2Environment(
    ICoreWebView2CreateCoreWebView2EnvironmentCompletedHandler* environmentCreatedHandler);
STDAPI CompareBrowserVersions(PCWSTR version1, PCWSTR version2, int* result);

/// How many of the runtime's objects are alive in this process.
extern "C" DWORD STDAPICALLTYPE KeldaTestRuntimeObjectCount();

using webview2_runtime::WithoutExceptions;

STDAPI GetAvailableCoreWebView2BrowserVersionString(PCWSTR browserExecutableFolder, LPWSTR* versionInfo) {
    return WithoutExceptions([&]() -> HRESULT {
        if (versionInfo == nullptr) {
            return E_POINTER;
        }
        *versionInfo = nullptr;
        const auto version =
            webview2_runtime::FindRuntimeVersion(webview2_runtime::BrowserFolder(browserExecutableFolder));
        return version ? webview2_runtime::CopyOut(*version, versionInfo)
                       : HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND);
    });
}

STDAPI CreateCoreWebView2EnvironmentWithOptions(
    PCWSTR browserExecutableFolder, PCWSTR userDataFolder,
    ICoreWebView2EnvironmentOptions* environmentOptions,
    ICoreWebView2CreateCoreWebView2EnvironmentCompletedHandler* environmentCreatedHandler) {
    return WithoutExceptions([&] {
        return webview2_runtime::CreateEnvironment(browserExecutableFolder, userDataFolder,
                                                   environmentOptions, environmentCreatedHandler);
    });
}

STDAPI CreateCoreWebView2Environment(
    ICoreWebView2CreateCoreWebView2EnvironmentCompletedHandler* environmentCreatedHandler) {
    return CreateCoreWebView2EnvironmentWithOptions(nullptr, nullptr, nullptr, environmentCreatedHandler);
}

STDAPI CompareBrowserVersions(PCWSTR version1, PCWSTR version2, int* result) {
    return WithoutExceptions([&]() -> HRESULT {
        if (version1 == nullptr || version2 == nullptr || result == nullptr) {
            return E_POINTER;
        }
        return webview2_runtime::CompareVersions(version1, version2, *result);
    });
}

DWORD STDAPICALLTYPE KeldaTestRuntimeObjectCount() {
    return webview2_runtime::LiveObject::Count();
}
