// Teardown of the browser, in whatever state it is.
#include <utility>

#include "browser_ie/impl.h"
#include "support/com_call.h"
#include "support/trace.h"

namespace kelda {

void ZanWebBrowserIE::Impl::Destroy() {
    callback_ = nullptr;
    Disconnect();
    CallOn(inPlaceObject_, &IOleInPlaceObject::InPlaceDeactivate);
    CallOn(oleObject_, &IOleObject::Close, OLECLOSE_NOSAVE);
    CallOn(oleObject_, &IOleObject::SetClientSite, nullptr);
    inPlaceObject_.Reset();
    webBrowser_.Reset();
    oleObject_.Reset();
    controlWindow_ = nullptr;
    ServeKeysOf(nullptr);
}

void ZanWebBrowserIE::Impl::Disconnect() {
    if (eventCookie_ == kNotConnected) {
        return;
    }
    // The owner may come here again meanwhile.
    const DWORD cookie = std::exchange(eventCookie_, kNotConnected);
    if (FAILED(CallOn(EventSource(), &IConnectionPoint::Unadvise, cookie))) {
        kWebBrowserIETrace.Info() << "DispEventUnadvise failed";
    }
}

} // namespace kelda
