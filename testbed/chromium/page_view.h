// A page in a child window: paints what Chromium draws and passes mouse and keyboard on.
#pragma once

#include <memory>

#include <windows.h>

namespace testbed::chromium {

class Page;
class ViewWindow;

/// Belongs to the thread of its page, and `parent` has to belong to it too. Page and view may go in either order: a view
/// whose page is closed keeps its window and its last picture; one whose parent was destroyed shows nothing and ignores all.
///
/// Pictures are at one pixel of the page for one of the window, whatever the resolution.
class PageView {
  public:
    /// Makes the window, hidden and without size; there is one view of a page at a time.
    ///
    /// @throws std::system_error if the window cannot be made.
    PageView(Page& page, HWND parent);

    /// Destroys the window.
    ~PageView();
    PageView(const PageView&) = delete;
    PageView& operator=(const PageView&) = delete;

    /// Null once the parent has been destroyed.
    HWND Window() const;

    /// In client coordinates of the parent.
    void SetBounds(const RECT& bounds);
    RECT Bounds() const;

    /// A hidden view costs no pictures.
    void SetVisible(bool visible);
    bool Visible() const;

    /// Bounds stay as they are, in the client coordinates of the new parent.
    void SetParent(HWND parent) const;

    /// Gives the page the keyboard.
    void Focus() const;

  private:
    std::unique_ptr<ViewWindow> window_;
};

} // namespace testbed::chromium
