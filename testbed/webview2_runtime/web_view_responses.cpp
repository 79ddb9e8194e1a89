// The answers of servers, which the host may look at.
#include "web_view.h"

#include <memory>

#include "response_arguments.h"
#include "testbed/chromium/text.h"

namespace webview2_runtime {

using testbed::chromium::ToUtf16;

void WebView::OnResponse(const testbed::chromium::Response& response) {
    DuringEvent([&] {
        auto requestHeaders = std::make_shared<testbed::chromium::Headers>(response.requestHeaders);
        const auto arguments = MakeObject<WebResourceResponseReceivedArguments>(
            MakeObject<WebResourceRequest>(RequestOrigin::Page, ToUtf16(response.url),
                                           ToUtf16(response.method), nullptr, std::move(requestHeaders)),
            MakeObject<ResponseView>(response));
        webResourceResponseReceived_.Raise<ICoreWebView2, ICoreWebView2WebResourceResponseReceivedEventArgs>(
            this, arguments.Get());
    });
}

} // namespace webview2_runtime
