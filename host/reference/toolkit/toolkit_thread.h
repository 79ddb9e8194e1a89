// The thread that the toolkit belongs to.
#pragma once

#include <windows.h>

namespace host_reference {

/// Whether it is this one, which is that of the first who asks. The exported functions ask before they touch anything: the
/// toolkit's state takes no lock.
inline bool IsToolkitThread() noexcept {
    static const DWORD thread = GetCurrentThreadId();
    return GetCurrentThreadId() == thread;
}

} // namespace host_reference
