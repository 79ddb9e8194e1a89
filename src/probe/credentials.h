// Asking the user for the credentials of a server, and keeping the answer in the Windows credential store.
#pragma once

#include <string>

#include <windows.h>

namespace kelda {

class AuthenticationStream;

/// Shows the system's credential prompt, pre-filled with what the user saved for this server, and stores the answer,
/// or clears it where the user no longer wants it saved. The prompt is shown at every call: nothing is reused silently.
///
/// @param userName,password  Receive the answer as UTF-8, on success only. The caller wipes them.
/// @return 0, or a Win32 error code; ERROR_CANCELLED when the user cancelled.
DWORD PromptForCredentials(AuthenticationStream& stream, const std::wstring& promptText,
                           const std::wstring& captionText, std::string& userName, std::string& password);

} // namespace kelda
