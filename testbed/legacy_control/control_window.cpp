// The view takes every key by itself, so its window procedure is replaced by one that keeps some of them away.
#include "control_window.h"

#include <algorithm>
#include <system_error>
#include <utility>

#include "testbed/chromium/message_window.h"

namespace legacy_control {
namespace {

constexpr const wchar_t* kOwner = L"KeldaLegacyControl";

/// Keys that the page has from `TranslateAccelerator` alone.
bool IsAccelerator(WPARAM key) {
    switch (key) {
    case VK_TAB:
    case VK_LEFT:
    case VK_UP:
    case VK_RIGHT:
    case VK_DOWN:
    case VK_SELECT:
    case VK_HOME:
    case VK_END:
    case VK_DELETE:
        return true;
    case 'A':
    case 'C':
    case 'V':
    case 'X':
    case 'Z':
        return GetKeyState(VK_CONTROL) < 0;
    default:
        return false;
    }
}

} // namespace

ControlWindow::ControlWindow(HWND parent, ControlWindowEvents events)
    : events_(std::move(events)),
      window_(CreateWindowExW(0, testbed::chromium::RegisterWindowClass(kOwner, &Procedure), nullptr,
                              WS_CHILD | WS_CLIPCHILDREN | WS_CLIPSIBLINGS, 0, 0, 0, 0, parent, nullptr,
                              testbed::chromium::ThisModule(), nullptr)) {
    if (window_ == nullptr) {
        throw std::system_error(static_cast<int>(GetLastError()), std::system_category());
    }
    SetWindowLongPtrW(window_, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
}

ControlWindow::~ControlWindow() {
    DropView();
    if (window_ != nullptr) {
        SetWindowLongPtrW(window_, GWLP_USERDATA, 0);
        DestroyWindow(window_);
    }
}

void ControlWindow::Show(testbed::chromium::Page& page) {
    DropView();
    view_ = std::make_unique<testbed::chromium::PageView>(page, window_);
    SetPropW(view_->Window(), kOwner, this);
    viewProcedure_ = reinterpret_cast<WNDPROC>(
        SetWindowLongPtrW(view_->Window(), GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&ViewProcedure)));
    FitView();
    view_->SetVisible(visible_);
    if (GetFocus() == window_) {
        view_->Focus();
    }
}

void ControlWindow::DropView() {
    if (view_ != nullptr && view_->Window() != nullptr) {
        SetWindowLongPtrW(view_->Window(), GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(viewProcedure_));
        RemovePropW(view_->Window(), kOwner);
    }
    const auto view = std::move(view_);
}

void ControlWindow::SetBounds(const RECT& bounds) const {
    SetWindowPos(window_, nullptr, bounds.left, bounds.top, std::max(bounds.right - bounds.left, 0L),
                 std::max(bounds.bottom - bounds.top, 0L), SWP_NOZORDER | SWP_NOACTIVATE);
}

void ControlWindow::FitView() const {
    if (view_ != nullptr) {
        RECT client{};
        GetClientRect(window_, &client);
        view_->SetBounds(client);
    }
}

void ControlWindow::SetVisible(bool visible) {
    visible_ = visible;
    // Whoever gets the focus of a hidden window may destroy this one.
    HWND window = window_;
    if (view_ != nullptr) {
        view_->SetVisible(visible);
    }
    ShowWindow(window, visible ? SW_SHOWNA : SW_HIDE);
}

void ControlWindow::Focus() const {
    SetFocus(view_ == nullptr ? window_ : view_->Window());
}

/// The page may not be there yet.
void ControlWindow::PassFocusOn() const {
    if (view_ != nullptr) {
        view_->Focus();
    } else {
        const auto focused = events_.focused;
        focused();
    }
}

bool ControlWindow::TakeKey(const MSG& message) {
    const bool isOurs = message.hwnd == window_ || IsChild(window_, message.hwnd) != FALSE;
    if (message.message != WM_KEYDOWN || !isOurs || view_ == nullptr || !IsAccelerator(message.wParam)) {
        return false;
    }
    takingKey_ = true;
    SendMessageW(view_->Window(), message.message, message.wParam, message.lParam);
    takingKey_ = false;
    return true;
}

LRESULT CALLBACK ControlWindow::Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) noexcept {
    auto* self = reinterpret_cast<ControlWindow*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    if (self != nullptr) {
        switch (message) {
        case WM_SIZE:
            self->FitView();
            return 0;
        case WM_SETFOCUS:
            self->PassFocusOn();
            return 0;
        case WM_NCDESTROY: {
            self->window_ = nullptr;
            const auto gone = self->events_.gone;
            gone();
            break;
        }
        default:
            break;
        }
    }
    return DefWindowProcW(window, message, wParam, lParam);
}

LRESULT CALLBACK ControlWindow::ViewProcedure(HWND view, UINT message, WPARAM wParam,
                                              LPARAM lParam) noexcept {
    auto* self = static_cast<ControlWindow*>(GetPropW(view, kOwner));
    if (self == nullptr) {
        return DefWindowProcW(view, message, wParam, lParam);
    }
    if (message == WM_KEYDOWN && !self->takingKey_ && IsAccelerator(wParam)) {
        return 0;
    }
    const WNDPROC procedure = self->viewProcedure_;
    if (message == WM_NCDESTROY) {
        RemovePropW(view, kOwner);
    }
    const auto focused = message == WM_SETFOCUS ? self->events_.focused : std::function<void()>();
    const LRESULT result = CallWindowProcW(procedure, view, message, wParam, lParam);
    if (focused) {
        focused();
    }
    return result;
}

} // namespace legacy_control
