// Everything that can be known at once is checked at once, but told later, as a real runtime does.
#include "environment_creation.h"

#include <memory>
#include <new>
#include <string>
#include <utility>

#include <objbase.h>

#include "engine_error.h"
#include "environment.h"
#include "environment_settings.h"
#include "live_environments.h"
#include "module.h"
#include "runtime_version.h"
#include "testbed/chromium/message_window.h"

namespace webview2_runtime {
namespace {

using Microsoft::WRL::ComPtr;
using testbed::chromium::Browser;
using EnvironmentHandler = ICoreWebView2CreateCoreWebView2EnvironmentCompletedHandler;

HRESULT CheckApartment() {
    APTTYPE type{};
    APTTYPEQUALIFIER qualifier{};
    const HRESULT result = CoGetApartmentType(&type, &qualifier);
    if (FAILED(result)) {
        return result;
    }
    if (type == APTTYPE_STA || type == APTTYPE_MAINSTA) {
        return S_OK;
    }
    return qualifier == APTTYPEQUALIFIER_IMPLICIT_MTA ? CO_E_NOTINITIALIZED : RPC_E_CHANGED_MODE;
}

/// Installed browsers are refused: only the runtime's own folders serve.
bool IsInstalledBrowser(const std::wstring& folder) {
    constexpr wchar_t kInstalled[] = L"\\Edge\\Application\\";
    const std::wstring text = folder + L"\\";
    return FindStringOrdinal(FIND_FROMSTART, text.c_str(), -1, kInstalled, -1, TRUE) >= 0;
}

void CompleteLater(ComPtr<EnvironmentHandler> handler, HRESULT result) {
    testbed::chromium::CallLater(
        [handler = std::move(handler), result] { handler->Invoke(result, nullptr); });
}

/// What an environment is made of, while Chromium starts.
struct Plan {
    std::wstring version;
    std::wstring folder;
    LiveSettings settings;
    ComPtr<EnvironmentHandler> handler;
};

void Finish(const Plan& plan, std::shared_ptr<Browser> browser, DWORD error) noexcept {
    ComPtr<Environment> environment;
    HRESULT result = error == ERROR_SUCCESS ? S_OK : ResultOfEngineError(error);
    if (browser) {
        try {
            environment =
                MakeObject<Environment>(std::move(browser), plan.version, plan.folder, plan.settings);
        } catch (const std::bad_alloc&) {
            result = E_OUTOFMEMORY;
        }
    }
    plan.handler->Invoke(result, environment.Get());
}

} // namespace

HRESULT CreateEnvironment(PCWSTR browserFolder, PCWSTR userDataFolder,
                          ICoreWebView2EnvironmentOptions* options, EnvironmentHandler* handler) {
    if (handler == nullptr) {
        return E_POINTER;
    }
    if (const HRESULT apartment = CheckApartment(); FAILED(apartment)) {
        return apartment;
    }
    EnvironmentSettings settings;
    if (const HRESULT read = ReadSettings(options, settings); FAILED(read)) {
        return read;
    }
    KeepModuleLoaded();
    const std::wstring runtimeFolder = BrowserFolder(browserFolder);
    if (IsInstalledBrowser(runtimeFolder)) {
        CompleteLater(handler, HRESULT_FROM_WIN32(ERROR_NOT_SUPPORTED));
        return S_OK;
    }
    auto version = FindRuntimeVersion(runtimeFolder);
    if (!version) {
        CompleteLater(handler, HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND));
        return S_OK;
    }
    const std::wstring folder = UserDataFolder(userDataFolder);
    auto live = UseSettings(folder, settings);
    if (!live) {
        CompleteLater(handler, HRESULT_FROM_WIN32(ERROR_INVALID_STATE));
        return S_OK;
    }
    const auto plan = std::make_shared<Plan>(Plan{std::move(*version), folder, std::move(live), handler});
    Browser::Open(folder, {}, [plan](std::shared_ptr<Browser> browser, DWORD error) {
        Finish(*plan, std::move(browser), error);
    });
    return S_OK;
}

} // namespace webview2_runtime
