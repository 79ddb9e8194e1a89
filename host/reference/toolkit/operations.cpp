// Operations on components. So far a device has one component: its window, under the device's own name.
#include <windows.h>

#include <string_view>

#include "toolkit/device_registry.h"
#include "toolkit/results.h"
#include "ui/ui.h"

int ui_do_operation(const char* device, const char* component, int operation, int /*input*/, void* output,
                    int /*end*/) {
    using namespace host_reference;

    if (device == nullptr || component == nullptr || output == nullptr) {
        return kMissingArgument;
    }
    HWND window = DeviceRegistry::Instance().Find(device);
    if (window == nullptr) {
        return kUnknownDevice;
    }
    if (std::string_view(component) != device) {
        return kUnknownComponent;
    }
    if (operation != kUiOperationGetNativeWindow) {
        return kUnknownOperation;
    }
    *static_cast<HWND*>(output) = window;
    return kSuccess;
}
