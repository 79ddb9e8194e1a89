// The environment: where the browser comes from, where its profile lies, and the request for a controller once it is
// there.
#include <memory>
#include <string>

#include <windows.h>

#include <objbase.h>

#include "WebView2EnvironmentOptions.h"

#include "browser_edge/browser_folder.h"
#include "browser_edge/impl.h"
#include "browser_edge/user_data_folder.h"
#include "du/string_utilities.h"
#include "support/com_call.h"
#include "support/failed_call.h"
#include "support/trace.h"

using Microsoft::WRL::ComPtr;

namespace kelda {
namespace {

/// What an environment is asked for with.
struct EnvironmentArguments {
    BrowserFolder browserFolder;
    std::wstring userDataFolder;
    ComPtr<ICoreWebView2EnvironmentOptions> options;
};

} // namespace

// The loader neither copies nor references what it is given, and where an environment fails it uses it once more, before
// it calls the completion. So the completion keeps it. What the calls return is not looked at: failures come through the
// completion.
void ZanWebBrowserEdge::Impl::Create(Callback* callback, HWND parent) {
    StopListening();
    parent_ = parent;
    callback_ = callback;
    reportUnderWay_ = false;
    target_ = std::make_shared<Impl*>(this);
    const auto arguments = std::make_shared<const EnvironmentArguments>(
        EnvironmentArguments{BrowserFolder::FromEnvironment(), du::Utf8ToWideStr(ChooseUserDataFolder()),
                             MakeEnvironmentOptions()});
    const auto completed = MakeCallback<ICoreWebView2CreateCoreWebView2EnvironmentCompletedHandler>(
        target_, &Impl::OnEnvironmentCreated, arguments);
    CreateCoreWebView2EnvironmentWithOptions(arguments->browserFolder.ForRuntime(),
                                             arguments->userDataFolder.c_str(), arguments->options.Get(),
                                             completed.Get());
}

ComPtr<ICoreWebView2EnvironmentOptions> ZanWebBrowserEdge::Impl::MakeEnvironmentOptions() const {
    ComPtr<ICoreWebView2EnvironmentOptions> options = Microsoft::WRL::Make<CoreWebView2EnvironmentOptions>();
    CallOn(options, &ICoreWebView2EnvironmentOptions::put_AllowSingleSignOnUsingOSPrimaryAccount,
           allowSingleSignOn_ ? TRUE : FALSE);
    ComPtr<ICoreWebView2EnvironmentOptions3> options3;
    if (Succeeded(Query(options, options3), "get ICoreWebView2EnvironmentOptions3")) {
        options3->put_IsCustomCrashReportingEnabled(TRUE);
    }
    return options;
}

HRESULT ZanWebBrowserEdge::Impl::OnEnvironmentCreated(HRESULT result, ICoreWebView2Environment* environment) {
    if (FAILED(result) || environment == nullptr) {
        kWebBrowserEdgeTrace.Info() << "Failed to create WebView2 environment " << result;
        return result;
    }
    ComPtr<ICoreWebView2Environment>(environment).Swap(objects_.environment);
    Succeeded(Query(objects_.environment, objects_.environment2), "get ICoreWebView2Environment2");
    ComPtr<ICoreWebView2Environment10> environment10;
    Succeeded(Query(objects_.environment, environment10), "get ICoreWebView2Environment10");
    const ComPtr<ICoreWebView2ControllerOptions> options = MakeControllerOptions(environment10);
    const auto completed = MakeCallback<ICoreWebView2CreateCoreWebView2ControllerCompletedHandler>(
        target_, &Impl::OnControllerCreated);
    CallOn(environment10, &ICoreWebView2Environment10::CreateCoreWebView2ControllerWithOptions, parent_,
           options.Get(), completed.Get());
    return S_OK;
}

ComPtr<ICoreWebView2ControllerOptions>
ZanWebBrowserEdge::Impl::MakeControllerOptions(const ComPtr<ICoreWebView2Environment10>& environment) const {
    ComPtr<ICoreWebView2ControllerOptions> options;
    CallOn(environment, &ICoreWebView2Environment10::CreateCoreWebView2ControllerOptions,
           options.GetAddressOf());
    CallOn(options, &ICoreWebView2ControllerOptions::put_IsInPrivateModeEnabled, inPrivate_ ? TRUE : FALSE);
    if (inPrivate_) {
        kWebBrowserEdgeTrace.Info() << "Using InPrivate mode";
    }
    return options;
}

} // namespace kelda
