// Navigation: its start, which a handler may cancel, and its end.
#pragma once

#include "declarations/names.h"

WEBVIEW2_ID(ICoreWebView2NavigationStartingEventArgs, "5b495469-e119-438a-9b18-7604f25f2e49")
struct DECLSPEC_NOVTABLE ICoreWebView2NavigationStartingEventArgs : public IUnknown {
    virtual HRESULT STDMETHODCALLTYPE get_Uri(LPWSTR* uri) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_IsUserInitiated(BOOL* isUserInitiated) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_IsRedirected(BOOL* isRedirected) = 0;
    virtual HRESULT STDMETHODCALLTYPE
    get_RequestHeaders(ICoreWebView2HttpRequestHeaders** requestHeaders) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_Cancel(BOOL* cancel) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_Cancel(BOOL cancel) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_NavigationId(UINT64* navigationId) = 0;
};

WEBVIEW2_ID(ICoreWebView2NavigationStartingEventHandler, "9adbe429-f36d-432b-9ddc-f8881fbd76e3")
struct DECLSPEC_NOVTABLE ICoreWebView2NavigationStartingEventHandler : public IUnknown {
    virtual HRESULT STDMETHODCALLTYPE Invoke(ICoreWebView2* sender,
                                             ICoreWebView2NavigationStartingEventArgs* args) = 0;
};

WEBVIEW2_ID(ICoreWebView2NavigationCompletedEventArgs, "30d68b7d-20d9-4752-a9ca-ec8448fbb5c1")
struct DECLSPEC_NOVTABLE ICoreWebView2NavigationCompletedEventArgs : public IUnknown {
    virtual HRESULT STDMETHODCALLTYPE get_IsSuccess(BOOL* isSuccess) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_WebErrorStatus(COREWEBVIEW2_WEB_ERROR_STATUS* webErrorStatus) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_NavigationId(UINT64* navigationId) = 0;
};

WEBVIEW2_ID(ICoreWebView2NavigationCompletedEventHandler, "d33a35bf-1c49-4f98-93ab-006e0533fe1c")
struct DECLSPEC_NOVTABLE ICoreWebView2NavigationCompletedEventHandler : public IUnknown {
    virtual HRESULT STDMETHODCALLTYPE Invoke(ICoreWebView2* sender,
                                             ICoreWebView2NavigationCompletedEventArgs* args) = 0;
};
