// The legacy browser, which is not there yet: it says so in the trace.
#include "kelda/zan_web_browser_ie.h"

#include "support/target_address.h"
#include "support/trace.h"

namespace kelda {

class ZanWebBrowserIE::Impl {
  public:
    Impl(const du::Symbol& serverUrl, int checkMode) : url_(TargetAddress(serverUrl, checkMode)) {}

    void Trace(const char* call) const {
        kWebBrowserIETrace.Info() << call << ": this version has no legacy browser to show "
                                  << url_.safe_c_str();
    }

  private:
    du::Symbol url_;
};

ZanWebBrowserIE::ZanWebBrowserIE(const du::Symbol& serverUrl, int checkMode)
    : impl_(std::make_unique<Impl>(serverUrl, checkMode)) {}

ZanWebBrowserIE::~ZanWebBrowserIE() = default;

void ZanWebBrowserIE::InitializeCom() {
    impl_->Trace("InitializeCom");
}

void ZanWebBrowserIE::Create(Callback* /*callback*/, HWND /*parent*/) {
    impl_->Trace("Create");
}

void ZanWebBrowserIE::Destroy() {
    impl_->Trace("Destroy");
}

void ZanWebBrowserIE::Resize() {
    impl_->Trace("Resize");
}

HWND ZanWebBrowserIE::GetWindowHandle() {
    impl_->Trace("GetWindowHandle");
    return nullptr;
}

} // namespace kelda
