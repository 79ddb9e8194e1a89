// What makes the options a COM object: its interfaces and its count.
#include <windows.h>

#include <objbase.h>

#include "WebView2EnvironmentOptions.h"

HRESULT STDMETHODCALLTYPE CoreWebView2EnvironmentOptions::QueryInterface(REFIID iid, void** object) {
    if (object == nullptr) {
        return E_POINTER;
    }
    if (iid == __uuidof(IUnknown) || iid == __uuidof(ICoreWebView2EnvironmentOptions)) {
        *object = static_cast<ICoreWebView2EnvironmentOptions*>(this);
    } else if (iid == __uuidof(ICoreWebView2EnvironmentOptions2)) {
        *object = static_cast<ICoreWebView2EnvironmentOptions2*>(this);
    } else if (iid == __uuidof(ICoreWebView2EnvironmentOptions3)) {
        *object = static_cast<ICoreWebView2EnvironmentOptions3*>(this);
    } else if (iid == __uuidof(ICoreWebView2EnvironmentOptions4)) {
        *object = static_cast<ICoreWebView2EnvironmentOptions4*>(this);
    } else if (iid == __uuidof(ICoreWebView2EnvironmentOptions5)) {
        *object = static_cast<ICoreWebView2EnvironmentOptions5*>(this);
    } else if (iid == __uuidof(ICoreWebView2EnvironmentOptions6)) {
        *object = static_cast<ICoreWebView2EnvironmentOptions6*>(this);
    } else if (iid == __uuidof(ICoreWebView2EnvironmentOptions7)) {
        *object = static_cast<ICoreWebView2EnvironmentOptions7*>(this);
    } else if (iid == __uuidof(ICoreWebView2EnvironmentOptions8)) {
        *object = static_cast<ICoreWebView2EnvironmentOptions8*>(this);
    } else {
        *object = nullptr;
        return E_NOINTERFACE;
    }
    AddRef();
    return S_OK;
}

ULONG STDMETHODCALLTYPE CoreWebView2EnvironmentOptions::AddRef() {
    return ++references_;
}

ULONG STDMETHODCALLTYPE CoreWebView2EnvironmentOptions::Release() {
    const ULONG left = --references_;
    if (left == 0) {
        delete this;
    }
    return left;
}
