// Teardown of the browser, in whatever state it is.
#include <utility>

#include "browser_edge/impl.h"
#include "support/com_boundary.h"
#include "support/com_call.h"
#include "support/failed_call.h"

namespace kelda {
namespace {

/// Succeeded, of a step after which the next one is taken even if there is no memory for the line.
void TraceStep(HRESULT status, const char* operation) noexcept {
    if (FAILED(status)) {
        TraceException(operation, status);
    }
}

} // namespace

// All that it lets go of is taken out of this object first: stopping and closing pump messages, in which the owner may
// call Destroy again, which then finds nothing to do, or delete this object.
void ZanWebBrowserEdge::Impl::Destroy() {
    StopListening();
    WebViewObjects objects = std::move(objects_);
    const std::wstring scriptId = std::exchange(scriptId_, {});

    HRESULT status = S_OK;
    if (objects.webView) {
        AtComBoundary(
            [&] {
                UnregisterEvents(objects);
                return S_OK;
            },
            TraceException);
        status = CallOn(objects.webView, &ICoreWebView2::RemoveHostObjectFromScript, L"external");
        TraceStep(status, "RemoveHostObjectFromScript");
    }
    if (!scriptId.empty()) {
        status =
            CallOn(objects.webView, &ICoreWebView2::RemoveScriptToExecuteOnDocumentCreated, scriptId.c_str());
        TraceStep(status, "RemoveScriptToExecuteOnDocumentCreated");
    }
    if (objects.webView) {
        status = CallOn(objects.webView, &ICoreWebView2::Stop);
        TraceStep(status, "WebView2 Stop()");
    }
    if (objects.controller) {
        // What Close returns is not kept: the line tells the status of the step before. It is kept that way on purpose.
        CallOn(objects.controller, &ICoreWebView2Controller::Close);
        TraceStep(status, "WebView2 Close()");
        objects.controller.Reset();
    }
    objects.webView.Reset();
    objects.webView2.Reset();
    objects.webView5.Reset();
    objects.webView14.Reset();
    objects.webView15.Reset();
    objects.environment.Reset();
    objects.environment2.Reset();
}

void ZanWebBrowserEdge::Impl::StopListening() {
    callback_ = nullptr;
    if (target_) {
        *target_ = nullptr;
    }
}

} // namespace kelda
