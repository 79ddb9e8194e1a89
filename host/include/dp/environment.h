// The process environment, as the host utility library gives access to it.
#pragma once

#include <string>

#include "du/api.h"

namespace dp {

class HOST_UTILITY_API Environment {
  public:
    /// The variable's value at the time of the call, UTF-8; an absent variable reads as an empty string.
    static std::string Get(const char* name);

    /// Sets the variable for this process, from UTF-8; an empty or null value removes it.
    static void Put(const char* name, const char* value);
};

} // namespace dp
