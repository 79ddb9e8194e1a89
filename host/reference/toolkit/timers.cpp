// Timers that belong to no window: every message loop of the toolkit's thread serves them.
#include <windows.h>

#include <map>

#include "toolkit/boundary.h"
#include "toolkit/module.h"
#include "toolkit/toolkit_thread.h"
#include "ui/ui.h"

namespace host_reference {

namespace {

struct Timer {
    UiCallback callback;
    void* data;
};

/// Of the toolkit's thread, by the system's numbers; never destroyed, as a timer may be waiting when the process ends.
std::map<UINT_PTR, Timer>& WaitingTimers() {
    static std::map<UINT_PTR, Timer>& timers = *new std::map<UINT_PTR, Timer>;
    return timers;
}

void CALLBACK OnTimer(HWND /*window*/, UINT /*message*/, UINT_PTR id, DWORD /*time*/) {
    // Stopped and forgotten first: the callback may run a message loop, or set a timer that gets the same number.
    KillTimer(nullptr, id);
    const auto found = WaitingTimers().find(id);
    if (found == WaitingTimers().end()) {
        return;
    }
    const Timer timer = found->second;
    WaitingTimers().erase(found);
    timer.callback(timer.data);
}

int SetOneShotTimer(int milliseconds, const Timer& timer) {
    PinnedModule();
    const UINT_PTR id = SetTimer(nullptr, 0, static_cast<UINT>(milliseconds), &OnTimer);
    if (id == 0) {
        return kSystemRefused;
    }
    try {
        WaitingTimers().insert_or_assign(id, timer);
    } catch (...) {
        KillTimer(nullptr, id);
        throw;
    }
    return kSuccess;
}

} // namespace

} // namespace host_reference

int ui_set_timer(int milliseconds, UiCallback callback, void* data) {
    using namespace host_reference;

    if (callback == nullptr) {
        return kMissingArgument;
    }
    if (milliseconds < 0) {
        return kValueOutOfRange;
    }
    if (!IsToolkitThread()) {
        return kWrongThread;
    }
    return Guarded([&] { return SetOneShotTimer(milliseconds, {callback, data}); });
}
