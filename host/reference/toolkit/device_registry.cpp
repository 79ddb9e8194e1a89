// A short list of names.
#include "toolkit/device_registry.h"

#include <algorithm>
#include <utility>

#include "toolkit/dialog_device.h"

namespace host_reference {

DeviceRegistry& DeviceRegistry::Instance() {
    static DeviceRegistry& registry = *new DeviceRegistry;
    return registry;
}

HWND DeviceRegistry::Entry::Window() const noexcept {
    return dialog ? dialog->Window() : owner;
}

const DeviceRegistry::Entry* DeviceRegistry::Find(std::string_view name) const noexcept {
    const auto found = std::find_if(entries_.begin(), entries_.end(),
                                    [name](const Entry& entry) { return entry.name == name; });
    return found != entries_.end() ? &*found : nullptr;
}

bool DeviceRegistry::Knows(std::string_view name) const noexcept {
    return Find(name) != nullptr;
}

HWND DeviceRegistry::FindOwner(std::string_view name) const noexcept {
    const Entry* const entry = Find(name);
    return entry != nullptr ? entry->owner : nullptr;
}

std::shared_ptr<DialogDevice> DeviceRegistry::FindDialog(std::string_view name) const noexcept {
    const Entry* const entry = Find(name);
    return entry != nullptr ? entry->dialog : nullptr;
}

HWND DeviceRegistry::FindOwnerFor(const DialogDevice& dialog) const noexcept {
    HWND active = GetActiveWindow();
    HWND latest = nullptr;
    for (const Entry& entry : entries_) {
        HWND window = entry.Window();
        if (window == nullptr || window == dialog.Window() || !IsWindowVisible(window)) {
            continue;
        }
        if (window == active) {
            return window;
        }
        latest = window;
    }
    return latest;
}

void DeviceRegistry::AddOwner(const char* name, HWND window) {
    entries_.push_back({name, window, nullptr});
}

void DeviceRegistry::AddDialog(const char* name, std::shared_ptr<DialogDevice> dialog) {
    entries_.push_back({name, nullptr, std::move(dialog)});
}

void DeviceRegistry::ForgetOwner(HWND window) noexcept {
    std::erase_if(entries_, [window](const Entry& entry) { return entry.owner == window; });
}

void DeviceRegistry::ForgetDialog(const DialogDevice& dialog) noexcept {
    std::erase_if(entries_, [&dialog](const Entry& entry) { return entry.dialog.get() == &dialog; });
}

} // namespace host_reference
