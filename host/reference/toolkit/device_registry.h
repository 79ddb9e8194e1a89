// The devices there are, by name. It belongs to the thread that the toolkit is used on, and takes no lock.
#pragma once

#include <windows.h>

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace host_reference {

class DialogDevice;

/// Owner devices are windows, which it knows and does not own: one is forgotten while its window is being destroyed. Dialogs
/// it owns until they are forgotten; whoever calls a dialog that may be destroyed meanwhile holds it too.
class DeviceRegistry {
  public:
    /// The process's registry. It is never destroyed: a window may outlive the modules' static objects.
    static DeviceRegistry& Instance();

    bool Knows(std::string_view name) const noexcept;

    /// @return the window of the owner device of that name, null where there is none.
    HWND FindOwner(std::string_view name) const noexcept;

    /// @return the dialog of that name, null where there is none.
    std::shared_ptr<DialogDevice> FindDialog(std::string_view name) const noexcept;

    /// The device over which `dialog` is to be modal: the thread's active window if it is a device's, else the device that
    /// was made last of those that are seen. Null where there is none.
    HWND FindOwnerFor(const DialogDevice& dialog) const noexcept;

    /// `name` must be free. Both may throw std::bad_alloc.
    void AddOwner(const char* name, HWND window);
    void AddDialog(const char* name, std::shared_ptr<DialogDevice> dialog);

    /// Both do nothing for what is not known.
    void ForgetOwner(HWND window) noexcept;
    void ForgetDialog(const DialogDevice& dialog) noexcept;

  private:
    struct Entry {
        std::string name;
        HWND owner = nullptr; ///< Null for a dialog.
        std::shared_ptr<DialogDevice> dialog;

        HWND Window() const noexcept;
    };

    DeviceRegistry() = default;

    const Entry* Find(std::string_view name) const noexcept;

    std::vector<Entry> entries_; ///< In the order in which they were made. There are a handful.
};

} // namespace host_reference
