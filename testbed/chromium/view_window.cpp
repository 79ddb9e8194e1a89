// Its window procedure, its pictures and its focus.
#include "testbed/chromium/view_window.h"

#include <algorithm>
#include <string>
#include <system_error>
#include <utility>

#include "testbed/chromium/message_window.h"

namespace testbed::chromium {
namespace {

constexpr UINT_PTR kQuietTimer = 1;
constexpr UINT kQuietMilliseconds = 200;

/// The paint that `BeginPaint` starts.
class PaintScope {
  public:
    explicit PaintScope(HWND window) : window_(window), context_(BeginPaint(window, &paint_)) {}
    ~PaintScope() { EndPaint(window_, &paint_); }
    PaintScope(const PaintScope&) = delete;
    PaintScope& operator=(const PaintScope&) = delete;

    HDC Context() const { return context_; }

  private:
    HWND window_;
    PAINTSTRUCT paint_{};
    HDC context_;
};

void Draw(HDC context, const Picture& picture) {
    BITMAPINFO info{};
    info.bmiHeader.biSize = sizeof(info.bmiHeader);
    info.bmiHeader.biWidth = static_cast<LONG>(picture.width);
    info.bmiHeader.biHeight = -static_cast<LONG>(picture.height);
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 32;
    info.bmiHeader.biCompression = BI_RGB;
    SetDIBitsToDevice(context, 0, 0, picture.width, picture.height, 0, 0, 0, picture.height,
                      picture.pixels.data(), &info, DIB_RGB_COLORS);
}

/// A button takes the focus, and the mouse as long as it is held down.
void FollowButton(HWND window, UINT message) {
    switch (message) {
    case WM_LBUTTONDOWN:
    case WM_LBUTTONDBLCLK:
    case WM_RBUTTONDOWN:
    case WM_RBUTTONDBLCLK:
    case WM_MBUTTONDOWN:
    case WM_MBUTTONDBLCLK:
        SetCapture(window);
        SetFocus(window);
        break;
    case WM_LBUTTONUP:
    case WM_RBUTTONUP:
    case WM_MBUTTONUP:
        ReleaseCapture();
        break;
    default:
        break;
    }
}

} // namespace

ViewWindow::ViewWindow(std::shared_ptr<PageSession> session, HWND parent) : session_(std::move(session)) {
    window_ = CreateWindowExW(0, RegisterWindowClass(L"TestbedChromiumView", &Procedure, CS_DBLCLKS), nullptr,
                              WS_CHILD | WS_CLIPSIBLINGS | WS_TABSTOP, 0, 0, 0, 0, parent, nullptr,
                              ThisModule(), nullptr);
    if (window_ == nullptr) {
        throw std::system_error(static_cast<int>(GetLastError()), std::system_category());
    }
    SetWindowLongPtrW(window_, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
    session_->SetPictureSink(this);
    session_->SetDialogOwner(window_);
}

ViewWindow::~ViewWindow() {
    SetVisible(false);
    session_->SetPictureSink(nullptr);
    session_->SetDialogOwner(nullptr);
    if (window_ != nullptr) {
        SetWindowLongPtrW(window_, GWLP_USERDATA, 0);
        DestroyWindow(window_);
    }
}

void ViewWindow::SetBounds(const RECT& bounds) {
    bounds_ = bounds;
    if (window_ != nullptr) {
        SetWindowPos(window_, nullptr, bounds.left, bounds.top, std::max(bounds.right - bounds.left, 0L),
                     std::max(bounds.bottom - bounds.top, 0L), SWP_NOZORDER | SWP_NOACTIVATE);
    }
}

void ViewWindow::SetVisible(bool visible) {
    if (std::exchange(visible_, visible) != visible && window_ != nullptr) {
        session_->SendPictures(visible);
        // Whoever gets the focus of a hidden window may destroy this view.
        ShowWindow(window_, visible ? SW_SHOWNA : SW_HIDE);
    }
}

void ViewWindow::OnPicture(const std::string& png) {
    auto picture = decoder_.Decode(png);
    if (picture.has_value() && window_ != nullptr) {
        picture_ = std::move(picture);
        InvalidateRect(window_, nullptr, FALSE);
        UpdateWindow(window_);
    }
    ExpectNoMorePictures();
}

/// Chromium drops pictures, be it the last one, while a few are not acknowledged yet. So when no more come it is asked once
/// for the picture of now.
void ViewWindow::ExpectNoMorePictures() {
    if (!std::exchange(lookedAgain_, false) && window_ != nullptr) {
        SetTimer(window_, kQuietTimer, kQuietMilliseconds, nullptr);
    }
}

void ViewWindow::LookAgain() {
    KillTimer(window_, kQuietTimer);
    lookedAgain_ = true;
    session_->RestartPictures();
}

void ViewWindow::OnRendererReplaced() {
    SendSize();
    session_->SendPictures(visible_);
    SendFocus(GetFocus() == window_);
}

LRESULT CALLBACK ViewWindow::Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) noexcept {
    auto* self = reinterpret_cast<ViewWindow*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    return self == nullptr ? DefWindowProcW(window, message, wParam, lParam)
                           : self->OnMessage(message, wParam, lParam);
}

LRESULT ViewWindow::OnMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
    case WM_SIZE:
        SendSize();
        return 0;
    case WM_PAINT:
        Paint();
        return 0;
    case WM_ERASEBKGND:
        return 1;
    case WM_SETFOCUS:
    case WM_KILLFOCUS:
        SendFocus(message == WM_SETFOCUS);
        return 0;
    case WM_GETDLGCODE:
        return DLGC_WANTALLKEYS;
    case WM_TIMER:
        LookAgain();
        return 0;
    case WM_NCDESTROY:
        SetWindowLongPtrW(window_, GWLP_USERDATA, 0);
        session_->SetDialogOwner(nullptr);
        return DefWindowProcW(std::exchange(window_, nullptr), message, wParam, lParam);
    default:
        return OnInput(message, wParam, lParam) ? 0 : DefWindowProcW(window_, message, wParam, lParam);
    }
}

bool ViewWindow::OnInput(UINT message, WPARAM wParam, LPARAM lParam) {
    if (auto mouse = MouseInput(window_, message, wParam, lParam)) {
        // Whoever loses the focus may destroy this view.
        const auto session = session_;
        FollowButton(window_, message);
        session->Send("Input.dispatchMouseEvent", std::move(*mouse));
        return true;
    }
    auto key = keys_.Translate(message, wParam, lParam);
    if (key.has_value()) {
        session_->Send("Input.dispatchKeyEvent", std::move(*key));
    }
    // Alt with a key goes on to the menu and to the system as well.
    return key.has_value() && message != WM_SYSKEYDOWN && message != WM_SYSKEYUP;
}

void ViewWindow::Paint() {
    const PaintScope paint(window_);
    RECT client{};
    GetClientRect(window_, &client);
    if (picture_.has_value()) {
        Draw(paint.Context(), *picture_);
        // While the window grows the picture is too small.
        ExcludeClipRect(paint.Context(), 0, 0, static_cast<int>(picture_->width),
                        static_cast<int>(picture_->height));
    }
    FillRect(paint.Context(), &client, static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH)));
}

void ViewWindow::SendSize() {
    RECT client{};
    GetClientRect(window_, &client);
    // Without a size Chromium would take one of its own.
    session_->SetSize(std::max(client.right, 1L), std::max(client.bottom, 1L));
}

void ViewWindow::SendFocus(bool focused) {
    session_->Send("Emulation.setFocusEmulationEnabled", {{"enabled", focused}});
}

} // namespace testbed::chromium
