// A window that is not to be seen, so that something can be brought into a thread's message loop.
#pragma once

#include <functional>

#include <windows.h>

namespace testbed::chromium {

/// Registers a window class of this module, once; @return its name.
LPCWSTR RegisterWindowClass(const wchar_t* name, WNDPROC procedure, UINT style = 0);
/// The module that this code is in.
HINSTANCE ThisModule();

/// Belongs to the thread that made it.
class MessageWindow {
  public:
    /// @param woken called from the message loop; this object may be destroyed in it. Must not throw.
    /// @throws std::system_error if there is no window to be had.
    explicit MessageWindow(std::function<void()> woken);
    ~MessageWindow();
    MessageWindow(const MessageWindow&) = delete;
    MessageWindow& operator=(const MessageWindow&) = delete;

    /// On any thread: `woken` will be called.
    /// @return false if the thread's queue takes no more messages: then it will not.
    bool Wake() const;

  private:
    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) noexcept;

    std::function<void()> woken_;
    HWND window_;
};

/// Calls a function once, from this thread's message loop.
void CallLater(std::function<void()> function);

} // namespace testbed::chromium
