// The exported functions for dialogs: they find the device and check what they are given.
#include <cstdarg>
#include <memory>

#include "dp/merido_tracer.h"
#include "toolkit/boundary.h"
#include "toolkit/device_registry.h"
#include "toolkit/dialog_description.h"
#include "toolkit/dialog_device.h"
#include "toolkit/toolkit_thread.h"
#include "ui/ui.h"

namespace host_reference {

namespace {

/// Calls `function` with the dialog of that name.
template <typename Function>
int WithDialog(const char* device, Function function) {
    return Guarded([&] {
        if (device == nullptr) {
            return kMissingArgument;
        }
        if (!IsToolkitThread()) {
            return kWrongThread;
        }
        const auto dialog = DeviceRegistry::Instance().FindDialog(device);
        return dialog ? function(*dialog) : kUnknownDevice;
    });
}

/// Attributes and actions are the device's; its components have none.
int CheckComponent(const DialogDevice& dialog, std::string_view device, std::string_view component,
                   int none) {
    if (component == device) {
        return kSuccess;
    }
    return dialog.HasComponent(component) ? none : kUnknownComponent;
}

int CreateDialogDevice(const char* device, const char* dialog, const char* description) {
    if (device == nullptr || *device == '\0' || dialog == nullptr || description == nullptr) {
        return kMissingArgument;
    }
    if (!IsToolkitThread()) {
        return kWrongThread;
    }
    DeviceRegistry& registry = DeviceRegistry::Instance();
    if (registry.Knows(device)) {
        return kNameTaken;
    }
    try {
        registry.AddDialog(device, std::make_shared<DialogDevice>(ReadDialog(description, dialog)));
    } catch (const DescriptionError& error) {
        static const dp::MeridoTracer tracer("host", "Toolkit");
        tracer(dp::TraceType::Failure) << "description, line " << error.Line() << ": " << error.what();
        return kBadDescription;
    }
    return kSuccess;
}

int ReadExtent(int value, int& extent) {
    extent = value;
    return value > 0 && value <= kLargestNumber ? kSuccess : kValueOutOfRange;
}

/// Reads a whole list before anything is changed. After an unknown code it cannot be read on: the type of its value is not
/// known.
int ReadAttributes(va_list list, DialogAttributes& attributes) {
    for (;;) {
        int result = kSuccess;
        switch (va_arg(list, int)) {
        case 0:
            return kSuccess;
        case kUiAttributeTitle:
            attributes.title = va_arg(list, const wchar_t*);
            result = attributes.title != nullptr ? kSuccess : kMissingArgument;
            break;
        case kUiAttributeWidth:
            result = ReadExtent(va_arg(list, int), attributes.width);
            break;
        case kUiAttributeHeight:
            result = ReadExtent(va_arg(list, int), attributes.height);
            break;
        default:
            result = kUnknownAttribute;
            break;
        }
        if (result != kSuccess) {
            return result;
        }
    }
}

/// Finds the handlers of a device's action and changes them by `change`.
template <typename Change>
int ChangeHandlers(const char* device, const char* component, int action, UiCallback callback,
                   Change change) {
    if (component == nullptr || callback == nullptr) {
        return kMissingArgument;
    }
    return WithDialog(device, [&](DialogDevice& dialog) {
        const int result = CheckComponent(dialog, device, component, kUnknownAction);
        if (result != kSuccess) {
            return result;
        }
        ActionHandlers* const handlers = dialog.Handlers(action);
        if (handlers == nullptr) {
            return kUnknownAction;
        }
        change(*handlers);
        return kSuccess;
    });
}

} // namespace

} // namespace host_reference

using namespace host_reference;

int ui_create_device_from_string(const char* device, const char* dialog, const char* description) {
    return Guarded([&] { return CreateDialogDevice(device, dialog, description); });
}

int ui_modify(const char* device, const char* component, ...) {
    if (component == nullptr) {
        return kMissingArgument;
    }
    va_list list{};
    va_start(list, component);
    DialogAttributes attributes;
    const int read = ReadAttributes(list, attributes);
    va_end(list);
    return WithDialog(device, [&](DialogDevice& dialog) {
        const int result = CheckComponent(dialog, device, component, kUnknownAttribute);
        if (result != kSuccess || read != kSuccess) {
            return result != kSuccess ? result : read;
        }
        return dialog.Modify(attributes);
    });
}

int ui_add_action(const char* device, const char* component, int action, UiCallback callback, void* context,
                  int /*end*/) {
    return ChangeHandlers(device, component, action, callback, [&](ActionHandlers& handlers) {
        handlers.Add({callback, context});
    });
}

int ui_set_action(const char* device, const char* component, int action, UiCallback callback, void* context,
                  int /*end*/) {
    return ChangeHandlers(device, component, action, callback, [&](ActionHandlers& handlers) {
        handlers.Set({callback, context});
    });
}

int ui_manage_device(const char* device) {
    return WithDialog(device, [](DialogDevice& dialog) { return dialog.Manage(); });
}

int ui_activate_device(const char* device) {
    return WithDialog(device, [](DialogDevice& dialog) { return dialog.Activate(); });
}

int ui_exit_device(const char* device, int /*result*/) {
    return WithDialog(device, [](DialogDevice& dialog) { return dialog.Exit(); });
}

int ui_destroy_device(const char* device) {
    return WithDialog(device, [](DialogDevice& dialog) {
        dialog.Destroy();
        return kSuccess;
    });
}
