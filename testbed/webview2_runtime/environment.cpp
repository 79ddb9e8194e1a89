// Local objects at once, controllers later.
#include "environment.h"

#include <utility>

#include "com_text.h"
#include "controller_creation.h"
#include "controller_options.h"
#include "web_resource_request.h"

namespace webview2_runtime {

Environment::Environment(std::shared_ptr<testbed::chromium::Browser> browser, std::wstring version,
                         std::wstring userDataFolder, LiveSettings settings)
    : browser_(std::move(browser)),
      version_(std::move(version)),
      userDataFolder_(std::move(userDataFolder)),
      settings_(std::move(settings)) {}

HRESULT Environment::CreateCoreWebView2Controller(
    HWND parentWindow, ICoreWebView2CreateCoreWebView2ControllerCompletedHandler* handler) {
    return Guarded([&] { return CreateController(*this, parentWindow, false, handler); });
}

HRESULT Environment::CreateCoreWebView2ControllerWithOptions(
    HWND parentWindow, ICoreWebView2ControllerOptions* options,
    ICoreWebView2CreateCoreWebView2ControllerCompletedHandler* handler) {
    return Guarded([&]() -> HRESULT {
        if (options == nullptr) {
            return E_POINTER;
        }
        BOOL inPrivate = FALSE;
        const HRESULT result = options->get_IsInPrivateModeEnabled(&inPrivate);
        return FAILED(result) ? result : CreateController(*this, parentWindow, inPrivate != FALSE, handler);
    });
}

HRESULT Environment::CreateCoreWebView2ControllerOptions(ICoreWebView2ControllerOptions** value) {
    return Guarded([&]() -> HRESULT {
        return value == nullptr ? E_POINTER : HandOut(MakeObject<ControllerOptions>(), value);
    });
}

HRESULT Environment::CreateWebResourceRequest(LPCWSTR uri, LPCWSTR method, IStream* postData, LPCWSTR headers,
                                              ICoreWebView2WebResourceRequest** value) {
    return Guarded([&]() -> HRESULT {
        if (value == nullptr) {
            return E_POINTER;
        }
        *value = nullptr;
        Microsoft::WRL::ComPtr<WebResourceRequest> request;
        const HRESULT result = MakeHostRequest(uri, method, postData, headers, request);
        return FAILED(result) ? result : HandOut(request, value);
    });
}

HRESULT Environment::get_BrowserVersionString(LPWSTR* versionInfo) {
    return Guarded([&] { return CopyOut(version_, versionInfo); });
}

HRESULT Environment::get_UserDataFolder(LPWSTR* value) {
    return Guarded([&] { return CopyOut(userDataFolder_, value); });
}

} // namespace webview2_runtime
