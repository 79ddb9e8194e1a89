// The controller's arrival: everything that turns it into our browser, up to the document script whose completion
// starts the navigation.
#include "browser_edge/impl.h"
#include "support/com_call.h"
#include "support/failed_call.h"
#include "support/trace.h"

using Microsoft::WRL::ComPtr;

namespace kelda {
namespace {

constexpr const wchar_t* kHostObjectScript = L"window.external = chrome.webview.hostObjects.external;";

void RefuseExternalDrop(const ComPtr<ICoreWebView2Controller>& controller) {
    ComPtr<ICoreWebView2Controller4> controller4;
    if (Succeeded(Query(controller, controller4), "get ICoreWebView2Controller4")) {
        controller4->put_AllowExternalDrop(FALSE);
    }
}

} // namespace

HRESULT ZanWebBrowserEdge::Impl::OnControllerCreated(HRESULT result, ICoreWebView2Controller* controller) {
    const CallbackTarget<Impl> target = target_;
    if (result != S_OK || controller == nullptr) {
        kWebBrowserEdgeTrace.Info() << "Failed to create WebView2 controller " << result;
    }
    if (result != S_OK || *target == nullptr) {
        return result;
    }
    if (controller != nullptr) {
        TakeController(controller);
    }
    ComPtr<ICoreWebView2Settings> settings;
    if (Succeeded(CallOn(objects_.webView, &ICoreWebView2::get_Settings, settings.GetAddressOf()),
                  "get ICoreWebView2Settings")) {
        ApplySettings(settings);
    }
    // Sizing and showing pump messages, and the owner may close the browser from one.
    Resize();
    if (*target != nullptr) {
        CallOn(objects_.controller, &ICoreWebView2Controller::put_IsVisible, TRUE);
    }
    if (*target == nullptr) {
        return S_OK;
    }
    RegisterEvents();
    ExposeHostObject();
    FilterAllRequests();
    AddDocumentScript();
    return S_OK;
}

void ZanWebBrowserEdge::Impl::TakeController(ICoreWebView2Controller* controller) {
    // The new one is held before the old one goes.
    ComPtr<ICoreWebView2Controller>(controller).Swap(objects_.controller);
    RefuseExternalDrop(objects_.controller);
    CallOn(objects_.controller, &ICoreWebView2Controller::get_CoreWebView2,
           objects_.webView.ReleaseAndGetAddressOf());
    Succeeded(Query(objects_.webView, objects_.webView2), "get ICoreWebView2_2");
    Succeeded(Query(objects_.webView, objects_.webView5), "get ICoreWebView2_5");
    Succeeded(Query(objects_.webView, objects_.webView14), "get ICoreWebView2_14");
    Succeeded(Query(objects_.webView, objects_.webView15), "get ICoreWebView2_15");
    Succeeded(CallOn(objects_.webView2, &ICoreWebView2_2::get_CookieManager,
                     cookieManager_.ReleaseAndGetAddressOf()),
              "get_CookieManager");
}

void ZanWebBrowserEdge::Impl::ApplySettings(const ComPtr<ICoreWebView2Settings>& settings) const {
    const BOOL developing = devTools_ ? TRUE : FALSE;
    settings->put_IsScriptEnabled(TRUE);
    settings->put_AreDefaultScriptDialogsEnabled(TRUE);
    settings->put_AreDefaultContextMenusEnabled(developing);
    settings->put_AreDevToolsEnabled(developing);
    ComPtr<ICoreWebView2Settings3> settings3;
    if (Succeeded(Query(settings, settings3), "get ICoreWebView2Settings3")) {
        settings3->put_AreBrowserAcceleratorKeysEnabled(FALSE);
    }
}

void ZanWebBrowserEdge::Impl::ExposeHostObject() {
    VARIANT object{};
    object.vt = VT_DISPATCH;
    object.pdispVal = this;
    AddRef();
    Succeeded(CallOn(objects_.webView, &ICoreWebView2::AddHostObjectToScript, L"external", &object),
              "AddHostObjectToScript");
    Release();
}

// Without it no request would reach the handler that is registered for them.
void ZanWebBrowserEdge::Impl::FilterAllRequests() const {
    Succeeded(CallOn(objects_.webView15, &ICoreWebView2_15::AddWebResourceRequestedFilter, L"*",
                     COREWEBVIEW2_WEB_RESOURCE_CONTEXT_ALL),
              "AddWebResourceRequestedFilter");
}

// The navigation waits for the script, so that no page is without it.
void ZanWebBrowserEdge::Impl::AddDocumentScript() const {
    const auto completed = MakeCallback<ICoreWebView2AddScriptToExecuteOnDocumentCreatedCompletedHandler>(
        target_, &Impl::OnDocumentScriptAdded);
    Succeeded(CallOn(objects_.webView, &ICoreWebView2::AddScriptToExecuteOnDocumentCreated, kHostObjectScript,
                     completed.Get()),
              "AddScriptToExecuteOnDocumentCreated");
}

} // namespace kelda
