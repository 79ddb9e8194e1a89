// Supplies what Wine lacks of Windows to a module of this process, by rewriting that module's import table from outside.
// On Windows itself nothing is touched. README.md lists the gaps.
#pragma once

#include <windows.h>

#if defined(WINDOWS_GAPS_EXPORTS)
#define WINDOWS_GAPS_API __declspec(dllexport)
#else
#define WINDOWS_GAPS_API __declspec(dllimport)
#endif

extern "C" {

/// Supplies the gaps to one module; to be called once after the module was loaded. Calling it again changes nothing.
///
/// @param module a loaded module. What it does not import needs no supply.
/// @return true if the gaps were supplied; false on Windows itself and for a null module, where nothing is touched.
///
/// From the first supply on, windows_gaps.dll stays loaded until the process ends.
WINDOWS_GAPS_API bool SupplyWindowsGaps(HMODULE module);

/// What modules that were supplied get as `CredPackAuthenticationBufferW`, for those that were not. `flags` is ignored.
WINDOWS_GAPS_API BOOL WINAPI WindowsGapsPackCredentials(DWORD flags, LPWSTR userName, LPWSTR password,
                                                        PBYTE packed, DWORD* packedSize);

/// What modules that were supplied get as `CredUnPackAuthenticationBufferW`, for those that were not.
WINDOWS_GAPS_API BOOL WINAPI WindowsGapsUnpackCredentials(DWORD flags, PVOID packed, DWORD packedSize,
                                                          LPWSTR userName, DWORD* maxUserName, LPWSTR domain,
                                                          DWORD* maxDomain, LPWSTR password,
                                                          DWORD* maxPassword);

/// How many COM objects of windows_gaps.dll are alive in this process. Tests look for leaks with it.
WINDOWS_GAPS_API LONG WindowsGapsLiveObjects();

} // extern "C"
