// The credential prompt of credui.dll: a person answers it, or a script.
#pragma once

#include <windows.h>

#include <wincred.h>

namespace windows_gaps {

/// Stands for `CredUIPromptForWindowsCredentialsW`. Runs a message loop on the calling thread unless a script answers;
/// throws nothing.
///
/// @param authBuffer pre-fills the fields if it is a packed form; anything else is the same as nothing.
/// @param answer receives the packed form, by `CoTaskMemAlloc`; the caller's to wipe and free.
/// @param save read and written only with `CREDUIWIN_CHECKBOX`, written only on success.
/// @return 0, `ERROR_CANCELLED`, `ERROR_INVALID_PARAMETER`, or what a script or the failure to show the dialog gives.
DWORD WINAPI PromptForCredentials(PCREDUI_INFOW info, DWORD authError, ULONG* authPackage, LPCVOID authBuffer,
                                  ULONG authBufferSize, LPVOID* answer, ULONG* answerSize, BOOL* save,
                                  DWORD flags);

} // namespace windows_gaps
