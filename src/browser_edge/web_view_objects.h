// The runtime's objects that make up one browser.
#pragma once

#include <windows.h>

#include <wrl/client.h>

#include "WebView2.h"

namespace kelda {

/// The later views are views of `webView`. Where nobody lets go of them earlier, they are released from the last to the
/// first.
struct WebViewObjects {
    Microsoft::WRL::ComPtr<ICoreWebView2Controller> controller;
    Microsoft::WRL::ComPtr<ICoreWebView2> webView;
    Microsoft::WRL::ComPtr<ICoreWebView2_2> webView2;
    Microsoft::WRL::ComPtr<ICoreWebView2_5> webView5;
    Microsoft::WRL::ComPtr<ICoreWebView2_14> webView14;
    Microsoft::WRL::ComPtr<ICoreWebView2_15> webView15;
    Microsoft::WRL::ComPtr<ICoreWebView2Environment> environment;
    Microsoft::WRL::ComPtr<ICoreWebView2Environment2> environment2;
};

} // namespace kelda
