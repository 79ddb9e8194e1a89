// The window of a dialog, and what its messages mean to the device.
#include <utility>

#include "toolkit/arrangement.h"
#include "toolkit/boundary.h"
#include "toolkit/device_registry.h"
#include "toolkit/dialog_device.h"
#include "toolkit/module.h"
#include "toolkit/naked_window.h"

namespace host_reference {

namespace {

constexpr const wchar_t* kDialogClassName = L"HostReferenceDialog";

/// The system draws a close button only beside a system menu; without an icon the menu has no button of its own.
DWORD StyleOf(const DialogDescription& description) {
    const bool systemMenu = description.systemMenuButton || description.closeButton;
    return WS_POPUP | WS_CAPTION | WS_THICKFRAME | WS_CLIPCHILDREN | (systemMenu ? WS_SYSMENU : 0);
}

DWORD ExtendedStyleOf(const DialogDescription& description) {
    return (description.alwaysOnTop ? WS_EX_TOPMOST : 0) |
           (description.systemMenuButton ? 0 : WS_EX_DLGMODALFRAME);
}

void SetIcon(HWND window, WPARAM which, const UniqueIcon& icon) {
    HICON shown = icon ? icon.get() : LoadIconW(nullptr, IDI_APPLICATION);
    SendMessageW(window, WM_SETICON, which, reinterpret_cast<LPARAM>(shown));
}

} // namespace

int DialogDevice::Manage() {
    if (window_ != nullptr || beingDestroyed_) {
        return kWrongOrder;
    }
    const auto self = shared_from_this();
    const int result = Guarded([this] {
        if (!CreateWindows()) {
            return kSystemRefused;
        }
        SetIcons();
        LayOut();
        return kSuccess;
    });
    managed_ = result == kSuccess;
    if (!managed_) {
        DestroyWindow(window_);
    }
    return result;
}

bool DialogDevice::CreateWindows() {
    static const bool registered =
        RegisterWindowClass(kDialogClassName, WindowProcedure, GetSysColorBrush(COLOR_BTNFACE), nullptr);
    if (!registered) {
        return false;
    }
    // The procedure stores the handle as soon as there is one, and forgets it if that window does not come to be.
    HWND made =
        CreateWindowExW(ExtendedStyleOf(description_), kDialogClassName, title_.c_str(),
                        StyleOf(description_), 0, 0, width_, height_, nullptr, nullptr, PinnedModule(), this);
    if (made == nullptr) {
        return false;
    }
    if (!description_.closeButton && description_.systemMenuButton) {
        EnableMenuItem(GetSystemMenu(window_, FALSE), SC_CLOSE, MF_BYCOMMAND | MF_GRAYED);
    }
    for (Component& component : components_) {
        component.window = CreateNakedWindow(window_, component.description.keyboardInput);
        if (component.window == nullptr) {
            return false;
        }
    }
    return true;
}

void DialogDevice::SetIcons() {
    if (!description_.systemMenuButton) {
        return;
    }
    largeIcon_ = LoadIconFile(description_.bitmap, GetSystemMetrics(SM_CXICON), GetSystemMetrics(SM_CYICON));
    smallIcon_ = LoadIconFile(description_.titleBarImage, GetSystemMetrics(SM_CXSMICON),
                              GetSystemMetrics(SM_CYSMICON));
    SetIcon(window_, ICON_BIG, largeIcon_);
    SetIcon(window_, ICON_SMALL, smallIcon_);
}

void DialogDevice::LayOut() {
    RECT client = {};
    GetClientRect(window_, &client);
    client_ = {client.right, client.bottom};
    const std::vector<Area> areas = Arrange(description_, client.right, client.bottom);
    for (std::size_t i = 0; i < areas.size(); ++i) {
        const auto& [horizontal, vertical] = areas[i];
        if (components_[i].window != nullptr) {
            SetWindowPos(components_[i].window, nullptr, horizontal.begin, vertical.begin,
                         horizontal.end - horizontal.begin, vertical.end - vertical.begin,
                         SWP_NOZORDER | SWP_NOACTIVATE);
        }
    }
}

LRESULT CALLBACK DialogDevice::WindowProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_NCCREATE) {
        auto* const device =
            static_cast<DialogDevice*>(reinterpret_cast<const CREATESTRUCTW*>(lParam)->lpCreateParams);
        device->window_ = window;
        SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(device));
    }
    auto* const device = reinterpret_cast<DialogDevice*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    if (device == nullptr) {
        return DefWindowProcW(window, message, wParam, lParam);
    }
    const auto holdsIt = device->shared_from_this();
    return device->HandleMessage(message, wParam, lParam);
}

LRESULT DialogDevice::HandleMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    HWND window = window_;
    switch (message) {
    case WM_SYSCOMMAND:
        if ((wParam & 0xFFF0) == SC_CLOSE && !description_.closeButton) {
            return 0;
        }
        break;
    case WM_CLOSE:
        OnClose();
        return 0;
    case WM_SIZE:
        OnSize();
        break;
    case WM_ACTIVATE:
        if (LOWORD(wParam) == WA_INACTIVE) {
            OnDeactivate();
        }
        break;
    case WM_SETFOCUS:
        TakeFocus();
        return 0;
    case WM_PARENTNOTIFY:
        if (LOWORD(wParam) == WM_DESTROY) {
            ForgetComponent(reinterpret_cast<HWND>(lParam));
        }
        break;
    case WM_DESTROY:
        if (managed_) {
            BeginDestruction();
        }
        break;
    case WM_NCDESTROY:
        ForgetWindow();
        break;
    default:
        break;
    }
    return DefWindowProcW(window, message, wParam, lParam);
}

void DialogDevice::OnClose() {
    if (!closeHandlers_.Empty()) {
        CallHandlers(closeHandlers_);
        return;
    }
    Destroy();
}

void DialogDevice::OnSize() {
    RECT client = {};
    GetClientRect(window_, &client);
    const bool same = client.right == client_.cx && client.bottom == client_.cy;
    if (!managed_ || beingDestroyed_ || same || IsIconic(window_) != FALSE) {
        return;
    }
    // Without memory for it the components stay where they are; the window has its new size all the same.
    static_cast<void>(Guarded([this] {
        LayOut();
        return kSuccess;
    }));
    CallHandlers(resizeHandlers_);
}

void DialogDevice::OnDeactivate() noexcept {
    HWND focused = GetFocus();
    if (IsChild(window_, focused) != FALSE) {
        lastFocused_ = focused;
    }
}

void DialogDevice::TakeFocus() const {
    if (IsChild(window_, lastFocused_) != FALSE && IsWindowVisible(lastFocused_) != FALSE) {
        SetFocus(lastFocused_);
        return;
    }
    for (const Component& component : components_) {
        if (component.description.keyboardInput && component.window != nullptr) {
            SetFocus(component.window);
            return;
        }
    }
}

void DialogDevice::ForgetComponent(HWND window) noexcept {
    for (Component& component : components_) {
        if (component.window == window) {
            component.window = nullptr;
        }
    }
}

void DialogDevice::ForgetWindow() noexcept {
    SetWindowLongPtrW(window_, GWLP_USERDATA, 0);
    window_ = nullptr;
    for (Component& component : components_) {
        component.window = nullptr;
    }
    // One that could not be managed stays, and may be managed again.
    if (managed_) {
        DeviceRegistry::Instance().ForgetDialog(*this);
    }
}

} // namespace host_reference
