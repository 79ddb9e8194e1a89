// Recognises a Basic challenge in the headers of an answer.
#pragma once

#include <string_view>

namespace windows_gaps {

enum class BasicChallenge {
    None,
    Leading, ///< a `WWW-Authenticate` line begins with it
    Listed,  ///< it only follows other challenges within a line
};

/// @param headers the raw lines of an HTTP answer, status line included or not.
BasicChallenge FindBasicChallenge(std::wstring_view headers);

} // namespace windows_gaps
