// What is behind ZanWebBrowserIE: the container of the WebBrowser control, which hears its events and is what pages see as
// window.external. Each interface's answers that do no work are in a header of their own (plain_*.h).
//
//   impl.cpp          construction, COM, the host's calls, the interfaces
//   creation.cpp      Create: the control, its events, the first navigation
//   site.cpp          where the control is in the window, and its size
//   script_errors.cpp errors of the page's scripts, which are traced and not shown
//   events.cpp        events, and the page's calls
//   keyboard_hook.cpp keys that the control has to be handed
//   user_agent.cpp    what urlmon tells servers
//   teardown.cpp      Destroy
#pragma once

#include <windows.h>

#include <docobj.h>
#include <exdisp.h>
#include <oaidl.h>
#include <wrl/client.h>

#include "browser_ie/keyboard_hook.h"
#include "browser_ie/plain_client_site.h"
#include "browser_ie/plain_doc_host.h"
#include "browser_ie/plain_in_place_site.h"
#include "browser_ie/plain_storage.h"
#include "kelda/zan_web_browser_ie.h"

namespace kelda {

/// Lives on the thread that made it. Owned by ZanWebBrowserIE alone: its COM count decides nothing.
///
/// The owner may call Destroy from inside each call of the callback, and while the control is being activated. It does not let
/// go of this object meanwhile.
class ZanWebBrowserIE::Impl final : public PlainClientSite,
                                    public PlainInPlaceSite,
                                    public PlainStorage,
                                    public PlainDocHost,
                                    public IOleCommandTarget,
                                    public IDispatch,
                                    private KeyTarget {
  public:
    Impl(const du::Symbol& serverUrl, int checkMode);
    virtual ~Impl();
    Impl(const Impl&) = delete;
    Impl& operator=(const Impl&) = delete;

    static void InitializeCom();
    void Create(Callback* callback, HWND parent);
    void Destroy();
    void Resize();
    HWND GetWindowHandle();

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override;
    ULONG STDMETHODCALLTYPE AddRef() override { return ++refCount_; }
    ULONG STDMETHODCALLTYPE Release() override { return --refCount_; }

    // IOleWindow, IOleInPlaceSite
    HRESULT STDMETHODCALLTYPE GetWindow(HWND* window) override;
    HRESULT STDMETHODCALLTYPE OnInPlaceActivate() override;
    HRESULT STDMETHODCALLTYPE GetWindowContext(IOleInPlaceFrame** frame, IOleInPlaceUIWindow** document,
                                               LPRECT position, LPRECT clip,
                                               LPOLEINPLACEFRAMEINFO frameInfo) override;
    HRESULT STDMETHODCALLTYPE OnInPlaceDeactivate() override;

    // IOleCommandTarget
    HRESULT STDMETHODCALLTYPE QueryStatus(const GUID* group, ULONG count, OLECMD* commands,
                                          OLECMDTEXT* text) override;
    HRESULT STDMETHODCALLTYPE Exec(const GUID* group, DWORD command, DWORD option, VARIANT* input,
                                   VARIANT* output) override;

    // IDocHostUIHandler
    HRESULT STDMETHODCALLTYPE GetHostInfo(DOCHOSTUIINFO* info) override;
    HRESULT STDMETHODCALLTYPE GetExternal(IDispatch** external) override;

    // IDispatch: the sink of the events, and the external object
    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override;
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT index, LCID locale, ITypeInfo** info) override;
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID iid, LPOLESTR* names, UINT nameCount, LCID locale,
                                            DISPID* ids) override;
    HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID iid, LCID locale, WORD flags, DISPPARAMS* parameters,
                                     VARIANT* result, EXCEPINFO* exception, UINT* wrongArgument) override;

  private:
    static constexpr DWORD kNotConnected = 0xFEFEFEFE;

    void MakeControl();
    void LockRunning(BOOL lock) const;
    bool Connect();
    void Disconnect();
    Microsoft::WRL::ComPtr<IConnectionPoint> EventSource() const;
    void Navigate() const;

    void GetMember(DISPID id, VARIANT* result);
    void OnEvent(DISPID id, const DISPPARAMS* parameters);
    void OnDocumentComplete();
    void ReportSession();

    // KeyTarget
    Microsoft::WRL::ComPtr<IOleInPlaceActiveObject> ActiveObject() override;

    Callback* callback_ = nullptr;
    HWND parent_ = nullptr;
    RECT bounds_{}; // in pixels: the parent's client rectangle
    const du::Symbol url_;
    int mode_;
    Microsoft::WRL::ComPtr<IOleObject> oleObject_;
    Microsoft::WRL::ComPtr<IWebBrowser2> webBrowser_;
    Microsoft::WRL::ComPtr<IOleInPlaceObject> inPlaceObject_; // while it is active
    HWND controlWindow_ = nullptr;                            // asked for once
    DWORD eventCookie_ = kNotConnected;
    ULONG refCount_ = 0;
};

} // namespace kelda
