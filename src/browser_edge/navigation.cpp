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
    const CallbackTarget<Impl> target = target_;
    const std::wstring url = du::Utf8ToWideStr(url_.safe_c_str());
    if (verboseTrace_) {
        kWebBrowserEdgeTrace.Info() << "WinInet cookies before navigating to " << url_.safe_c_str();
        TraceWinInetCookies(url);
    }
    // The owner may close or delete the browser while the runtime takes the cookies, or makes the request.
    PrePopulateLoadBalancerCookies(url, cookieManager_, verboseTrace_);
    if (*target == nullptr) {
        return S_OK;
    }
    if (verboseTrace_) {
        kWebBrowserEdgeTrace.Info() << "Navigating to " << url_.safe_c_str();
    }
    ComPtr<ICoreWebView2WebResourceRequest> request;
    const HRESULT made = CallOn(objects_.environment2, &ICoreWebView2Environment2::CreateWebResourceRequest,
                                url.c_str(), L"GET", nullptr, kFirstRequestHeaders, request.GetAddressOf());
    if (*target == nullptr) {
        return S_OK;
    }
    Succeeded(made, "CreateWebResourceRequest");
    // Also without a request, so that the trace shows both.
    Succeeded(CallOn(objects_.webView15, &ICoreWebView2_15::NavigateWithWebResourceRequest, request.Get()),
              "NavigateWithWebResourceRequest");
    return S_OK;
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
    TraceResponse(args, verboseTrace_);
    if (useCookieManager_) {
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
        CaptureSetCookies(uri, headers, verboseTrace_);
    }
    return S_OK;
}

} // namespace kelda
