// The boundary of the toolkit's exported functions, which no exception crosses.
#pragma once

#include <exception>

#include "toolkit/results.h"

namespace host_reference {

/// What `function` answers. All that the toolkit's own code can throw is for want of memory.
template <typename Function>
int Guarded(Function function) noexcept {
    try {
        return function();
    } catch (const std::exception&) {
        return kOutOfMemory;
    }
}

} // namespace host_reference
