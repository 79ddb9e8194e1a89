// Small windows without a picture, each with an object behind it: they carry messages and hear of their parent's end.
#pragma once

#include <windows.h>

namespace webview2_runtime {

/// What such a window calls, on the thread that made it.
class WindowListener {
  public:
    virtual ~WindowListener() = default;
    WindowListener(const WindowListener&) = delete;
    WindowListener& operator=(const WindowListener&) = delete;

    /// A message that was posted with `kListenerMessage`.
    virtual void OnPosted() {}

    /// The window is going: by `DestroyWindow`, or with its parent. The last call.
    virtual void OnDestroyed() {}

  protected:
    WindowListener() = default;
};

inline constexpr UINT kListenerMessage = WM_USER;

/// Makes a window of that kind below `parent` (or `HWND_MESSAGE`), invisible and without size.
///
/// @param listener not owned; it has to outlive the window.
/// @throws std::system_error if the window cannot be made.
HWND MakeListenerWindow(HWND parent, WindowListener& listener);

/// Destroys the window without telling its listener.
void DestroyListenerWindow(HWND window);

} // namespace webview2_runtime
