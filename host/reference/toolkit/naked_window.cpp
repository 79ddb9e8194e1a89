// Its window procedure: all that it does is about the focus.
#include "toolkit/naked_window.h"

#include "toolkit/module.h"

namespace host_reference {

namespace {

constexpr const wchar_t* kNakedWindowClassName = L"HostReferenceNakedWindow";

/// Sent to itself when a child has been announced, which cannot take the focus while it is still being made.
constexpr UINT kChildIsThere = WM_APP;

void HandFocusOn(HWND window) {
    HWND child = GetWindow(window, GW_CHILD);
    // A child that is not shown yet gets it as well: browsers are made hidden.
    if (child != nullptr && GetFocus() == window) {
        SetFocus(child);
    }
}

LRESULT CALLBACK NakedWindowProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
    case WM_NCCREATE:
        SetWindowLongPtrW(
            window, GWLP_USERDATA,
            reinterpret_cast<LONG_PTR>(reinterpret_cast<const CREATESTRUCTW*>(lParam)->lpCreateParams));
        break;
    case WM_LBUTTONDOWN:
        if (GetWindowLongPtrW(window, GWLP_USERDATA) != 0) {
            SetFocus(window);
        }
        return 0;
    case WM_SETFOCUS:
        HandFocusOn(window);
        return 0;
    case WM_PARENTNOTIFY:
        if (LOWORD(wParam) == WM_CREATE) {
            PostMessageW(window, kChildIsThere, 0, 0);
        }
        break;
    case kChildIsThere:
        HandFocusOn(window);
        return 0;
    default:
        break;
    }
    return DefWindowProcW(window, message, wParam, lParam);
}

} // namespace

HWND CreateNakedWindow(HWND parent, bool keyboardInput) {
    static const bool registered =
        RegisterWindowClass(kNakedWindowClassName, NakedWindowProcedure,
                            static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH)), nullptr);
    if (!registered) {
        return nullptr;
    }
    // The parameter is only told from null.
    return CreateWindowExW(0, kNakedWindowClassName, nullptr,
                           WS_CHILD | WS_VISIBLE | WS_CLIPCHILDREN | WS_CLIPSIBLINGS, 0, 0, 0, 0, parent,
                           nullptr, PinnedModule(), keyboardInput ? parent : nullptr);
}

} // namespace host_reference
