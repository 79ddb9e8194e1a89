// The control: the host's calls on one side, the page's events on the other. Over several files, one for each duty.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include <windows.h>

#include <exdisp.h>
#include <ocidl.h>
#include <oleidl.h>

#include "browser_events.h"
#include "com_object.h"
#include "control_stubs.h"
#include "control_window.h"
#include "engine_page.h"
#include "error_box.h"
#include "event_source.h"
#include "host_site.h"

namespace legacy_control {

/// Belongs to the thread that made it. Once it is closed, or has lost its site, it calls nobody any more and stays so.
///
/// The host may close and release it inside every call that it gets.
class Control final : public ComObject<WebBrowserStubs, OleObjectStubs, IPersistStorage, IOleInPlaceObject,
                                       IOleInPlaceActiveObject, IConnectionPointContainer>,
                      private EnginePageOwner {
  public:
    Control();

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** object) override;

    // control_embedding.cpp: IOleObject
    HRESULT STDMETHODCALLTYPE SetClientSite(IOleClientSite* site) override;
    HRESULT STDMETHODCALLTYPE GetClientSite(IOleClientSite** site) override;
    HRESULT STDMETHODCALLTYPE SetHostNames(LPCOLESTR application, LPCOLESTR object) override;
    HRESULT STDMETHODCALLTYPE Close(DWORD saveOption) override;
    HRESULT STDMETHODCALLTYPE DoVerb(LONG verb, LPMSG message, IOleClientSite* site, LONG index, HWND parent,
                                     LPCRECT position) override;
    HRESULT STDMETHODCALLTYPE Update() override;
    HRESULT STDMETHODCALLTYPE IsUpToDate() override;
    HRESULT STDMETHODCALLTYPE GetUserClassID(CLSID* id) override;
    HRESULT STDMETHODCALLTYPE SetExtent(DWORD aspect, SIZEL* size) override;
    HRESULT STDMETHODCALLTYPE GetExtent(DWORD aspect, SIZEL* size) override;
    HRESULT STDMETHODCALLTYPE Advise(IAdviseSink* sink, DWORD* connection) override;
    HRESULT STDMETHODCALLTYPE Unadvise(DWORD connection) override;
    HRESULT STDMETHODCALLTYPE GetMiscStatus(DWORD aspect, DWORD* status) override;

    // control_embedding.cpp: IPersistStorage; there is nothing to be kept
    HRESULT STDMETHODCALLTYPE GetClassID(CLSID* id) override;
    HRESULT STDMETHODCALLTYPE IsDirty() override;
    HRESULT STDMETHODCALLTYPE InitNew(IStorage* storage) override;
    HRESULT STDMETHODCALLTYPE Load(IStorage* storage) override;
    HRESULT STDMETHODCALLTYPE Save(IStorage* storage, BOOL sameAsLoad) override;
    HRESULT STDMETHODCALLTYPE SaveCompleted(IStorage* storage) override;
    HRESULT STDMETHODCALLTYPE HandsOffStorage() override;

    // control_embedding.cpp: IConnectionPointContainer
    HRESULT STDMETHODCALLTYPE EnumConnectionPoints(IEnumConnectionPoints** points) override;
    HRESULT STDMETHODCALLTYPE FindConnectionPoint(REFIID id, IConnectionPoint** point) override;

    // control_activation.cpp: IOleInPlaceObject and IOleInPlaceActiveObject
    HRESULT STDMETHODCALLTYPE GetWindow(HWND* window) override;
    HRESULT STDMETHODCALLTYPE ContextSensitiveHelp(BOOL enter) override;
    HRESULT STDMETHODCALLTYPE InPlaceDeactivate() override;
    HRESULT STDMETHODCALLTYPE UIDeactivate() override;
    HRESULT STDMETHODCALLTYPE SetObjectRects(LPCRECT position, LPCRECT clip) override;
    HRESULT STDMETHODCALLTYPE ReactivateAndUndo() override;
    HRESULT STDMETHODCALLTYPE TranslateAccelerator(LPMSG message) override;
    HRESULT STDMETHODCALLTYPE OnFrameWindowActivate(BOOL activate) override;
    HRESULT STDMETHODCALLTYPE OnDocWindowActivate(BOOL activate) override;
    HRESULT STDMETHODCALLTYPE ResizeBorder(LPCRECT border, IOleInPlaceUIWindow* window,
                                           BOOL isFrame) override;
    HRESULT STDMETHODCALLTYPE EnableModeless(BOOL enable) override;

    // control_browser.cpp: IWebBrowser2
    HRESULT STDMETHODCALLTYPE Navigate(BSTR url, VARIANT* flags, VARIANT* frame, VARIANT* post,
                                       VARIANT* headers) override;
    HRESULT STDMETHODCALLTYPE Refresh() override;
    HRESULT STDMETHODCALLTYPE Stop() override;
    HRESULT STDMETHODCALLTYPE get_Document(IDispatch** document) override;
    HRESULT STDMETHODCALLTYPE get_LocationName(BSTR* name) override;
    HRESULT STDMETHODCALLTYPE get_LocationURL(BSTR* url) override;
    HRESULT STDMETHODCALLTYPE get_Busy(VARIANT_BOOL* busy) override;
    HRESULT STDMETHODCALLTYPE Quit() override;
    HRESULT STDMETHODCALLTYPE get_Visible(VARIANT_BOOL* visible) override;
    HRESULT STDMETHODCALLTYPE put_Visible(VARIANT_BOOL visible) override;
    HRESULT STDMETHODCALLTYPE get_ReadyState(READYSTATE* state) override;

  private:
    using Self = Microsoft::WRL::ComPtr<Control>;

    /// The navigation that is going on, or the last one.
    struct Navigation {
        bool running = false;
        std::uint64_t id = 0; // 0 until the page has announced it
        std::string url;
        bool refused = false;   // by the server, and the host knows
        bool completed = false; // its document is there, and the host knows
    };

    void OnLastRelease() override;
    /// Lets go of everything but the host.
    void End();

    // control_activation.cpp
    HRESULT Activate(LPCRECT position);
    HRESULT EnterSite(const Microsoft::WRL::ComPtr<IOleInPlaceSite>& site, LPCRECT position);
    void ReadContext(const Microsoft::WRL::ComPtr<IOleInPlaceSite>& site);
    void SetVisible(bool visible);
    void Deactivate();
    /// Without a word to the host.
    void LeaveSite();
    void OnFocused();
    bool IsIn(const Microsoft::WRL::ComPtr<IOleInPlaceSite>& site) const {
        return site.Get() == inPlaceSite_.Get();
    }

    // control_browser.cpp
    void RunScript(const std::string& script) const;
    /// Of the document that is shown; empty if there is none.
    std::string Url() const;

    // control_page.cpp
    void OnPage(testbed::chromium::Page& page) override;
    void OnPageLost() override;
    bool OnStarting(const testbed::chromium::NavigationStart& start, bool wanted) override;
    void OnAnswer(const testbed::chromium::Response& response) override;
    void OnCompleted(const testbed::chromium::NavigationOutcome& outcome) override;
    void BeginLoading();
    void OnNewDocument(const std::string& url);
    void OnLoaded();
    void OnFailed(LONG status);
    void OnAborted();

    // control_messages.cpp
    void OnMessage(const nlohmann::json& message,
                   const std::function<void(const std::string& text)>& reply) override;
    void OnTitle(const std::string& title);
    void OnScriptError(const ScriptError& error);
    void OnLink(const nlohmann::json& message, const std::function<void(const std::string& text)>& reply);

    HostSite host_;
    EventSource source_;
    BrowserEvents events_;
    std::shared_ptr<EnginePage> page_; // null once closed
    bool closed_ = false;

    Microsoft::WRL::ComPtr<IOleInPlaceSite> inPlaceSite_; // while active in place
    Microsoft::WRL::ComPtr<IOleInPlaceFrame> frame_;
    Microsoft::WRL::ComPtr<IOleInPlaceUIWindow> document_;
    std::unique_ptr<ControlWindow> window_;
    bool uiActive_ = false;
    bool visible_ = true;
    RECT position_{};
    SIZEL extent_{};

    Navigation navigation_;
    READYSTATE state_ = READYSTATE_UNINITIALIZED;
    bool hasDocument_ = false;
    std::string title_;
    ErrorBox errorBox_;
};

} // namespace legacy_control
