// Message-only windows and what is posted to them.
#include "testbed/chromium/message_window.h"

#include <memory>
#include <system_error>
#include <utility>

namespace testbed::chromium {
namespace {

constexpr UINT kWake = WM_APP;

} // namespace

HINSTANCE ThisModule() {
    HMODULE module = nullptr;
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                       reinterpret_cast<LPCWSTR>(&ThisModule), &module);
    return module;
}

LPCWSTR RegisterWindowClass(const wchar_t* name, WNDPROC procedure, UINT style) {
    WNDCLASSEXW definition{};
    definition.cbSize = sizeof(definition);
    definition.style = style;
    definition.lpfnWndProc = procedure;
    definition.hInstance = ThisModule();
    definition.hCursor = LoadCursorW(nullptr, IDC_ARROW);
    definition.lpszClassName = name;
    // Fails when it is registered already, which is as good.
    RegisterClassExW(&definition);
    return name;
}

MessageWindow::MessageWindow(std::function<void()> woken)
    : woken_(std::move(woken)),
      window_(CreateWindowExW(0, RegisterWindowClass(L"TestbedChromiumMessages", &Procedure), nullptr, 0, 0,
                              0, 0, 0, HWND_MESSAGE, nullptr, ThisModule(), nullptr)) {
    if (window_ == nullptr) {
        throw std::system_error(static_cast<int>(GetLastError()), std::system_category());
    }
    SetWindowLongPtrW(window_, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
}

MessageWindow::~MessageWindow() {
    SetWindowLongPtrW(window_, GWLP_USERDATA, 0);
    DestroyWindow(window_);
}

bool MessageWindow::Wake() const {
    return PostMessageW(window_, kWake, 0, 0) != FALSE;
}

LRESULT CALLBACK MessageWindow::Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) noexcept {
    if (message != kWake) {
        return DefWindowProcW(window, message, wParam, lParam);
    }
    const auto* self = reinterpret_cast<MessageWindow*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    if (self != nullptr) {
        const std::function<void()> woken = self->woken_;
        woken();
    }
    return 0;
}

void CallLater(std::function<void()> function) {
    // The window lives in its own function, until that has been called.
    auto owner = std::make_shared<std::unique_ptr<MessageWindow>>();
    *owner = std::make_unique<MessageWindow>([owner, function = std::move(function)] {
        const std::unique_ptr<MessageWindow> window = std::move(*owner);
        function();
    });
    (*owner)->Wake();
}

} // namespace testbed::chromium
