// Construction, COM, size, and what the host calls.
#include "browser_edge/impl.h"

#include <memory>

#include <objbase.h>

#include "support/com_call.h"
#include "support/implementation_words.h"
#include "support/target_address.h"
#include "support/trace.h"

namespace kelda {

ZanWebBrowserEdge::Impl::Impl(const du::Symbol& serverUrl, int checkMode)
    : useCookieManager_(!ImplementationWordGiven("parse")),
      verboseTrace_(ImplementationWordGiven("trace")),
      allowSingleSignOn_(!ImplementationWordGiven("nosso")),
      inPrivate_(ImplementationWordGiven("inprivate")),
      devTools_(ImplementationWordGiven("devtools")),
      url_(TargetAddress(serverUrl, checkMode)),
      mode_(checkMode) {}

// COM is ended once, whatever InitializeCom found, and before the members release what is left of the runtime's
// objects.
ZanWebBrowserEdge::Impl::~Impl() {
    StopListening();
    CoUninitialize();
}

void ZanWebBrowserEdge::Impl::InitializeCom() {
    switch (CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED)) {
    case S_FALSE:
        kWebBrowserEdgeTrace.Info() << "The COM library is already initialized on this thread";
        break;
    case RPC_E_CHANGED_MODE:
        kWebBrowserEdgeTrace.Info() << "The COM library is already initialized as MTA";
        break;
    case S_OK:
        kWebBrowserEdgeTrace.Info() << "The COM library was initialized successfully";
        break;
    default:
        break;
    }
}

void ZanWebBrowserEdge::Impl::Resize() {
    RECT bounds{};
    GetClientRect(parent_, &bounds);
    CallOn(objects_.controller, &ICoreWebView2Controller::put_Bounds, bounds);
}

ZanWebBrowserEdge::ZanWebBrowserEdge(const du::Symbol& serverUrl, int checkMode)
    : impl_(std::make_unique<Impl>(serverUrl, checkMode)) {}

ZanWebBrowserEdge::~ZanWebBrowserEdge() = default;

void ZanWebBrowserEdge::InitializeCom() {
    Impl::InitializeCom();
}

void ZanWebBrowserEdge::Create(Callback* callback, HWND parent) {
    impl_->Create(callback, parent);
}

void ZanWebBrowserEdge::Destroy() {
    impl_->Destroy();
}

void ZanWebBrowserEdge::Resize() {
    impl_->Resize();
}

HWND ZanWebBrowserEdge::GetWindowHandle() {
    return impl_->GetWindowHandle();
}

} // namespace kelda
