// Where the control is: its window, its rectangle in pixels, its extent in hundredths of a millimetre.
#include <ole2.h>

#include "browser_ie/impl.h"
#include "support/com_call.h"

namespace kelda {
namespace {

constexpr int kHimetricPerInch = 2540;

/// Of the screen, in pixels per inch.
struct Density {
    int horizontal;
    int vertical;
};

Density MeasureDensity() {
    auto* const screen = GetDC(nullptr);
    const Density density = {GetDeviceCaps(screen, LOGPIXELSX), GetDeviceCaps(screen, LOGPIXELSY)};
    ReleaseDC(nullptr, screen);
    return density;
}

SIZEL HimetricSize(const RECT& pixels) {
    static const Density density = MeasureDensity();
    const auto across = [](LONG x) { return MulDiv(kHimetricPerInch, x, density.horizontal); };
    const auto down = [](LONG y) { return MulDiv(kHimetricPerInch, y, density.vertical); };
    return {across(pixels.right) - across(pixels.left), down(pixels.bottom) - down(pixels.top)};
}

} // namespace

void ZanWebBrowserIE::Impl::Resize() {
    GetClientRect(parent_, &bounds_);
    const RECT bounds = bounds_;
    SIZEL size = HimetricSize(bounds);
    CallOn(oleObject_, &IOleObject::SetExtent, DVASPECT_CONTENT, &size);
    CallOn(inPlaceObject_, &IOleInPlaceObject::SetObjectRects, &bounds, &bounds);
}

HRESULT ZanWebBrowserIE::Impl::GetWindow(HWND* window) {
    if (window == nullptr) {
        return E_POINTER;
    }
    *window = parent_;
    return S_OK;
}

HRESULT ZanWebBrowserIE::Impl::OnInPlaceActivate() {
    LockRunning(TRUE);
    Query(oleObject_, inPlaceObject_);
    const RECT bounds = bounds_;
    CallOn(inPlaceObject_, &IOleInPlaceObject::SetObjectRects, &bounds, &bounds);
    return S_OK;
}

HRESULT ZanWebBrowserIE::Impl::OnInPlaceDeactivate() {
    LockRunning(FALSE);
    inPlaceObject_.Reset();
    controlWindow_ = nullptr;
    return S_OK;
}

// The control may still tell of itself when it has been let go of.
void ZanWebBrowserIE::Impl::LockRunning(BOOL lock) const {
    if (oleObject_) {
        OleLockRunning(oleObject_.Get(), lock, FALSE);
    }
}

// There is neither a frame nor a document window with a place for tools of the control's.
HRESULT ZanWebBrowserIE::Impl::GetWindowContext(IOleInPlaceFrame** frame, IOleInPlaceUIWindow** document,
                                                LPRECT position, LPRECT clip,
                                                LPOLEINPLACEFRAMEINFO frameInfo) {
    if (frame != nullptr) {
        *frame = nullptr;
    }
    if (document != nullptr) {
        *document = nullptr;
    }
    if (frame == nullptr || document == nullptr || position == nullptr || clip == nullptr ||
        frameInfo == nullptr) {
        return E_POINTER;
    }
    *position = bounds_;
    *clip = bounds_;
    frameInfo->fMDIApp = FALSE;
    frameInfo->hwndFrame = GetAncestor(parent_, GA_ROOT);
    frameInfo->haccel = nullptr;
    frameInfo->cAccelEntries = 0;
    return S_OK;
}

HRESULT ZanWebBrowserIE::Impl::GetHostInfo(DOCHOSTUIINFO* info) {
    if (info == nullptr) {
        return E_POINTER;
    }
    info->dwFlags = DOCHOSTUIFLAG_ENABLE_FORMS_AUTOCOMPLETE;
    return S_OK;
}

HRESULT ZanWebBrowserIE::Impl::GetExternal(IDispatch** external) {
    if (external == nullptr) {
        return E_POINTER;
    }
    AddRef();
    *external = this;
    return S_OK;
}

} // namespace kelda
