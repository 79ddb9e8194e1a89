// The report of the session: the page, or the check's file, says that there is one; its cookies are carried into
// WinINet; then the owner is told.
#include <memory>
#include <utility>

#include "browser_edge/impl.h"
#include "cookies/cookie_copy.h"
#include "cookies/win_inet_cookies.h"
#include "du/string_utilities.h"
#include "support/com_boundary.h"
#include "support/com_call.h"
#include "support/failed_call.h"
#include "support/trace.h"
#include "ui/ui.h"

namespace kelda {

// Where the cookies cannot be asked for, nothing more is done: the owner is still there to be told, and the page may
// call again.
void ZanWebBrowserEdge::Impl::OnSessionAuthenticated() {
    const std::wstring url = du::Utf8ToWideStr(url_.safe_c_str());
    if (useCookieManager_) {
        const auto completed =
            MakeCallback<ICoreWebView2GetCookiesCompletedHandler>(target_, &Impl::OnGetCookiesCompleted);
        Succeeded(
            CallOn(cookieManager_, &ICoreWebView2CookieManager::GetCookies, url.c_str(), completed.Get()),
            "GetCookies");
        return;
    }
    if (verboseTrace_) {
        TraceWinInetCookies(url);
    }
    TellOwnerOnce();
}

HRESULT ZanWebBrowserEdge::Impl::OnGetCookiesCompleted(HRESULT result, ICoreWebView2CookieList* list) {
    if (!Succeeded(result, "ICoreWebView2GetCookiesCompletedHandler")) {
        return result;
    }
    const CallbackTarget<Impl> target = target_;
    // The address is fixed, so that this is the one that the list was asked for.
    CopyCookiesToWinInet(list, du::Utf8ToWideStr(url_.safe_c_str()), verboseTrace_);
    ReportFromMessageLoop(target);
    return S_OK;
}

// The owner is not told from inside the runtime's completion: what it does then may be anything, a modal dialog's end
// included.
void ZanWebBrowserEdge::Impl::ReportFromMessageLoop(const CallbackTarget<Impl>& target) {
    constexpr int kMilliseconds = 1;
    auto data = std::make_unique<CallbackTarget<Impl>>(target);
    if (const int error = ui_set_timer(kMilliseconds, &ReportSessionAuthenticated, data.get()); error != 0) {
        kWebBrowserEdgeTrace.Info() << "Failed: ui_set_timer error code: " << error;
        return;
    }
    static_cast<void>(data.release()); // the timer's now
}

// The browser may be gone by now: the data is a cell of the timer's own.
int ZanWebBrowserEdge::Impl::ReportSessionAuthenticated(void* data) {
    const std::unique_ptr<CallbackTarget<Impl>> target(static_cast<CallbackTarget<Impl>*>(data));
    AtComBoundary(
        [&] {
            if (Impl* const impl = **target; impl != nullptr) {
                impl->TellOwnerOnce();
            }
            return S_OK;
        },
        TraceException);
    return 0;
}

// Once: a second call of the page, or a later load in check mode, finds no callback. It is cleared before it is called:
// from there the owner may delete this object or create the browser anew, and a report from inside finds none either.
void ZanWebBrowserEdge::Impl::TellOwnerOnce() {
    if (callback_ != nullptr) {
        kWebBrowserEdgeTrace.Info() << "OnSessionAuthenticated();";
        std::exchange(callback_, nullptr)->OnSessionAuthenticated();
    }
}

} // namespace kelda
