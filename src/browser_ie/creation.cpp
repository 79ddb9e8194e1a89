// From the class of the control to the first navigation.
#include <new>
#include <string>

#include <exdispid.h>
#include <ole2.h>

#include "browser_ie/impl.h"
#include "browser_ie/owned_bstr.h"
#include "browser_ie/user_agent.h"
#include "du/string_utilities.h"
#include "support/com_call.h"
#include "support/trace.h"

using Microsoft::WRL::ComPtr;

namespace kelda {

// Without a control each step fails, the first one with a line in the trace.
void ZanWebBrowserIE::Impl::Create(Callback* callback, HWND parent) {
    callback_ = callback;
    parent_ = parent;
    GetClientRect(parent_, &bounds_);
    MakeControl();
    if (FAILED(CallOn(webBrowser_, &IWebBrowser2::put_Visible, VARIANT_TRUE))) {
        kWebBrowserIETrace.Info() << "Failed to set visuble"; // always spelled so
        return;
    }
    if (!Connect()) {
        kWebBrowserIETrace.Warning() << "Failed to establish a connection with the event source";
        return;
    }
    if (webBrowser_) { // else the owner has taken it down meanwhile
        ApplyUserAgent();
        Navigate();
    }
}

void ZanWebBrowserIE::Impl::MakeControl() {
    OleCreate(CLSID_WebBrowser, IID_IOleObject, OLERENDER_DRAW, nullptr, this, this,
              reinterpret_cast<void**>(oleObject_.ReleaseAndGetAddressOf()));
    const RECT bounds = bounds_;
    CallOn(oleObject_, &IOleObject::DoVerb, OLEIVERB_INPLACEACTIVATE, nullptr, this, 0, parent_, &bounds);
    Query(oleObject_, webBrowser_);
    Resize();
    if (oleObject_) {
        ServeKeysOf(this);
    }
}

bool ZanWebBrowserIE::Impl::Connect() {
    if (eventCookie_ != kNotConnected) {
        return true;
    }
    const ComPtr<IConnectionPoint> source = EventSource();
    DWORD cookie = 0;
    if (FAILED(CallOn(source, &IConnectionPoint::Advise, static_cast<IDispatch*>(this), &cookie))) {
        return false;
    }
    if (!webBrowser_) {
        // Taken down meanwhile, when there was no connection yet that could have been ended.
        CallOn(source, &IConnectionPoint::Unadvise, cookie);
        return true;
    }
    eventCookie_ = cookie;
    return true;
}

ComPtr<IConnectionPoint> ZanWebBrowserIE::Impl::EventSource() const {
    ComPtr<IConnectionPointContainer> container;
    Query(webBrowser_, container);
    ComPtr<IConnectionPoint> source;
    CallOn(container, &IConnectionPointContainer::FindConnectionPoint, DIID_DWebBrowserEvents2,
           source.GetAddressOf());
    return source;
}

void ZanWebBrowserIE::Impl::Navigate() const {
    const std::wstring address = du::Utf8ToWideStr(url_.safe_c_str());
    const OwnedBstr url(SysAllocStringLen(address.data(), static_cast<UINT>(address.size())));
    if (!url) {
        throw std::bad_alloc();
    }
    VARIANT flags{};
    flags.vt = VT_UINT;
    flags.uintVal = navNoHistory;
    CallOn(webBrowser_, &IWebBrowser2::Navigate, url.get(), &flags, nullptr, nullptr, nullptr);
}

} // namespace kelda
