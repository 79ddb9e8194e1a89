// What the tests of the runtime share: the loaded DLL, waiting for completions, and a web view on a real Chromium.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <winsock2.h>

#include <windows.h>

#include <gtest/gtest.h>

#include <objbase.h>

#include "WebView2.h"
#include "testbed/webview2_runtime/execute_script_handler.h"
#include "tests/support/canned_server.h"
#include "tests/support/message_pump.h"
#include "tests/support/native_process.h"
#include "tests/unit/webview2_runtime/handlers.h"

namespace webview2_runtime_test {

using Microsoft::WRL::ComPtr;
using test_support::PumpUntil;
using test_support::PumpWaiting;

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

/// The number of live objects of the runtime, without the environment that keeps the shared Chromium.
DWORD LiveObjects();

/// Starts something that completes with a call of a handler, and waits for that. The call has to come after the start, and
/// only once.
///
/// @param start gets the handler; returns an HRESULT, which has to be S_OK.
/// @param read makes a `Result` of what the handler's `Invoke` gets. It must not refer to anything of the caller's: the call
///             may come after the deadline.
/// @return nothing if it was not started, and at the deadline.
template <typename Handler, typename Result, typename Start, typename Read>
std::optional<Result> Completed(const Start& start, Read read) {
    const auto result = std::make_shared<std::optional<Result>>();
    const auto handler = MakeHandler<Handler>([result, read](auto... arguments) {
        EXPECT_FALSE(*result) << "completed twice";
        *result = read(arguments...);
    });
    const HRESULT started = start(handler.Get());
    EXPECT_EQ(started, S_OK);
    EXPECT_FALSE(*result) << "completed inside the call";
    EXPECT_TRUE(FAILED(started) || PumpUntil([&] { return result->has_value(); }));
    return std::exchange(*result, std::nullopt);
}

/// Takes over a text that a getter hands out: `TextFrom([&](LPWSTR* text) { return view->get_Source(text); })`.
std::wstring TextFrom(const std::function<HRESULT(LPWSTR*)>& getter);

struct Completion {
    bool succeeded;
    COREWEBVIEW2_WEB_ERROR_STATUS status;
    UINT64 id;
};

/// A single-threaded apartment, a window to be the parent, and a profile folder of the test's own. At the end everything
/// of the runtime has to be gone, and every Chromium on that folder.
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

    /// Exchanges the folder for that of the Chromium that the cases share. It is opened for the first of them, and anew after
    /// a crash.
    void ShareChromium();

    /// Exchanges the shared folder for the test's own.
    void UseFolderOfItsOwn();

    /// As a crash would; it has ended on return. Only for a folder of the test's own.
    void KillChromium() const;

    /// Everything that a host holds, gone.
    void ReleaseAll();

    std::wstring folder;
    HWND parent = nullptr;
    ComPtr<ICoreWebView2Environment> environment;
    ComPtr<ICoreWebView2Controller> controller;
    ComPtr<ICoreWebView2_15> view;

  private:
    /// In the command lines of the machine's processes that use the folder.
    std::string Mark() const;

    bool shares_ = false;
};

/// With an environment, a controller and a web view on the shared Chromium from the start, and without cookies.
class WebViewTest : public RuntimeTest {
  protected:
    void SetUp() override;
    void TearDown() override;

    /// Exchanges all that for the same on a Chromium of the test's own. For cases about its end.
    void UseChromiumOfItsOwn();

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
    EventRegistrationToken OnResponse(
        std::function<void(ICoreWebView2WebResourceResponseReceivedEventArgs* arguments)> handler) const;
    EventRegistrationToken OnChallenge(
        std::function<void(ICoreWebView2BasicAuthenticationRequestedEventArgs* arguments)> handler) const;
    EventRegistrationToken OnCertificateError(
        std::function<void(ICoreWebView2ServerCertificateErrorDetectedEventArgs* arguments)> handler) const;
    EventRegistrationToken OnClientCertificate(
        std::function<void(ICoreWebView2ClientCertificateRequestedEventArgs* arguments)> handler) const;

  private:
    void MakeWebView();
    void DeleteCookies() const;
};

} // namespace webview2_runtime_test
