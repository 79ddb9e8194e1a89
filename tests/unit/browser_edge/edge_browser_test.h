// What the tests of the WebView2 backend share: a browser on a fake runtime, in a window that only answers its size.
#pragma once

#include <cstring>
#include <memory>
#include <string>

#include <windows.h>

#include <objbase.h>

#include "kelda/kelda.h"
#include "tests/support/freed_blocks.h"
#include "tests/support/replaced_import.h"
#include "tests/support/scoped_variable.h"
#include "tests/support/transcript.h"
#include "tests/support/webview2/fake_runtime.h"

namespace kelda {

constexpr const wchar_t* kImplementationVariable = L"MERIDO_ZANWEBBROWSER_IMPLEMENTATION";
constexpr const wchar_t* kBrowserFolderVariable = L"MERIDO_WEBVIEW2_BROWSER_EXECUTABLE_FOLDER";
constexpr const wchar_t* kUserDataFolderVariable = L"MERIDO_WEBVIEW2_USER_DATA_FOLDER";
constexpr const wchar_t* kPreferencesVariable = L"MERIDO_USER_PREFS_LOCAL_DIR";

class RecordingOwner final : public ZanWebBrowser::Callback {
  public:
    void OnNavigationCompleted() override { test_support::Record("OnNavigationCompleted"); }
    void OnSessionAuthenticated() override { test_support::Record("OnSessionAuthenticated"); }
    void OnSessionAuthenticatedFailed() override { test_support::Record("OnSessionAuthenticatedFailed"); }
};

class EdgeBrowserTest : public test_support::TranscriptTest {
  protected:
    EdgeBrowserTest() : TranscriptTest("ZanWebBrowserEdge") {}

    /// Makes the browser of "http://server".
    void MakeBrowser(int checkMode = 0) {
        browser = std::make_unique<ZanWebBrowserEdge>("http://server", checkMode);
    }
    void Create() { browser->Create(&owner, parent); }

    // A new browser as far as the completion that it then waits for; what was recorded is dropped.
    void AwaitEnvironment(int checkMode = 0) {
        MakeBrowser(checkMode);
        Create();
        TakeTranscript();
    }
    void AwaitController(int checkMode = 0) {
        AwaitEnvironment(checkMode);
        runtime.CompleteEnvironment();
        TakeTranscript();
    }
    void AwaitScript(int checkMode = 0) {
        AwaitController(checkMode);
        runtime.CompleteController();
        TakeTranscript();
    }

    /// A new browser on its way to its address.
    void BringUp(int checkMode = 0) {
        AwaitScript(checkMode);
        runtime.CompleteScript();
        TakeTranscript();
    }

    /// What is freed is overwritten, so that a use of it shows.
    test_support::FreedBlocksWatch poison{
        [](const void* block, std::size_t size) { std::memset(const_cast<void*>(block), 0xDD, size); }};

    const HWND parent = reinterpret_cast<HWND>(0x4711);
    RECT clientRect{0, 0, 640, 480};
    HRESULT initializeResult = S_OK;

    test_support::ScopedVariable implementation{kImplementationVariable, nullptr};
    test_support::ScopedVariable browserFolder{kBrowserFolderVariable, nullptr};
    test_support::ScopedVariable userDataFolder{kUserDataFolderVariable, nullptr};
    test_support::ScopedVariable preferences{kPreferencesVariable, L"C:\\prefs"};

    test_support::ReplacedImport<struct ClientRect, decltype(GetClientRect)> getClientRect{
        "user32.dll", "GetClientRect", [this](HWND window, LPRECT rect) {
            test_support::Record(window == parent ? "GetClientRect of the parent"
                                                  : "GetClientRect of another");
            *rect = clientRect;
            return TRUE;
        }};
    test_support::ReplacedImport<struct Initialize, decltype(CoInitializeEx)> coInitialize{
        "ole32.dll", "CoInitializeEx", [this](LPVOID reserved, DWORD kind) {
            test_support::Record("CoInitializeEx " + std::to_string(kind) +
                                 (reserved == nullptr ? "" : " with more"));
            return initializeResult;
        }};
    test_support::ReplacedImport<struct Uninitialize, decltype(CoUninitialize)> coUninitialize{
        "ole32.dll", "CoUninitialize", [] { test_support::Record("CoUninitialize"); }};

    RecordingOwner owner;
    test_support::FakeRuntime runtime;
    std::unique_ptr<ZanWebBrowserEdge> browser;
};

} // namespace kelda
