// Where the browser and its profile come from.
#include <string>

#include <gtest/gtest.h>

#include <windows.h>

#include <objbase.h>

#include "WebView2EnvironmentOptions.h"
#include "du/file_system.h"
#include "edge_browser_test.h"
#include "tests/support/replaced_slot.h"

using test_support::Lines;
using test_support::ScopedVariable;

namespace kelda {
namespace {

using Environment = EdgeBrowserTest;

/// The one call for an environment, with what is of interest here.
std::string AskedFor(const std::string& browser, const std::string& data) {
    return "CreateCoreWebView2EnvironmentWithOptions browser=" + browser + " data=" + data +
           " sso=1 crash=1 arguments=(null) language=(null) target=146.0.3856.49";
}

TEST_F(Environment, TheProfileLiesBelowTheHostsPreferencesWithoutAWord) {
    MakeBrowser();
    Create();
    EXPECT_EQ(TakeTranscript(), Lines{AskedFor("(null)", "C:\\prefs\\zanwbe")});
}

TEST_F(Environment, TheFolderVariableComesFirstAndIsTraced) {
    const ScopedVariable variable(kUserDataFolderVariable, L"D:\\profile of \u00fc");
    MakeBrowser();
    Create();
    EXPECT_EQ(TakeTranscript(),
              (Lines{"[0] Using WebView2 user data folder from environment: D:\\profile of \xc3\xbc",
                     AskedFor("(null)", "D:\\profile of \xc3\xbc")}));
}

TEST_F(Environment, WithoutBothTheProfileLiesBelowTheTemporaryDirectoryAndIsTraced) {
    const ScopedVariable noPreferences(kPreferencesVariable, nullptr);
    const ScopedVariable application(L"MERIDO_APPLICATION_NAME", L"Viewer 7");
    const std::string folder = du::FileSystem::GetTempDir() + R"(\norv\zanwbe\Viewer 7)";
    MakeBrowser();
    Create();
    EXPECT_EQ(TakeTranscript(),
              (Lines{"[0] Could not find user data folder, using " + folder, AskedFor("(null)", folder)}));
}

TEST_F(Environment, TheRuntimesFolderIsPassedOn) {
    const ScopedVariable variable(kBrowserFolderVariable, L"C:\\runtime \u4e2d");
    MakeBrowser();
    Create();
    EXPECT_EQ(TakeTranscript(), Lines{AskedFor("C:\\runtime \xe4\xb8\xad", "C:\\prefs\\zanwbe")});
}

/// The options object of the SDK is the library's to make: its answer is changed where all of its kind look it up.
TEST_F(Environment, OptionsWithoutTheirThirdInterfaceAreTracedAndUsed) {
    const auto refuse = [](IUnknown* /*self*/, REFIID /*iid*/, void** object) -> HRESULT {
        *object = nullptr;
        return E_NOINTERFACE;
    };
    const auto any = Microsoft::WRL::Make<CoreWebView2EnvironmentOptions>();
    ICoreWebView2EnvironmentOptions* const options = any.Get();
    MakeBrowser();
    {
        const test_support::ReplacedSlot slot(options, 0, +refuse);
        Create();
    }
    EXPECT_EQ(TakeTranscript(),
              (Lines{"[0] Failed: get ICoreWebView2EnvironmentOptions3 error code: -2147467262",
                     "CreateCoreWebView2EnvironmentWithOptions browser=(null) data=C:\\prefs\\zanwbe sso=1 "
                     "crash=-1 arguments=(null) language=(null) target=146.0.3856.49"}));
}

TEST_F(Environment, AnEnvironmentThatReplacesAnotherReleasesIt) {
    MakeBrowser();
    Create();
    const auto again = runtime.environmentCreated;
    auto first = test_support::MakeFake<test_support::FakeEnvironment>(runtime.script,
                                                                       runtime.controllerCreated, "first");
    again->Invoke(S_OK, first.Get());
    first.Reset();
    TakeTranscript();
    auto second = test_support::MakeFake<test_support::FakeEnvironment>(runtime.script,
                                                                        runtime.controllerCreated, "second");
    again->Invoke(S_OK, second.Get());
    EXPECT_EQ(TakeTranscript(),
              (Lines{"first gone", "environment2 gone", "second.QueryInterface ICoreWebView2Environment2",
                     "second.QueryInterface ICoreWebView2Environment10",
                     "environment10.CreateCoreWebView2ControllerOptions",
                     "controllerOptions.put_IsInPrivateModeEnabled 0",
                     "environment10.CreateCoreWebView2ControllerWithOptions 0x00004711 controllerOptions",
                     "controllerOptions gone", "environment10 gone"}));
}

} // namespace
} // namespace kelda
