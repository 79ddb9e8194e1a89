// Which backend the factory picks, and the address that both navigate to.
#include <string>
#include <utility>

#include <gtest/gtest.h>

#include <objbase.h>

#include "du/string_utilities.h"
#include "kelda/kelda.h"
#include "support/target_address.h"
#include "tests/support/ole/fake_control.h"
#include "tests/support/replaced_import.h"
#include "tests/support/scoped_variable.h"
#include "tests/support/transcript.h"
#include "tests/support/webview2/fake_runtime.h"

using test_support::Lines;
using test_support::ScopedVariable;

namespace kelda {
namespace {

class BrowserFactory : public test_support::TranscriptTest {
  protected:
    BrowserFactory() : TranscriptTest("ZanWebBrowserEdge") {}

    enum class Backend { Edge, Legacy };

    static Backend Made() {
        const auto browser = ZanWebBrowser::Factory("http://server", 0);
        EXPECT_NE(browser, nullptr);
        if (dynamic_cast<ZanWebBrowserEdge*>(browser.get()) != nullptr) {
            return Backend::Edge;
        }
        EXPECT_NE(dynamic_cast<ZanWebBrowserIE*>(browser.get()), nullptr);
        return Backend::Legacy;
    }

    ScopedVariable implementation{L"MERIDO_ZANWEBBROWSER_IMPLEMENTATION", nullptr};
    ScopedVariable browserFolder{L"MERIDO_WEBVIEW2_BROWSER_EXECUTABLE_FOLDER", nullptr};
    // Each browser ends COM when it goes; here none has begun it.
    test_support::ReplacedImport<struct Uninitialize, decltype(CoUninitialize)> coUninitialize{
        "ole32.dll", "CoUninitialize", [] {}};
    test_support::FakeRuntime runtime;
};

TEST_F(BrowserFactory, TheLettersIEInLowerCaseForceTheLegacyBrowserWithoutACheck) {
    for (const wchar_t* value :
         {L"ie", L"trace,ie", L"traceie", L"xiey", L"devtools ie nosso", L"client-ie"}) {
        const ScopedVariable variable(L"MERIDO_ZANWEBBROWSER_IMPLEMENTATION", value);
        EXPECT_EQ(Made(), Backend::Legacy);
        EXPECT_EQ(TakeTranscript(), Lines{});
    }
}

TEST_F(BrowserFactory, OtherValuesLeaveTheChoiceToTheCheck) {
    for (const wchar_t* value : {L"", L"IE", L"Ie", L"i", L"e", L"i e", L"ei", L"trace", L"edge"}) {
        const ScopedVariable variable(L"MERIDO_ZANWEBBROWSER_IMPLEMENTATION", value);
        EXPECT_EQ(Made(), Backend::Edge);
        EXPECT_EQ(TakeTranscript(), (Lines{"GetAvailableCoreWebView2BrowserVersionString (null)",
                                           "[0] WebView2 runtime found, version 146.0.3856.49"}));
    }
}

TEST_F(BrowserFactory, KeepsItsModuleLoadedForGood) {
    DWORD flags = 0;
    HMODULE module = nullptr;
    const test_support::ReplacedImport<struct Pin, decltype(GetModuleHandleExW)> pin(
        "kernel32.dll", "GetModuleHandleExW", [&](DWORD given, LPCWSTR address, HMODULE* result) {
            flags = given;
            const BOOL found = decltype(pin)::Original(given, address, result);
            module = *result;
            return found;
        });
    Made();
    EXPECT_EQ(flags, DWORD{GET_MODULE_HANDLE_EX_FLAG_PIN | GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS});
    EXPECT_EQ(module, GetModuleHandleW(nullptr)) << "the module that the code is linked into";
}

TEST_F(BrowserFactory, WithoutARuntimeTheLegacyBrowserServes) {
    runtime.script.answers["GetAvailableCoreWebView2BrowserVersionString"] = E_FAIL;
    EXPECT_EQ(Made(), Backend::Legacy);
}

TEST_F(BrowserFactory, WithTooOldARuntimeTheLegacyBrowserServes) {
    runtime.version = L"114.0.1823.86";
    EXPECT_EQ(Made(), Backend::Legacy);
}

TEST_F(BrowserFactory, ARuntimeWhoseVersionCannotBeReadCountsAsNone) {
    for (const auto& [version, error] : {std::pair{"unknown", "invalid stoi argument"},
                                         std::pair{"99999999999", "stoi argument out of range"}}) {
        runtime.version = du::Utf8ToWideStr(version);
        EXPECT_EQ(Made(), Backend::Legacy);
        EXPECT_EQ(TakeTraceLines(), (Lines{std::string("[0] WebView2 runtime found, version ") + version,
                                           std::string("[0] WebView2 runtime version cannot be read (") +
                                               error + ") - falling back on legacy browser"}));
    }
}

TEST_F(BrowserFactory, TheLegacyBrowserIsOneOfTheServerAndTheMode) {
    const ScopedVariable variable(L"MERIDO_ZANWEBBROWSER_IMPLEMENTATION", L"ie");
    const ScopedVariable userAgent(L"MERIDO_ZANWEBBROWSER_USER_AGENT", L"default");
    test_support::FakeControl control;
    control.script.recordsCalls = false;
    for (const auto& [mode, address] :
         {std::pair{0, "http://server/qxcore/jsp/qvs/vislogon.jsp"},
          std::pair{1, "http://serverARPublish/veltauth/check_authenticated_access.txt"}}) {
        const auto browser = ZanWebBrowser::Factory("http://server", mode);
        browser->Create(nullptr, nullptr);
        EXPECT_EQ(control.address, address);
        browser->Destroy();
    }
}

TEST(TargetAddress, OfTheLoginPageHasASlashOfItsOwn) {
    EXPECT_STREQ(TargetAddress("http://server", 0).safe_c_str(), "http://server/qxcore/jsp/qvs/vislogon.jsp");
    EXPECT_STREQ(TargetAddress("http://server/", 0).safe_c_str(),
                 "http://server//qxcore/jsp/qvs/vislogon.jsp");
}

TEST(TargetAddress, OfTheCheckHasNone) {
    EXPECT_STREQ(TargetAddress("http://server/", 1).safe_c_str(),
                 "http://server/ARPublish/veltauth/check_authenticated_access.txt");
    EXPECT_STREQ(TargetAddress("http://server", -1).safe_c_str(),
                 "http://serverARPublish/veltauth/check_authenticated_access.txt");
}

TEST(TargetAddress, OfAnEmptyServerIsThePathAlone) {
    EXPECT_STREQ(TargetAddress("", 0).safe_c_str(), "/qxcore/jsp/qvs/vislogon.jsp");
}

} // namespace
} // namespace kelda
