// Found by an address of this code, so that no entry point has to keep it.
#include "module.h"

#include <windows.h>

namespace webview2_runtime {

void KeepModuleLoaded() {
    HMODULE module = nullptr;
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_PIN,
                       reinterpret_cast<LPCWSTR>(&KeepModuleLoaded), &module);
}

} // namespace webview2_runtime
