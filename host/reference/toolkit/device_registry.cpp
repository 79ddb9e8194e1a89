// A map from names to windows.
#include "toolkit/device_registry.h"

namespace host_reference {

DeviceRegistry& DeviceRegistry::Instance() {
    static DeviceRegistry& registry = *new DeviceRegistry;
    return registry;
}

HWND DeviceRegistry::Find(std::string_view name) const noexcept {
    const auto device = windows_.find(name);
    return device != windows_.end() ? device->second : nullptr;
}

void DeviceRegistry::Add(const char* name, HWND window) {
    windows_.emplace(name, window);
}

void DeviceRegistry::Forget(HWND window) noexcept {
    std::erase_if(windows_, [window](const auto& device) { return device.second == window; });
}

} // namespace host_reference
