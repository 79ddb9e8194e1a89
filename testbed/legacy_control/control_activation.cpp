// The control in its site's window: coming in, being sized, keys, and leaving.
#include "control.h"

#include <utility>

namespace legacy_control {

using Microsoft::WRL::ComPtr;

HRESULT Control::Activate(LPCRECT position) {
    return WithoutExceptions([&]() -> HRESULT {
        if (closed_ || !host_) {
            return E_UNEXPECTED;
        }
        if (inPlaceSite_) {
            return S_OK;
        }
        const HostSite host = host_;
        const ComPtr<IOleInPlaceSite> site = host.InPlaceSite();
        if (!site || site->CanInPlaceActivate() != S_OK) {
            return E_FAIL;
        }
        if (const HRESULT result = EnterSite(site, position); FAILED(result)) {
            return result;
        }
        if (IsIn(site)) {
            host.Site()->ShowObject();
        }
        if (IsIn(site)) {
            ComPtr<IOleContainer> container;
            host.Site()->GetContainer(container.GetAddressOf());
        }
        return IsIn(site) ? S_OK : E_UNEXPECTED;
    });
}

/// @return a failure if the host does not want it in, or has closed it meanwhile.
HRESULT Control::EnterSite(const ComPtr<IOleInPlaceSite>& site, LPCRECT position) {
    HWND parent = nullptr;
    HRESULT result = site->GetWindow(&parent);
    if (FAILED(result) || closed_) {
        return FAILED(result) ? result : E_UNEXPECTED;
    }
    window_ = std::make_unique<ControlWindow>(
        parent, ControlWindowEvents{[this] { OnFocused(); }, [this] { LeaveSite(); }});
    inPlaceSite_ = site;
    if (position != nullptr) {
        position_ = *position;
    }
    window_->SetBounds(position_);
    result = site->OnInPlaceActivate();
    if (FAILED(result)) {
        LeaveSite();
        return result;
    }
    ReadContext(site);
    if (!IsIn(site)) {
        return E_UNEXPECTED;
    }
    if (page_->Page() != nullptr) {
        window_->Show(*page_->Page());
    }
    page_->Open();
    window_->SetVisible(visible_);
    return S_OK;
}

void Control::ReadContext(const ComPtr<IOleInPlaceSite>& site) {
    if (!IsIn(site)) {
        return;
    }
    ComPtr<IOleInPlaceFrame> frame;
    ComPtr<IOleInPlaceUIWindow> document;
    RECT position{};
    RECT clip{};
    OLEINPLACEFRAMEINFO information{};
    information.cb = sizeof(information);
    const HRESULT result =
        site->GetWindowContext(frame.GetAddressOf(), document.GetAddressOf(), &position, &clip, &information);
    if (FAILED(result) || !IsIn(site)) {
        return;
    }
    frame_ = frame;
    document_ = document;
    if (IsRectEmpty(&position) == FALSE) {
        position_ = position;
        window_->SetBounds(position_);
    }
}

void Control::SetVisible(bool visible) {
    visible_ = visible;
    if (window_ != nullptr) {
        window_->SetVisible(visible);
    }
}

void Control::OnFocused() {
    const Self self = this;
    const ComPtr<IOleInPlaceSite> site = inPlaceSite_;
    if (!site || std::exchange(uiActive_, true)) {
        return;
    }
    site->OnUIActivate();
    for (const ComPtr<IOleInPlaceUIWindow>& window : {ComPtr<IOleInPlaceUIWindow>(frame_), document_}) {
        if (IsIn(site) && window) {
            window->SetActiveObject(this, nullptr);
        }
    }
}

void Control::Deactivate() {
    UIDeactivate();
    if (const ComPtr<IOleInPlaceSite> site = inPlaceSite_) {
        LeaveSite();
        site->OnInPlaceDeactivate();
    }
}

void Control::LeaveSite() {
    uiActive_ = false;
    const auto window = std::move(window_);
    ComPtr<IOleInPlaceSite> site;
    site.Swap(inPlaceSite_);
    ComPtr<IOleInPlaceFrame> frame;
    frame.Swap(frame_);
    ComPtr<IOleInPlaceUIWindow> document;
    document.Swap(document_);
}

// --- IOleInPlaceObject

HRESULT Control::GetWindow(HWND* window) {
    if (window == nullptr) {
        return E_POINTER;
    }
    *window = window_ == nullptr ? nullptr : window_->Handle();
    return *window == nullptr ? E_FAIL : S_OK;
}

HRESULT Control::ContextSensitiveHelp(BOOL /*enter*/) {
    return E_NOTIMPL;
}

HRESULT Control::InPlaceDeactivate() {
    const Self self = this;
    Deactivate();
    return S_OK;
}

HRESULT Control::UIDeactivate() {
    const Self self = this;
    const ComPtr<IOleInPlaceSite> site = inPlaceSite_;
    if (!site || !std::exchange(uiActive_, false)) {
        return S_OK;
    }
    for (const ComPtr<IOleInPlaceUIWindow>& window : {ComPtr<IOleInPlaceUIWindow>(frame_), document_}) {
        if (IsIn(site) && window) {
            window->SetActiveObject(nullptr, nullptr);
        }
    }
    if (IsIn(site)) {
        site->OnUIDeactivate(FALSE);
    }
    return S_OK;
}

HRESULT Control::SetObjectRects(LPCRECT position, LPCRECT /*clip*/) {
    if (position == nullptr) {
        return E_POINTER;
    }
    position_ = *position;
    if (window_ != nullptr) {
        window_->SetBounds(position_);
    }
    return S_OK;
}

HRESULT Control::ReactivateAndUndo() {
    return INPLACE_E_NOTUNDOABLE;
}

// --- IOleInPlaceActiveObject

HRESULT Control::TranslateAccelerator(LPMSG message) {
    if (message == nullptr) {
        return E_POINTER;
    }
    return window_ != nullptr && window_->TakeKey(*message) ? S_OK : S_FALSE;
}

HRESULT Control::OnFrameWindowActivate(BOOL /*activate*/) {
    return S_OK;
}

HRESULT Control::OnDocWindowActivate(BOOL /*activate*/) {
    return S_OK;
}

HRESULT Control::ResizeBorder(LPCRECT /*border*/, IOleInPlaceUIWindow* /*window*/, BOOL /*isFrame*/) {
    return S_OK;
}

HRESULT Control::EnableModeless(BOOL /*enable*/) {
    return S_OK;
}

} // namespace legacy_control
