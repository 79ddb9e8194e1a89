// Scripted answers to the credential prompt, for tests: KELDA_PROMPT_SCRIPT names the file, README.md tells its form.
#pragma once

#include <optional>
#include <string>

#include <windows.h>

#include "credential_buffer.h"

namespace windows_gaps {

struct ScriptedAnswer {
    enum class Kind {
        Given,     ///< `credentials` were entered
        Accepted,  ///< what was pre-filled was confirmed
        Cancelled, ///
        Failed,    ///< with `error`
        Malformed, ///< something was handed out that is no packed form
    };
    Kind kind = Kind::Cancelled;
    Credentials credentials;
    std::optional<bool> save; ///< nothing: the box was left alone
    DWORD error = ERROR_SUCCESS;
};

/// @return the path of the script, or nothing if a person is to answer.
std::optional<std::wstring> PromptScriptPath();

/// Takes the next answer of a script; each process counts for itself, per path. After the last answer every further prompt
/// is cancelled. A script that cannot be read or understood answers with `ERROR_INVALID_DATA`, and stderr says why.
ScriptedAnswer NextScriptedAnswer(const std::wstring& path);

} // namespace windows_gaps
