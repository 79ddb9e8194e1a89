// The controller: one browser in one window.
#pragma once

#include "declarations/names.h"

WEBVIEW2_ID(ICoreWebView2Controller, "4d00c0d1-9434-4eb6-8078-8697a560334f")
struct DECLSPEC_NOVTABLE ICoreWebView2Controller : public IUnknown {
    virtual HRESULT STDMETHODCALLTYPE get_IsVisible(BOOL* isVisible) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_IsVisible(BOOL isVisible) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_Bounds(RECT* bounds) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_Bounds(RECT bounds) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_ZoomFactor(double* zoomFactor) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_ZoomFactor(double zoomFactor) = 0;
    virtual HRESULT STDMETHODCALLTYPE add_ZoomFactorChanged(
        ICoreWebView2ZoomFactorChangedEventHandler* eventHandler, EventRegistrationToken* token) = 0;
    virtual HRESULT STDMETHODCALLTYPE remove_ZoomFactorChanged(EventRegistrationToken token) = 0;
    virtual HRESULT STDMETHODCALLTYPE SetBoundsAndZoomFactor(RECT bounds, double zoomFactor) = 0;
    virtual HRESULT STDMETHODCALLTYPE MoveFocus(COREWEBVIEW2_MOVE_FOCUS_REASON reason) = 0;
    virtual HRESULT STDMETHODCALLTYPE add_MoveFocusRequested(
        ICoreWebView2MoveFocusRequestedEventHandler* eventHandler, EventRegistrationToken* token) = 0;
    virtual HRESULT STDMETHODCALLTYPE remove_MoveFocusRequested(EventRegistrationToken token) = 0;
    virtual HRESULT STDMETHODCALLTYPE add_GotFocus(ICoreWebView2FocusChangedEventHandler* eventHandler,
                                                   EventRegistrationToken* token) = 0;
    virtual HRESULT STDMETHODCALLTYPE remove_GotFocus(EventRegistrationToken token) = 0;
    virtual HRESULT STDMETHODCALLTYPE add_LostFocus(ICoreWebView2FocusChangedEventHandler* eventHandler,
                                                    EventRegistrationToken* token) = 0;
    virtual HRESULT STDMETHODCALLTYPE remove_LostFocus(EventRegistrationToken token) = 0;
    virtual HRESULT STDMETHODCALLTYPE add_AcceleratorKeyPressed(
        ICoreWebView2AcceleratorKeyPressedEventHandler* eventHandler, EventRegistrationToken* token) = 0;
    virtual HRESULT STDMETHODCALLTYPE remove_AcceleratorKeyPressed(EventRegistrationToken token) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_ParentWindow(HWND* parentWindow) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_ParentWindow(HWND parentWindow) = 0;
    virtual HRESULT STDMETHODCALLTYPE NotifyParentWindowPositionChanged() = 0;
    virtual HRESULT STDMETHODCALLTYPE Close() = 0;
    virtual HRESULT STDMETHODCALLTYPE get_CoreWebView2(ICoreWebView2** coreWebView2) = 0;
};

WEBVIEW2_ID(ICoreWebView2Controller2, "c979903e-d4ca-4228-92eb-47ee3fa96eab")
struct DECLSPEC_NOVTABLE ICoreWebView2Controller2 : public ICoreWebView2Controller {
    virtual HRESULT STDMETHODCALLTYPE get_DefaultBackgroundColor(COREWEBVIEW2_COLOR* value) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_DefaultBackgroundColor(COREWEBVIEW2_COLOR value) = 0;
};

WEBVIEW2_ID(ICoreWebView2Controller3, "f9614724-5d2b-41dc-aef7-73d62b51543b")
struct DECLSPEC_NOVTABLE ICoreWebView2Controller3 : public ICoreWebView2Controller2 {
    virtual HRESULT STDMETHODCALLTYPE get_RasterizationScale(double* scale) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_RasterizationScale(double scale) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_ShouldDetectMonitorScaleChanges(BOOL* value) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_ShouldDetectMonitorScaleChanges(BOOL value) = 0;
    virtual HRESULT STDMETHODCALLTYPE add_RasterizationScaleChanged(
        ICoreWebView2RasterizationScaleChangedEventHandler* eventHandler, EventRegistrationToken* token) = 0;
    virtual HRESULT STDMETHODCALLTYPE remove_RasterizationScaleChanged(EventRegistrationToken token) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_BoundsMode(COREWEBVIEW2_BOUNDS_MODE* boundsMode) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_BoundsMode(COREWEBVIEW2_BOUNDS_MODE boundsMode) = 0;
};

WEBVIEW2_ID(ICoreWebView2Controller4, "97d418d5-a426-4e49-a151-e1a10f327d9e")
struct DECLSPEC_NOVTABLE ICoreWebView2Controller4 : public ICoreWebView2Controller3 {
    virtual HRESULT STDMETHODCALLTYPE get_AllowExternalDrop(BOOL* value) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_AllowExternalDrop(BOOL value) = 0;
};
