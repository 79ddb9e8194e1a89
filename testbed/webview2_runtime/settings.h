// A web view's settings: the two about scripts reach Chromium, the others are only kept.
#pragma once

#include <string>

#include "page_object.h"
#include "webview2_not_implemented.h"

namespace webview2_runtime {

class Settings : public PageObject<webview2::NotImplemented<ICoreWebView2Settings3>, ICoreWebView2Settings,
                                   ICoreWebView2Settings2, ICoreWebView2Settings3> {
  public:
    explicit Settings(SharedPage slot) : PageObject(std::move(slot)) {}

    HRESULT STDMETHODCALLTYPE get_IsScriptEnabled(BOOL* isScriptEnabled) override;
    HRESULT STDMETHODCALLTYPE put_IsScriptEnabled(BOOL isScriptEnabled) override;
    HRESULT STDMETHODCALLTYPE get_IsWebMessageEnabled(BOOL* isWebMessageEnabled) override;
    HRESULT STDMETHODCALLTYPE put_IsWebMessageEnabled(BOOL isWebMessageEnabled) override;
    HRESULT STDMETHODCALLTYPE get_AreDefaultScriptDialogsEnabled(BOOL* enabled) override;
    HRESULT STDMETHODCALLTYPE put_AreDefaultScriptDialogsEnabled(BOOL enabled) override;
    HRESULT STDMETHODCALLTYPE get_IsStatusBarEnabled(BOOL* isStatusBarEnabled) override;
    HRESULT STDMETHODCALLTYPE put_IsStatusBarEnabled(BOOL isStatusBarEnabled) override;
    HRESULT STDMETHODCALLTYPE get_AreDevToolsEnabled(BOOL* areDevToolsEnabled) override;
    HRESULT STDMETHODCALLTYPE put_AreDevToolsEnabled(BOOL areDevToolsEnabled) override;
    HRESULT STDMETHODCALLTYPE get_AreDefaultContextMenusEnabled(BOOL* enabled) override;
    HRESULT STDMETHODCALLTYPE put_AreDefaultContextMenusEnabled(BOOL enabled) override;
    HRESULT STDMETHODCALLTYPE get_AreHostObjectsAllowed(BOOL* allowed) override;
    HRESULT STDMETHODCALLTYPE put_AreHostObjectsAllowed(BOOL allowed) override;
    HRESULT STDMETHODCALLTYPE get_IsZoomControlEnabled(BOOL* enabled) override;
    HRESULT STDMETHODCALLTYPE put_IsZoomControlEnabled(BOOL enabled) override;
    HRESULT STDMETHODCALLTYPE get_IsBuiltInErrorPageEnabled(BOOL* enabled) override;
    HRESULT STDMETHODCALLTYPE put_IsBuiltInErrorPageEnabled(BOOL enabled) override;
    HRESULT STDMETHODCALLTYPE get_UserAgent(LPWSTR* value) override;
    HRESULT STDMETHODCALLTYPE put_UserAgent(LPCWSTR value) override;
    HRESULT STDMETHODCALLTYPE get_AreBrowserAcceleratorKeysEnabled(BOOL* value) override;
    HRESULT STDMETHODCALLTYPE put_AreBrowserAcceleratorKeysEnabled(BOOL value) override;

  private:
    HRESULT Get(const bool& member, BOOL* value) const;
    HRESULT Put(bool& member, BOOL value) const;

    bool scriptEnabled_ = true;
    bool webMessageEnabled_ = true;
    bool scriptDialogsEnabled_ = true;
    bool statusBarEnabled_ = true;
    bool devToolsEnabled_ = true;
    bool contextMenusEnabled_ = true;
    bool hostObjectsAllowed_ = true;
    bool zoomControlEnabled_ = true;
    bool errorPageEnabled_ = true;
    bool acceleratorKeysEnabled_ = true;
    std::wstring userAgent_;
};

} // namespace webview2_runtime
