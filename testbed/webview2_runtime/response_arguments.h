// What the handlers of WebResourceResponseReceived get.
#pragma once

#include <utility>

#include "response_view.h"
#include "web_resource_request.h"

namespace webview2_runtime {

class WebResourceResponseReceivedArguments
    : public ComObject<webview2::NotImplemented<ICoreWebView2WebResourceResponseReceivedEventArgs>,
                       ICoreWebView2WebResourceResponseReceivedEventArgs> {
  public:
    WebResourceResponseReceivedArguments(Microsoft::WRL::ComPtr<WebResourceRequest> request,
                                         Microsoft::WRL::ComPtr<ResponseView> response)
        : request_(std::move(request)), response_(std::move(response)) {}

    HRESULT STDMETHODCALLTYPE get_Request(ICoreWebView2WebResourceRequest** request) override {
        return Guarded(
            [&]() -> HRESULT { return request == nullptr ? E_POINTER : HandOut(request_, request); });
    }
    HRESULT STDMETHODCALLTYPE get_Response(ICoreWebView2WebResourceResponseView** response) override {
        return Guarded(
            [&]() -> HRESULT { return response == nullptr ? E_POINTER : HandOut(response_, response); });
    }

  private:
    Microsoft::WRL::ComPtr<WebResourceRequest> request_;
    Microsoft::WRL::ComPtr<ResponseView> response_;
};

} // namespace webview2_runtime
