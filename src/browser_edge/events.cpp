// The seven events that the library listens to: in which order and through which view each is registered and removed.
#include "browser_edge/impl.h"
#include "support/com_call.h"
#include "support/failed_call.h"

using Microsoft::WRL::ComPtr;

namespace kelda {

/// One event. The names are those of the calls, as they are traced.
struct ZanWebBrowserEdge::Impl::Event {
    const char* addName;
    const char* removeName;
    HRESULT (*add)(Impl& impl, EventRegistrationToken& token);
    HRESULT (*remove)(const WebViewObjects& objects, EventRegistrationToken token);

    /// The row of an event that is registered by `Add` and removed by `Remove` through the same view.
    template <auto View, auto Add, auto Remove, auto Handler>
    static constexpr Event Row(const char* addName, const char* removeName) {
        return {addName, removeName, &Register<View, Add, Handler>, &Unregister<View, Remove>};
    }

    template <auto View, auto Add, auto Handler>
    static HRESULT Register(Impl& impl, EventRegistrationToken& token) {
        return RegisterHandler(impl, impl.objects_.*View, Add, Handler, token);
    }

    template <typename View, typename Class, typename Interface, typename Handler>
    static HRESULT RegisterHandler(Impl& impl, const ComPtr<View>& view,
                                   HRESULT (STDMETHODCALLTYPE Class::*add)(Interface*,
                                                                           EventRegistrationToken*),
                                   Handler handler, EventRegistrationToken& token) {
        const ComPtr<Interface> callback = MakeCallback<Interface>(impl.target_, handler);
        return CallOn(view, add, callback.Get(), &token);
    }

    template <auto View, auto Remove>
    static HRESULT Unregister(const WebViewObjects& objects, EventRegistrationToken token) {
        return CallOn(objects.*View, Remove, token);
    }
};

const std::array<ZanWebBrowserEdge::Impl::Event, ZanWebBrowserEdge::Impl::kEventCount>
    ZanWebBrowserEdge::Impl::kEvents = {
        Event::Row<&WebViewObjects::webView14, &ICoreWebView2_14::add_ServerCertificateErrorDetected,
                   &ICoreWebView2_14::remove_ServerCertificateErrorDetected,
                   &Impl::OnServerCertificateErrorDetected>("add_ServerCertificateErrorDetected",
                                                            "remove_ServerCertificateErrorDetected"),
        Event::Row<&WebViewObjects::webView5, &ICoreWebView2_5::add_ClientCertificateRequested,
                   &ICoreWebView2_5::remove_ClientCertificateRequested, &Impl::OnClientCertificateRequested>(
            "add_ClientCertificateRequested", "remove_ClientCertificateRequested"),
        Event::Row<&WebViewObjects::webView, &ICoreWebView2::add_WebResourceRequested,
                   &ICoreWebView2::remove_WebResourceRequested, &Impl::OnWebResourceRequested>(
            "add_WebResourceRequested", "remove_WebResourceRequested"),
        Event::Row<&WebViewObjects::webView, &ICoreWebView2::add_NavigationStarting,
                   &ICoreWebView2::remove_NavigationStarting, &Impl::OnNavigationStarting>(
            "add_NavigationStarting", "remove_NavigationStarting"),
        Event::Row<&WebViewObjects::webView15, &ICoreWebView2_15::add_WebResourceResponseReceived,
                   &ICoreWebView2_15::remove_WebResourceResponseReceived,
                   &Impl::OnWebResourceResponseReceived>("add_WebResourceResponseReceived",
                                                         "remove_WebResourceResponseReceived"),
        Event::Row<&WebViewObjects::webView15, &ICoreWebView2_15::add_BasicAuthenticationRequested,
                   &ICoreWebView2_15::remove_BasicAuthenticationRequested,
                   &Impl::OnBasicAuthenticationRequested>("add_BasicAuthenticationRequested",
                                                          "remove_BasicAuthenticationRequested"),
        Event::Row<&WebViewObjects::webView, &ICoreWebView2::add_NavigationCompleted,
                   &ICoreWebView2::remove_NavigationCompleted, &Impl::OnNavigationCompleted>(
            "add_NavigationCompleted", "remove_NavigationCompleted"),
};

void ZanWebBrowserEdge::Impl::RegisterEvents() {
    for (size_t i = 0; i < kEventCount; ++i) {
        Succeeded(kEvents[i].add(*this, tokens_[i]), kEvents[i].addName);
    }
}

void ZanWebBrowserEdge::Impl::UnregisterEvents(const WebViewObjects& objects) const {
    const auto tokens = tokens_; // this object may be gone when a call returns
    for (size_t i = 0; i < kEventCount; ++i) {
        Succeeded(kEvents[i].remove(objects, tokens[i]), kEvents[i].removeName);
    }
}

} // namespace kelda
