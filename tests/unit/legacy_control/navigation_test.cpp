// Loading pages: the events, their arguments and their order.
#include <exdispid.h>
#include <urlmon.h>

#include "tests/unit/legacy_control/control_test.h"

namespace legacy_control_test {
namespace {

using test_support::Answer;
using testing::ElementsAre;
using testing::IsEmpty;

const HRESULT kCancelled = HRESULT_FROM_WIN32(ERROR_CANCELLED);

class NavigationTest : public ControlTest {
  protected:
    void SetUp() override {
        ControlTest::SetUp();
        ASSERT_NO_FATAL_FAILURE(CreateAndActivate());
    }

    /// Cancels every navigation to a URL that contains the text.
    void Cancel(const std::string& part) {
        host.cancels = [part](const RecordedCall& event) {
            return event.member == DISPID_BEFORENAVIGATE2 &&
                   event.values.at(1).find(part) != std::string::npos;
        };
    }

    std::string Location() const {
        BSTR url = nullptr;
        EXPECT_EQ(Control<IWebBrowser2>()->get_LocationURL(&url), S_OK);
        std::wstring text(url, SysStringLen(url));
        SysFreeString(url);
        return {text.begin(), text.end()};
    }

    READYSTATE State() const {
        READYSTATE state = READYSTATE_UNINITIALIZED;
        EXPECT_EQ(Control<IWebBrowser2>()->get_ReadyState(&state), S_OK);
        return state;
    }
};

TEST_F(NavigationTest, APageBringsTheEventsInTheirOrder) {
    pages.Add("/", "<title>A page</title>");
    ASSERT_TRUE(Load(pages.Url("/")));
    EXPECT_THAT(host.Steps(),
                ElementsAre(DISPID_BEFORENAVIGATE2, DISPID_DOWNLOADBEGIN, DISPID_DOWNLOADCOMPLETE,
                            DISPID_NAVIGATECOMPLETE2, DISPID_TITLECHANGE, DISPID_DOCUMENTCOMPLETE));
    EXPECT_EQ(host.Find(DISPID_TITLECHANGE)->values.at(0), "A page");
    EXPECT_EQ(Location(), pages.Url("/"));
    EXPECT_EQ(State(), READYSTATE_COMPLETE);
    ComPtr<IDispatch> document;
    EXPECT_EQ(Control<IWebBrowser2>()->get_Document(document.GetAddressOf()), S_OK);
    EXPECT_TRUE(document);
}

TEST_F(NavigationTest, TheHostIsAskedInsideItsOwnCall) {
    pages.Add("/", "page");
    EXPECT_EQ(Navigate(pages.Url("/")), S_OK);
    EXPECT_THAT(host.Steps(), ElementsAre(DISPID_BEFORENAVIGATE2, DISPID_DOWNLOADBEGIN));
    EXPECT_EQ(host.Count(DISPID_COMMANDSTATECHANGE), 2U);
    VARIANT_BOOL busy = VARIANT_FALSE;
    EXPECT_EQ(Control<IWebBrowser2>()->get_Busy(&busy), S_OK);
    EXPECT_EQ(busy, VARIANT_TRUE);
    EXPECT_EQ(State(), READYSTATE_LOADING);
    EXPECT_TRUE(Await(DISPID_DOCUMENTCOMPLETE, [] {}));
    EXPECT_EQ(host.Count(DISPID_BEFORENAVIGATE2), 1U);
}

TEST_F(NavigationTest, ArgumentsHaveTheirKinds) {
    pages.Add("/", "page");
    ASSERT_TRUE(Load(pages.Url("/")));
    const RecordedCall* before = host.Find(DISPID_BEFORENAVIGATE2);
    EXPECT_THAT(before->kinds,
                ElementsAre("object", "&text", "&number", "&text", "&empty", "&text", "&truth"));
    EXPECT_EQ(before->values.at(1), pages.Url("/"));
    EXPECT_EQ(before->values.at(2), "2");
    EXPECT_EQ(before->flags, DISPATCH_METHOD);
    EXPECT_THAT(host.Find(DISPID_NAVIGATECOMPLETE2)->kinds, ElementsAre("object", "&text"));
    EXPECT_THAT(host.Find(DISPID_DOCUMENTCOMPLETE)->kinds, ElementsAre("object", "&text"));
    EXPECT_EQ(host.Find(DISPID_DOCUMENTCOMPLETE)->values.at(1), pages.Url("/"));
    EXPECT_THAT(host.Find(DISPID_DOWNLOADBEGIN)->kinds, IsEmpty());
    EXPECT_THAT(host.Find(DISPID_DOWNLOADCOMPLETE)->kinds, IsEmpty());
    EXPECT_THAT(host.Find(DISPID_PROGRESSCHANGE)->kinds, ElementsAre("number", "number"));
    EXPECT_THAT(host.Find(DISPID_COMMANDSTATECHANGE)->kinds, ElementsAre("number", "truth"));
    EXPECT_THAT(host.Find(DISPID_STATUSTEXTCHANGE)->kinds, ElementsAre("text"));
    EXPECT_THAT(host.Find(DISPID_TITLECHANGE)->kinds, ElementsAre("text"));
}

TEST_F(NavigationTest, ACancelledNavigationSendsNothing) {
    pages.Add("/", "page");
    Cancel("/");
    EXPECT_EQ(Navigate(pages.Url("/")), kCancelled);
    host.cancels = nullptr;
    pages.Add("/other", "other");
    ASSERT_TRUE(Load(pages.Url("/other")));
    EXPECT_THAT(pages.Requests("/"), IsEmpty());
}

TEST_F(NavigationTest, LinksAskToo) {
    pages.Add("/", "<a id=link href=/next>next</a>");
    pages.Add("/next", "next");
    ASSERT_TRUE(Load(pages.Url("/")));
    EXPECT_TRUE(Await(DISPID_DOCUMENTCOMPLETE, [&] { Navigate("javascript:link.click()"); }));
    EXPECT_EQ(host.events.back().values.at(1), pages.Url("/next"));
    EXPECT_EQ(host.Count(DISPID_BEFORENAVIGATE2), 3U) << "page, script, link";
}

TEST_F(NavigationTest, ACancelledLinkLeavesThePage) {
    pages.Add("/", "<a id=link href=/next>next</a>");
    ASSERT_TRUE(Load(pages.Url("/")));
    Cancel("/next");
    EXPECT_TRUE(Await(DISPID_BEFORENAVIGATE2, [&] { Navigate("javascript:link.click()"); }));
    EXPECT_TRUE(PumpUntil([&] { return host.Count(DISPID_BEFORENAVIGATE2) == 3; }));
    EXPECT_EQ(Evaluate("location.pathname"), "/");
    EXPECT_THAT(pages.Requests("/next"), IsEmpty());
    EXPECT_EQ(host.Count(DISPID_DOCUMENTCOMPLETE), 1U);
}

TEST_F(NavigationTest, ARedirectAsksNobody) {
    pages.Add("/", Answer(302, "Location: /there\r\n", ""));
    pages.Add("/there", "there");
    ASSERT_TRUE(Load(pages.Url("/")));
    EXPECT_EQ(host.Count(DISPID_BEFORENAVIGATE2), 1U);
    EXPECT_EQ(host.Find(DISPID_DOCUMENTCOMPLETE)->values.at(1), pages.Url("/there"));
    EXPECT_EQ(Location(), pages.Url("/there"));
}

TEST_F(NavigationTest, ARefusingServersPageIsShown) {
    pages.Add("/", Answer(403, "Content-Type: text/html\r\n", "<title>refused</title>"));
    ASSERT_TRUE(Load(pages.Url("/")));
    EXPECT_THAT(host.Steps(), ElementsAre(DISPID_BEFORENAVIGATE2, DISPID_DOWNLOADBEGIN, DISPID_NAVIGATEERROR,
                                          DISPID_DOWNLOADCOMPLETE, DISPID_NAVIGATECOMPLETE2,
                                          DISPID_TITLECHANGE, DISPID_DOCUMENTCOMPLETE));
    const RecordedCall* error = host.Find(DISPID_NAVIGATEERROR);
    ASSERT_NE(error, nullptr);
    EXPECT_THAT(error->kinds, ElementsAre("object", "&text", "&text", "&number", "&truth"));
    EXPECT_EQ(error->values.at(1), pages.Url("/"));
    EXPECT_EQ(error->values.at(3), "403");
    EXPECT_EQ(Evaluate("document.title"), "refused");
}

TEST_F(NavigationTest, ARefusalWithoutAPageCompletesToo) {
    pages.Add("/", Answer(500, "", ""));
    ASSERT_TRUE(Load(pages.Url("/")));
    EXPECT_EQ(host.Find(DISPID_NAVIGATEERROR)->values.at(3), "500");
}

TEST_F(NavigationTest, AnUnansweredRequestBringsAnErrorAndNothingMore) {
    std::string url;
    {
        const Pages gone;
        url = gone.Url("/");
    }
    EXPECT_TRUE(Await(DISPID_NAVIGATEERROR, [&] { Navigate(url); }));
    EXPECT_THAT(host.Steps(), ElementsAre(DISPID_BEFORENAVIGATE2, DISPID_DOWNLOADBEGIN,
                                          DISPID_DOWNLOADCOMPLETE, DISPID_NAVIGATEERROR));
    EXPECT_EQ(host.Find(DISPID_NAVIGATEERROR)->values.at(3), std::to_string(INET_E_RESOURCE_NOT_FOUND));
    pages.Add("/", "page");
    ASSERT_TRUE(Load(pages.Url("/")));
    EXPECT_EQ(host.Count(DISPID_NAVIGATECOMPLETE2), 1U);
}

TEST_F(NavigationTest, AnAnswerThatIsNoneIsAFailedDownload) {
    pages.Add("/", test_support::CannedAnswer{"Connection: close"});
    EXPECT_TRUE(Await(DISPID_NAVIGATEERROR, [&] { Navigate(pages.Url("/")); }));
    EXPECT_EQ(host.Find(DISPID_NAVIGATEERROR)->values.at(3), std::to_string(INET_E_DOWNLOAD_FAILURE));
}

TEST_F(NavigationTest, AStoppedNavigationEndsWithoutADocument) {
    pages.AddStalled("/");
    EXPECT_EQ(Navigate(pages.Url("/")), S_OK);
    EXPECT_TRUE(PumpUntil([&] { return !pages.Requests("/").empty(); }));
    EXPECT_TRUE(Await(DISPID_DOWNLOADCOMPLETE, [&] { EXPECT_EQ(Control<IWebBrowser2>()->Stop(), S_OK); }));
    EXPECT_EQ(host.Count(DISPID_NAVIGATEERROR), 0U);
    EXPECT_EQ(host.Count(DISPID_DOCUMENTCOMPLETE), 0U);
    VARIANT_BOOL busy = VARIANT_TRUE;
    EXPECT_EQ(Control<IWebBrowser2>()->get_Busy(&busy), S_OK);
    EXPECT_EQ(busy, VARIANT_FALSE);
}

TEST_F(NavigationTest, AHastilyReplacedNavigationIsForgotten) {
    pages.Add("/first", "first");
    pages.Add("/second", "second");
    EXPECT_EQ(Navigate(pages.Url("/first")), S_OK);
    ASSERT_TRUE(Load(pages.Url("/second")));
    EXPECT_EQ(Evaluate("location.pathname"), "/second");
    EXPECT_EQ(host.Count(DISPID_DOCUMENTCOMPLETE), 1U);
}

TEST_F(NavigationTest, APageIsLoadedAnew) {
    pages.Add("/", "page");
    ASSERT_TRUE(Load(pages.Url("/")));
    EXPECT_TRUE(Await(DISPID_DOCUMENTCOMPLETE, [&] { EXPECT_EQ(Control<IWebBrowser2>()->Refresh(), S_OK); }));
    EXPECT_EQ(pages.Requests("/").size(), 2U);
}

TEST_F(NavigationTest, ATitleThatChangesIsTold) {
    pages.Add("/", "<title>one</title>");
    ASSERT_TRUE(Load(pages.Url("/")));
    EXPECT_TRUE(Await(DISPID_TITLECHANGE, [&] { Navigate("javascript:void(document.title = 'two')"); }));
    BSTR name = nullptr;
    EXPECT_EQ(Control<IWebBrowser2>()->get_LocationName(&name), S_OK);
    EXPECT_STREQ(name, L"two");
    SysFreeString(name);
}

TEST_F(NavigationTest, AScriptLinkRunsWhenTheHostLetsIt) {
    pages.Add("/", "<a id=link href=\"javascript:external.say('ran')\">run</a>");
    ASSERT_TRUE(Load(pages.Url("/")));
    Navigate("javascript:link.click()");
    EXPECT_TRUE(PumpUntil([&] { return !host.scriptCalls.empty(); }));
    EXPECT_EQ(host.Count(DISPID_BEFORENAVIGATE2), 3U);
    EXPECT_EQ(host.events.back().values.at(1), "javascript:external.say('ran')");
}

TEST_F(NavigationTest, ACancelledScriptLinkDoesNotRun) {
    pages.Add("/", "<a id=link href=\"javascript:void(0);external.say('ran')\">run</a>");
    ASSERT_TRUE(Load(pages.Url("/")));
    Cancel("javascript:void(0)");
    EXPECT_TRUE(PumpUntil([&] {
        return Navigate("javascript:link.click()") == S_OK && host.Count(DISPID_BEFORENAVIGATE2) >= 3;
    }));
    EXPECT_EQ(Evaluate("'asked'"), "asked");
    EXPECT_EQ(host.scriptCalls.size(), 1U);
}

TEST_F(NavigationTest, ALinkThatThePageHandlesItselfAsksNobody) {
    pages.Add("/", "<a id=link href=\"javascript:external.say('ran')\" onclick=\"return false\">run</a>");
    ASSERT_TRUE(Load(pages.Url("/")));
    Navigate("javascript:link.click()");
    EXPECT_EQ(Evaluate("'after'"), "after");
    EXPECT_EQ(host.scriptCalls.size(), 1U);
    EXPECT_EQ(host.Count(DISPID_BEFORENAVIGATE2), 3U) << "page, two scripts";
}

TEST_F(NavigationTest, WhatItCannotNavigateWithIsRefused) {
    EXPECT_EQ(Control<IWebBrowser2>()->Navigate(nullptr, nullptr, nullptr, nullptr, nullptr), E_INVALIDARG);
    BSTR url = SysAllocString(L"http://127.0.0.1/");
    VARIANT frame{};
    V_VT(&frame) = VT_BSTR;
    V_BSTR(&frame) = url;
    EXPECT_EQ(Control<IWebBrowser2>()->Navigate(url, nullptr, &frame, nullptr, nullptr), E_NOTIMPL);
    SysFreeString(url);
    EXPECT_THAT(host.events, IsEmpty());
}

} // namespace
} // namespace legacy_control_test
