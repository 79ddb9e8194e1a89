// A WebView2 runtime whose every step a test takes itself. It stands where the loader would: a test program that links
// it links no loader.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include <wrl/client.h>

#include "tests/support/call_script.h"
#include "tests/support/webview2/fake_controller.h"
#include "tests/support/webview2/fake_environment.h"

namespace test_support {

/// There may be one at a time.
class FakeRuntime {
  public:
    FakeRuntime();
    ~FakeRuntime();
    FakeRuntime(const FakeRuntime&) = delete;
    FakeRuntime& operator=(const FakeRuntime&) = delete;

    CallScript script;

    /// The version that the loader answers; empty: none is given.
    std::wstring version = L"146.0.3856.49";

    /// The text that was handed out for it last.
    const void* versionGiven = nullptr;

    // Completions that were asked for, until a test calls them.
    Microsoft::WRL::ComPtr<ICoreWebView2CreateCoreWebView2EnvironmentCompletedHandler> environmentCreated;
    ControllerCreated controllerCreated;
    FakeWebViewState webView;

    // Each fails a test where somebody keeps the completion after it was called.

    /// On a failure the loader asks the runtime once more first, with the caller's own arguments.
    HRESULT CompleteEnvironment(HRESULT result = S_OK);
    HRESULT CompleteController(HRESULT result = S_OK);
    HRESULT CompleteScript(HRESULT result = S_OK, const wchar_t* id = L"script-1");

    /// Answers the oldest call for cookies with a list of `cookies`, or with none where the result is a failure.
    HRESULT CompleteCookies(const std::vector<std::optional<CookieContent>>& cookies = {},
                            HRESULT result = S_OK);

    // What the loader's functions do while this runtime is there.
    HRESULT GetVersion(const wchar_t* browserFolder, wchar_t** result);
    HRESULT CreateEnvironment(const wchar_t* browserFolder, const wchar_t* userDataFolder,
                              ICoreWebView2EnvironmentOptions* environmentOptions,
                              ICoreWebView2CreateCoreWebView2EnvironmentCompletedHandler* handler);

  private:
    /// What the loader was called with last: the caller's pointers as they are, neither copied nor referenced.
    struct Arguments {
        const wchar_t* browserFolder = nullptr;
        const wchar_t* userDataFolder = nullptr;
        ICoreWebView2EnvironmentOptions* options = nullptr;

        std::string Text() const;
    };

    /// Lets go of the completion, which has to be the last to hold the options.
    void DropEnvironmentCompletion(
        Microsoft::WRL::ComPtr<ICoreWebView2CreateCoreWebView2EnvironmentCompletedHandler>& handler);

    Arguments arguments_;
};

} // namespace test_support
