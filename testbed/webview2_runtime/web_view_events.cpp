// Registration of the seven events.
#include "web_view.h"

namespace webview2_runtime {

HRESULT WebView::add_NavigationStarting(ICoreWebView2NavigationStartingEventHandler* eventHandler,
                                        EventRegistrationToken* token) {
    return Add(navigationStarting_, eventHandler, token);
}

HRESULT WebView::remove_NavigationStarting(EventRegistrationToken token) {
    return Remove(navigationStarting_, token);
}

HRESULT WebView::add_NavigationCompleted(ICoreWebView2NavigationCompletedEventHandler* eventHandler,
                                         EventRegistrationToken* token) {
    return Add(navigationCompleted_, eventHandler, token);
}

HRESULT WebView::remove_NavigationCompleted(EventRegistrationToken token) {
    return Remove(navigationCompleted_, token);
}

HRESULT WebView::add_WebResourceRequested(ICoreWebView2WebResourceRequestedEventHandler* eventHandler,
                                          EventRegistrationToken* token) {
    return Add(webResourceRequested_, eventHandler, token);
}

HRESULT WebView::remove_WebResourceRequested(EventRegistrationToken token) {
    return Remove(webResourceRequested_, token);
}

HRESULT
WebView::add_WebResourceResponseReceived(ICoreWebView2WebResourceResponseReceivedEventHandler* eventHandler,
                                         EventRegistrationToken* token) {
    return Add(webResourceResponseReceived_, eventHandler, token);
}

HRESULT WebView::remove_WebResourceResponseReceived(EventRegistrationToken token) {
    return Remove(webResourceResponseReceived_, token);
}

HRESULT
WebView::add_BasicAuthenticationRequested(ICoreWebView2BasicAuthenticationRequestedEventHandler* eventHandler,
                                          EventRegistrationToken* token) {
    return Add(basicAuthenticationRequested_, eventHandler, token);
}

HRESULT WebView::remove_BasicAuthenticationRequested(EventRegistrationToken token) {
    return Remove(basicAuthenticationRequested_, token);
}

// Without a handler Chromium shows its own error page, which it cannot show for a problem that it has reported.
HRESULT WebView::add_ServerCertificateErrorDetected(
    ICoreWebView2ServerCertificateErrorDetectedEventHandler* eventHandler, EventRegistrationToken* token) {
    return WithPage([&](auto& page) {
        const HRESULT result = serverCertificateErrorDetected_.Add(eventHandler, token);
        page.SetCertificateReports(!serverCertificateErrorDetected_.Empty());
        return result;
    });
}

HRESULT WebView::remove_ServerCertificateErrorDetected(EventRegistrationToken token) {
    return WithPage([&](auto&) {
        // The host may close and release the web view in the handler's release.
        const Microsoft::WRL::ComPtr<WebView> self = this;
        serverCertificateErrorDetected_.Remove(token);
        if (!IsClosed()) {
            Slot()->page->SetCertificateReports(!serverCertificateErrorDetected_.Empty());
        }
        return S_OK;
    });
}

HRESULT
WebView::add_ClientCertificateRequested(ICoreWebView2ClientCertificateRequestedEventHandler* eventHandler,
                                        EventRegistrationToken* token) {
    return Add(clientCertificateRequested_, eventHandler, token);
}

HRESULT WebView::remove_ClientCertificateRequested(EventRegistrationToken token) {
    return Remove(clientCertificateRequested_, token);
}

} // namespace webview2_runtime
