// What the loader exports: the four functions of a WebView2 loader, and a look inside for tests.
#include <optional>
#include <string>

#include <windows.h>

#include <wrl/client.h>

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

namespace {

using EnvironmentHandler = ICoreWebView2CreateCoreWebView2EnvironmentCompletedHandler;

/// The loader's own handler: where an environment has failed it asks once more before it tells the caller. As in the genuine
/// loader the arguments are the caller's own, neither copied nor referenced.
class SecondTry final : public webview2_runtime::ComObject<EnvironmentHandler, EnvironmentHandler> {
  public:
    SecondTry(PCWSTR browserFolder, PCWSTR userDataFolder, ICoreWebView2EnvironmentOptions* options,
              EnvironmentHandler* handler)
        : browserFolder_(browserFolder),
          userDataFolder_(userDataFolder),
          options_(options),
          handler_(handler) {}

    HRESULT STDMETHODCALLTYPE Invoke(HRESULT result, ICoreWebView2Environment* environment) override {
        return WithoutExceptions([&] {
            return FAILED(result) && SUCCEEDED(webview2_runtime::CreateEnvironment(
                                         browserFolder_, userDataFolder_, options_, handler_.Get()))
                       ? S_OK
                       : handler_->Invoke(result, environment);
        });
    }

  private:
    PCWSTR browserFolder_;
    PCWSTR userDataFolder_;
    ICoreWebView2EnvironmentOptions* options_;
    Microsoft::WRL::ComPtr<EnvironmentHandler> handler_;
};

} // namespace

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
    return WithoutExceptions([&]() -> HRESULT {
        if (environmentCreatedHandler == nullptr) {
            return E_POINTER;
        }
        const auto handler = webview2_runtime::MakeObject<SecondTry>(
            browserExecutableFolder, userDataFolder, environmentOptions, environmentCreatedHandler);
        return webview2_runtime::CreateEnvironment(browserExecutableFolder, userDataFolder,
                                                   environmentOptions, handler.Get());
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
