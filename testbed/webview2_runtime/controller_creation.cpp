// The creation lives in the callback that waits for the page; a small child window tells it when the parent goes.
#include "controller_creation.h"

#include <memory>
#include <new>
#include <system_error>
#include <utility>

#include "controller.h"
#include "engine_error.h"
#include "environment.h"
#include "parent_watch.h"

namespace webview2_runtime {
namespace {

using Microsoft::WRL::ComPtr;
using testbed::chromium::Page;
using testbed::chromium::PageView;
using ControllerHandler = ICoreWebView2CreateCoreWebView2ControllerCompletedHandler;

class ControllerCreation {
  public:
    ControllerCreation(Environment& environment, HWND parent, ControllerHandler* handler)
        : parent_(parent),
          environment_(&environment),
          handler_(handler),
          webView_(MakeObject<WebView>(&environment)),
          watch_(parent, [this] { Complete(E_ABORT, nullptr); }) {}

    WebView& View() const { return *webView_.Get(); }

    void OnPage(std::unique_ptr<Page> page, DWORD error) noexcept {
        if (!handler_) {
            return; // completed already, with the parent's end
        }
        ComPtr<Controller> controller;
        HRESULT result = error == ERROR_SUCCESS ? S_OK : ResultOfEngineError(error);
        if (page) {
            try {
                auto view = std::make_unique<PageView>(*page, parent_);
                webView_->Open(std::move(page));
                controller = MakeObject<Controller>(webView_, std::move(view), parent_);
            } catch (const std::system_error& problem) {
                result = HRESULT_FROM_WIN32(static_cast<DWORD>(problem.code().value()));
            } catch (const std::bad_alloc&) {
                result = E_OUTOFMEMORY;
            }
        }
        Complete(result, controller.Get());
    }

  private:
    void Complete(HRESULT result, ICoreWebView2Controller* controller) noexcept {
        ComPtr<ControllerHandler> handler;
        handler.Swap(handler_);
        if (handler) {
            handler->Invoke(result, controller);
        }
    }

    HWND parent_;
    ComPtr<Environment> environment_;
    ComPtr<ControllerHandler> handler_; // null once it was called
    ComPtr<WebView> webView_;
    ParentWatch watch_;
};

} // namespace

HRESULT CreateController(Environment& environment, HWND parent, bool inPrivate, ControllerHandler* handler) {
    if (handler == nullptr) {
        return E_POINTER;
    }
    if (IsWindow(parent) == FALSE) {
        return HRESULT_FROM_WIN32(ERROR_INVALID_WINDOW_HANDLE);
    }
    const auto creation = std::make_shared<ControllerCreation>(environment, parent, handler);
    environment.Browser().CreatePage(
        inPrivate, creation->View().Client(),
        [creation](std::unique_ptr<Page> page, DWORD error) { creation->OnPage(std::move(page), error); });
    return S_OK;
}

} // namespace webview2_runtime
