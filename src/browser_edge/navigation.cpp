// The first navigation, its outcome, and what is requested and answered on the way.
#include <string_view>

#include "browser_edge/impl.h"
#include "cookies/cookie_copy.h"
#include "cookies/response_trace.h"
#include "cookies/text_or_empty.h"
#include "cookies/win_inet_cookies.h"
#include "du/string_utilities.h"
#include "support/com_call.h"
#include "support/com_text.h"
#include "support/failed_call.h"
#include "support/trace.h"

using Microsoft::WRL::ComPtr;

namespace kelda {
namespace {

constexpr const wchar_t* kFirstRequestHeaders = L"Accept: */*\r\nPragma: no-cache\r\n";
constexpr std::wstring_view kEmptyScript = L"javascript:void(0)";

/// Empty where it cannot be had.
std::wstring UriOf(const ComPtr<ICoreWebView2WebResourceRequest>& request) {
    ComText uri;
    CallOn(request, &ICoreWebView2WebResourceRequest::get_Uri, ReceiveText(uri));
    return TextOrEmpty(uri.get());
}

} // namespace

HRESULT ZanWebBrowserEdge::Impl::OnDocumentScriptAdded(HRESULT result, LPCWSTR id) {
    if (!Succeeded(result, "ICoreWebView2AddScriptToExecuteOnDocumentCreatedCompletedHandler")) {
        return S_OK;
    }
    scriptId_ = id != nullptr ? id : L"";
    StartNavigation();
    return S_OK;
}

// The owner may close or delete the browser in a trace line, while the runtime takes the cookies, or while it makes the
// request.
void ZanWebBrowserEdge::Impl::StartNavigation() const {
    const CallbackTarget<Impl> target = target_;
    const du::Symbol address = url_;
    const std::wstring url = du::Utf8ToWideStr(address.safe_c_str());
    const bool verbose = verboseTrace_;
    if (verbose) {
        kWebBrowserEdgeTrace.Info() << "WinInet cookies before navigating to " << address.safe_c_str();
        TraceWinInetCookies(url);
    }
    if (*target == nullptr) {
        return;
    }
    PrePopulateLoadBalancerCookies(url, ComPtr<ICoreWebView2CookieManager>(cookieManager_), verbose);
    if (verbose && *target != nullptr) {
        kWebBrowserEdgeTrace.Info() << "Navigating to " << address.safe_c_str();
    }
    if (*target == nullptr) {
        return;
    }
    ComPtr<ICoreWebView2WebResourceRequest> request;
    const HRESULT made = CallOn(objects_.environment2, &ICoreWebView2Environment2::CreateWebResourceRequest,
                                url.c_str(), L"GET", nullptr, kFirstRequestHeaders, request.GetAddressOf());
    if (*target != nullptr) {
        Succeeded(made, "CreateWebResourceRequest");
    }
    // Also without a request, so that the trace shows both.
    if (*target != nullptr) {
        Succeeded(
            CallOn(objects_.webView15, &ICoreWebView2_15::NavigateWithWebResourceRequest, request.Get()),
            "NavigateWithWebResourceRequest");
    }
}

// A link to the empty script only runs a handler of its page: there is nothing to load. Wherever it stands in the
// address it counts, and in this spelling only; both are meant.
HRESULT ZanWebBrowserEdge::Impl::OnNavigationStarting(ICoreWebView2* /*sender*/,
                                                      ICoreWebView2NavigationStartingEventArgs* args) {
    ComText uri;
    args->get_Uri(ReceiveText(uri));
    if (uri != nullptr && std::wstring_view(uri.get()).find(kEmptyScript) != std::wstring_view::npos) {
        args->put_Cancel(TRUE);
    }
    return S_OK;
}

// One value for all, whatever the kind of the resource, which is read all the same: that call is kept on purpose.
HRESULT ZanWebBrowserEdge::Impl::OnWebResourceRequested(ICoreWebView2* /*sender*/,
                                                        ICoreWebView2WebResourceRequestedEventArgs* args) {
    COREWEBVIEW2_WEB_RESOURCE_CONTEXT context{};
    args->get_ResourceContext(&context);
    ComPtr<ICoreWebView2WebResourceRequest> request;
    args->get_Request(request.GetAddressOf());
    ComPtr<ICoreWebView2HttpRequestHeaders> headers;
    CallOn(request, &ICoreWebView2WebResourceRequest::get_Headers, headers.GetAddressOf());
    CallOn(headers, &ICoreWebView2HttpRequestHeaders::SetHeader, L"Accept", L"*/*");
    return S_OK;
}

HRESULT ZanWebBrowserEdge::Impl::OnNavigationCompleted(ICoreWebView2* /*sender*/,
                                                       ICoreWebView2NavigationCompletedEventArgs* args) {
    BOOL success = FALSE;
    if (FAILED(args->get_IsSuccess(&success))) {
        return S_OK;
    }
    if (success == FALSE) {
        kWebBrowserEdgeTrace.Info()
            << "Navigation failed. Leaving Edge control visible for user to read message";
        return S_OK;
    }
    if (callback_ != nullptr) {
        if (mode_ == 0) {
            callback_->OnNavigationCompleted();
        } else {
            OnSessionAuthenticated(); // any load that succeeds counts: what has loaded is not looked at
        }
    }
    return S_OK;
}

// With "parse" the cookies of every response go to WinINet as it arrives, those of redirects included.
// NOLINTNEXTLINE(readability-make-member-function-const): an event handler like the others in the table
HRESULT ZanWebBrowserEdge::Impl::OnWebResourceResponseReceived(
    ICoreWebView2* /*sender*/, ICoreWebView2WebResourceResponseReceivedEventArgs* args) {
    const bool verbose = verboseTrace_;
    const bool capture = !useCookieManager_;
    // From here on the browser may be gone: its owner may delete it in a trace line.
    TraceResponse(args, verbose);
    if (!capture) {
        return S_OK;
    }
    ComPtr<ICoreWebView2WebResourceRequest> request;
    args->get_Request(request.GetAddressOf());
    const std::wstring uri = UriOf(request);
    ComPtr<ICoreWebView2WebResourceResponseView> response;
    args->get_Response(response.GetAddressOf());
    ComPtr<ICoreWebView2HttpResponseHeaders> headers;
    CallOn(response, &ICoreWebView2WebResourceResponseView::get_Headers, headers.GetAddressOf());
    if (!uri.empty()) { // else nobody could tell whose cookies they are
        CaptureSetCookies(uri, headers, verbose);
    }
    return S_OK;
}

} // namespace kelda
