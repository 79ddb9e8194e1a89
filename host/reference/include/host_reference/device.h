// Devices that a small host makes for itself with the reference toolkit, where a real host has its own main window.
#pragma once

#include "ui/ui.h"

namespace host_reference {

/// Creates a visible top-level window and makes it known as a device. `title` is UTF-16.
/// The toolkit belongs to one thread, the one that pumps the windows' messages: call all of its functions there.
/// A window that the user closes takes its device with it.
/// @return 0, or another number where the name is null, empty or taken, or the window cannot be created.
HOST_TOOLKIT_API int CreateOwnerDevice(const char* name, const wchar_t* title);

/// Destroys the window and forgets the device. @return 0, or another number for an unknown device.
HOST_TOOLKIT_API int DestroyOwnerDevice(const char* name);

} // namespace host_reference
