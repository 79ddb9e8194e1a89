// Opening, closing, and what the web view hands out.
#include "web_view.h"

#include <memory>
#include <utility>

#include "com_text.h"
#include "cookie_manager.h"
#include "settings.h"
#include "testbed/chromium/text.h"

namespace webview2_runtime {

using testbed::chromium::Page;

WebView::WebView(ICoreWebView2Environment* environment)
    : WebViewBase(std::make_shared<PageSlot>()), environment_(environment) {}

WebView::~WebView() = default;

void WebView::Open(std::unique_ptr<Page> page) {
    settings_ = MakeObject<Settings>(Slot());
    cookieManager_ = MakeObject<CookieManager>(Slot());
    Slot()->page = std::move(page);
    Slot()->page->InstallBridge(HostObjectShim());
    Slot()->page->SetRequestInterception(clientCertificates_.On());
}

void WebView::Close() {
    // The host's handlers may call back while they are released, and find the web view closed. The environment goes last:
    // with it, Chromium may end.
    const Microsoft::WRL::ComPtr<WebView> self = this;
    Microsoft::WRL::ComPtr<ICoreWebView2Environment> environment;
    environment.Swap(environment_);
    auto page = std::move(Slot()->page);
    page.reset();
    filters_.Clear();
    hostObjects_.Clear();
    settings_.Reset();
    cookieManager_.Reset();
    navigationStarting_.Clear();
    navigationCompleted_.Clear();
    webResourceRequested_.Clear();
    webResourceResponseReceived_.Clear();
    basicAuthenticationRequested_.Clear();
    serverCertificateErrorDetected_.Clear();
    clientCertificateRequested_.Clear();
}

HRESULT WebView::get_Settings(ICoreWebView2Settings** settings) {
    return WithPage(
        [&](Page&) -> HRESULT { return settings == nullptr ? E_POINTER : HandOut(settings_, settings); });
}

HRESULT WebView::get_Source(LPWSTR* uri) {
    return WithPage([&](Page& page) { return CopyOut(testbed::chromium::ToUtf16(page.Url()), uri); });
}

HRESULT WebView::get_CookieManager(ICoreWebView2CookieManager** cookieManager) {
    return WithPage([&](Page&) -> HRESULT {
        return cookieManager == nullptr ? E_POINTER : HandOut(cookieManager_, cookieManager);
    });
}

HRESULT WebView::get_Environment(ICoreWebView2Environment** environment) {
    return WithPage([&](Page&) -> HRESULT {
        return environment == nullptr ? E_POINTER : HandOut(environment_, environment);
    });
}

void WebView::OnCrashed(testbed::chromium::Crash) {
    // No event of the library's tells this; what was open has failed already.
}

} // namespace webview2_runtime
