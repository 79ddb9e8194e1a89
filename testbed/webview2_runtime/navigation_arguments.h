// What the handlers of navigation events get.
#pragma once

#include <utility>

#include "com_object.h"
#include "com_text.h"
#include "testbed/chromium/page_client.h"
#include "testbed/chromium/text.h"
#include "webview2_not_implemented.h"

namespace webview2_runtime {

class NavigationStartingArguments
    : public ComObject<webview2::NotImplemented<ICoreWebView2NavigationStartingEventArgs>,
                       ICoreWebView2NavigationStartingEventArgs> {
  public:
    explicit NavigationStartingArguments(testbed::chromium::NavigationStart start)
        : start_(std::move(start)) {}

    bool Cancelled() const { return cancelled_; }

    HRESULT STDMETHODCALLTYPE get_Uri(LPWSTR* uri) override {
        return Guarded([&] { return CopyOut(testbed::chromium::ToUtf16(start_.url), uri); });
    }
    HRESULT STDMETHODCALLTYPE get_IsRedirected(BOOL* isRedirected) override {
        return GuardedGet(isRedirected, [&] { return start_.redirected ? TRUE : FALSE; });
    }
    HRESULT STDMETHODCALLTYPE get_Cancel(BOOL* cancel) override {
        return GuardedGet(cancel, [&] { return cancelled_ ? TRUE : FALSE; });
    }
    HRESULT STDMETHODCALLTYPE put_Cancel(BOOL cancel) override {
        return Guarded([&] {
            cancelled_ = cancel != FALSE;
            return S_OK;
        });
    }
    HRESULT STDMETHODCALLTYPE get_NavigationId(UINT64* navigationId) override {
        return GuardedGet(navigationId, [&] { return start_.id; });
    }

  private:
    testbed::chromium::NavigationStart start_;
    bool cancelled_ = false;
};

class NavigationCompletedArguments
    : public ComObject<webview2::NotImplemented<ICoreWebView2NavigationCompletedEventArgs>,
                       ICoreWebView2NavigationCompletedEventArgs> {
  public:
    NavigationCompletedArguments(UINT64 id, bool success, COREWEBVIEW2_WEB_ERROR_STATUS status)
        : id_(id), success_(success), status_(status) {}

    HRESULT STDMETHODCALLTYPE get_IsSuccess(BOOL* isSuccess) override {
        return GuardedGet(isSuccess, [&] { return success_ ? TRUE : FALSE; });
    }
    HRESULT STDMETHODCALLTYPE get_WebErrorStatus(COREWEBVIEW2_WEB_ERROR_STATUS* webErrorStatus) override {
        return GuardedGet(webErrorStatus, [&] { return status_; });
    }
    HRESULT STDMETHODCALLTYPE get_NavigationId(UINT64* navigationId) override {
        return GuardedGet(navigationId, [&] { return id_; });
    }

  private:
    UINT64 id_;
    bool success_;
    COREWEBVIEW2_WEB_ERROR_STATUS status_;
};

} // namespace webview2_runtime
