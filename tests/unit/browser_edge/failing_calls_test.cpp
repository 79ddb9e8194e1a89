// Each call of a browser's life failing once: what is traced, what no longer happens, and that all the rest still does.
#include <map>
#include <set>
#include <string>

#include <gtest/gtest.h>

#include "edge_browser_test.h"

using test_support::Lines;

namespace kelda {
namespace {

constexpr const char* kFail = " error code: -2147467259";    // E_FAIL
constexpr const char* kPointer = " error code: -2147467261"; // E_POINTER: the object for the call is missing

/// What a failing call is called in the trace; those that are not listed are not traced.
const std::map<std::string, std::string> kOperations = {
    {"environment.QueryInterface ICoreWebView2Environment2", "get ICoreWebView2Environment2"},
    {"controller.QueryInterface ICoreWebView2Controller4", "get ICoreWebView2Controller4"},
    {"webView.QueryInterface ICoreWebView2_2", "get ICoreWebView2_2"},
    {"webView.QueryInterface ICoreWebView2_5", "get ICoreWebView2_5"},
    {"webView.QueryInterface ICoreWebView2_14", "get ICoreWebView2_14"},
    {"webView.QueryInterface ICoreWebView2_15", "get ICoreWebView2_15"},
    {"webView2.get_CookieManager", "get_CookieManager"},
    {"webView.get_Settings", "get ICoreWebView2Settings"},
    {"settings.QueryInterface ICoreWebView2Settings3", "get ICoreWebView2Settings3"},
    {"webView14.add_ServerCertificateErrorDetected", "add_ServerCertificateErrorDetected"},
    {"webView5.add_ClientCertificateRequested", "add_ClientCertificateRequested"},
    {"webView.add_WebResourceRequested", "add_WebResourceRequested"},
    {"webView.add_NavigationStarting", "add_NavigationStarting"},
    {"webView15.add_WebResourceResponseReceived", "add_WebResourceResponseReceived"},
    {"webView15.add_BasicAuthenticationRequested", "add_BasicAuthenticationRequested"},
    {"webView.add_NavigationCompleted", "add_NavigationCompleted"},
    {"webView.AddHostObjectToScript", "AddHostObjectToScript"},
    {"webView15.AddWebResourceRequestedFilter", "AddWebResourceRequestedFilter"},
    {"environment2.CreateWebResourceRequest", "CreateWebResourceRequest"},
    {"webView15.NavigateWithWebResourceRequest", "NavigateWithWebResourceRequest"},
    {"webView14.remove_ServerCertificateErrorDetected", "remove_ServerCertificateErrorDetected"},
    {"webView5.remove_ClientCertificateRequested", "remove_ClientCertificateRequested"},
    {"webView.remove_WebResourceRequested", "remove_WebResourceRequested"},
    {"webView.remove_NavigationStarting", "remove_NavigationStarting"},
    {"webView15.remove_WebResourceResponseReceived", "remove_WebResourceResponseReceived"},
    {"webView15.remove_BasicAuthenticationRequested", "remove_BasicAuthenticationRequested"},
    {"webView.remove_NavigationCompleted", "remove_NavigationCompleted"},
    {"webView.RemoveHostObjectFromScript", "RemoveHostObjectFromScript"},
    {"webView.RemoveScriptToExecuteOnDocumentCreated", "RemoveScriptToExecuteOnDocumentCreated"},
};

/// The object that a call yields, and that is missing when it fails.
const std::map<std::string, std::string> kYields = {
    {"environment.QueryInterface ICoreWebView2Environment2", "environment2"},
    {"environment10.CreateCoreWebView2ControllerOptions", "controllerOptions"},
    {"controller.QueryInterface ICoreWebView2Controller4", "controller4"},
    {"webView.QueryInterface ICoreWebView2_2", "webView2"},
    {"webView.QueryInterface ICoreWebView2_5", "webView5"},
    {"webView.QueryInterface ICoreWebView2_14", "webView14"},
    {"webView.QueryInterface ICoreWebView2_15", "webView15"},
    {"webView2.get_CookieManager", "cookieManager"},
    {"webView.get_Settings", "settings"},
    {"settings.QueryInterface ICoreWebView2Settings3", "settings3"},
    {"environment2.CreateWebResourceRequest", "request"},
};

/// Objects whose calls are left out in silence when they are missing.
const std::set<std::string> kQuiet = {"controllerOptions", "controller4", "settings", "settings3"};

template <typename Value>
const Value* FindCall(const std::map<std::string, Value>& calls, const std::string& line) {
    for (const auto& [call, value] : calls) {
        if (line == call || line.starts_with(call + " ")) {
            return &value;
        }
    }
    return nullptr;
}

/// The transcript of a good life as it is when `failing` fails.
class LifeWithFailure {
  public:
    LifeWithFailure(const Lines& goodLife, const std::string& failing) {
        for (const std::string& line : goodLife) {
            if (line == failing) {
                Add(line);
                Fail(line, kFail);
            } else {
                AddUnlessMissing(line);
            }
        }
    }

    const Lines& Expected() const { return expected_; }

  private:
    void Add(const std::string& line) { expected_.push_back(line); }

    void AddUnlessMissing(const std::string& line) {
        const std::string object = line.substr(0, line.find_first_of(". "));
        if (line == tokenless_ + " its token") {
            Add(tokenless_ + " another's token");
        } else if (missing_.count(object) == 0) {
            Add(WithoutMissingArgument(line));
        } else if (line.find('.') != std::string::npos) {
            Fail(line, kPointer);
        }
    }

    std::string WithoutMissingArgument(const std::string& line) const {
        for (const char* argument : {" controllerOptions", " request"}) {
            if (line.ends_with(argument) && missing_.count(argument + 1) != 0) {
                return line.substr(0, line.rfind(' ')) + " (null)";
            }
        }
        return line;
    }

    void Fail(const std::string& line, const char* code) {
        const std::string object = line.substr(0, line.find('.'));
        const std::string* const operation = FindCall(kOperations, line);
        if (operation != nullptr && (kQuiet.count(object) == 0 || code == kFail)) {
            Add("[0] Failed: " + *operation + code);
        }
        if (const std::string* const yielded = FindCall(kYields, line)) {
            missing_.insert(*yielded);
        }
        const size_t add = line.find(".add_");
        if (add != std::string::npos && code == kFail) {
            tokenless_ = object + ".remove_" + line.substr(add + 5);
        }
    }

    Lines expected_;
    std::string
        tokenless_; // the removal of an event that could not be registered, which is tried all the same
    std::set<std::string> missing_;
};

/// One text, so that a difference is shown in full.
std::string Joined(const Lines& lines) {
    std::string text;
    for (const std::string& line : lines) {
        text += line + "\n";
    }
    return text;
}

class FailingCalls : public EdgeBrowserTest {
  protected:
    /// From Create to deletion, as far as it gets.
    Lines Live() {
        TakeTranscript();
        MakeBrowser();
        Create();
        runtime.CompleteEnvironment();
        if (runtime.controllerCreated) {
            runtime.CompleteController();
        }
        if (runtime.webView.scriptAdded) {
            runtime.CompleteScript();
        }
        browser->Destroy();
        browser.reset();
        while (!runtime.webView.handlers.empty()) { // those whose removal failed
            runtime.webView.Drop(std::string(runtime.webView.handlers.begin()->first));
        }
        return TakeTranscript();
    }

    static bool IsCallOfTheRuntime(const std::string& line) {
        return line.find('.') != std::string::npos && line[0] != '[' && !line.starts_with("Create") &&
               !line.starts_with("Internet");
    }

    /// Those whose failure changes more than a table can say; each has a test below.
    static bool EndsTheStartUp(const std::string& line) {
        return line == "environment.QueryInterface ICoreWebView2Environment10" ||
               line.starts_with("environment10.CreateCoreWebView2ControllerWithOptions") ||
               line == "controller.get_CoreWebView2" ||
               line.starts_with("webView.AddScriptToExecuteOnDocumentCreated") || line == "webView.Stop";
    }
};

TEST_F(FailingCalls, EachIsTracedInItsWordsAndAllTheRestStillHappens) {
    const Lines goodLife = Live();
    int tried = 0;
    for (const std::string& call : goodLife) {
        if (!IsCallOfTheRuntime(call) || EndsTheStartUp(call)) {
            continue;
        }
        SCOPED_TRACE(call);
        runtime.script.answers = {{call, E_FAIL}};
        EXPECT_EQ(Joined(Live()), Joined(LifeWithFailure(goodLife, call).Expected()));
        ++tried;
    }
    EXPECT_EQ(tried, 40);
}

TEST_F(FailingCalls, WithoutTheEnvironmentsTenthViewNoControllerIsAskedFor) {
    runtime.script.answers["environment.QueryInterface ICoreWebView2Environment10"] = E_NOINTERFACE;
    AwaitEnvironment();
    EXPECT_EQ(runtime.CompleteEnvironment(), S_OK);
    EXPECT_EQ(TakeTranscript(),
              (Lines{"environment.QueryInterface ICoreWebView2Environment2",
                     "environment.QueryInterface ICoreWebView2Environment10",
                     "[0] Failed: get ICoreWebView2Environment10 error code: -2147467262"}));
    EXPECT_EQ(runtime.controllerCreated, nullptr);
}

TEST_F(FailingCalls, WhatTheCallForTheControllerReturnsIsNotLookedAt) {
    runtime.script.answers["environment10.CreateCoreWebView2ControllerWithOptions"] = E_FAIL;
    MakeBrowser();
    Create();
    EXPECT_EQ(runtime.CompleteEnvironment(), S_OK);
    EXPECT_EQ(TakeTraceLines(), Lines{});
}

TEST_F(FailingCalls, WithoutAWebViewEveryStepThatNeedsItIsTraced) {
    runtime.script.answers["controller.get_CoreWebView2"] = E_FAIL;
    AwaitController();
    EXPECT_EQ(runtime.CompleteController(), S_OK);
    Lines expected;
    for (const char* operation :
         {"get ICoreWebView2_2", "get ICoreWebView2_5", "get ICoreWebView2_14", "get ICoreWebView2_15",
          "get_CookieManager", "get ICoreWebView2Settings", "add_ServerCertificateErrorDetected",
          "add_ClientCertificateRequested", "add_WebResourceRequested", "add_NavigationStarting",
          "add_WebResourceResponseReceived", "add_BasicAuthenticationRequested", "add_NavigationCompleted",
          "AddHostObjectToScript", "AddWebResourceRequestedFilter", "AddScriptToExecuteOnDocumentCreated"}) {
        expected.push_back(std::string("[0] Failed: ") + operation + kPointer);
    }
    EXPECT_EQ(TakeTraceLines(), expected);
}

TEST_F(FailingCalls, WhenTheDocumentScriptIsRefusedThereIsNoNavigation) {
    runtime.script.answers["webView.AddScriptToExecuteOnDocumentCreated"] = E_FAIL;
    AwaitController();
    EXPECT_EQ(runtime.CompleteController(), S_OK);
    EXPECT_EQ(TakeTraceLines(),
              Lines{"[0] Failed: AddScriptToExecuteOnDocumentCreated error code: -2147467259"});
    EXPECT_EQ(runtime.webView.scriptAdded, nullptr);
}

} // namespace
} // namespace kelda
