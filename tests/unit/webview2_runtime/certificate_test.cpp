// Certificates of servers that Chromium does not trust: what the host learns, and what its decision does.
#include <memory>

#include "tests/support/scoped_variable.h"
#include "tests/unit/chromium/secure_server.h"
#include "tests/unit/webview2_runtime/runtime_test.h"

namespace webview2_runtime_test {
namespace {

using test_support::Answer;
using test_support::CannedServer;
using test_support::ScopedVariable;

constexpr wchar_t kVariable[] = L"KELDA_TEST_CERTIFICATE_ERROR";

class CertificateTest : public WebViewTest {
  protected:
    void SetUp() override {
        ASSERT_FALSE(server_.Url().empty());
        ASSERT_NO_FATAL_FAILURE(WebViewTest::SetUp());
    }

    std::wstring Url(const std::string& path = "/") const {
        const std::string url = server_.Url(path);
        return {url.begin(), url.end()};
    }

    std::wstring Source() const {
        return TextFrom([this](LPWSTR* text) { return view->get_Source(text); });
    }

    EventRegistrationToken DecideAlways(COREWEBVIEW2_SERVER_CERTIFICATE_ERROR_ACTION action,
                                        int& calls) const {
        return OnCertificateError([action, &calls](auto* arguments) {
            ++calls;
            EXPECT_EQ(arguments->put_Action(action), S_OK);
        });
    }

    /// The status that the next page is reported with.
    COREWEBVIEW2_WEB_ERROR_STATUS ReportedStatus() {
        auto status = COREWEBVIEW2_WEB_ERROR_STATUS_UNKNOWN;
        const EventRegistrationToken token = OnCertificateError(
            [&](auto* arguments) { EXPECT_EQ(arguments->get_ErrorStatus(&status), S_OK); });
        EXPECT_TRUE(Load(Url()));
        EXPECT_EQ(view->remove_ServerCertificateErrorDetected(token), S_OK);
        return status;
    }

    /// The navigation has failed for the certificate.
    static void ExpectRefused(const std::optional<Completion>& completion) {
        ASSERT_TRUE(completion);
        EXPECT_FALSE(completion->succeeded);
        EXPECT_EQ(completion->status, COREWEBVIEW2_WEB_ERROR_STATUS_CERTIFICATE_IS_INVALID);
    }

    CannedServer plain{[](const std::string&) { return Answer(200, "Content-Type: text/html\r\n", "page"); }};

  private:
    chromium_test::SecureServer server_;
};

TEST_F(CertificateTest, WithoutAHandlerChromiumShowsItsErrorPage) {
    ExpectRefused(Load(Url()));
    EXPECT_TRUE(PumpUntil([&] { return Source() == Url(); }));
}

TEST_F(CertificateTest, TheHostLearnsWhatIsWrongAndWhereAndLeavesItAtTheDefault) {
    int calls = 0;
    OnCertificateError([&](auto* arguments) {
        ++calls;
        auto status = COREWEBVIEW2_WEB_ERROR_STATUS_UNKNOWN;
        auto action = COREWEBVIEW2_SERVER_CERTIFICATE_ERROR_ACTION_ALWAYS_ALLOW;
        EXPECT_EQ(arguments->get_ErrorStatus(&status), S_OK);
        EXPECT_EQ(status, COREWEBVIEW2_WEB_ERROR_STATUS_CERTIFICATE_IS_INVALID);
        EXPECT_EQ(arguments->get_Action(&action), S_OK);
        EXPECT_EQ(action, COREWEBVIEW2_SERVER_CERTIFICATE_ERROR_ACTION_DEFAULT);
        EXPECT_EQ(TextFrom([&](LPWSTR* text) { return arguments->get_RequestUri(text); }),
                  Url("/path?query"));
    });
    ExpectRefused(Load(Url("/path?query")));
    EXPECT_EQ(calls, 1);
}

TEST_F(CertificateTest, DefaultAndCancelKeepTheOldPageAndAskAgain) {
    ASSERT_TRUE(Load(plain.Url()));
    for (const auto action : {COREWEBVIEW2_SERVER_CERTIFICATE_ERROR_ACTION_DEFAULT,
                              COREWEBVIEW2_SERVER_CERTIFICATE_ERROR_ACTION_CANCEL}) {
        int calls = 0;
        const EventRegistrationToken token = DecideAlways(action, calls);
        ExpectRefused(Load(Url()));
        ExpectRefused(Load(Url()));
        EXPECT_EQ(calls, 2) << action;
        EXPECT_EQ(Source(), plain.Url()) << action;
        EXPECT_EQ(view->remove_ServerCertificateErrorDetected(token), S_OK);
    }
}

TEST_F(CertificateTest, WhatIsAllowedIsShownAndNotAskedAboutAgain) {
    int calls = 0;
    DecideAlways(COREWEBVIEW2_SERVER_CERTIFICATE_ERROR_ACTION_ALWAYS_ALLOW, calls);
    for (const char* path : {"/", "/other"}) {
        const auto completion = Load(Url(path));
        ASSERT_TRUE(completion);
        EXPECT_TRUE(completion->succeeded);
        EXPECT_EQ(Source(), Url(path));
    }
    EXPECT_EQ(calls, 1);
}

TEST_F(CertificateTest, TheLastHandlersActionCounts) {
    int calls = 0;
    DecideAlways(COREWEBVIEW2_SERVER_CERTIFICATE_ERROR_ACTION_ALWAYS_ALLOW, calls);
    DecideAlways(COREWEBVIEW2_SERVER_CERTIFICATE_ERROR_ACTION_CANCEL, calls);
    ExpectRefused(Load(Url()));
    EXPECT_EQ(calls, 2);
}

TEST_F(CertificateTest, AVariableTurnsWhatIsReportedIntoARevokedOne) {
    {
        const ScopedVariable variable(kVariable, L"revoked");
        EXPECT_EQ(ReportedStatus(), COREWEBVIEW2_WEB_ERROR_STATUS_CERTIFICATE_REVOKED);
    }
    for (const wchar_t* other : {L"", L"expired", L"Revoked", L"revoked "}) {
        const ScopedVariable variable(kVariable, other);
        EXPECT_EQ(ReportedStatus(), COREWEBVIEW2_WEB_ERROR_STATUS_CERTIFICATE_IS_INVALID) << other;
    }
}

TEST_F(CertificateTest, TheEventGoesOnUntilTheLastHandlerIsRemoved) {
    ASSERT_TRUE(Load(plain.Url()));
    int calls = 0;
    const auto cancel = COREWEBVIEW2_SERVER_CERTIFICATE_ERROR_ACTION_CANCEL;
    const EventRegistrationToken first = DecideAlways(cancel, calls);
    const EventRegistrationToken second = DecideAlways(cancel, calls);
    EXPECT_EQ(view->remove_ServerCertificateErrorDetected(first), S_OK);
    ExpectRefused(Load(Url()));
    EXPECT_EQ(calls, 1);
    EXPECT_EQ(Source(), plain.Url());
    EXPECT_EQ(view->remove_ServerCertificateErrorDetected(second), S_OK);
    ExpectRefused(Load(Url()));
    EXPECT_EQ(calls, 1);
    EXPECT_TRUE(PumpUntil([&] { return Source() == Url(); })) << "Chromium's error page";
}

TEST_F(CertificateTest, ArgumentsRefuseWhatTheyCannotDo) {
    int calls = 0;
    OnCertificateError([&](auto* arguments) {
        ++calls;
        ComPtr<ICoreWebView2Certificate> certificate;
        ComPtr<ICoreWebView2Deferral> deferral;
        auto action = COREWEBVIEW2_SERVER_CERTIFICATE_ERROR_ACTION_DEFAULT;
        EXPECT_EQ(arguments->get_ServerCertificate(&certificate), E_NOTIMPL);
        EXPECT_EQ(arguments->GetDeferral(&deferral), E_NOTIMPL);
        EXPECT_EQ(arguments->put_Action(COREWEBVIEW2_SERVER_CERTIFICATE_ERROR_ACTION_CANCEL), S_OK);
        EXPECT_EQ(arguments->put_Action(static_cast<COREWEBVIEW2_SERVER_CERTIFICATE_ERROR_ACTION>(3)),
                  E_INVALIDARG);
        EXPECT_EQ(arguments->get_Action(&action), S_OK);
        EXPECT_EQ(action, COREWEBVIEW2_SERVER_CERTIFICATE_ERROR_ACTION_CANCEL);
        EXPECT_EQ(arguments->get_Action(nullptr), E_POINTER);
        EXPECT_EQ(arguments->get_ErrorStatus(nullptr), E_POINTER);
        EXPECT_EQ(arguments->get_RequestUri(nullptr), E_POINTER);
    });
    ExpectRefused(Load(Url()));
    EXPECT_EQ(calls, 1);
}

TEST_F(CertificateTest, CloseWorksFromInsideTheHandler) {
    OnCertificateError([&](auto* arguments) {
        EXPECT_EQ(arguments->put_Action(COREWEBVIEW2_SERVER_CERTIFICATE_ERROR_ACTION_ALWAYS_ALLOW), S_OK);
        controller->Close();
        ReleaseAll();
    });
    ASSERT_EQ(view->Navigate(Url().c_str()), S_OK);
    EXPECT_TRUE(PumpUntil([] { return LiveObjects() == 0; }));
}

TEST_F(CertificateTest, CloseWorksFromInsideTheRelease) {
    const auto close = [this](void*) {
        controller->Close();
        ReleaseAll();
    };
    const EventRegistrationToken token =
        OnCertificateError([atItsEnd = std::shared_ptr<void>(nullptr, close)](auto*) {});
    EXPECT_EQ(view->remove_ServerCertificateErrorDetected(token), S_OK);
    EXPECT_EQ(LiveObjects(), 0U);
}

} // namespace
} // namespace webview2_runtime_test
