// The check for a usable runtime: versions, failures, and the variables that it empties.
#include "browser_edge/runtime_check.h"

#include <stdexcept>
#include <string>
#include <utility>

#include <gtest/gtest.h>

#include "dp/environment.h"
#include "edge_browser_test.h"

using test_support::Lines;
using test_support::ScopedVariable;

namespace kelda {
namespace {

class RuntimeCheck : public EdgeBrowserTest {
  protected:
    int versionsFreed = 0;
    test_support::ReplacedImport<struct Free, decltype(CoTaskMemFree)> free{
        "ole32.dll", "CoTaskMemFree", [this](void* block) {
            versionsFreed += block != nullptr && block == runtime.versionGiven ? 1 : 0;
            decltype(free)::Original(block);
        }};
};

constexpr const char* kNotFound = "[0] WebView2 runtime not found - falling back on legacy browser";
constexpr const char* kTooOld =
    "[0] WebView2 runtime is below minimum version of 115 - falling back on legacy browser";

struct Version {
    const char* name;
    const wchar_t* text;
    bool usable;
};

class RuntimeVersion : public EdgeBrowserTest, public ::testing::WithParamInterface<Version> {};

TEST_P(RuntimeVersion, ItsMajorNumberDecides) {
    runtime.version = GetParam().text;
    EXPECT_EQ(IsWebView2Available(), GetParam().usable);
    Lines expected{"GetAvailableCoreWebView2BrowserVersionString (null)",
                   "[0] WebView2 runtime found, version " + test_support::Narrow(GetParam().text)};
    if (!GetParam().usable) {
        expected.emplace_back(kTooOld);
    }
    EXPECT_EQ(TakeTranscript(), expected);
}

INSTANTIATE_TEST_SUITE_P(
    Versions, RuntimeVersion,
    ::testing::Values(Version{"Minimum", L"115.0.1901.183", true},
                      Version{"JustBelow", L"114.0.1823.86", false}, Version{"Later", L"120.0.2210.91", true},
                      Version{"Preview", L"115.0.1901.183 beta", true}, Version{"MajorOnly", L"115", true},
                      Version{"BlankInFront", L" 116.0", true}, Version{"Zero", L"0.1", false},
                      Version{"Negative", L"-120.0", false}, Version{"Greatest", L"2147483647.1", true}),
    [](const auto& test) { return test.param.name; });

TEST_F(RuntimeCheck, AFailureIsNoRuntime) {
    runtime.script.answers["GetAvailableCoreWebView2BrowserVersionString"] =
        HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND);
    EXPECT_FALSE(IsWebView2Available());
    EXPECT_EQ(TakeTranscript(), (Lines{"GetAvailableCoreWebView2BrowserVersionString (null)", kNotFound}));
}

TEST_F(RuntimeCheck, ASuccessOtherThanOkIsNoRuntime) {
    runtime.script.answers["GetAvailableCoreWebView2BrowserVersionString"] = S_FALSE;
    EXPECT_FALSE(IsWebView2Available());
    EXPECT_EQ(TakeTraceLines(), Lines{kNotFound});
    EXPECT_EQ(versionsFreed, 1);
}

TEST_F(RuntimeCheck, ANullVersionIsNoRuntime) {
    runtime.version.clear();
    EXPECT_FALSE(IsWebView2Available());
    EXPECT_EQ(TakeTraceLines(), Lines{kNotFound});
}

TEST_F(RuntimeCheck, TheFolderVariableIsTracedAndDecides) {
    const ScopedVariable variable(kBrowserFolderVariable, L"C:\\fixed \u00fc");
    EXPECT_TRUE(IsWebView2Available());
    EXPECT_EQ(TakeTranscript(), (Lines{"[0] Using WebView2 runtime from environment: C:\\fixed \xc3\xbc",
                                       "GetAvailableCoreWebView2BrowserVersionString C:\\fixed \xc3\xbc",
                                       "[0] WebView2 runtime found, version 146.0.3856.49"}));
}

TEST_F(RuntimeCheck, TheThreeStandardVariablesAreEmptyAfterwardsAndBeforeTheRuntimeIsAsked) {
    const ScopedVariable folder(L"WEBVIEW2_BROWSER_EXECUTABLE_FOLDER", L"C:\\elsewhere");
    const ScopedVariable data(L"WEBVIEW2_USER_DATA_FOLDER", L"C:\\data");
    const ScopedVariable arguments(L"WEBVIEW2_ADDITIONAL_BROWSER_ARGUMENTS", L"--no-sandbox");
    const auto expectEmpty = [] {
        EXPECT_EQ(dp::Environment::Get("WEBVIEW2_BROWSER_EXECUTABLE_FOLDER"), "");
        EXPECT_EQ(dp::Environment::Get("WEBVIEW2_USER_DATA_FOLDER"), "");
        EXPECT_EQ(dp::Environment::Get("WEBVIEW2_ADDITIONAL_BROWSER_ARGUMENTS"), "");
    };
    runtime.script.during["GetAvailableCoreWebView2BrowserVersionString"] = expectEmpty;
    runtime.version = L"1.0"; // also where the answer is no
    EXPECT_FALSE(IsWebView2Available());
    expectEmpty();
}

TEST_F(RuntimeCheck, TheVersionIsFreedOnce) {
    EXPECT_TRUE(IsWebView2Available());
    EXPECT_EQ(versionsFreed, 1);
}

TEST_F(RuntimeCheck, AVersionThatIsNoNumberThrowsAndIsFreed) {
    for (const auto& [version, error] : {std::pair{L"unknown", "invalid stoi argument"},
                                         std::pair{L"2147483648.0", "stoi argument out of range"}}) {
        runtime.version = version;
        const int freedBefore = versionsFreed;
        try {
            IsWebView2Available();
            ADD_FAILURE() << error << " was expected";
        } catch (const std::logic_error& exception) {
            EXPECT_STREQ(exception.what(), error);
        }
        EXPECT_EQ(versionsFreed, freedBefore + 1);
    }
}

} // namespace
} // namespace kelda
