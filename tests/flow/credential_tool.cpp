// Shows or deletes a generic credential, so that the flow tests can look at the store from a process of their own; and
// packs credentials as the prompt does, for comparison.
//   credential_tool show TARGET    prints blob (hexadecimal), persistence and user name, or "none" without an entry
//   credential_tool delete TARGET  also where there is none
//   credential_tool pack USER PASSWORD    prints the packed buffer, hexadecimal
#include <cstdio>
#include <string>
#include <vector>

#include <windows.h>

#include <wincred.h>

#include "testbed/windows_gaps/windows_gaps.h"

namespace {

std::string Hexadecimal(const BYTE* data, DWORD size) {
    constexpr const char* kDigits = "0123456789abcdef";
    std::string text;
    for (DWORD index = 0; index < size; ++index) {
        text += kDigits[data[index] >> 4];
        text += kDigits[data[index] & 0xF];
    }
    return text;
}

int Show(const wchar_t* target) {
    PCREDENTIALW credential = nullptr;
    if (!CredReadW(target, CRED_TYPE_GENERIC, 0, &credential)) {
        std::puts("none");
        return 0;
    }
    const bool hasUser = credential->UserName != nullptr && *credential->UserName != L'\0';
    std::printf("blob=%s persist=%lu user=%ls\n",
                Hexadecimal(credential->CredentialBlob, credential->CredentialBlobSize).c_str(),
                credential->Persist, hasUser ? credential->UserName : L"none");
    CredFree(credential);
    return 0;
}

int Pack(wchar_t* userName, wchar_t* password) {
    DWORD size = 0;
    WindowsGapsPackCredentials(0, userName, password, nullptr, &size);
    std::vector<BYTE> packed(size);
    if (!WindowsGapsPackCredentials(0, userName, password, packed.data(), &size)) {
        return 1;
    }
    std::puts(Hexadecimal(packed.data(), size).c_str());
    return 0;
}

} // namespace

int wmain(int count, wchar_t** arguments) {
    const std::wstring verb = count > 1 ? arguments[1] : L"";
    if (verb == L"show" && count == 3) {
        return Show(arguments[2]);
    }
    if (verb == L"delete" && count == 3) {
        CredDeleteW(arguments[2], CRED_TYPE_GENERIC, 0);
        return 0;
    }
    if (verb == L"pack" && count == 4) {
        return Pack(arguments[2], arguments[3]);
    }
    std::fputs("usage: credential_tool show|delete TARGET, or credential_tool pack USER PASSWORD\n", stderr);
    return 2;
}
