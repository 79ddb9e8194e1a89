// The window is the engine's; what has no counterpart there is kept only.
#include "controller.h"

#include <utility>

namespace webview2_runtime {

using testbed::chromium::PageView;

Controller::Controller(Microsoft::WRL::ComPtr<WebView> webView, std::unique_ptr<PageView> view, HWND parent)
    : webView_(std::move(webView)), view_(std::move(view)) {
    webView_->SetParentWindow(parent);
    view_->SetVisible(true);
}

Controller::~Controller() {
    CloseAll();
}

void Controller::CloseAll() {
    const auto view = std::move(view_);
    webView_->Close();
}

HRESULT Controller::get_IsVisible(BOOL* isVisible) {
    return WhileOpen([&] { return GuardedGet(isVisible, [&] { return view_->Visible() ? TRUE : FALSE; }); });
}

HRESULT Controller::put_IsVisible(BOOL isVisible) {
    return WhileOpen([&] {
        view_->SetVisible(isVisible != FALSE);
        return S_OK;
    });
}

HRESULT Controller::get_Bounds(RECT* bounds) {
    return WhileOpen([&] { return GuardedGet(bounds, [&] { return view_->Bounds(); }); });
}

HRESULT Controller::put_Bounds(RECT bounds) {
    return WhileOpen([&] {
        view_->SetBounds(bounds);
        return S_OK;
    });
}

HRESULT Controller::get_ZoomFactor(double* zoomFactor) {
    return Get(zoomFactor_, zoomFactor);
}

HRESULT Controller::put_ZoomFactor(double zoomFactor) {
    return zoomFactor > 0 ? Put(zoomFactor_, zoomFactor) : E_INVALIDARG;
}

HRESULT Controller::SetBoundsAndZoomFactor(RECT bounds, double zoomFactor) {
    const HRESULT result = put_ZoomFactor(zoomFactor);
    return FAILED(result) ? result : put_Bounds(bounds);
}

HRESULT Controller::MoveFocus(COREWEBVIEW2_MOVE_FOCUS_REASON) {
    return WhileOpen([&] {
        view_->Focus();
        return S_OK;
    });
}

HRESULT Controller::get_ParentWindow(HWND* parentWindow) {
    return WhileOpen([&] { return GuardedGet(parentWindow, [&] { return webView_->ParentWindow(); }); });
}

HRESULT Controller::put_ParentWindow(HWND parentWindow) {
    return WhileOpen([&]() -> HRESULT {
        if (IsWindow(parentWindow) == FALSE) {
            return HRESULT_FROM_WIN32(ERROR_INVALID_WINDOW_HANDLE);
        }
        view_->SetParent(parentWindow);
        webView_->SetParentWindow(parentWindow);
        return S_OK;
    });
}

HRESULT Controller::NotifyParentWindowPositionChanged() {
    return WhileOpen([] { return S_OK; });
}

HRESULT Controller::Close() {
    const Microsoft::WRL::ComPtr<Controller> self =
        this; // the host may drop the last reference in a handler's release
    return WhileOpen([&] {
        CloseAll();
        return S_OK;
    });
}

HRESULT Controller::get_CoreWebView2(ICoreWebView2** coreWebView2) {
    return WhileOpen(
        [&]() -> HRESULT { return coreWebView2 == nullptr ? E_POINTER : HandOut(webView_, coreWebView2); });
}

HRESULT Controller::get_DefaultBackgroundColor(COREWEBVIEW2_COLOR* value) {
    return Get(background_, value);
}

HRESULT Controller::put_DefaultBackgroundColor(COREWEBVIEW2_COLOR value) {
    return Put(background_, value);
}

HRESULT Controller::get_RasterizationScale(double* scale) {
    return Get(rasterizationScale_, scale);
}

HRESULT Controller::put_RasterizationScale(double scale) {
    return Put(rasterizationScale_, scale);
}

HRESULT Controller::get_ShouldDetectMonitorScaleChanges(BOOL* value) {
    return Get(detectsScaleChanges_, value);
}

HRESULT Controller::put_ShouldDetectMonitorScaleChanges(BOOL value) {
    return Put(detectsScaleChanges_, value);
}

HRESULT Controller::get_BoundsMode(COREWEBVIEW2_BOUNDS_MODE* boundsMode) {
    return Get(boundsMode_, boundsMode);
}

HRESULT Controller::put_BoundsMode(COREWEBVIEW2_BOUNDS_MODE boundsMode) {
    return Put(boundsMode_, boundsMode);
}

HRESULT Controller::get_AllowExternalDrop(BOOL* value) {
    return Get(allowsExternalDrop_, value);
}

HRESULT Controller::put_AllowExternalDrop(BOOL value) {
    return Put(allowsExternalDrop_, value);
}

} // namespace webview2_runtime
