// The controller: one web view in one window of the host's.
#pragma once

#include <memory>

#include "com_object.h"
#include "testbed/chromium/page_view.h"
#include "web_view.h"
#include "webview2_not_implemented.h"

namespace webview2_runtime {

/// Owns the web view: closes it when it is closed or released itself.
class Controller
    : public ComObject<webview2::NotImplemented<ICoreWebView2Controller4>, ICoreWebView2Controller,
                       ICoreWebView2Controller2, ICoreWebView2Controller3, ICoreWebView2Controller4> {
  public:
    /// @param webView opened.
    Controller(Microsoft::WRL::ComPtr<WebView> webView, std::unique_ptr<testbed::chromium::PageView> view,
               HWND parent);

    HRESULT STDMETHODCALLTYPE get_IsVisible(BOOL* isVisible) override;
    HRESULT STDMETHODCALLTYPE put_IsVisible(BOOL isVisible) override;
    HRESULT STDMETHODCALLTYPE get_Bounds(RECT* bounds) override;
    HRESULT STDMETHODCALLTYPE put_Bounds(RECT bounds) override;
    HRESULT STDMETHODCALLTYPE get_ZoomFactor(double* zoomFactor) override;
    HRESULT STDMETHODCALLTYPE put_ZoomFactor(double zoomFactor) override;
    HRESULT STDMETHODCALLTYPE SetBoundsAndZoomFactor(RECT bounds, double zoomFactor) override;
    HRESULT STDMETHODCALLTYPE MoveFocus(COREWEBVIEW2_MOVE_FOCUS_REASON reason) override;
    HRESULT STDMETHODCALLTYPE get_ParentWindow(HWND* parentWindow) override;
    HRESULT STDMETHODCALLTYPE put_ParentWindow(HWND parentWindow) override;
    HRESULT STDMETHODCALLTYPE NotifyParentWindowPositionChanged() override;
    /// A second one answers `ClosedError`, and changes nothing.
    HRESULT STDMETHODCALLTYPE Close() override;
    HRESULT STDMETHODCALLTYPE get_CoreWebView2(ICoreWebView2** coreWebView2) override;
    HRESULT STDMETHODCALLTYPE get_DefaultBackgroundColor(COREWEBVIEW2_COLOR* value) override;
    HRESULT STDMETHODCALLTYPE put_DefaultBackgroundColor(COREWEBVIEW2_COLOR value) override;
    HRESULT STDMETHODCALLTYPE get_RasterizationScale(double* scale) override;
    HRESULT STDMETHODCALLTYPE put_RasterizationScale(double scale) override;
    HRESULT STDMETHODCALLTYPE get_ShouldDetectMonitorScaleChanges(BOOL* value) override;
    HRESULT STDMETHODCALLTYPE put_ShouldDetectMonitorScaleChanges(BOOL value) override;
    HRESULT STDMETHODCALLTYPE get_BoundsMode(COREWEBVIEW2_BOUNDS_MODE* boundsMode) override;
    HRESULT STDMETHODCALLTYPE put_BoundsMode(COREWEBVIEW2_BOUNDS_MODE boundsMode) override;
    HRESULT STDMETHODCALLTYPE get_AllowExternalDrop(BOOL* value) override;
    HRESULT STDMETHODCALLTYPE put_AllowExternalDrop(BOOL value) override;

  private:
    ~Controller() override;

    void CloseAll();

    /// Runs the body of a method while the web view is open.
    template <typename Body>
    HRESULT WhileOpen(Body&& body) const noexcept {
        return Guarded([&]() -> HRESULT { return view_ == nullptr ? ClosedError() : body(); });
    }

    template <typename Value>
    HRESULT Get(const Value& member, Value* value) const {
        return WhileOpen([&] { return GuardedGet(value, [&] { return member; }); });
    }

    template <typename Value>
    HRESULT Put(Value& member, Value value) const {
        return WhileOpen([&] {
            member = value;
            return S_OK;
        });
    }

    Microsoft::WRL::ComPtr<WebView> webView_;
    std::unique_ptr<testbed::chromium::PageView> view_; // null once closed
    double zoomFactor_ = 1;
    double rasterizationScale_ = 1;
    BOOL detectsScaleChanges_ = TRUE;
    BOOL allowsExternalDrop_ = TRUE;
    COREWEBVIEW2_BOUNDS_MODE boundsMode_ = COREWEBVIEW2_BOUNDS_MODE_USE_RAW_PIXELS;
    COREWEBVIEW2_COLOR background_{255, 255, 255, 255};
};

} // namespace webview2_runtime
