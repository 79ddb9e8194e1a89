// What the tests of the legacy browser share: a browser on a fake control, in a window that only answers its size, with a
// screen, a urlmon and a keyboard hook that the test plays.
#pragma once

#include <cstring>
#include <memory>
#include <string>

#include <windows.h>

#include <objbase.h>
#include <urlmon.h>

#include <gtest/gtest.h>

#include "kelda/kelda.h"
#include "tests/support/ole/fake_control.h"
#include "tests/support/replaced_import.h"
#include "tests/support/scoped_variable.h"
#include "tests/support/transcript.h"
#include "tests/unit/browser_ie/recording_owner.h"

namespace kelda {

constexpr const wchar_t* kUserAgentVariable = L"MERIDO_ZANWEBBROWSER_USER_AGENT";

/// What pages call.
constexpr DISPID kNorv = 888111888;

/// The owner is told of the session.
inline const test_support::Lines kReport = {"[0] OnSessionAuthenticated();", "OnSessionAuthenticated"};

class IEBrowserTest : public test_support::TranscriptTest {
  protected:
    IEBrowserTest() : TranscriptTest("ZanWebBrowserIE") {}

    /// A browser that was created is taken down before it goes, as its owners do.
    ~IEBrowserTest() override { Drop(); }
    IEBrowserTest(const IEBrowserTest&) = delete;
    IEBrowserTest& operator=(const IEBrowserTest&) = delete;

    /// Makes the browser of "http://server".
    void MakeBrowser(int checkMode = 0) {
        browser = std::make_unique<ZanWebBrowserIE>("http://server", checkMode);
    }
    void Create() { browser->Create(&owner, parent); }

    /// A new browser on its way to its address; what was recorded is dropped.
    void BringUp(int checkMode = 0) {
        MakeBrowser(checkMode);
        Create();
        TakeTranscript();
    }

    void Drop() {
        if (browser) {
            browser->Destroy();
            browser.reset();
        }
    }

    /// The User-Agent as urlmon has it: the whole buffer, with its zero byte.
    std::string userAgent = std::string("Agent (Windows NT 10.0)") + '\0';
    bool givesText = true;             // else only its size
    HRESULT getResult = E_OUTOFMEMORY; // as the platform's, also when it has filled the buffer
    HRESULT setResult = S_OK;

    const HWND parent = reinterpret_cast<HWND>(0x4711);
    RECT clientRect{0, 0, 640, 480};

    bool realHooks = false; ///< The platform's own, instead of none.
    bool hookFails = false;

    /// How often the screen has been measured in this process.
    static inline int measurements = 0;
    static inline int contexts = 0; // not released

    test_support::ScopedVariable userAgentVariable{kUserAgentVariable, nullptr};

    test_support::ReplacedImport<struct ClientRect, decltype(GetClientRect)> getClientRect{
        "user32.dll", "GetClientRect", [this](HWND window, LPRECT rect) {
            test_support::Record(window == parent ? "GetClientRect of the parent"
                                                  : "GetClientRect of another");
            *rect = clientRect;
            return TRUE;
        }};

    // A screen whose pixels are not square, so that no measure can be taken for the other. The first browser of the process
    // measures it.
    test_support::ReplacedImport<struct ScreenContext, decltype(GetDC)> getDC{
        "user32.dll", "GetDC", [](HWND window) {
            EXPECT_EQ(window, nullptr);
            ++measurements;
            ++contexts;
            return reinterpret_cast<HDC>(0x4714);
        }};
    test_support::ReplacedImport<struct ScreenMeasure, decltype(GetDeviceCaps)> getDeviceCaps{
        "gdi32.dll", "GetDeviceCaps", [](HDC context, int index) {
            EXPECT_EQ(context, reinterpret_cast<HDC>(0x4714));
            return index == LOGPIXELSX ? 96 : index == LOGPIXELSY ? 120 : 0;
        }};
    test_support::ReplacedImport<struct ReleaseScreen, decltype(ReleaseDC)> releaseDC{
        "user32.dll", "ReleaseDC", [](HWND window, HDC context) {
            EXPECT_EQ(window, nullptr);
            EXPECT_EQ(context, reinterpret_cast<HDC>(0x4714));
            --contexts;
            return 1;
        }};

    test_support::ReplacedImport<struct GetOption, decltype(UrlMkGetSessionOption)> getOption{
        "urlmon.dll", "UrlMkGetSessionOption",
        [this](DWORD option, LPVOID buffer, DWORD length, DWORD* size, DWORD reserved) {
            test_support::Record("UrlMkGetSessionOption " + test_support::Hexadecimal(option) + " " +
                                 (buffer == nullptr ? "(null) " : "") + std::to_string(length) +
                                 (reserved == 0 ? "" : " with more"));
            *size = static_cast<DWORD>(userAgent.size());
            if (givesText && buffer != nullptr && length >= userAgent.size()) {
                std::memcpy(buffer, userAgent.data(), userAgent.size());
            }
            return getResult;
        }};
    test_support::ReplacedImport<struct SetOption, decltype(UrlMkSetSessionOption)> setOption{
        "urlmon.dll", "UrlMkSetSessionOption",
        [this](DWORD option, LPVOID buffer, DWORD length, DWORD reserved) {
            userAgent.assign(static_cast<const char*>(buffer), length);
            EXPECT_EQ(userAgent.find('\0'), length - 1) << "the length is not the text's and its zero's";
            test_support::Record("UrlMkSetSessionOption " + test_support::Hexadecimal(option) + " " +
                                 userAgent.substr(0, length - 1) + " " + std::to_string(length) +
                                 (reserved == 0 ? "" : " with more"));
            return setResult;
        }};

    HOOKPROC hookProcedure = nullptr;
    HHOOK hookHandle = nullptr;
    using InstallHook = test_support::ReplacedImport<struct InstallHookTag, decltype(SetWindowsHookExA)>;
    InstallHook setHook{"user32.dll", "SetWindowsHookExA",
                        [this](int kind, HOOKPROC procedure, HINSTANCE module, DWORD thread) -> HHOOK {
                            test_support::Record(
                                "SetWindowsHookExA " + std::to_string(kind) +
                                (procedure != nullptr ? "" : " without a procedure") +
                                (module == nullptr ? "" : " in a module") +
                                (thread == GetCurrentThreadId() ? " for this thread" : " for others"));
                            hookProcedure = procedure;
                            if (hookFails) {
                                SetLastError(ERROR_ACCESS_DENIED);
                                return nullptr;
                            }
                            hookHandle = realHooks ? InstallHook::Original(kind, procedure, module, thread)
                                                   : reinterpret_cast<HHOOK>(0x4715);
                            return hookHandle;
                        }};
    using RemoveHook = test_support::ReplacedImport<struct RemoveHookTag, decltype(UnhookWindowsHookEx)>;
    RemoveHook removeHook{"user32.dll", "UnhookWindowsHookEx", [this](HHOOK hook) {
                              test_support::Record("UnhookWindowsHookEx");
                              EXPECT_EQ(hook, hookHandle);
                              return realHooks ? RemoveHook::Original(hook) : TRUE;
                          }};

    HRESULT initializeResult = S_OK;
    test_support::ReplacedImport<struct Initialize, decltype(CoInitializeEx)> coInitialize{
        "ole32.dll", "CoInitializeEx", [this](LPVOID reserved, DWORD kind) {
            test_support::Record("CoInitializeEx " + std::to_string(kind) +
                                 (reserved == nullptr ? "" : " with more"));
            return initializeResult;
        }};
    test_support::ReplacedImport<struct Uninitialize, decltype(CoUninitialize)> coUninitialize{
        "ole32.dll", "CoUninitialize", [] { test_support::Record("CoUninitialize"); }};

    RecordingOwner owner;
    test_support::FakeControl control;
    std::unique_ptr<ZanWebBrowserIE> browser;
};

} // namespace kelda
