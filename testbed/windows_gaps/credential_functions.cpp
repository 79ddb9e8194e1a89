// The platform's calling shapes around the packed form.
#include "credential_functions.h"

#include <algorithm>
#include <array>
#include <new>
#include <string_view>

#include "credential_buffer.h"

namespace windows_gaps {
namespace {

BOOL Fail(DWORD error) {
    SetLastError(error);
    return FALSE;
}

/// A text that a caller wants, and where.
struct Wanted {
    std::wstring_view text;
    wchar_t* buffer;
    DWORD* size;
    bool needsBuffer = true;

    bool Fits() const { return size == nullptr || (buffer == nullptr ? !needsBuffer : text.size() < *size); }
    void Measure() const {
        if (size != nullptr) {
            *size = static_cast<DWORD>(text.size() + 1);
        }
    }
    void Write() const {
        if (size != nullptr && buffer != nullptr) {
            *std::ranges::copy(text, buffer).out = L'\0';
        }
    }
};

} // namespace

BOOL WINAPI PackCredentials(DWORD /*flags*/, LPWSTR userName, LPWSTR password, PBYTE packed,
                            DWORD* packedSize) try {
    if (userName == nullptr || password == nullptr || packedSize == nullptr) {
        return Fail(ERROR_INVALID_PARAMETER);
    }
    const Credentials credentials{SecretText(std::wstring_view(userName)),
                                  SecretText(std::wstring_view(password))};
    const auto needed = static_cast<DWORD>(PackedSize(credentials));
    if (needed == 0) {
        return Fail(ERROR_INVALID_PARAMETER);
    }
    const DWORD room = packed == nullptr ? 0 : *packedSize;
    *packedSize = needed;
    if (room < needed) {
        return Fail(ERROR_INSUFFICIENT_BUFFER);
    }
    Pack(credentials, packed);
    return TRUE;
} catch (const std::bad_alloc&) {
    return Fail(ERROR_NOT_ENOUGH_MEMORY);
}

BOOL WINAPI UnpackCredentials(DWORD /*flags*/, PVOID packed, DWORD packedSize, LPWSTR userName,
                              DWORD* maxUserName, LPWSTR domain, DWORD* maxDomain, LPWSTR password,
                              DWORD* maxPassword) try {
    const auto credentials = Unpack(packed, packed == nullptr ? 0 : packedSize);
    if (!credentials) {
        return Fail(ERROR_NOT_SUPPORTED);
    }
    const std::array wanted = {Wanted{credentials->userName.View(), userName, maxUserName},
                               Wanted{credentials->password.View(), password, maxPassword},
                               Wanted{L"", domain, maxDomain, false}};
    const bool fits = std::ranges::all_of(wanted, &Wanted::Fits);
    std::ranges::for_each(wanted, &Wanted::Measure);
    if (!fits) {
        return Fail(ERROR_INSUFFICIENT_BUFFER);
    }
    std::ranges::for_each(wanted, &Wanted::Write);
    return TRUE;
} catch (const std::bad_alloc&) {
    return Fail(ERROR_NOT_ENOUGH_MEMORY);
}

} // namespace windows_gaps
