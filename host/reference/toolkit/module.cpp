// Found by an address within it, so that its file may have any name.
#include "toolkit/module.h"

namespace host_reference {

namespace {

HMODULE PinModule() {
    static constexpr wchar_t kAnyOfOurs = L'\0';
    HMODULE module = nullptr;
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_PIN, &kAnyOfOurs,
                       &module);
    return module;
}

} // namespace

HMODULE PinnedModule() {
    static HMODULE module = PinModule();
    return module;
}

bool RegisterWindowClass(const wchar_t* name, WNDPROC procedure, HBRUSH background, HICON icon) {
    WNDCLASSEXW windowClass = {};
    windowClass.cbSize = sizeof(windowClass);
    windowClass.lpfnWndProc = procedure;
    windowClass.hInstance = PinnedModule();
    windowClass.hIcon = icon;
    windowClass.hCursor = LoadCursorW(nullptr, IDC_ARROW);
    windowClass.hbrBackground = background;
    windowClass.lpszClassName = name;
    return RegisterClassExW(&windowClass) != 0;
}

} // namespace host_reference
