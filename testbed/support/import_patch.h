// Redirects what a loaded module imports, from outside and without the module's help.
#pragma once

#include <windows.h>

namespace testbed {

/// Makes a module call `replacement` wherever it calls a function that it imports.
///
/// @param module a module that is loaded in this process; null is allowed and imports nothing.
/// @param library the DLL as the module's import table names it; upper and lower case are the same.
/// @param function the imported name. Imports by ordinal alone are not found.
/// @param replacement a function of the same signature, which has to stay loaded for as long as the module.
/// @return what the module called before, or null if it imports no such function; then nothing has changed.
///
/// The slot is swapped atomically, so other threads may call the function meanwhile. Two threads must not patch at once.
void* PatchImport(HMODULE module, const char* library, const char* function, void* replacement);

} // namespace testbed
