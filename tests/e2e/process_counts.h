// What a process holds of the system, to tell that it gives everything back.
#pragma once

#include <cstddef>

namespace e2e {

/// Open handles of this process.
std::size_t CountHandles();

/// Windows of this process: top-level ones with all their children, and message-only ones.
std::size_t CountWindows();

} // namespace e2e
