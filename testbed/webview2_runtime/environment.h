// The environment: a Chromium on a profile's folder, and what makes requests and controllers.
#pragma once

#include <memory>
#include <string>

#include "com_object.h"
#include "live_environments.h"
#include "testbed/chromium/browser.h"
#include "webview2_not_implemented.h"

namespace webview2_runtime {

class Environment
    : public ComObject<webview2::NotImplemented<ICoreWebView2Environment10>, ICoreWebView2Environment,
                       ICoreWebView2Environment2, ICoreWebView2Environment3, ICoreWebView2Environment4,
                       ICoreWebView2Environment5, ICoreWebView2Environment6, ICoreWebView2Environment7,
                       ICoreWebView2Environment8, ICoreWebView2Environment9, ICoreWebView2Environment10> {
  public:
    /// @param settings kept, so that the folder stays in use.
    Environment(std::shared_ptr<testbed::chromium::Browser> browser, std::wstring version,
                std::wstring userDataFolder, LiveSettings settings);

    testbed::chromium::Browser& Browser() const { return *browser_; }

    HRESULT STDMETHODCALLTYPE CreateCoreWebView2Controller(
        HWND parentWindow, ICoreWebView2CreateCoreWebView2ControllerCompletedHandler* handler) override;
    HRESULT STDMETHODCALLTYPE get_BrowserVersionString(LPWSTR* versionInfo) override;
    HRESULT STDMETHODCALLTYPE CreateWebResourceRequest(LPCWSTR uri, LPCWSTR method, IStream* postData,
                                                       LPCWSTR headers,
                                                       ICoreWebView2WebResourceRequest** value) override;
    HRESULT STDMETHODCALLTYPE get_UserDataFolder(LPWSTR* value) override;
    HRESULT STDMETHODCALLTYPE
    CreateCoreWebView2ControllerOptions(ICoreWebView2ControllerOptions** value) override;
    HRESULT STDMETHODCALLTYPE CreateCoreWebView2ControllerWithOptions(
        HWND parentWindow, ICoreWebView2ControllerOptions* options,
        ICoreWebView2CreateCoreWebView2ControllerCompletedHandler* handler) override;

  private:
    std::shared_ptr<testbed::chromium::Browser> browser_;
    std::wstring version_;
    std::wstring userDataFolder_;
    LiveSettings settings_;
};

} // namespace webview2_runtime
