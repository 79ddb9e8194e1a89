// One line a property; only the exceptions say more.
#include "settings.h"

#include "com_text.h"

namespace webview2_runtime {

using testbed::chromium::Page;

HRESULT Settings::Get(const bool& member, BOOL* value) const {
    return WithPage([&](Page&) { return GuardedGet(value, [&] { return member ? TRUE : FALSE; }); });
}

HRESULT Settings::Put(bool& member, BOOL value) const {
    return WithPage([&](Page&) {
        member = value != FALSE;
        return S_OK;
    });
}

HRESULT Settings::put_IsScriptEnabled(BOOL isScriptEnabled) {
    return WithPage([&](Page& page) {
        scriptEnabled_ = isScriptEnabled != FALSE;
        page.SetScriptEnabled(scriptEnabled_);
        return S_OK;
    });
}

HRESULT Settings::put_AreDefaultScriptDialogsEnabled(BOOL enabled) {
    return WithPage([&](Page& page) {
        scriptDialogsEnabled_ = enabled != FALSE;
        page.SetScriptDialogsEnabled(scriptDialogsEnabled_);
        return S_OK;
    });
}

HRESULT Settings::get_UserAgent(LPWSTR* value) {
    return WithPage([&](Page&) { return CopyOut(userAgent_, value); });
}

HRESULT Settings::put_UserAgent(LPCWSTR value) {
    return WithPage([&](Page&) -> HRESULT {
        if (value == nullptr) {
            return E_POINTER;
        }
        userAgent_ = value;
        return S_OK;
    });
}

HRESULT Settings::get_IsScriptEnabled(BOOL* isScriptEnabled) {
    return Get(scriptEnabled_, isScriptEnabled);
}

HRESULT Settings::get_IsWebMessageEnabled(BOOL* isWebMessageEnabled) {
    return Get(webMessageEnabled_, isWebMessageEnabled);
}

HRESULT Settings::put_IsWebMessageEnabled(BOOL isWebMessageEnabled) {
    return Put(webMessageEnabled_, isWebMessageEnabled);
}

HRESULT Settings::get_AreDefaultScriptDialogsEnabled(BOOL* enabled) {
    return Get(scriptDialogsEnabled_, enabled);
}

HRESULT Settings::get_IsStatusBarEnabled(BOOL* isStatusBarEnabled) {
    return Get(statusBarEnabled_, isStatusBarEnabled);
}

HRESULT Settings::put_IsStatusBarEnabled(BOOL isStatusBarEnabled) {
    return Put(statusBarEnabled_, isStatusBarEnabled);
}

HRESULT Settings::get_AreDevToolsEnabled(BOOL* areDevToolsEnabled) {
    return Get(devToolsEnabled_, areDevToolsEnabled);
}

HRESULT Settings::put_AreDevToolsEnabled(BOOL areDevToolsEnabled) {
    return Put(devToolsEnabled_, areDevToolsEnabled);
}

HRESULT Settings::get_AreDefaultContextMenusEnabled(BOOL* enabled) {
    return Get(contextMenusEnabled_, enabled);
}

HRESULT Settings::put_AreDefaultContextMenusEnabled(BOOL enabled) {
    return Put(contextMenusEnabled_, enabled);
}

HRESULT Settings::get_AreHostObjectsAllowed(BOOL* allowed) {
    return Get(hostObjectsAllowed_, allowed);
}

HRESULT Settings::put_AreHostObjectsAllowed(BOOL allowed) {
    return Put(hostObjectsAllowed_, allowed);
}

HRESULT Settings::get_IsZoomControlEnabled(BOOL* enabled) {
    return Get(zoomControlEnabled_, enabled);
}

HRESULT Settings::put_IsZoomControlEnabled(BOOL enabled) {
    return Put(zoomControlEnabled_, enabled);
}

HRESULT Settings::get_IsBuiltInErrorPageEnabled(BOOL* enabled) {
    return Get(errorPageEnabled_, enabled);
}

HRESULT Settings::put_IsBuiltInErrorPageEnabled(BOOL enabled) {
    return Put(errorPageEnabled_, enabled);
}

HRESULT Settings::get_AreBrowserAcceleratorKeysEnabled(BOOL* value) {
    return Get(acceleratorKeysEnabled_, value);
}

HRESULT Settings::put_AreBrowserAcceleratorKeysEnabled(BOOL value) {
    return Put(acceleratorKeysEnabled_, value);
}

} // namespace webview2_runtime
