// An owner for kernel handles.
#pragma once

#include <windows.h>

#include <memory>

namespace host_reference {

struct HandleCloser {
    void operator()(HANDLE handle) const noexcept { CloseHandle(handle); }
};

/// Empty for none, never INVALID_HANDLE_VALUE.
using UniqueHandle = std::unique_ptr<void, HandleCloser>;

} // namespace host_reference
