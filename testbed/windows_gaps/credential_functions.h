// Replacements of the functions of credui.dll that pack and unpack an authentication buffer. Callable on any thread;
// they throw nothing.
#pragma once

#include <windows.h>

namespace windows_gaps {

/// Stands for `CredPackAuthenticationBufferW`.
///
/// @param packedSize in: the bytes at `packed`; out: the bytes needed or written.
/// @return FALSE with `ERROR_INVALID_PARAMETER` for a null text or size, `ERROR_INSUFFICIENT_BUFFER` if the buffer is too
///         small or null.
BOOL WINAPI PackCredentials(DWORD flags, LPWSTR userName, LPWSTR password, PBYTE packed, DWORD* packedSize);

/// Stands for `CredUnPackAuthenticationBufferW`. The user name comes back whole and the domain empty.
///
/// @param maxUserName and the other two: in: characters of room, terminator included; out: characters needed or written.
///        A text whose size is null is not asked for; an empty domain needs no buffer.
/// @return FALSE with `ERROR_NOT_SUPPORTED` for what is no packed form, `ERROR_INSUFFICIENT_BUFFER` if a text does not fit;
///         then no text has been written.
BOOL WINAPI UnpackCredentials(DWORD flags, PVOID packed, DWORD packedSize, LPWSTR userName,
                              DWORD* maxUserName, LPWSTR domain, DWORD* maxDomain, LPWSTR password,
                              DWORD* maxPassword);

} // namespace windows_gaps
