// What the tests of the WebView2 backend share: a browser on a fake runtime, in a window that only answers its size,
// with a cookie store and a toolkit's timers that the test plays.
#pragma once

#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include <windows.h>

#include <objbase.h>

#include <gtest/gtest.h>

#include "kelda/kelda.h"
#include "tests/support/fake_win_inet_store.h"
#include "tests/support/freed_blocks.h"
#include "tests/support/replaced_import.h"
#include "tests/support/scoped_variable.h"
#include "tests/support/transcript.h"
#include "tests/support/webview2/fake_runtime.h"
#include "ui/ui.h"

namespace kelda {

constexpr const wchar_t* kImplementationVariable = L"MERIDO_ZANWEBBROWSER_IMPLEMENTATION";
constexpr const wchar_t* kBrowserFolderVariable = L"MERIDO_WEBVIEW2_BROWSER_EXECUTABLE_FOLDER";
constexpr const wchar_t* kUserDataFolderVariable = L"MERIDO_WEBVIEW2_USER_DATA_FOLDER";
constexpr const wchar_t* kPreferencesVariable = L"MERIDO_USER_PREFS_LOCAL_DIR";

/// The read that looks for a load balancer's cookies before the login page is asked for.
constexpr const char* kReadsStore =
    "InternetGetCookieEx2 http://server/qxcore/jsp/qvs/vislogon.jsp name=(null) with 0x00001000";

/// The first navigation, where WinINet holds no cookies.
inline const test_support::Lines kNavigates = {
    kReadsStore,
    "environment2.CreateWebResourceRequest http://server/qxcore/jsp/qvs/vislogon.jsp GET "
    "[Accept: */*\r\nPragma: no-cache\r\n]",
    "webView15.NavigateWithWebResourceRequest request",
    "request gone",
};

/// What the loader does with the browser's arguments where an environment has failed.
inline std::string SecondTry(const std::string& browserFolder) {
    return "the loader's second try browser=" + browserFolder +
           " data=C:\\prefs\\zanwbe sso=1 crash=1 arguments=(null) language=(null) target=146.0.3856.49";
}
inline const std::string kSecondTry = SecondTry("(null)");

/// The page reads the host object's member, calls it, and so has the runtime asked for the session's cookies.
constexpr DISPID kNorv = 888111888;
constexpr const char* kPropertyRead =
    "[0] ZanWebBrowserEdge::Invoke DISPATCH_PROPERTYGET - dispIdMember == DISPID_NORV";
constexpr const char* kCalled = "[0] ZanWebBrowserEdge::Invoke DISPATCH_METHOD - dispIdMember == DISPID_NORV";
constexpr const char* kAsksForCookies = "cookieManager.GetCookies http://server/qxcore/jsp/qvs/vislogon.jsp";

/// The owner is told of the session.
inline const test_support::Lines kReport = {"[0] OnSessionAuthenticated();", "OnSessionAuthenticated"};

class RecordingOwner final : public ZanWebBrowser::Callback {
  public:
    void OnNavigationCompleted() override { test_support::Record("OnNavigationCompleted"); }
    void OnSessionAuthenticated() override { test_support::Record("OnSessionAuthenticated"); }
    void OnSessionAuthenticatedFailed() override { test_support::Record("OnSessionAuthenticatedFailed"); }
};

class EdgeBrowserTest : public test_support::TranscriptTest {
  protected:
    EdgeBrowserTest() : TranscriptTest("ZanWebBrowserEdge") {}

    /// The toolkit calls every timer that is left: a test's own owner is gone by now, and so must be the browser.
    ~EdgeBrowserTest() override {
        browser.reset();
        while (!timers.empty()) {
            FireTimer();
        }
    }
    EdgeBrowserTest(const EdgeBrowserTest&) = delete;
    EdgeBrowserTest& operator=(const EdgeBrowserTest&) = delete;

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

    /// The same with another owner; null for none.
    void BringUpFor(ZanWebBrowser::Callback* other) {
        MakeBrowser();
        browser->Create(other, parent);
        runtime.CompleteEnvironment();
        runtime.CompleteController();
        runtime.CompleteScript();
        TakeTranscript();
    }

    /// Reads the member of the host object and calls what it gives, as script does.
    HRESULT CallPageObject() const { return CallPageObject(runtime.webView.hostObject.Get()); }
    static HRESULT CallPageObject(IDispatch* hostObject) {
        VARIANT norv{};
        DISPPARAMS none{};
        hostObject->Invoke(kNorv, IID_NULL, 0, DISPATCH_PROPERTYGET, &none, &norv, nullptr, nullptr);
        if (norv.vt != VT_DISPATCH || norv.pdispVal == nullptr) {
            ADD_FAILURE() << "the member gives no object";
            return E_UNEXPECTED;
        }
        const HRESULT result = norv.pdispVal->Invoke(DISPID_VALUE, IID_NULL, 0, DISPATCH_METHOD, &none,
                                                     nullptr, nullptr, nullptr);
        norv.pdispVal->Release();
        return result;
    }

    /// The oldest timer fires.
    void FireTimer() {
        const Timer timer = timers.at(0);
        timers.erase(timers.begin());
        watchedBlock = timer.data;
        watchedBlockFreed = false;
        EXPECT_EQ(timer.callback(timer.data), 0);
        EXPECT_TRUE(watchedBlockFreed) << "the timer's data is left";
        watchedBlock = nullptr;
    }

    const void* watchedBlock = nullptr;
    bool watchedBlockFreed = false;

    /// What is freed is overwritten, so that a use of it shows.
    test_support::FreedBlocksWatch poison{[this](const void* block, std::size_t size) {
        std::memset(const_cast<void*>(block), 0xDD, size);
        watchedBlockFreed = watchedBlockFreed || block == watchedBlock;
    }};

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

    struct Timer {
        UiCallback callback;
        void* data;
    };
    std::vector<Timer> timers;
    int timerResult = 0;
    bool timerIsSet = true; // independent of the result
    test_support::ReplacedImport<struct ToolkitTimer, decltype(ui_set_timer)> setTimer{
        "host_toolkit.dll", "ui_set_timer", [this](int milliseconds, UiCallback callback, void* data) {
            test_support::Record("ui_set_timer " + std::to_string(milliseconds));
            if (timerIsSet) {
                timers.push_back({callback, data});
            }
            return timerResult;
        }};
    test_support::FakeWinInetStore winInet;

    RecordingOwner owner;
    test_support::FakeRuntime runtime;
    std::unique_ptr<ZanWebBrowserEdge> browser;
};

} // namespace kelda
