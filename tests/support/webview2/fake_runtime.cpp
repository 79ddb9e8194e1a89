// The loader's functions, and the completions of the fake runtime.
#include "tests/support/webview2/fake_runtime.h"

#include <utility>

#include <gtest/gtest.h>
#include <objbase.h>

#include "tests/support/fake_object.h"
#include "tests/support/webview2/com_copy.h"

using Microsoft::WRL::ComPtr;

namespace test_support {
namespace {

FakeRuntime* present = nullptr;

/// Lets go of an object of the library's, of which nobody else may have a reference any more.
template <typename Interface>
void ExpectLast(ComPtr<Interface>& object, const char* what) {
    EXPECT_EQ(object.Reset(), 0U) << what << " is still referenced";
}

/// Takes a text that a getter has handed out.
std::string Take(wchar_t* text) {
    std::string narrow = Narrow(text);
    CoTaskMemFree(text);
    return narrow;
}

std::string Describe(ICoreWebView2EnvironmentOptions* options) {
    BOOL singleSignOn = -1;
    wchar_t* arguments = nullptr;
    wchar_t* language = nullptr;
    wchar_t* target = nullptr;
    options->get_AllowSingleSignOnUsingOSPrimaryAccount(&singleSignOn);
    options->get_AdditionalBrowserArguments(&arguments);
    options->get_Language(&language);
    options->get_TargetCompatibleBrowserVersion(&target);
    BOOL customCrashReporting = -1;
    ComPtr<ICoreWebView2EnvironmentOptions3> options3;
    if (SUCCEEDED(options->QueryInterface(IID_PPV_ARGS(options3.GetAddressOf())))) {
        options3->get_IsCustomCrashReportingEnabled(&customCrashReporting);
    }
    return "sso=" + std::to_string(singleSignOn) + " crash=" + std::to_string(customCrashReporting) +
           " arguments=" + Take(arguments) + " language=" + Take(language) + " target=" + Take(target);
}

} // namespace

std::string FakeRuntime::Arguments::Text() const {
    return "browser=" + Narrow(browserFolder) + " data=" + Narrow(userDataFolder) + " " + Describe(options);
}

FakeRuntime::FakeRuntime() {
    present = this;
}

FakeRuntime::~FakeRuntime() {
    present = nullptr;
    DropEnvironmentCompletion(environmentCreated);
    ExpectLast(controllerCreated, "the controller's completion");
    ExpectLast(webView.scriptAdded, "the script's completion");
    for (auto& handler : webView.cookiesAsked) {
        ExpectLast(handler, "the cookies' completion");
    }
    while (!webView.handlers.empty()) {
        webView.Drop(std::string(webView.handlers.begin()->first));
    }
}

HRESULT FakeRuntime::CompleteEnvironment(HRESULT result) {
    ComPtr<FakeEnvironment> environment;
    if (SUCCEEDED(result)) {
        environment = MakeFake<FakeEnvironment>(script, controllerCreated, "environment");
    }
    auto handler = std::exchange(environmentCreated, nullptr);
    if (FAILED(result)) {
        script.Call("the loader's second try", arguments_.Text());
    }
    const HRESULT answer = handler->Invoke(result, environment.Get());
    DropEnvironmentCompletion(handler);
    return answer;
}

void FakeRuntime::DropEnvironmentCompletion(
    ComPtr<ICoreWebView2CreateCoreWebView2EnvironmentCompletedHandler>& handler) {
    if (handler) {
        ComPtr<ICoreWebView2EnvironmentOptions> options = arguments_.options;
        ExpectLast(handler, "the environment's completion");
        ExpectLast(options, "the environment options");
    }
}

HRESULT FakeRuntime::CompleteController(HRESULT result) {
    ComPtr<FakeController> controller;
    if (SUCCEEDED(result)) {
        controller = MakeFake<FakeController>(script, webView, "controller");
        // Letting go of the last reference ends the browser, closed or not.
        controller->onGone = [this] { webView.hostObject.Reset(); };
    }
    auto handler = std::exchange(controllerCreated, nullptr);
    const HRESULT answer = handler->Invoke(result, controller.Get());
    ExpectLast(handler, "the controller's completion");
    return answer;
}

HRESULT FakeRuntime::CompleteScript(HRESULT result, const wchar_t* id) {
    auto handler = std::exchange(webView.scriptAdded, nullptr);
    const HRESULT answer = handler->Invoke(result, id);
    ExpectLast(handler, "the script's completion");
    return answer;
}

HRESULT FakeRuntime::CompleteCookies(const std::vector<std::optional<CookieContent>>& cookies,
                                     HRESULT result) {
    ComPtr<FakeCookieList> list;
    if (SUCCEEDED(result)) {
        list = MakeFake<FakeCookieList>(script, cookies);
    }
    auto handler = std::exchange(webView.cookiesAsked.at(0), nullptr);
    webView.cookiesAsked.erase(webView.cookiesAsked.begin());
    const HRESULT answer = handler->Invoke(result, list.Get());
    ExpectLast(handler, "the cookies' completion");
    return answer;
}

HRESULT FakeRuntime::GetVersion(const wchar_t* browserFolder, wchar_t** result) {
    const HRESULT answer = script.Call("GetAvailableCoreWebView2BrowserVersionString", Narrow(browserFolder));
    if (SUCCEEDED(answer) && !version.empty()) {
        *result = ComCopy(version);
        versionGiven = *result;
    }
    return answer;
}

HRESULT
FakeRuntime::CreateEnvironment(const wchar_t* browserFolder, const wchar_t* userDataFolder,
                               ICoreWebView2EnvironmentOptions* environmentOptions,
                               ICoreWebView2CreateCoreWebView2EnvironmentCompletedHandler* handler) {
    arguments_ = {browserFolder, userDataFolder, environmentOptions};
    const HRESULT answer = script.Call("CreateCoreWebView2EnvironmentWithOptions", arguments_.Text());
    if (SUCCEEDED(answer)) {
        environmentCreated = handler;
    }
    return answer;
}

} // namespace test_support

STDAPI
CreateCoreWebView2EnvironmentWithOptions(
    PCWSTR browserExecutableFolder, PCWSTR userDataFolder,
    ICoreWebView2EnvironmentOptions* environmentOptions,
    ICoreWebView2CreateCoreWebView2EnvironmentCompletedHandler* handler) {
    return test_support::present->CreateEnvironment(browserExecutableFolder, userDataFolder,
                                                    environmentOptions, handler);
}

STDAPI GetAvailableCoreWebView2BrowserVersionString(PCWSTR browserExecutableFolder, LPWSTR* versionInfo) {
    return test_support::present->GetVersion(browserExecutableFolder, versionInfo);
}
