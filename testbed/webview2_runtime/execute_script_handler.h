// The completion of ExecuteScript, which the library does not use and its declarations therefore only name.
#pragma once

#include <windows.h>

#include <objbase.h>

#include "WebView2.h"

#ifdef WEBVIEW2_ID // our own declarations, not the SDK's
struct DECLSPEC_NOVTABLE ICoreWebView2ExecuteScriptCompletedHandler : public IUnknown {
    virtual HRESULT STDMETHODCALLTYPE Invoke(HRESULT errorCode, LPCWSTR result) = 0;
};
#endif
