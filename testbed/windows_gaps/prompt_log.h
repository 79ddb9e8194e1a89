// A record of every credential prompt, for tests: one line of JSON each, at the end of the file that KELDA_PROMPT_LOG
// names. A password is never in it.
#pragma once

#include <optional>
#include <string>

#include <windows.h>

namespace windows_gaps {

struct PromptRecord {
    std::wstring caption;
    std::wstring message;
    DWORD structSize = 0; ///< of the information block, 0 without one
    bool hasParent = false;
    DWORD flags = 0;
    ULONG authPackageIn = 0;
    DWORD authError = 0;
    std::optional<std::wstring> prefilledUser;
    bool prefilledPassword = false;
    bool saveBefore = false;
    bool saveAfter = false;
    DWORD error = ERROR_SUCCESS;
};

/// Does nothing without a log. A log that cannot be written is reported on stderr and changes nothing else; nothing is
/// thrown.
void AppendToPromptLog(const PromptRecord& record);

} // namespace windows_gaps
