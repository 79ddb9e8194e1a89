// The browser coming up: every call in its order, with arguments and trace lines.
#include <algorithm>
#include <string>

#include <gtest/gtest.h>

#include "edge_browser_test.h"

using test_support::Lines;
using test_support::ScopedVariable;

namespace kelda {
namespace {

using StartUp = EdgeBrowserTest;

Lines AsksForEnvironment(bool singleSignOn = true) {
    return {
        std::string("CreateCoreWebView2EnvironmentWithOptions browser=(null) data=C:\\prefs\\zanwbe sso=") +
        (singleSignOn ? "1" : "0") + " crash=1 arguments=(null) language=(null) target=146.0.3856.49"};
}

const Lines kRequestsController = {
    "environment.QueryInterface ICoreWebView2Environment2",
    "environment.QueryInterface ICoreWebView2Environment10",
    "environment10.CreateCoreWebView2ControllerOptions",
    "controllerOptions.put_IsInPrivateModeEnabled 0",
    "environment10.CreateCoreWebView2ControllerWithOptions 0x00004711 controllerOptions",
    "controllerOptions gone",
    "environment10 gone",
};

const Lines kWires = {
    "controller.QueryInterface ICoreWebView2Controller4",
    "controller4.put_AllowExternalDrop 0",
    "controller4 gone",
    "controller.get_CoreWebView2",
    "webView.QueryInterface ICoreWebView2_2",
    "webView.QueryInterface ICoreWebView2_5",
    "webView.QueryInterface ICoreWebView2_14",
    "webView.QueryInterface ICoreWebView2_15",
    "webView2.get_CookieManager",
    "webView.get_Settings",
    "settings.put_IsScriptEnabled 1",
    "settings.put_AreDefaultScriptDialogsEnabled 1",
    "settings.put_AreDefaultContextMenusEnabled 0",
    "settings.put_AreDevToolsEnabled 0",
    "settings.QueryInterface ICoreWebView2Settings3",
    "settings3.put_AreBrowserAcceleratorKeysEnabled 0",
    "settings3 gone",
    "GetClientRect of the parent",
    "controller.put_Bounds 0,0 640x480",
    "controller.put_IsVisible 1",
    "webView14.add_ServerCertificateErrorDetected",
    "webView5.add_ClientCertificateRequested",
    "webView.add_WebResourceRequested",
    "webView.add_NavigationStarting",
    "webView15.add_WebResourceResponseReceived",
    "webView15.add_BasicAuthenticationRequested",
    "webView.add_NavigationCompleted",
    "webView.AddHostObjectToScript external a dispatch object, held once",
    "webView15.AddWebResourceRequestedFilter * 0",
    std::string("webView.AddScriptToExecuteOnDocumentCreated ") +
        "window.external = chrome.webview.hostObjects.external;",
    "settings gone",
};

/// `lines` with every occurrence of a line replaced.
Lines WithLine(Lines lines, const std::string& line, const std::string& replacement) {
    for (std::string& each : lines) {
        if (each == line) {
            each = replacement;
        }
    }
    return lines;
}

bool IsTrace(const std::string& line) {
    return line.starts_with('[');
}

TEST_F(StartUp, GoesThroughItsCallsInOrderFromStepToStep) {
    MakeBrowser();
    browser->InitializeCom();
    EXPECT_EQ(TakeTranscript(),
              (Lines{"CoInitializeEx 2", "[0] The COM library was initialized successfully"}));
    Create();
    EXPECT_EQ(TakeTranscript(), AsksForEnvironment());
    EXPECT_EQ(runtime.CompleteEnvironment(), S_OK);
    EXPECT_EQ(TakeTranscript(), kRequestsController);
    EXPECT_EQ(runtime.CompleteController(), S_OK);
    EXPECT_EQ(TakeTranscript(), kWires);
    EXPECT_EQ(runtime.CompleteScript(), S_OK);
    EXPECT_EQ(TakeTranscript(), kNavigates);
}

TEST_F(StartUp, NoOwnerIsAllowed) {
    MakeBrowser();
    browser->Create(nullptr, parent);
    runtime.CompleteEnvironment();
    runtime.CompleteController();
    runtime.CompleteScript();
    EXPECT_EQ(TakeTranscript().back(), "request gone");
}

/// The words of the implementation variable and what each changes.
struct Words {
    const char* name;
    const wchar_t* value;
    bool singleSignOn;
    bool inPrivate;
    bool devTools;
    bool verbose;
};

class StartUpWithWords : public EdgeBrowserTest, public ::testing::WithParamInterface<Words> {};

TEST_P(StartUpWithWords, ChangesOnlyWhatTheWordsSay) {
    const Words& words = GetParam();
    const ScopedVariable variable(kImplementationVariable, words.value);
    MakeBrowser();
    Create();
    EXPECT_EQ(TakeTranscript(), AsksForEnvironment(words.singleSignOn));
    runtime.CompleteEnvironment();
    Lines controller = WithLine(kRequestsController, "controllerOptions.put_IsInPrivateModeEnabled 0",
                                std::string("controllerOptions.put_IsInPrivateModeEnabled ") +
                                    (words.inPrivate ? "1" : "0"));
    if (words.inPrivate) {
        controller.insert(controller.begin() + 4, "[0] Using InPrivate mode");
    }
    EXPECT_EQ(TakeTranscript(), controller);

    runtime.CompleteController();
    Lines wires = kWires;
    if (words.devTools) {
        wires = WithLine(wires, "settings.put_AreDefaultContextMenusEnabled 0",
                         "settings.put_AreDefaultContextMenusEnabled 1");
        wires = WithLine(wires, "settings.put_AreDevToolsEnabled 0", "settings.put_AreDevToolsEnabled 1");
    }
    EXPECT_EQ(TakeTranscript(), wires);

    runtime.CompleteScript();
    Lines navigates = kNavigates;
    if (words.verbose) {
        const std::string url = "http://server/qxcore/jsp/qvs/vislogon.jsp";
        navigates.insert(navigates.begin() + 1, "[0] Navigating to " + url);
        navigates.insert(navigates.begin(), {"[0] WinInet cookies before navigating to " + url,
                                             "[0] WinInet cookies for " + url, kReadsStore});
    }
    EXPECT_EQ(TakeTranscript(), navigates);
}

INSTANTIATE_TEST_SUITE_P(
    Variable, StartUpWithWords,
    ::testing::Values(Words{"Empty", L"", true, false, false, false},
                      Words{"Nosso", L"nosso", false, false, false, false},
                      Words{"Inprivate", L"inprivate", true, true, false, false},
                      Words{"Devtools", L"devtools", true, false, true, false},
                      Words{"Trace", L"trace", true, false, false, true},
                      Words{"Parse", L"parse", true, false, false, false},
                      Words{"All", L"trace,parse;nosso inprivate/devtools", false, true, true, true},
                      Words{"AllRunTogether", L"devtoolsnossotraceinprivateparse", false, true, true, true},
                      Words{"OtherCase", L"NOSSO InPrivate DEVTOOLS Trace", true, false, false, false},
                      Words{"OtherWords", L"sso private tools", true, false, false, false}),
    [](const auto& test) { return test.param.name; });

TEST_F(StartUp, ReadsTheWordsWhenTheBrowserIsMade) {
    MakeBrowser();
    const ScopedVariable variable(kImplementationVariable, L"nosso");
    Create();
    EXPECT_EQ(TakeTranscript(), AsksForEnvironment());
}

TEST_F(StartUp, AFailedEnvironmentIsTracedAndItsCodeReturned) {
    AwaitEnvironment();
    EXPECT_EQ(runtime.CompleteEnvironment(E_ACCESSDENIED), E_ACCESSDENIED);
    EXPECT_EQ(TakeTranscript(), (Lines{kSecondTry, "[0] Failed to create WebView2 environment -2147024891"}));
}

TEST_F(StartUp, ASuccessWithoutAnEnvironmentIsTracedAndItsCodeReturned) {
    AwaitEnvironment();
    EXPECT_EQ(runtime.environmentCreated->Invoke(S_FALSE, nullptr), S_FALSE);
    EXPECT_EQ(TakeTranscript(), Lines{"[0] Failed to create WebView2 environment 1"});
}

TEST_F(StartUp, WhatTheCallForTheEnvironmentReturnsIsNotLookedAt) {
    runtime.script.answers["CreateCoreWebView2EnvironmentWithOptions"] = E_FAIL;
    MakeBrowser();
    Create();
    EXPECT_EQ(TakeTranscript(), AsksForEnvironment());
}

TEST_F(StartUp, AControllerThatComesWithAnythingButOkIsNotWired) {
    for (const HRESULT result : {S_FALSE, E_ABORT}) {
        AwaitController();
        EXPECT_EQ(runtime.CompleteController(result), result);
        const std::string line = "[0] Failed to create WebView2 controller " + std::to_string(result);
        EXPECT_EQ(TakeTranscript(), result == S_FALSE ? (Lines{line, "controller gone"}) : Lines{line});
        browser.reset();
    }
}

TEST_F(StartUp, WithoutAControllerEveryStepThatIsTracedIsTracedAsFailed) {
    AwaitController();
    EXPECT_EQ(runtime.controllerCreated->Invoke(S_OK, nullptr), S_OK);
    EXPECT_EQ(
        TakeTranscript(),
        (Lines{"[0] Failed to create WebView2 controller 0",
               "[0] Failed: get ICoreWebView2Settings error code: -2147467261", "GetClientRect of the parent",
               "[0] Failed: add_ServerCertificateErrorDetected error code: -2147467261",
               "[0] Failed: add_ClientCertificateRequested error code: -2147467261",
               "[0] Failed: add_WebResourceRequested error code: -2147467261",
               "[0] Failed: add_NavigationStarting error code: -2147467261",
               "[0] Failed: add_WebResourceResponseReceived error code: -2147467261",
               "[0] Failed: add_BasicAuthenticationRequested error code: -2147467261",
               "[0] Failed: add_NavigationCompleted error code: -2147467261",
               "[0] Failed: AddHostObjectToScript error code: -2147467261",
               "[0] Failed: AddWebResourceRequestedFilter error code: -2147467261",
               "[0] Failed: AddScriptToExecuteOnDocumentCreated error code: -2147467261"}));
}

TEST_F(StartUp, OnceTheHostObjectIsExposedOnlyTheRuntimeHoldsIt) {
    BringUp();
    IDispatch* const hostObject = runtime.webView.hostObject.Get();
    EXPECT_EQ(hostObject->AddRef(), 2U);
    EXPECT_EQ(hostObject->Release(), 1U);
}

TEST_F(StartUp, AParentWithoutASizeGivesABrowserWithoutOne) {
    MakeBrowser();
    browser->Create(&owner, nullptr);
    clientRect = {};
    runtime.CompleteEnvironment();
    runtime.CompleteController();
    const Lines transcript = TakeTranscript();
    EXPECT_EQ(std::count(transcript.begin(), transcript.end(), "controller.put_Bounds 0,0 0x0"), 1);
}

TEST_F(StartUp, AControllerThatReplacesAnotherReleasesAllOfIt) {
    MakeBrowser();
    Create();
    runtime.CompleteEnvironment();
    const auto again = runtime.controllerCreated;
    auto first =
        test_support::MakeFake<test_support::FakeController>(runtime.script, runtime.webView, "first");
    again->Invoke(S_OK, first.Get());
    first.Reset();
    TakeTranscript();
    const auto second =
        test_support::MakeFake<test_support::FakeController>(runtime.script, runtime.webView, "second");
    again->Invoke(S_OK, second.Get());
    Lines gone;
    for (const std::string& line : TakeTranscript()) {
        if (line.ends_with(" gone")) {
            gone.push_back(line);
        }
    }
    EXPECT_EQ(gone, (Lines{"first gone", "controller4 gone", "webView gone", "webView2 gone", "webView5 gone",
                           "webView14 gone", "webView15 gone", "cookieManager gone", "settings3 gone",
                           "settings gone"}));
    browser->Destroy();
}

TEST_F(StartUp, ResizeFitsTheBrowserToItsParentAgain) {
    BringUp(0);
    clientRect = {0, 0, 300, 200};
    browser->Resize();
    EXPECT_EQ(TakeTranscript(), (Lines{"GetClientRect of the parent", "controller.put_Bounds 0,0 300x200"}));
}

TEST_F(StartUp, ResizeWithoutAControllerSizesNothing) {
    AwaitEnvironment();
    browser->Resize();
    EXPECT_EQ(TakeTranscript(), Lines{"GetClientRect of the parent"});
}

TEST_F(StartUp, TheWindowHandleIsNullInEveryState) {
    MakeBrowser();
    EXPECT_EQ(browser->GetWindowHandle(), nullptr);
    Create();
    runtime.CompleteEnvironment();
    runtime.CompleteController();
    runtime.CompleteScript();
    EXPECT_EQ(browser->GetWindowHandle(), nullptr);
    browser->Destroy();
    EXPECT_EQ(browser->GetWindowHandle(), nullptr);
}

TEST_F(StartUp, AResizeWhileItIsShownIsServed) {
    runtime.script.during["controller.put_IsVisible"] = [this] {
        clientRect = {0, 0, 100, 50};
        browser->Resize();
    };
    MakeBrowser();
    Create();
    runtime.CompleteEnvironment();
    runtime.CompleteController();
    Lines expected = kWires;
    expected.insert(expected.begin() + 20,
                    {"GetClientRect of the parent", "controller.put_Bounds 0,0 100x50"});
    const Lines transcript = TakeTranscript();
    EXPECT_EQ(Lines(transcript.end() - static_cast<std::ptrdiff_t>(expected.size()), transcript.end()),
              expected);
}

TEST_F(StartUp, ClosedWhileItIsShownItRegistersNothing) {
    runtime.script.during["controller.put_IsVisible"] = [this] { browser->Destroy(); };
    AwaitController();
    EXPECT_EQ(runtime.CompleteController(), S_OK);
    EXPECT_EQ(TakeTraceLines(), Lines{}) << "a registration was tried";
    EXPECT_TRUE(runtime.webView.handlers.empty());
    EXPECT_EQ(runtime.webView.hostObject, nullptr);
    EXPECT_EQ(runtime.webView.scriptAdded, nullptr);
}

TEST_F(StartUp, ClosedOrDeletedWhileItIsSizedItIsNotShown) {
    for (const bool deleted : {false, true}) {
        runtime.script.during["controller.put_Bounds"] = [this, deleted] {
            browser->Destroy();
            if (deleted) {
                browser.reset();
            }
        };
        MakeBrowser();
        Create();
        runtime.CompleteEnvironment();
        EXPECT_EQ(runtime.CompleteController(), S_OK);
        const Lines transcript = TakeTranscript();
        EXPECT_EQ(std::count(transcript.begin(), transcript.end(), "controller.put_IsVisible 1"), 0);
        EXPECT_EQ(std::count_if(transcript.begin(), transcript.end(), IsTrace), 0);
    }
}

TEST_F(StartUp, DeletedWhileItIsShownItRegistersNothing) {
    runtime.script.during["controller.put_IsVisible"] = [this] { browser.reset(); };
    AwaitController();
    EXPECT_EQ(runtime.CompleteController(), S_OK);
    EXPECT_EQ(TakeTraceLines(), Lines{}) << "a registration was tried";
    EXPECT_TRUE(runtime.webView.handlers.empty());
    EXPECT_EQ(runtime.webView.scriptAdded, nullptr);
}

} // namespace
} // namespace kelda
