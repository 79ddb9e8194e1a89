// What requests say that they are from.
#pragma once

#include <string>

namespace legacy_control {

/// Urlmon's, as it is now: the host may have set it. Empty if there is none.
std::string CurrentUserAgent();

} // namespace legacy_control
