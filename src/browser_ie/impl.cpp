// Construction, COM, the interfaces, and what the host calls.
#include "browser_ie/impl.h"

#include <memory>

#include <exdispid.h>
#include <objbase.h>

#include "support/com_boundary.h"
#include "support/com_call.h"
#include "support/failed_call.h"
#include "support/target_address.h"
#include "support/trace.h"

using Microsoft::WRL::ComPtr;

namespace kelda {

ZanWebBrowserIE::Impl::Impl(const du::Symbol& serverUrl, int checkMode)
    : url_(TargetAddress(serverUrl, checkMode)), mode_(checkMode) {}

// COM is ended once, whatever InitializeCom found.
ZanWebBrowserIE::Impl::~Impl() {
    if (oleObject_) { // after a Create that ran out of memory
        AtComBoundary(
            [this] {
                Destroy();
                return S_OK;
            },
            TraceLegacyException);
    }
    RemoveKeyboardHook();
    CoUninitialize();
}

void ZanWebBrowserIE::Impl::InitializeCom() {
    switch (CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED)) {
    case S_FALSE:
        kWebBrowserIETrace.Info() << "The COM library is already initialized on this thread";
        break;
    case RPC_E_CHANGED_MODE:
        kWebBrowserIETrace.Info() << "The COM library is already initialized as MTA";
        break;
    case S_OK:
        kWebBrowserIETrace.Info() << "The COM library was initialized successfully";
        break;
    default:
        break;
    }
}

HWND ZanWebBrowserIE::Impl::GetWindowHandle() {
    if (controlWindow_ == nullptr) {
        CallOn(inPlaceObject_, &IOleInPlaceObject::GetWindow, &controlWindow_);
    }
    return controlWindow_;
}

HRESULT ZanWebBrowserIE::Impl::QueryInterface(REFIID iid, void** object) {
    if (object == nullptr) {
        return E_POINTER;
    }
    if (iid == IID_IUnknown || iid == IID_IOleClientSite) {
        *object = static_cast<IOleClientSite*>(this);
    } else if (iid == IID_IOleWindow || iid == IID_IOleInPlaceSite) {
        *object = static_cast<IOleInPlaceSite*>(this);
    } else if (iid == IID_IOleCommandTarget) {
        *object = static_cast<IOleCommandTarget*>(this);
    } else if (iid == IID_IStorage) {
        *object = static_cast<IStorage*>(this);
    } else if (iid == IID_IDocHostUIHandler) {
        *object = static_cast<IDocHostUIHandler*>(this);
    } else if (iid == IID_IDispatch || iid == DIID_DWebBrowserEvents2) {
        *object = static_cast<IDispatch*>(this);
    } else {
        *object = nullptr;
        return E_NOINTERFACE;
    }
    AddRef();
    return S_OK;
}

ComPtr<IOleInPlaceActiveObject> ZanWebBrowserIE::Impl::ActiveObject() {
    ComPtr<IOleInPlaceActiveObject> active;
    Query(oleObject_, active);
    return active;
}

ZanWebBrowserIE::ZanWebBrowserIE(const du::Symbol& serverUrl, int checkMode)
    : impl_(std::make_unique<Impl>(serverUrl, checkMode)) {}

ZanWebBrowserIE::~ZanWebBrowserIE() = default;

void ZanWebBrowserIE::InitializeCom() {
    Impl::InitializeCom();
}

void ZanWebBrowserIE::Create(Callback* callback, HWND parent) {
    impl_->Create(callback, parent);
}

void ZanWebBrowserIE::Destroy() {
    impl_->Destroy();
}

void ZanWebBrowserIE::Resize() {
    impl_->Resize();
}

HWND ZanWebBrowserIE::GetWindowHandle() {
    return impl_->GetWindowHandle();
}

} // namespace kelda
