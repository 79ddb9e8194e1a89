// Its attributes and components, and its end. What calls out may come back with the device destroyed.
#include "toolkit/dialog_device.h"

#include <algorithm>
#include <utility>

#include "toolkit/device_registry.h"
#include "toolkit/results.h"

namespace host_reference {

DialogDevice::DialogDevice(DialogDescription description) : description_(std::move(description)) {
    for (const WindowDescription& window : description_.windows) {
        components_.push_back({window, nullptr});
    }
}

int DialogDevice::Modify(const DialogAttributes& attributes) {
    if (attributes.title != nullptr) {
        title_ = attributes.title;
    }
    width_ = attributes.width != 0 ? attributes.width : width_;
    height_ = attributes.height != 0 ? attributes.height : height_;
    if (!managed_) {
        return kSuccess;
    }
    const auto self = shared_from_this();
    if (attributes.title != nullptr) {
        SetWindowTextW(window_, title_.c_str());
    }
    if (attributes.width != 0 || attributes.height != 0) {
        Resize(attributes.width, attributes.height);
    }
    return kSuccess;
}

void DialogDevice::Resize(int width, int height) {
    RECT now = {};
    GetWindowRect(window_, &now);
    SetWindowPos(window_, nullptr, 0, 0, width != 0 ? width : now.right - now.left,
                 height != 0 ? height : now.bottom - now.top, SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
}

ActionHandlers* DialogDevice::Handlers(int action) noexcept {
    switch (action) {
    case kUiActionClose:
        return &closeHandlers_;
    case kUiActionResize:
        return &resizeHandlers_;
    case kUiActionDestroy:
        return &destroyHandlers_;
    default:
        return nullptr;
    }
}

bool DialogDevice::HasComponent(std::string_view name) const noexcept {
    return std::any_of(components_.begin(), components_.end(),
                       [name](const Component& component) { return component.description.name == name; });
}

HWND DialogDevice::ComponentWindow(std::string_view name) const noexcept {
    const auto found =
        std::find_if(components_.begin(), components_.end(),
                     [name](const Component& component) { return component.description.name == name; });
    return found != components_.end() ? found->window : nullptr;
}

void DialogDevice::Destroy() {
    const auto self = shared_from_this();
    if (beingDestroyed_) {
        return;
    }
    BeginDestruction();
    if (window_ != nullptr) {
        DestroyWindow(window_);
    }
    DeviceRegistry::Instance().ForgetDialog(*this);
}

void DialogDevice::BeginDestruction() {
    if (std::exchange(beingDestroyed_, true)) {
        return;
    }
    loop_.End();
    if (const ActionHandlers::List handlers = destroyHandlers_.Take()) {
        for (const ActionHandler& handler : *handlers) {
            handler.callback(handler.context);
        }
    }
    // As long as the window is there: once it has gone, the system makes some other window the active one, be it another
    // program's.
    ReleaseOwner();
}

/// A handler that destroys the device is its last: the contexts of the others may have gone with it.
void DialogDevice::CallHandlers(const ActionHandlers& handlers) const {
    if (const ActionHandlers::List list = handlers.Current()) {
        for (const ActionHandler& handler : *list) {
            if (beingDestroyed_) {
                return;
            }
            handler.callback(handler.context);
        }
    }
}

} // namespace host_reference
