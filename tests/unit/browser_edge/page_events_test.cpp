// What the browser decides while pages load: navigations, request headers, certificates and challenges.
#include <memory>
#include <stdexcept>
#include <string>

#include <wrl/client.h>

#include <gtest/gtest.h>

#include "edge_browser_test.h"
#include "tests/support/webview2/fake_event_args.h"

using test_support::InTurn;
using test_support::Lines;
using test_support::MakeFake;
using test_support::ScopedVariable;

namespace kelda {
namespace {

/// A browser that has come up, and the events of its pages.
class PageEvents : public EdgeBrowserTest {
  protected:
    int textsFreed = 0;
    test_support::ReplacedImport<struct Free, decltype(CoTaskMemFree)> free{
        "ole32.dll", "CoTaskMemFree", [this](void* block) {
            textsFreed += block != nullptr ? 1 : 0;
            decltype(free)::Original(block);
        }};
    ScopedVariable ignoredCertificates{L"MERIDO_IGNORE_CERT_INVALID", nullptr};

    /// What the handler did with the arguments, which it must not keep.
    template <typename Handler, typename Args>
    Lines Raise(const std::string& event, Microsoft::WRL::ComPtr<Args> args) {
        auto* const handler = runtime.webView.HandlerOf<Handler>(event);
        if (handler == nullptr) {
            ADD_FAILURE() << "no handler for " << event;
            return {};
        }
        EXPECT_EQ(handler->Invoke(nullptr, args.Get()), S_OK);
        Lines lines = TakeTranscript();
        EXPECT_EQ(args.Reset(), 0U) << "the arguments are still referenced";
        TakeTranscript();
        return lines;
    }

    Lines NavigationTo(const wchar_t* uri) {
        textsFreed = 0;
        return Raise<ICoreWebView2NavigationStartingEventHandler>(
            "NavigationStarting", MakeFake<test_support::FakeNavigationStartingArgs>(runtime.script, uri));
    }
    Lines Completed(bool success) {
        return Raise<ICoreWebView2NavigationCompletedEventHandler>(
            "NavigationCompleted",
            MakeFake<test_support::FakeNavigationCompletedArgs>(runtime.script, success));
    }
    Lines ServerCertificate(COREWEBVIEW2_WEB_ERROR_STATUS status) {
        return Raise<ICoreWebView2ServerCertificateErrorDetectedEventHandler>(
            "ServerCertificateErrorDetected",
            MakeFake<test_support::FakeServerCertificateArgs>(runtime.script, status));
    }
    static Lines Refused(const std::string& status) {
        return {"args.get_ErrorStatus",
                "[0] Invalid server certificate (" + status + " ); cancelling request", "args.put_Action 1"};
    }
    Lines ClientCertificates(UINT32 count) {
        return Raise<ICoreWebView2ClientCertificateRequestedEventHandler>(
            "ClientCertificateRequested",
            MakeFake<test_support::FakeClientCertificateArgs>(runtime.script, count));
    }
    Lines Requested() {
        return Raise<ICoreWebView2WebResourceRequestedEventHandler>(
            "WebResourceRequested", MakeFake<test_support::FakeWebResourceRequestedArgs>(runtime.script));
    }
};

TEST_F(PageEvents, ANavigationToTheEmptyScriptIsCancelledWhereverItStandsInTheAddress) {
    BringUp();
    EXPECT_EQ(NavigationTo(L"javascript:void(0)"), (Lines{"args.get_Uri", "args.put_Cancel 1"}));
    EXPECT_EQ(NavigationTo(L"http://server/?next=javascript:void(0);x"),
              (Lines{"args.get_Uri", "args.put_Cancel 1"}));
}

TEST_F(PageEvents, EveryOtherNavigationProceeds) {
    BringUp();
    for (const wchar_t* uri : {L"http://server/", L"JavaScript:void(0)", L"javascript:void(1)", L""}) {
        EXPECT_EQ(NavigationTo(uri), Lines{"args.get_Uri"});
    }
}

TEST_F(PageEvents, TheAddressOfANavigationIsFreed) {
    BringUp();
    NavigationTo(L"http://server/");
    EXPECT_EQ(textsFreed, 1);
    NavigationTo(L"javascript:void(0)");
    EXPECT_EQ(textsFreed, 1);
}

TEST_F(PageEvents, ANavigationWithoutAnAddressProceeds) {
    BringUp();
    runtime.script.answers["args.get_Uri"] = E_FAIL;
    EXPECT_EQ(NavigationTo(L"javascript:void(0)"), Lines{"args.get_Uri"});
}

TEST_F(PageEvents, EveryRequestAcceptsEverything) {
    BringUp();
    EXPECT_EQ(Requested(), (Lines{"args.get_ResourceContext", "args.get_Request", "request.get_Headers",
                                  "headers.SetHeader Accept: */*", "headers gone", "request gone"}));
}

TEST_F(PageEvents, ARequestThatCannotBeReadIsLeftAlone) {
    BringUp();
    runtime.script.answers["args.get_ResourceContext"] = E_FAIL;
    runtime.script.answers["request.get_Headers"] = E_FAIL;
    EXPECT_EQ(Requested(),
              (Lines{"args.get_ResourceContext", "args.get_Request", "request.get_Headers", "request gone"}));
    runtime.script.answers["args.get_Request"] = E_FAIL;
    EXPECT_EQ(Requested(), (Lines{"args.get_ResourceContext", "args.get_Request"}));
}

TEST_F(PageEvents, ACompletedLoginPageIsToldToTheOwnerEachTime) {
    BringUp();
    EXPECT_EQ(Completed(true), (Lines{"args.get_IsSuccess", "OnNavigationCompleted"}));
    EXPECT_EQ(Completed(true), (Lines{"args.get_IsSuccess", "OnNavigationCompleted"}));
}

TEST_F(PageEvents, ACompletedCheckIsALoginAndIsToldOnce) {
    BringUp(1);
    EXPECT_EQ(
        Completed(true),
        (Lines{"args.get_IsSuccess",
               "cookieManager.GetCookies http://serverARPublish/veltauth/check_authenticated_access.txt"}));
    runtime.CompleteCookies();
    TakeTranscript();
    FireTimer();
    EXPECT_EQ(TakeTranscript(), kReport);
    EXPECT_EQ(Completed(true), Lines{"args.get_IsSuccess"});
}

TEST_F(PageEvents, ACheckThatCompletesTwiceBeforeTheReportIsToldOnce) {
    BringUp(1);
    EXPECT_EQ(Completed(true).size(), 2U) << "its cookies are not asked for";
    EXPECT_EQ(Completed(true), Lines{"args.get_IsSuccess"});
    runtime.CompleteCookies();
    TakeTranscript();
    EXPECT_EQ(Completed(true), Lines{"args.get_IsSuccess"});
    ASSERT_EQ(timers.size(), 1U);
    FireTimer();
    EXPECT_EQ(TakeTranscript(), kReport);
}

TEST_F(PageEvents, WithoutTheCookieManagerACompletedCheckIsToldAtOnce) {
    const ScopedVariable variable(kImplementationVariable, L"parse");
    BringUp(-1);
    EXPECT_EQ(Completed(true), InTurn({Lines{"args.get_IsSuccess"}, kReport}));
    EXPECT_EQ(Completed(true), Lines{"args.get_IsSuccess"});
}

TEST_F(PageEvents, AFailedNavigationIsTracedAndToldToNobody) {
    for (const int checkMode : {0, 1}) {
        BringUp(checkMode);
        EXPECT_EQ(Completed(false),
                  (Lines{"args.get_IsSuccess",
                         "[0] Navigation failed. Leaving Edge control visible for user to read message"}));
        browser->Destroy();
    }
}

TEST_F(PageEvents, ACompletionThatCannotBeReadChangesNothing) {
    BringUp();
    runtime.script.answers["args.get_IsSuccess"] = E_FAIL;
    EXPECT_EQ(Completed(true), Lines{"args.get_IsSuccess"});
    EXPECT_EQ(Completed(false), Lines{"args.get_IsSuccess"});
}

TEST_F(PageEvents, PagesThatLoadAfterTheReportAreToldToNobody) {
    BringUp();
    CallPageObject();
    runtime.CompleteCookies();
    FireTimer();
    EXPECT_EQ(TakeTranscript().back(), "OnSessionAuthenticated");
    EXPECT_EQ(Completed(true), Lines{"args.get_IsSuccess"});
}

TEST_F(PageEvents, WithoutAnOwnerALoadIsToldToNobody) {
    BringUpFor(nullptr);
    EXPECT_EQ(Completed(true), Lines{"args.get_IsSuccess"});
}

/// An owner that lets go of the browser when the page has loaded.
class ClosingOwner final : public ZanWebBrowser::Callback {
  public:
    explicit ClosingOwner(std::unique_ptr<ZanWebBrowserEdge>& browser) : browser_(browser) {}
    void OnNavigationCompleted() override {
        browser_->Destroy();
        browser_.reset();
    }
    void OnSessionAuthenticated() override {}
    void OnSessionAuthenticatedFailed() override {}

  private:
    std::unique_ptr<ZanWebBrowserEdge>& browser_;
};

TEST_F(PageEvents, AnOwnerMayDeleteTheBrowserWhenItIsToldOfTheLoad) {
    ClosingOwner closing(browser);
    BringUpFor(&closing);
    const auto args = MakeFake<test_support::FakeNavigationCompletedArgs>(runtime.script, true);
    // The runtime holds the handler while it calls it.
    const Microsoft::WRL::ComPtr<ICoreWebView2NavigationCompletedEventHandler> handler =
        runtime.webView.HandlerOf<ICoreWebView2NavigationCompletedEventHandler>("NavigationCompleted");
    runtime.webView.handlers.erase("NavigationCompleted");
    EXPECT_EQ(handler->Invoke(nullptr, args.Get()), S_OK);
    EXPECT_EQ(browser, nullptr);
}

TEST_F(PageEvents, AnOwnerThatThrowsDoesNotReachTheRuntime) {
    class ThrowingOwner final : public ZanWebBrowser::Callback {
      public:
        void OnNavigationCompleted() override { throw std::runtime_error("no owner today"); }
        void OnSessionAuthenticated() override {}
        void OnSessionAuthenticatedFailed() override {}
    } throwing;
    BringUpFor(&throwing);
    const auto args = MakeFake<test_support::FakeNavigationCompletedArgs>(runtime.script, true);
    auto* const handler =
        runtime.webView.HandlerOf<ICoreWebView2NavigationCompletedEventHandler>("NavigationCompleted");
    EXPECT_EQ(handler->Invoke(nullptr, args.Get()), E_FAIL);
    EXPECT_EQ(TakeTraceLines(), Lines{"[0] Failed: no owner today error code: -2147467259"});
}

TEST_F(PageEvents, ABadServerCertificateIsRefused) {
    BringUp();
    EXPECT_EQ(ServerCertificate(COREWEBVIEW2_WEB_ERROR_STATUS_CERTIFICATE_EXPIRED), Refused("2"));
}

TEST_F(PageEvents, ExpiredAndInvalidCertificatesAreAllowedWhereTheVariableSaysSo) {
    BringUp();
    for (const wchar_t* value : {L"true", L"TRUE", L"True"}) {
        const ScopedVariable variable(L"MERIDO_IGNORE_CERT_INVALID", value);
        EXPECT_EQ(ServerCertificate(COREWEBVIEW2_WEB_ERROR_STATUS_CERTIFICATE_EXPIRED),
                  (Lines{"args.get_ErrorStatus", "[0] Allowing invalid/expired certificate (2)",
                         "args.put_Action 0"}));
        EXPECT_EQ(ServerCertificate(COREWEBVIEW2_WEB_ERROR_STATUS_CERTIFICATE_IS_INVALID),
                  (Lines{"args.get_ErrorStatus", "[0] Allowing invalid/expired certificate (5)",
                         "args.put_Action 0"}));
    }
}

TEST_F(PageEvents, NoOtherValueAndNoOtherFaultOfACertificateIsAllowed) {
    BringUp();
    for (const wchar_t* value : {L"yes", L"1", L"true ", L"truetrue"}) {
        const ScopedVariable variable(L"MERIDO_IGNORE_CERT_INVALID", value);
        EXPECT_EQ(ServerCertificate(COREWEBVIEW2_WEB_ERROR_STATUS_CERTIFICATE_EXPIRED), Refused("2"));
    }
    const ScopedVariable variable(L"MERIDO_IGNORE_CERT_INVALID", L"true");
    EXPECT_EQ(ServerCertificate(COREWEBVIEW2_WEB_ERROR_STATUS_UNKNOWN), Refused("0"));
    EXPECT_EQ(ServerCertificate(COREWEBVIEW2_WEB_ERROR_STATUS_CERTIFICATE_COMMON_NAME_IS_INCORRECT),
              Refused("1"));
    EXPECT_EQ(ServerCertificate(COREWEBVIEW2_WEB_ERROR_STATUS_CERTIFICATE_REVOKED), Refused("4"));
}

TEST_F(PageEvents, ACertificateWhoseFaultCannotBeReadIsRefused) {
    BringUp();
    const ScopedVariable variable(L"MERIDO_IGNORE_CERT_INVALID", L"true");
    runtime.script.answers["args.get_ErrorStatus"] = E_FAIL;
    EXPECT_EQ(ServerCertificate(COREWEBVIEW2_WEB_ERROR_STATUS_CERTIFICATE_EXPIRED), Refused("0"));
}

TEST_F(PageEvents, TheOnlyMatchingClientCertificateIsTaken) {
    BringUp();
    EXPECT_EQ(ClientCertificates(1),
              (Lines{"args.get_MutuallyTrustedCertificates", "certificates.get_Count",
                     "[0] Client certificate requested; found 1 matching cert(s)",
                     "certificates.GetValueAtIndex 0", "args.put_SelectedCertificate certificate",
                     "certificate gone", "args.put_Handled 1", "certificates gone"}));
}

TEST_F(PageEvents, WithoutAClientCertificateTheRequestGoesOn) {
    BringUp();
    EXPECT_EQ(ClientCertificates(0), (Lines{"args.get_MutuallyTrustedCertificates", "certificates.get_Count",
                                            "[0] Client certificate requested; found 0 matching cert(s)",
                                            "args.put_Handled 1", "certificates gone"}));
}

TEST_F(PageEvents, AmongSeveralClientCertificatesTheRuntimesDialogDecides) {
    BringUp();
    EXPECT_EQ(ClientCertificates(2), (Lines{"args.get_MutuallyTrustedCertificates", "certificates.get_Count",
                                            "[0] Client certificate requested; found 2 matching cert(s)",
                                            "args.put_Handled 0", "certificates gone"}));
}

TEST_F(PageEvents, ClientCertificatesThatCannotBeListedCountAsNone) {
    BringUp();
    runtime.script.answers["args.get_MutuallyTrustedCertificates"] = E_FAIL;
    EXPECT_EQ(ClientCertificates(3),
              (Lines{"args.get_MutuallyTrustedCertificates",
                     "[0] Client certificate requested; found 0 matching cert(s)", "args.put_Handled 1"}));
}

TEST_F(PageEvents, ClientCertificatesThatCannotBeCountedCountAsNone) {
    BringUp();
    runtime.script.answers["certificates.get_Count"] = E_FAIL;
    EXPECT_EQ(ClientCertificates(1), (Lines{"args.get_MutuallyTrustedCertificates", "certificates.get_Count",
                                            "[0] Client certificate requested; found 0 matching cert(s)",
                                            "args.put_Handled 1", "certificates gone"}));
}

TEST_F(PageEvents, AClientCertificateThatCannotBeHadIsNotSelected) {
    BringUp();
    runtime.script.answers["certificates.GetValueAtIndex"] = E_FAIL;
    EXPECT_EQ(ClientCertificates(1),
              (Lines{"args.get_MutuallyTrustedCertificates", "certificates.get_Count",
                     "[0] Client certificate requested; found 1 matching cert(s)",
                     "certificates.GetValueAtIndex 0", "args.put_Handled 1", "certificates gone"}));
}

TEST_F(PageEvents, AChallengeIsTracedAndLeftToTheRuntime) {
    BringUp();
    const Lines lines = Raise<ICoreWebView2BasicAuthenticationRequestedEventHandler>(
        "BasicAuthenticationRequested", MakeFake<test_support::FakeBasicAuthenticationArgs>(runtime.script));
    EXPECT_EQ(lines, Lines{"[0] Unexpected Basic Auth request"});
}

} // namespace
} // namespace kelda
