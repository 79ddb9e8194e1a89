// What the tests of the runtime share: the loaded DLL, a message loop with a deadline, and a web view on a real Chromium.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include <winsock2.h>

#include <windows.h>

#include <gtest/gtest.h>

#include "WebView2.h"
#include "testbed/webview2_runtime/execute_script_handler.h"
#include "tests/support/canned_server.h"
#include "tests/unit/webview2_runtime/handlers.h"

namespace webview2_runtime_test {

using Microsoft::WRL::ComPtr;

inline constexpr DWORD kDeadline = 20000; // milliseconds

/// The exports of WebView2Loader.dll, looked up as a host does.
struct Loader {
    Loader();

    HRESULT(STDAPICALLTYPE* getVersion)(PCWSTR folder, LPWSTR* version) = nullptr;
    HRESULT(STDAPICALLTYPE* createWithOptions)
    (PCWSTR browserFolder, PCWSTR userDataFolder, ICoreWebView2EnvironmentOptions* options,
     ICoreWebView2CreateCoreWebView2EnvironmentCompletedHandler* handler) = nullptr;
    HRESULT(STDAPICALLTYPE* create)
    (ICoreWebView2CreateCoreWebView2EnvironmentCompletedHandler* handler) = nullptr;
    HRESULT(STDAPICALLTYPE* compareVersions)(PCWSTR left, PCWSTR right, int* result) = nullptr;
    DWORD(STDAPICALLTYPE* objectCount)() = nullptr;
};

const Loader& Runtime();

/// Runs the message loop until the condition holds.
///
/// @return false at the deadline.
bool PumpUntil(const std::function<bool()>& condition);

/// Dispatches what is waiting, and returns.
void PumpWaiting();

/// Takes over a text that a getter hands out: `TextFrom([&](LPWSTR* text) { return view->get_Source(text); })`.
std::wstring TextFrom(const std::function<HRESULT(LPWSTR*)>& getter);

struct Completion {
    bool succeeded;
    COREWEBVIEW2_WEB_ERROR_STATUS status;
    UINT64 id;
};

/// The native process ids of the Chromium on a profile folder, whose last part has to be unique.
std::vector<int> ChromiumProcesses(const std::wstring& folder);

/// Ends a native process at once.
void KillNative(int process);

/// A single-threaded apartment, a window to be the parent, and a profile folder of the test's own. At the end everything
/// of the runtime has to be gone, and every Chromium on the folder.
class RuntimeTest : public testing::Test {
  protected:
    void SetUp() override;
    void TearDown() override;

    /// A completed creation.
    struct MadeEnvironment {
        HRESULT result = E_PENDING;
        ComPtr<ICoreWebView2Environment> environment;
    };
    MadeEnvironment MakeEnvironment(const std::wstring& userDataFolder,
                                    ICoreWebView2EnvironmentOptions* options = nullptr,
                                    const wchar_t* browserFolder = nullptr);

    struct MadeController {
        HRESULT result = E_PENDING;
        ComPtr<ICoreWebView2Controller> controller;
    };
    MadeController MakeController(bool inPrivate = false);

    /// Everything that a host holds, gone.
    void ReleaseAll();

    std::wstring folder;
    HWND parent = nullptr;
    ComPtr<ICoreWebView2Environment> environment;
    ComPtr<ICoreWebView2Controller> controller;
    ComPtr<ICoreWebView2_15> view;
};

/// With an environment, a controller and a web view from the start.
class WebViewTest : public RuntimeTest {
  protected:
    void SetUp() override;
    void TearDown() override;

    /// Waits for the completion of the next navigation, which `start` starts.
    std::optional<Completion> CompletionAfter(const std::function<void()>& start);
    std::optional<Completion> Load(const std::wstring& url);

    /// The JSON of a script's result; a promise is waited for.
    std::wstring Run(const std::wstring& script);

    /// @return the id.
    std::wstring AddDocumentScript(const std::wstring& script);

    EventRegistrationToken
    OnStarting(std::function<void(ICoreWebView2NavigationStartingEventArgs* arguments)> handler) const;
    EventRegistrationToken
    OnRequested(std::function<void(ICoreWebView2WebResourceRequestedEventArgs* arguments)> handler) const;
};

} // namespace webview2_runtime_test
