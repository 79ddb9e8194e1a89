// No message is taken for navigation between controls: all keys belong to the window with the focus, be it a browser's.
#include "toolkit/modal_loop.h"

#include <windows.h>

namespace host_reference {

/// Waiting is apart from taking messages: a window procedure that ends the loop may be called by another thread's message
/// while none is posted, and a call that takes messages would not return for that.
void ModalLoop::Run() const {
    while (DispatchWaiting()) {
        MsgWaitForMultipleObjectsEx(0, nullptr, INFINITE, QS_ALLINPUT, MWMO_INPUTAVAILABLE);
    }
}

bool ModalLoop::DispatchWaiting() const {
    MSG message = {};
    while (!ended_ && PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) != FALSE) {
        if (message.message == WM_QUIT) {
            PostQuitMessage(static_cast<int>(message.wParam));
            return false;
        }
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
    return !ended_;
}

} // namespace host_reference
