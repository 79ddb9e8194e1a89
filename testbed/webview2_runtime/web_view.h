// The web view: the host's calls on one side, the page's events on the other. Over several files, one for each duty.
#pragma once

#include <string>

#include "client_certificate_requests.h"
#include "event_handlers.h"
#include "host_objects.h"
#include "page_object.h"
#include "request_filters.h"
#include "testbed/chromium/page_client.h"
#include "webview2_not_implemented.h"

namespace webview2_runtime {

using WebViewBase =
    PageObject<webview2::NotImplemented<ICoreWebView2_15>, ICoreWebView2, ICoreWebView2_2, ICoreWebView2_3,
               ICoreWebView2_4, ICoreWebView2_5, ICoreWebView2_6, ICoreWebView2_7, ICoreWebView2_8,
               ICoreWebView2_9, ICoreWebView2_10, ICoreWebView2_11, ICoreWebView2_12, ICoreWebView2_13,
               ICoreWebView2_14, ICoreWebView2_15>;

/// Its controller closes it. From then on every call answers `ClosedError`, and the object holds nothing any more but itself.
class WebView : public WebViewBase, private testbed::chromium::PageClient {
  public:
    explicit WebView(ICoreWebView2Environment* environment);

    /// For the page's making; belongs to this object.
    testbed::chromium::PageClient& Client() { return *this; }

    /// Takes the page over and prepares it; what was called before answers `ClosedError`.
    void Open(std::unique_ptr<testbed::chromium::Page> page);

    /// The window that the web view is in. Boxes of the runtime's own belong to its top-level window, as the system finds it.
    HWND ParentWindow() const { return parentWindow_; }
    void SetParentWindow(HWND parentWindow) { parentWindow_ = parentWindow; }

    /// May be called from inside an event. Handlers are released uncalled.
    void Close();

    // web_view.cpp
    HRESULT STDMETHODCALLTYPE get_Settings(ICoreWebView2Settings** settings) override;
    HRESULT STDMETHODCALLTYPE get_Source(LPWSTR* uri) override;
    HRESULT STDMETHODCALLTYPE get_CookieManager(ICoreWebView2CookieManager** cookieManager) override;
    HRESULT STDMETHODCALLTYPE get_Environment(ICoreWebView2Environment** environment) override;

    // web_view_navigation.cpp
    HRESULT STDMETHODCALLTYPE Navigate(LPCWSTR uri) override;
    HRESULT STDMETHODCALLTYPE
    NavigateWithWebResourceRequest(ICoreWebView2WebResourceRequest* request) override;
    HRESULT STDMETHODCALLTYPE Reload() override;
    HRESULT STDMETHODCALLTYPE Stop() override;

    // web_view_scripts.cpp
    HRESULT STDMETHODCALLTYPE AddScriptToExecuteOnDocumentCreated(
        LPCWSTR javaScript,
        ICoreWebView2AddScriptToExecuteOnDocumentCreatedCompletedHandler* handler) override;
    HRESULT STDMETHODCALLTYPE RemoveScriptToExecuteOnDocumentCreated(LPCWSTR id) override;
    HRESULT STDMETHODCALLTYPE ExecuteScript(LPCWSTR javaScript,
                                            ICoreWebView2ExecuteScriptCompletedHandler* handler) override;
    HRESULT STDMETHODCALLTYPE AddHostObjectToScript(LPCWSTR name, VARIANT* object) override;
    HRESULT STDMETHODCALLTYPE RemoveHostObjectFromScript(LPCWSTR name) override;

    // web_view_requests.cpp
    HRESULT STDMETHODCALLTYPE
    AddWebResourceRequestedFilter(LPCWSTR uri, COREWEBVIEW2_WEB_RESOURCE_CONTEXT resourceContext) override;
    HRESULT STDMETHODCALLTYPE
    RemoveWebResourceRequestedFilter(LPCWSTR uri, COREWEBVIEW2_WEB_RESOURCE_CONTEXT resourceContext) override;

    // web_view_events.cpp
    HRESULT STDMETHODCALLTYPE add_NavigationStarting(
        ICoreWebView2NavigationStartingEventHandler* eventHandler, EventRegistrationToken* token) override;
    HRESULT STDMETHODCALLTYPE remove_NavigationStarting(EventRegistrationToken token) override;
    HRESULT STDMETHODCALLTYPE add_NavigationCompleted(
        ICoreWebView2NavigationCompletedEventHandler* eventHandler, EventRegistrationToken* token) override;
    HRESULT STDMETHODCALLTYPE remove_NavigationCompleted(EventRegistrationToken token) override;
    HRESULT STDMETHODCALLTYPE add_WebResourceRequested(
        ICoreWebView2WebResourceRequestedEventHandler* eventHandler, EventRegistrationToken* token) override;
    HRESULT STDMETHODCALLTYPE remove_WebResourceRequested(EventRegistrationToken token) override;
    HRESULT STDMETHODCALLTYPE
    add_WebResourceResponseReceived(ICoreWebView2WebResourceResponseReceivedEventHandler* eventHandler,
                                    EventRegistrationToken* token) override;
    HRESULT STDMETHODCALLTYPE remove_WebResourceResponseReceived(EventRegistrationToken token) override;
    HRESULT STDMETHODCALLTYPE
    add_BasicAuthenticationRequested(ICoreWebView2BasicAuthenticationRequestedEventHandler* eventHandler,
                                     EventRegistrationToken* token) override;
    HRESULT STDMETHODCALLTYPE remove_BasicAuthenticationRequested(EventRegistrationToken token) override;
    HRESULT STDMETHODCALLTYPE
    add_ServerCertificateErrorDetected(ICoreWebView2ServerCertificateErrorDetectedEventHandler* eventHandler,
                                       EventRegistrationToken* token) override;
    HRESULT STDMETHODCALLTYPE remove_ServerCertificateErrorDetected(EventRegistrationToken token) override;
    HRESULT STDMETHODCALLTYPE
    add_ClientCertificateRequested(ICoreWebView2ClientCertificateRequestedEventHandler* eventHandler,
                                   EventRegistrationToken* token) override;
    HRESULT STDMETHODCALLTYPE remove_ClientCertificateRequested(EventRegistrationToken token) override;

  private:
    ~WebView() override;

    bool OnNavigationStarting(const testbed::chromium::NavigationStart& start) override;
    void OnNavigationCompleted(const testbed::chromium::NavigationOutcome& outcome) override;
    void OnRequest(testbed::chromium::Request& request) override;
    void OnResponse(const testbed::chromium::Response& response) override;
    testbed::chromium::CertificateDecision
    OnCertificateError(const testbed::chromium::CertificateProblem& problem) override;
    testbed::chromium::AuthenticationAnswer
    OnAuthenticationRequested(const testbed::chromium::AuthenticationChallenge& challenge) override;
    void OnBridgeMessage(const std::string& message,
                         std::function<void(const std::string& text)> reply) override;
    void OnCrashed(testbed::chromium::Crash crash) override;

    void ShowRequest(testbed::chromium::Request& request);

    /// Asks the host, and where that leaves it open, a person.
    ///
    /// @return false if the request has been aborted, or the web view closed.
    bool SettleClientCertificate(const testbed::chromium::Request& request, const Origin& server);

    template <typename Handler>
    HRESULT Add(EventHandlers<Handler>& handlers, Handler* handler, EventRegistrationToken* token) const {
        return WithPage([&](auto&) { return handlers.Add(handler, token); });
    }

    template <typename Handler>
    HRESULT Remove(EventHandlers<Handler>& handlers, EventRegistrationToken token) const {
        return WithPage([&](auto&) {
            handlers.Remove(token);
            return S_OK;
        });
    }

    /// Runs the body of an event, during which the host may release the web view. Out of memory, the event is dropped.
    template <typename Body>
    void DuringEvent(Body&& body) {
        const Microsoft::WRL::ComPtr<WebView> self = this;
        Guarded([&] {
            body();
            return S_OK;
        });
    }

    Microsoft::WRL::ComPtr<ICoreWebView2Environment> environment_;
    Microsoft::WRL::ComPtr<ICoreWebView2Settings> settings_;
    Microsoft::WRL::ComPtr<ICoreWebView2CookieManager> cookieManager_;
    HWND parentWindow_ = nullptr;
    RequestFilters filters_;
    ClientCertificateRequests clientCertificates_;
    HostObjects hostObjects_;
    EventHandlers<ICoreWebView2NavigationStartingEventHandler> navigationStarting_;
    EventHandlers<ICoreWebView2NavigationCompletedEventHandler> navigationCompleted_;
    EventHandlers<ICoreWebView2WebResourceRequestedEventHandler> webResourceRequested_;
    EventHandlers<ICoreWebView2WebResourceResponseReceivedEventHandler> webResourceResponseReceived_;
    EventHandlers<ICoreWebView2BasicAuthenticationRequestedEventHandler> basicAuthenticationRequested_;
    EventHandlers<ICoreWebView2ServerCertificateErrorDetectedEventHandler> serverCertificateErrorDetected_;
    EventHandlers<ICoreWebView2ClientCertificateRequestedEventHandler> clientCertificateRequested_;
};

} // namespace webview2_runtime
