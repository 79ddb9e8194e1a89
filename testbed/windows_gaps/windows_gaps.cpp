// Decides whether there are gaps at all, and which import of a module gets which replacement.
#include "testbed/windows_gaps/windows_gaps.h"

#include "challenge_moniker.h"
#include "com_object.h"
#include "cookie_functions.h"
#include "credential_functions.h"
#include "credential_prompt.h"
#include "pending_credentials.h"
#include "testbed/support/import_patch.h"

namespace windows_gaps {
namespace {

struct Replacement {
    const char* library;
    const char* function;
    void* replacement;
};

const Replacement kReplacements[] = {
    {"credui.dll", "CredUIPromptForWindowsCredentialsW", reinterpret_cast<void*>(&PromptForCredentials)},
    {"credui.dll", "CredPackAuthenticationBufferW", reinterpret_cast<void*>(&PackCredentials)},
    {"credui.dll", "CredUnPackAuthenticationBufferW", reinterpret_cast<void*>(&UnpackCredentials)},
    {"urlmon.dll", "CreateURLMoniker", reinterpret_cast<void*>(&CreateChallengeMoniker)},
    {"wininet.dll", "InternetGetCookieEx2", reinterpret_cast<void*>(&GetCookies)},
    {"wininet.dll", "InternetSetCookieEx2", reinterpret_cast<void*>(&SetCookie)},
    {"wininet.dll", "InternetFreeCookies", reinterpret_cast<void*>(&FreeCookies)},
};

bool RunsOnWine() {
    HMODULE system = GetModuleHandleW(L"ntdll.dll");
    return system != nullptr && GetProcAddress(system, "wine_get_version") != nullptr;
}

/// Import tables lead here from now on.
void StayLoaded() {
    HMODULE module = nullptr;
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_PIN,
                       reinterpret_cast<LPCWSTR>(&StayLoaded), &module);
}

} // namespace
} // namespace windows_gaps

bool SupplyWindowsGaps(HMODULE module) {
    if (module == nullptr || !windows_gaps::RunsOnWine()) {
        return false;
    }
    windows_gaps::StayLoaded();
    windows_gaps::InstallPendingCredentials();
    for (const auto& entry : windows_gaps::kReplacements) {
        testbed::PatchImport(module, entry.library, entry.function, entry.replacement);
    }
    return true;
}

BOOL WINAPI WindowsGapsPackCredentials(DWORD flags, LPWSTR userName, LPWSTR password, PBYTE packed,
                                       DWORD* packedSize) {
    return windows_gaps::PackCredentials(flags, userName, password, packed, packedSize);
}

BOOL WINAPI WindowsGapsUnpackCredentials(DWORD flags, PVOID packed, DWORD packedSize, LPWSTR userName,
                                         DWORD* maxUserName, LPWSTR domain, DWORD* maxDomain, LPWSTR password,
                                         DWORD* maxPassword) {
    return windows_gaps::UnpackCredentials(flags, packed, packedSize, userName, maxUserName, domain,
                                           maxDomain, password, maxPassword);
}

LONG WindowsGapsLiveObjects() {
    return windows_gaps::LiveObject::Count();
}
