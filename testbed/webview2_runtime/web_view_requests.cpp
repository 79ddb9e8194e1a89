// The requests of pages: which of them the host sees, and what it makes of their headers.
#include "web_view.h"

#include <memory>
#include <string>

#include "request_arguments.h"
#include "testbed/chromium/text.h"

namespace webview2_runtime {
namespace {

using testbed::chromium::Page;
using testbed::chromium::Request;
using testbed::chromium::ToUtf16;

} // namespace

HRESULT WebView::AddWebResourceRequestedFilter(LPCWSTR uri,
                                               COREWEBVIEW2_WEB_RESOURCE_CONTEXT resourceContext) {
    return WithPage([&](Page& page) -> HRESULT {
        if (uri == nullptr) {
            return E_POINTER;
        }
        filters_.Add(uri, resourceContext);
        page.SetRequestInterception(true);
        return S_OK;
    });
}

HRESULT WebView::RemoveWebResourceRequestedFilter(LPCWSTR uri,
                                                  COREWEBVIEW2_WEB_RESOURCE_CONTEXT resourceContext) {
    return WithPage([&](Page& page) -> HRESULT {
        if (uri == nullptr) {
            return E_POINTER;
        }
        if (!filters_.Remove(uri, resourceContext)) {
            return E_INVALIDARG;
        }
        page.SetRequestInterception(!filters_.Empty() || clientCertificates_.On());
        return S_OK;
    });
}

void WebView::OnRequest(Request& request) {
    DuringEvent([&] {
        if (!clientCertificates_.On()) {
            ShowRequest(request);
            return;
        }
        const Origin server = OriginOf(request.url);
        if (clientCertificates_.Decided(server) || SettleClientCertificate(request, server)) {
            ShowRequest(request);
        }
        // Last: a proxy adds it behind the host's back.
        clientCertificates_.Tell(server, request.headers);
    });
}

void WebView::ShowRequest(Request& request) {
    const std::wstring uri = ToUtf16(request.url);
    if (!filters_.Match(uri, request.kind)) {
        return;
    }
    // A copy: the host may keep the objects longer than the request lives.
    const auto headers = std::make_shared<testbed::chromium::Headers>(request.headers);
    const auto arguments = MakeObject<WebResourceRequestedArguments>(
        MakeObject<WebResourceRequest>(RequestOrigin::Page, uri, ToUtf16(request.method), nullptr, headers),
        ContextOf(request.kind));
    webResourceRequested_.Raise<ICoreWebView2, ICoreWebView2WebResourceRequestedEventArgs>(this,
                                                                                           arguments.Get());
    request.headers = *headers;
}

} // namespace webview2_runtime
