// The window that a control has while it is active in place, and in it the page's view.
#pragma once

#include <functional>
#include <memory>

#include <windows.h>

#include "testbed/chromium/page_view.h"

namespace legacy_control {

/// What the window tells the control. In both functions the window may be destroyed.
struct ControlWindowEvents {
    std::function<void()> focused; ///< the page has got the keyboard
    std::function<void()> gone;    ///< the window it was in is being destroyed
};

class ControlWindow {
  public:
    /// Makes the window, hidden.
    ///
    /// @throws std::system_error if it cannot be made.
    ControlWindow(HWND parent, ControlWindowEvents events);
    ~ControlWindow();
    ControlWindow(const ControlWindow&) = delete;
    ControlWindow& operator=(const ControlWindow&) = delete;

    HWND Handle() const { return window_; }

    void Show(testbed::chromium::Page& page);
    void DropView();

    /// In client coordinates of the parent.
    void SetBounds(const RECT& bounds) const;
    void SetVisible(bool visible);
    /// Gives the page the keyboard.
    void Focus() const;

    /// Gives a key to the page, if it is one that the page gets in this way only.
    ///
    /// @return whether it was taken.
    bool TakeKey(const MSG& message);

  private:
    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) noexcept;
    static LRESULT CALLBACK ViewProcedure(HWND view, UINT message, WPARAM wParam, LPARAM lParam) noexcept;

    void FitView() const;
    void PassFocusOn() const;

    ControlWindowEvents events_;
    HWND window_ = nullptr;
    std::unique_ptr<testbed::chromium::PageView> view_;
    WNDPROC viewProcedure_ = nullptr;
    bool visible_ = false;
    bool takingKey_ = false;
};

} // namespace legacy_control
