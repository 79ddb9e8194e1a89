// A thread's message loop for tests: it runs until something has come about, and not longer than a deadline.
#pragma once

#include <functional>

#include <windows.h>

namespace test_support {

/// Dispatches what is waiting, and returns.
inline void PumpWaiting() {
    MSG message{};
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) != FALSE) {
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
}

/// Runs the message loop until the condition, which is asked again and again, holds.
///
/// @return false at the deadline.
inline bool PumpUntil(const std::function<bool()>& condition) {
    constexpr ULONGLONG kMilliseconds = 20'000;
    // Short, as the condition may be about something that posts no message here.
    constexpr DWORD kLongestWait = 10;
    const ULONGLONG deadline = GetTickCount64() + kMilliseconds;
    for (;;) {
        PumpWaiting();
        if (condition()) {
            return true;
        }
        if (GetTickCount64() >= deadline) {
            return false;
        }
        MsgWaitForMultipleObjectsEx(0, nullptr, kLongestWait, QS_ALLINPUT, MWMO_INPUTAVAILABLE);
    }
}

} // namespace test_support
