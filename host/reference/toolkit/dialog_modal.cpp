// The modal life of a dialog: its owner is kept from taking input, messages are dispatched, the owner is active again.
#include <algorithm>
#include <utility>

#include "toolkit/device_registry.h"
#include "toolkit/dialog_device.h"
#include "toolkit/results.h"

namespace host_reference {

namespace {

RECT WorkAreaOf(HWND window) {
    MONITORINFO monitor = {};
    monitor.cbSize = sizeof(monitor);
    GetMonitorInfoW(MonitorFromWindow(window, MONITOR_DEFAULTTOPRIMARY), &monitor);
    return monitor.rcWork;
}

/// Where an extent begins that is in the middle of `around`, as far as the work area allows; its beginning is always seen.
LONG Centred(LONG extent, LONG aroundBegin, LONG aroundEnd, LONG workBegin, LONG workEnd) {
    const LONG begin = aroundBegin + (aroundEnd - aroundBegin - extent) / 2;
    return std::max(workBegin, std::min(begin, workEnd - extent));
}

/// Whether it is the dialog or a window that goes with it, such as a list that has been opened in it.
bool BelongsTo(HWND window, HWND dialog) {
    while (window != nullptr && window != dialog) {
        window = GetWindow(window, GW_OWNER);
    }
    return window != nullptr;
}

void SetOwner(HWND window, HWND owner) {
    SetWindowLongPtrW(window, GWLP_HWNDPARENT, reinterpret_cast<LONG_PTR>(owner));
}

} // namespace

int DialogDevice::Activate() {
    if (!managed_ || active_ || beingDestroyed_) {
        return kWrongOrder;
    }
    const auto self = shared_from_this();
    owner_ = DeviceRegistry::Instance().FindOwnerFor(*this);
    active_ = true;
    loop_.Start();
    try {
        ownerLock_ = std::make_unique<InputLock>(owner_);
    } catch (...) {
        active_ = false;
        throw;
    }
    SetOwner(window_, owner_);
    CentreOver(owner_);
    ShowWindow(window_, SW_SHOW);
    loop_.Run();

    active_ = false;
    ReleaseOwner();
    if (!beingDestroyed_) {
        ShowWindow(window_, SW_HIDE);
        // Else the owner would take the idle dialog with it when it goes.
        SetOwner(window_, nullptr);
    }
    return kSuccess;
}

/// The result that a caller gives is not kept: nobody can ask for it.
int DialogDevice::Exit() noexcept {
    if (!active_) {
        return kWrongOrder;
    }
    loop_.End();
    return kSuccess;
}

void DialogDevice::CentreOver(HWND owner) const {
    const RECT work = WorkAreaOf(owner);
    RECT around = work;
    RECT own = {};
    if (owner != nullptr && IsIconic(owner) == FALSE) {
        GetWindowRect(owner, &around);
    }
    GetWindowRect(window_, &own);
    SetWindowPos(window_, nullptr,
                 Centred(own.right - own.left, around.left, around.right, work.left, work.right),
                 Centred(own.bottom - own.top, around.top, around.bottom, work.top, work.bottom), 0, 0,
                 SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
}

void DialogDevice::ReleaseOwner() {
    if (!ownerLock_) {
        return;
    }
    ownerLock_.reset();
    if (BelongsTo(GetActiveWindow(), window_) && IsWindowEnabled(owner_) != FALSE) {
        SetActiveWindow(owner_);
    }
}

} // namespace host_reference
