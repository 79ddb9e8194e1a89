// This module, as the system calls back into it.
#pragma once

#include <windows.h>

namespace host_reference {

/// The module's handle. From the first call on, the module stays loaded until the process ends: window classes and timers
/// keep addresses in it.
HMODULE PinnedModule();

/// Registers a class of windows with that procedure, without an icon, for the rest of the process.
bool RegisterWindowClass(const wchar_t* name, WNDPROC procedure, HBRUSH background, HICON icon);

} // namespace host_reference
