// Tells that a window of the host's is going.
#pragma once

#include <functional>

#include <windows.h>

namespace webview2_runtime {

/// A small invisible child of the watched window, which goes with it. Belongs to the thread that made it.
class ParentWatch {
  public:
    /// @param gone called once, inside the destruction of `parent`; this object may be destroyed in it. Must not throw.
    /// @throws std::system_error if the window cannot be made.
    ParentWatch(HWND parent, std::function<void()> gone);
    ~ParentWatch();
    ParentWatch(const ParentWatch&) = delete;
    ParentWatch& operator=(const ParentWatch&) = delete;

  private:
    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wide, LPARAM lparam) noexcept;

    std::function<void()> gone_;
    HWND window_; // null once the parent is gone
};

} // namespace webview2_runtime
