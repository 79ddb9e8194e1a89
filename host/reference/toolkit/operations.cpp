// Operations on components.
#include <windows.h>

#include <string_view>

#include "toolkit/device_registry.h"
#include "toolkit/dialog_device.h"
#include "toolkit/results.h"
#include "toolkit/toolkit_thread.h"
#include "ui/ui.h"

namespace host_reference {

namespace {

/// An owner device has one component: its window, under the device's own name.
int FindWindowOf(std::string_view device, std::string_view component, HWND& window) {
    const DeviceRegistry& registry = DeviceRegistry::Instance();
    const auto dialog = registry.FindDialog(device);
    window = dialog ? dialog->Window() : registry.FindOwner(device);
    if (!dialog && window == nullptr) {
        return kUnknownDevice;
    }
    if (component != device) {
        if (!dialog || !dialog->HasComponent(component)) {
            return kUnknownComponent;
        }
        window = dialog->ComponentWindow(component);
    }
    return window != nullptr ? kSuccess : kWrongOrder;
}

} // namespace

} // namespace host_reference

int ui_do_operation(const char* device, const char* component, int operation, int /*input*/, void* output,
                    int /*end*/) {
    using namespace host_reference;

    if (device == nullptr || component == nullptr || output == nullptr) {
        return kMissingArgument;
    }
    if (!IsToolkitThread()) {
        return kWrongThread;
    }
    HWND window = nullptr;
    const int result = FindWindowOf(device, component, window);
    if (result != kSuccess) {
        return result;
    }
    if (operation != kUiOperationGetNativeWindow) {
        return kUnknownOperation;
    }
    *static_cast<HWND*>(output) = window;
    return kSuccess;
}
