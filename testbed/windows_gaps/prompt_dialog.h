// The credential prompt as a person sees it: a modal dialog.
#pragma once

#include <string>

#include <windows.h>

#include "credential_buffer.h"

namespace windows_gaps {

struct PromptDialogContent {
    HWND parent = nullptr; ///< disabled meanwhile; null: the dialog stands in the middle of the screen
    std::wstring caption;
    std::wstring message; ///< may have line breaks
    bool offersSave = false;
    bool save = false;       ///< in: whether the box is ticked; out: the same after an answer
    Credentials credentials; ///< in: what the fields hold; out: the answer
};

/// Shows the dialog and returns when it was answered. Runs a message loop of its own on the calling thread.
///
/// @return 0 for an answer, `ERROR_CANCELLED`, or the code of the failure to show the dialog; `content` has changed only
///         for an answer.
DWORD ShowPromptDialog(PromptDialogContent& content);

} // namespace windows_gaps
