// What the handlers of WebResourceRequested get.
#pragma once

#include <utility>

#include "com_object.h"
#include "web_resource_request.h"
#include "webview2_not_implemented.h"

namespace webview2_runtime {

class WebResourceRequestedArguments
    : public ComObject<webview2::NotImplemented<ICoreWebView2WebResourceRequestedEventArgs>,
                       ICoreWebView2WebResourceRequestedEventArgs> {
  public:
    WebResourceRequestedArguments(Microsoft::WRL::ComPtr<WebResourceRequest> request,
                                  COREWEBVIEW2_WEB_RESOURCE_CONTEXT context)
        : request_(std::move(request)), context_(context) {}

    HRESULT STDMETHODCALLTYPE get_Request(ICoreWebView2WebResourceRequest** request) override {
        return Guarded(
            [&]() -> HRESULT { return request == nullptr ? E_POINTER : HandOut(request_, request); });
    }
    HRESULT STDMETHODCALLTYPE get_Response(ICoreWebView2WebResourceResponse** response) override {
        return GuardedGet(response, [] { return nullptr; });
    }
    HRESULT STDMETHODCALLTYPE get_ResourceContext(COREWEBVIEW2_WEB_RESOURCE_CONTEXT* context) override {
        return GuardedGet(context, [&] { return context_; });
    }

  private:
    Microsoft::WRL::ComPtr<WebResourceRequest> request_;
    COREWEBVIEW2_WEB_RESOURCE_CONTEXT context_;
};

} // namespace webview2_runtime
