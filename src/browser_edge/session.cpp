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

void ZanWebBrowserEdge::Impl::OnSessionAuthenticated() {
    if (useCookieManager_) {
        AskForSessionCookies();
        return;
    }
    const CallbackTarget<Impl> target = target_;
    if (verboseTrace_) {
        TraceWinInetCookies(du::Utf8ToWideStr(url_.safe_c_str()));
    }
    if (*target != nullptr) {
        TellOwnerOnce();
    }
}

// A page may report again and again: while one report is on its way, the cookies are not asked for once more. Where they
// cannot be had nothing more is done: the owner is still there to be told, and the page may report again.
void ZanWebBrowserEdge::Impl::AskForSessionCookies() {
    if (reportUnderWay_) {
        return;
    }
    const CallbackTarget<Impl> target = target_;
    const std::wstring url = du::Utf8ToWideStr(url_.safe_c_str());
    const auto completed =
        MakeCallback<ICoreWebView2GetCookiesCompletedHandler>(target, &Impl::OnGetCookiesCompleted);
    reportUnderWay_ = true;
    const HRESULT result =
        CallOn(cookieManager_, &ICoreWebView2CookieManager::GetCookies, url.c_str(), completed.Get());
    if (FAILED(result) && *target != nullptr) {
        reportUnderWay_ = false;
    }
    Succeeded(result, "GetCookies");
}

HRESULT ZanWebBrowserEdge::Impl::OnGetCookiesCompleted(HRESULT result, ICoreWebView2CookieList* list) {
    reportUnderWay_ = false;
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
// included. The data belongs to the timer even if the answer is not 0, because a toolkit may answer the timer's number. If
// no timer was set, the data leaks: a few bytes.
void ZanWebBrowserEdge::Impl::ReportFromMessageLoop(const CallbackTarget<Impl>& target) {
    constexpr int kMilliseconds = 1;
    auto* const data = new CallbackTarget<Impl>(target);
    if (Impl* const impl = *target; impl != nullptr) {
        impl->reportUnderWay_ = true;
    }
    const int answer = ui_set_timer(kMilliseconds, &ReportSessionAuthenticated, data);
    if (answer == 0) {
        return;
    }
    if (Impl* const impl = *target; impl != nullptr) {
        impl->reportUnderWay_ = false;
    }
    kWebBrowserEdgeTrace.Info() << "Failed: ui_set_timer error code: " << answer;
}

// The browser may be gone by now: the data is a cell of the timer's own.
int ZanWebBrowserEdge::Impl::ReportSessionAuthenticated(void* data) {
    const std::unique_ptr<CallbackTarget<Impl>> target(static_cast<CallbackTarget<Impl>*>(data));
    AtComBoundary(
        [&] {
            if (Impl* const impl = **target; impl != nullptr) {
                impl->reportUnderWay_ = false;
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
    if (callback_ == nullptr) {
        return;
    }
    const CallbackTarget<Impl> target = target_;
    kWebBrowserEdgeTrace.Info() << "OnSessionAuthenticated();";
    if (*target != nullptr && callback_ != nullptr) {
        std::exchange(callback_, nullptr)->OnSessionAuthenticated();
    }
}

} // namespace kelda
