// The listener is kept in the window's user data, until it has heard the last.
#include "listener_window.h"

#include <system_error>

#include "module.h"

namespace webview2_runtime {
namespace {

constexpr wchar_t kClassName[] = L"KeldaTestRuntimeListener";

LRESULT CALLBACK ListenerProcedure(HWND window, UINT message, WPARAM wide, LPARAM lparam) {
    auto* listener = reinterpret_cast<WindowListener*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    if (message == WM_NCCREATE) {
        const auto* creation = reinterpret_cast<const CREATESTRUCTW*>(lparam);
        SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(creation->lpCreateParams));
    } else if (listener != nullptr && message == kListenerMessage) {
        listener->OnPosted();
    } else if (listener != nullptr && message == WM_DESTROY) {
        SetWindowLongPtrW(window, GWLP_USERDATA, 0);
        listener->OnDestroyed();
    }
    return DefWindowProcW(window, message, wide, lparam);
}

ATOM RegisterListenerClass() {
    WNDCLASSW description{};
    description.lpfnWndProc = ListenerProcedure;
    description.hInstance = ThisModule();
    description.lpszClassName = kClassName;
    return RegisterClassW(&description);
}

} // namespace

HWND MakeListenerWindow(HWND parent, WindowListener& listener) {
    static const ATOM windowClass = RegisterListenerClass();
    const DWORD style = parent == HWND_MESSAGE ? 0 : WS_CHILD;
    HWND window = CreateWindowExW(WS_EX_NOPARENTNOTIFY, MAKEINTATOM(windowClass), L"", style, 0, 0, 0, 0,
                                  parent, nullptr, ThisModule(), &listener);
    if (window == nullptr) {
        throw std::system_error(static_cast<int>(GetLastError()), std::system_category());
    }
    return window;
}

void DestroyListenerWindow(HWND window) {
    SetWindowLongPtrW(window, GWLP_USERDATA, 0);
    DestroyWindow(window);
}

} // namespace webview2_runtime
