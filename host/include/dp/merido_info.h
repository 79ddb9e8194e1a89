// What the host application says of itself.
#pragma once

#include <string>

#include "du/api.h"

namespace dp {

class HOST_UTILITY_API MeridoInfo {
  public:
    /// Name of the host application, UTF-8.
    static std::string GetApplicationName();

    /// Directory of the user's machine-local preferences, UTF-8.
    /// @return false, with `directory` untouched, where the host has none.
    static bool GetMeridoUserPrefsLocalDir(std::string& directory);
};

} // namespace dp
