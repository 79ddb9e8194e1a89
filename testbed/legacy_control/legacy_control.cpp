// Registers the class object, once for each thread.
#include "testbed/legacy_control/legacy_control.h"

#include <exdisp.h>
#include <objbase.h>

#include "class_object.h"
#include "com_object.h"

namespace legacy_control {
namespace {

/// What COM calls the registration; 0 if there is none.
thread_local DWORD registration = 0;

bool RunsOnWine() {
    HMODULE system = GetModuleHandleW(L"ntdll.dll");
    return system != nullptr && GetProcAddress(system, "wine_get_version") != nullptr;
}

/// Windows of this library's classes lead here, and Chromium's answers come as messages.
void StayLoaded() {
    HMODULE module = nullptr;
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_PIN,
                       reinterpret_cast<LPCWSTR>(&StayLoaded), &module);
}

HRESULT Register() noexcept {
    return WithoutExceptions([] {
        const auto factory = MakeClassObject([] { registration = 0; });
        return CoRegisterClassObject(CLSID_WebBrowser, factory.Get(), CLSCTX_INPROC_SERVER,
                                     REGCLS_MULTIPLEUSE, &registration);
    });
}

} // namespace
} // namespace legacy_control

bool SupplyLegacyControl() {
    if (!legacy_control::RunsOnWine()) {
        return false;
    }
    legacy_control::StayLoaded();
    return legacy_control::registration != 0 || SUCCEEDED(legacy_control::Register());
}

void WithdrawLegacyControl() {
    if (legacy_control::registration != 0) {
        CoRevokeClassObject(legacy_control::registration);
    }
}

LONG LegacyControlLiveObjects() {
    return legacy_control::LiveObject::Count();
}
