// The view as its owner sees it; the window does the work.
#include "testbed/chromium/page_view.h"

#include "testbed/chromium/page.h"
#include "testbed/chromium/view_window.h"

namespace testbed::chromium {

PageView::PageView(Page& page, HWND parent) : window_(std::make_unique<ViewWindow>(page.session_, parent)) {}

PageView::~PageView() = default;

HWND PageView::Window() const {
    return window_->Handle();
}

void PageView::SetBounds(const RECT& bounds) {
    window_->SetBounds(bounds);
}

RECT PageView::Bounds() const {
    return window_->Bounds();
}

void PageView::SetVisible(bool visible) {
    window_->SetVisible(visible);
}

bool PageView::Visible() const {
    return window_->Visible();
}

void PageView::SetParent(HWND parent) const {
    if (Window() != nullptr) {
        ::SetParent(Window(), parent);
    }
}

void PageView::Focus() const {
    if (Window() != nullptr) {
        SetFocus(Window());
    }
}

} // namespace testbed::chromium
