// Stands between urlmon and `InternetConnectW`, which urlmon calls on the thread of the bind and once a bind.
#include "pending_credentials.h"

#include <utility>

#include <wininet.h>

#include "testbed/support/import_patch.h"

namespace windows_gaps {
namespace {

thread_local const OfferedCredentials* pending = nullptr;

HINTERNET WINAPI Connect(HINTERNET session, LPCWSTR server, INTERNET_PORT port, LPCWSTR userName,
                         LPCWSTR password, DWORD service, DWORD flags, DWORD_PTR context) {
    // Whatever else is fetched on this thread meanwhile is none of their business.
    if (const OfferedCredentials* credentials = std::exchange(pending, nullptr); credentials != nullptr) {
        userName = credentials->userName.CStr();
        password = credentials->password.CStr();
    }
    return InternetConnectW(session, server, port, userName, password, service, flags, context);
}

} // namespace

bool InstallPendingCredentials() {
    return testbed::PatchImport(GetModuleHandleW(L"urlmon.dll"), "wininet.dll", "InternetConnectW",
                                reinterpret_cast<void*>(&Connect)) != nullptr;
}

PendingCredentials::PendingCredentials(const OfferedCredentials& credentials)
    : outer_(std::exchange(pending, &credentials)) {}

PendingCredentials::~PendingCredentials() {
    pending = outer_;
}

} // namespace windows_gaps
