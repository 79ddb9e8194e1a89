// What is behind ZanWebBrowserEdge: it holds the runtime's objects, receives its events, and is the page's host object.
//
//   impl.cpp          construction, COM, size, the host's calls
//   environment.cpp   Create: the environment, and the request for a controller
//   controller.cpp    the controller's arrival: settings, size, host object, document script
//   events.cpp        the table of event registrations and removals
//   navigation.cpp    the first navigation, its outcome, the requests and responses of the page
//   trust.cpp         certificates and challenges
//   host_object.cpp   IDispatch
//   session.cpp       the report of the session, and its cookies on their way to WinINet
//   teardown.cpp      Destroy
#pragma once

#include <array>
#include <cstdint>
#include <string>

#include <windows.h>

#include <oaidl.h>
#include <wrl/client.h>

#include "WebView2.h"

#include "browser_edge/dispatch_helper.h"
#include "browser_edge/web_view_objects.h"
#include "kelda/zan_web_browser_edge.h"
#include "support/com_callback.h"

namespace kelda {

/// Lives on the thread that made it. Owned by ZanWebBrowserEdge alone: its COM count decides nothing.
///
/// Sizing, showing, stopping or closing the browser pumps messages, and so may giving it cookies or having it make a
/// request. The owner may then call in again, or delete this object, while one of its functions is running: after such
/// a call a function touches only what it holds itself, until its copy of `target_` tells that it is still wanted.
class ZanWebBrowserEdge::Impl final : public IDispatch, public ZanWebBrowserDispatchHelper::AuthCallback {
  public:
    Impl(const du::Symbol& serverUrl, int checkMode);
    virtual ~Impl();
    Impl(const Impl&) = delete;
    Impl& operator=(const Impl&) = delete;

    static void InitializeCom();
    void Create(Callback* callback, HWND parent);
    void Destroy();
    void Resize();
    HWND GetWindowHandle() const { return windowHandle_; }

    // IDispatch: the host object "external"
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override;
    ULONG STDMETHODCALLTYPE AddRef() override { return ++refCount_; }
    ULONG STDMETHODCALLTYPE Release() override { return --refCount_; }
    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override;
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT index, LCID locale, ITypeInfo** info) override;
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID iid, LPOLESTR* names, UINT nameCount, LCID locale,
                                            DISPID* ids) override;
    HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID iid, LCID locale, WORD flags, DISPPARAMS* parameters,
                                     VARIANT* result, EXCEPINFO* exception, UINT* wrongArgument) override;

    // ZanWebBrowserDispatchHelper::AuthCallback
    void OnSessionAuthenticated() override;

  private:
    struct Event;
    static constexpr size_t kEventCount = 7;
    static const std::array<Event, kEventCount> kEvents;

    Microsoft::WRL::ComPtr<ICoreWebView2EnvironmentOptions> MakeEnvironmentOptions() const;
    Microsoft::WRL::ComPtr<ICoreWebView2ControllerOptions>
    MakeControllerOptions(const Microsoft::WRL::ComPtr<ICoreWebView2Environment10>& environment) const;
    HRESULT OnEnvironmentCreated(HRESULT result, ICoreWebView2Environment* environment);

    HRESULT OnControllerCreated(HRESULT result, ICoreWebView2Controller* controller);
    void TakeController(ICoreWebView2Controller* controller);
    void ApplySettings(const Microsoft::WRL::ComPtr<ICoreWebView2Settings>& settings) const;
    void RegisterEvents();
    void ExposeHostObject();
    void FilterAllRequests() const;
    void AddDocumentScript() const;

    HRESULT OnDocumentScriptAdded(HRESULT result, LPCWSTR id);
    void StartNavigation() const;
    HRESULT OnNavigationStarting(ICoreWebView2* sender, ICoreWebView2NavigationStartingEventArgs* args);
    HRESULT OnNavigationCompleted(ICoreWebView2* sender, ICoreWebView2NavigationCompletedEventArgs* args);
    HRESULT OnWebResourceRequested(ICoreWebView2* sender, ICoreWebView2WebResourceRequestedEventArgs* args);
    HRESULT OnWebResourceResponseReceived(ICoreWebView2* sender,
                                          ICoreWebView2WebResourceResponseReceivedEventArgs* args);
    HRESULT OnBasicAuthenticationRequested(ICoreWebView2* sender,
                                           ICoreWebView2BasicAuthenticationRequestedEventArgs* args);
    HRESULT OnServerCertificateErrorDetected(ICoreWebView2* sender,
                                             ICoreWebView2ServerCertificateErrorDetectedEventArgs* args);
    HRESULT OnClientCertificateRequested(ICoreWebView2* sender,
                                         ICoreWebView2ClientCertificateRequestedEventArgs* args);

    HRESULT OnGetCookiesCompleted(HRESULT result, ICoreWebView2CookieList* list);
    void AskForSessionCookies();
    static void ReportFromMessageLoop(const CallbackTarget<Impl>& target);
    static int ReportSessionAuthenticated(void* data);
    void TellOwnerOnce();

    void StopListening();
    void UnregisterEvents(const WebViewObjects& objects) const;

    bool useCookieManager_; // else cookies are taken from the responses
    bool verboseTrace_;
    bool allowSingleSignOn_;
    bool inPrivate_;
    bool devTools_;
    WebViewObjects objects_;
    Microsoft::WRL::ComPtr<ICoreWebView2CookieManager> cookieManager_; // teardown leaves it
    std::array<EventRegistrationToken, kEventCount> tokens_{};
    std::wstring scriptId_;
    const du::Symbol url_;
    std::uint32_t refCount_ = 0;
    HWND parent_ = nullptr;
    HWND windowHandle_ = nullptr; // the runtime does not tell it
    Callback* callback_ = nullptr;
    bool reportUnderWay_ = false; // from the page's report to the owner's
    int mode_;
    ZanWebBrowserDispatchHelper dispatchHelper_{this};
    CallbackTarget<Impl> target_; // what the callbacks of the present browser know of this object
};

} // namespace kelda
