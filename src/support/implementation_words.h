// The words that the user or a support engineer puts into one environment variable to change how the library works.
#pragma once

#include <string_view>

namespace kelda {

/// True when the variable MERIDO_ZANWEBBROWSER_IMPLEMENTATION contains `word` anywhere, case-sensitively. Read anew at
/// every call: hosts change it at run time.
bool ImplementationWordGiven(std::string_view word);

} // namespace kelda
