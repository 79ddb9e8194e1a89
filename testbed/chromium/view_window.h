// The child window of a view.
#pragma once

#include <memory>
#include <optional>

#include <windows.h>

#include "testbed/chromium/page_session.h"
#include "testbed/chromium/picture.h"
#include "testbed/chromium/view_input.h"

namespace testbed::chromium {

class ViewWindow final : public PictureSink {
  public:
    /// @throws std::system_error
    ViewWindow(std::shared_ptr<PageSession> session, HWND parent);
    ~ViewWindow();
    ViewWindow(const ViewWindow&) = delete;
    ViewWindow& operator=(const ViewWindow&) = delete;

    /// Null once the parent has been destroyed.
    HWND Handle() const { return window_; }

    void SetBounds(const RECT& bounds);
    const RECT& Bounds() const { return bounds_; }
    void SetVisible(bool visible);
    bool Visible() const { return visible_; }

    void OnPicture(const std::string& png) override;
    void OnRendererReplaced() override;

  private:
    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) noexcept;

    LRESULT OnMessage(UINT message, WPARAM wParam, LPARAM lParam);
    bool OnInput(UINT message, WPARAM wParam, LPARAM lParam);
    void ExpectNoMorePictures();
    void LookAgain();
    void Paint();
    void SendSize();
    void SendFocus(bool focused);

    std::shared_ptr<PageSession> session_;
    HWND window_ = nullptr;
    RECT bounds_{};
    bool visible_ = false;
    PictureDecoder decoder_;
    std::optional<Picture> picture_;
    bool lookedAgain_ = false; // the next picture is known to be that of now
    KeyInput keys_;
};

} // namespace testbed::chromium
