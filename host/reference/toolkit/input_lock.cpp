// Locks are counted by window.
#include "toolkit/input_lock.h"

#include <map>

namespace host_reference {

namespace {

struct LockedWindow {
    int locks = 0;
    bool tookInput = false;
};

/// Of the toolkit's thread; never destroyed, as a lock may be held when the process ends.
std::map<HWND, LockedWindow>& LockedWindows() {
    static std::map<HWND, LockedWindow>& windows = *new std::map<HWND, LockedWindow>;
    return windows;
}

} // namespace

InputLock::InputLock(HWND window) : window_(window) {
    if (window == nullptr) {
        return;
    }
    LockedWindow& locked = LockedWindows()[window];
    const bool first = locked.locks++ == 0;
    if (first) {
        locked.tookInput = IsWindowEnabled(window) != FALSE;
        EnableWindow(window, FALSE);
    }
}

InputLock::~InputLock() {
    const auto found = LockedWindows().find(window_);
    if (found == LockedWindows().end() || --found->second.locks > 0) {
        return;
    }
    const bool enable = found->second.tookInput;
    // Forgotten first: the window is told that it is enabled, and may open the next dialog there and then.
    LockedWindows().erase(found);
    if (enable) {
        EnableWindow(window_, TRUE);
    }
}

} // namespace host_reference
