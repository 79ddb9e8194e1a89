// Found by an address of this code, so that no entry point has to keep it.
#include "module.h"

namespace webview2_runtime {
namespace {

HMODULE ModuleOfThisCode(DWORD flags) {
    HMODULE module = nullptr;
    GetModuleHandleExW(flags | GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS, reinterpret_cast<LPCWSTR>(&ThisModule),
                       &module);
    return module;
}

} // namespace

HINSTANCE ThisModule() {
    return ModuleOfThisCode(GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT);
}

void KeepModuleLoaded() {
    ModuleOfThisCode(GET_MODULE_HANDLE_EX_FLAG_PIN);
}

} // namespace webview2_runtime
