// The window knows its watch by its user data, for as long as the watch has something to tell.
#include "parent_watch.h"

#include <system_error>
#include <utility>

#include "testbed/chromium/message_window.h"

namespace webview2_runtime {

ParentWatch::ParentWatch(HWND parent, std::function<void()> gone)
    : gone_(std::move(gone)),
      window_(CreateWindowExW(
          WS_EX_NOPARENTNOTIFY, testbed::chromium::RegisterWindowClass(L"KeldaTestRuntimeWatch", &Procedure),
          L"", WS_CHILD, 0, 0, 0, 0, parent, nullptr, testbed::chromium::ThisModule(), nullptr)) {
    if (window_ == nullptr) {
        throw std::system_error(static_cast<int>(GetLastError()), std::system_category());
    }
    SetWindowLongPtrW(window_, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
}

ParentWatch::~ParentWatch() {
    if (window_ != nullptr) {
        SetWindowLongPtrW(window_, GWLP_USERDATA, 0);
        DestroyWindow(window_);
    }
}

LRESULT CALLBACK ParentWatch::Procedure(HWND window, UINT message, WPARAM wide, LPARAM lparam) noexcept {
    auto* self = reinterpret_cast<ParentWatch*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    if (message == WM_DESTROY && self != nullptr) {
        self->window_ = nullptr;
        const auto gone = std::move(self->gone_);
        gone();
    }
    return DefWindowProcW(window, message, wide, lparam);
}

} // namespace webview2_runtime
