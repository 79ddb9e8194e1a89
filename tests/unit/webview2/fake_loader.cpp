// A WebView2Loader.dll whose browser version is its own path, which tells a test the one that was loaded.
#include <windows.h>

#include <objbase.h>

#include "WebView2.h"
#include "tests/unit/webview2/fake_loader.h"

STDAPI CreateCoreWebView2EnvironmentWithOptions(PCWSTR, PCWSTR, ICoreWebView2EnvironmentOptions*,
                                                ICoreWebView2CreateCoreWebView2EnvironmentCompletedHandler*) {
    return webview2_test::kFakeCreateAnswer;
}

STDAPI GetAvailableCoreWebView2BrowserVersionString(PCWSTR, LPWSTR* version) {
    constexpr DWORD kLongest = 0x8000;
    static const wchar_t kInThisModule = L'\0';
    HMODULE self = nullptr;
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                       &kInThisModule, &self);
    *version = static_cast<LPWSTR>(CoTaskMemAlloc(kLongest * sizeof(wchar_t)));
    return GetModuleFileNameW(self, *version, kLongest) != 0 ? S_OK : E_FAIL;
}
