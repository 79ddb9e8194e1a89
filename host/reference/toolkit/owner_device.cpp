// A plain top-level window as a device: what stands in for the host's main window.
#include <windows.h>

#include <memory>
#include <new>

#include "host_reference/device.h"
#include "toolkit/device_registry.h"
#include "toolkit/module.h"
#include "toolkit/results.h"
#include "toolkit/toolkit_thread.h"

namespace host_reference {

namespace {

constexpr const wchar_t* kWindowClassName = L"HostReferenceOwnerDevice";
constexpr int kWidth = 640;
constexpr int kHeight = 480;

struct WindowDestroyer {
    void operator()(HWND window) const noexcept { DestroyWindow(window); }
};
using UniqueWindow = std::unique_ptr<HWND__, WindowDestroyer>;

LRESULT CALLBACK OwnerWindowProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    // The last message that a window gets, whichever way it goes: destroyed by us or closed by the user.
    if (message == WM_NCDESTROY) {
        DeviceRegistry::Instance().ForgetOwner(window);
    }
    return DefWindowProcW(window, message, wParam, lParam);
}

UniqueWindow CreateOwnerWindow(const wchar_t* title) {
    static const bool registered =
        RegisterWindowClass(kWindowClassName, OwnerWindowProcedure, GetSysColorBrush(COLOR_WINDOW),
                            LoadIconW(nullptr, IDI_APPLICATION));
    if (!registered) {
        return nullptr;
    }
    return UniqueWindow(CreateWindowExW(0, kWindowClassName, title, WS_OVERLAPPEDWINDOW, CW_USEDEFAULT,
                                        CW_USEDEFAULT, kWidth, kHeight, nullptr, nullptr, PinnedModule(),
                                        nullptr));
}

} // namespace

int CreateOwnerDevice(const char* name, const wchar_t* title) {
    if (name == nullptr || *name == '\0') {
        return kMissingArgument;
    }
    if (!IsToolkitThread()) {
        return kWrongThread;
    }
    DeviceRegistry& registry = DeviceRegistry::Instance();
    if (registry.Knows(name)) {
        return kNameTaken;
    }
    UniqueWindow window = CreateOwnerWindow(title);
    if (!window) {
        return kSystemRefused;
    }
    try {
        registry.AddOwner(name, window.get());
    } catch (const std::bad_alloc&) {
        return kOutOfMemory;
    }
    // From here on the window belongs to itself: it goes when it is closed or its device is destroyed.
    ShowWindow(window.release(), SW_SHOWNORMAL);
    return kSuccess;
}

int DestroyOwnerDevice(const char* name) {
    if (name == nullptr) {
        return kMissingArgument;
    }
    if (!IsToolkitThread()) {
        return kWrongThread;
    }
    HWND window = DeviceRegistry::Instance().FindOwner(name);
    if (window == nullptr) {
        return kUnknownDevice;
    }
    return DestroyWindow(window) != FALSE ? kSuccess : kSystemRefused;
}

} // namespace host_reference
