// The devices there are, by name. It belongs to the thread that the toolkit is used on, and takes no lock.
#pragma once

#include <windows.h>

#include <functional>
#include <map>
#include <string>
#include <string_view>

namespace host_reference {

/// Knows windows, does not own them: a device is forgotten while its window is being destroyed.
class DeviceRegistry {
  public:
    /// The process's registry. It is never destroyed: a window may outlive the modules' static objects.
    static DeviceRegistry& Instance();

    /// @return the device's window, null where there is no such device.
    HWND Find(std::string_view name) const noexcept;

    /// `name` must be free. May throw std::bad_alloc.
    void Add(const char* name, HWND window);

    /// Forgets the device whose window this is; does nothing for a window that is none's.
    void Forget(HWND window) noexcept;

  private:
    DeviceRegistry() = default;

    std::map<std::string, HWND, std::less<>> windows_;
};

} // namespace host_reference
