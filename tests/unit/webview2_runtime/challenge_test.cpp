// Servers that ask for a user name and a password: what the host can answer, and what comes of it.
#include <algorithm>

#include "tests/unit/webview2_runtime/runtime_test.h"

namespace webview2_runtime_test {
namespace {

using test_support::Answer;
using test_support::CannedAnswer;
using test_support::CannedServer;
using test_support::HeaderOf;
using ChallengeEventArgs = ICoreWebView2BasicAuthenticationRequestedEventArgs;

constexpr char kChallenge[] = "Content-Type: text/html\r\nWWW-Authenticate: Basic realm=\"documents\"\r\n";

/// anna:secret
constexpr char kAccepted[] = "Basic YW5uYTpzZWNyZXQ=";

CannedAnswer ChallengeSite(const std::string& request) {
    if (request.starts_with("GET /open ") || HeaderOf(request, "Authorization") == kAccepted) {
        return Answer(200, "Content-Type: text/html\r\n", "<link rel=icon href=data:,><body>welcome");
    }
    return Answer(401, kChallenge, "<link rel=icon href=data:,><body>refused");
}

ComPtr<ICoreWebView2BasicAuthenticationResponse> ResponseOf(ChallengeEventArgs* arguments) {
    ComPtr<ICoreWebView2BasicAuthenticationResponse> response;
    EXPECT_EQ(arguments->get_Response(&response), S_OK);
    return response;
}

void LogIn(ChallengeEventArgs* arguments, const wchar_t* user, const wchar_t* password) {
    EXPECT_EQ(ResponseOf(arguments)->put_UserName(user), S_OK);
    EXPECT_EQ(ResponseOf(arguments)->put_Password(password), S_OK);
}

class ChallengeTest : public WebViewTest {
  protected:
    /// What the page that is shown says.
    std::wstring Shown() { return Run(L"document.body.textContent"); }

    /// The page is that of the refusal, and its navigation has failed.
    void ExpectRefused(const std::optional<Completion>& completion) {
        ASSERT_TRUE(completion);
        EXPECT_FALSE(completion->succeeded);
        EXPECT_EQ(completion->status,
                  COREWEBVIEW2_WEB_ERROR_STATUS_VALID_AUTHENTICATION_CREDENTIALS_REQUIRED);
        EXPECT_EQ(Shown(), L"\"refused\"");
        const auto requests = server.Requests();
        EXPECT_TRUE(std::ranges::all_of(
            requests, [](const std::string& request) { return HeaderOf(request, "Authorization").empty(); }));
    }

    CannedServer server{ChallengeSite};
};

TEST_F(ChallengeTest, CredentialsOfTheHostAreSent) {
    int calls = 0;
    OnChallenge([&](auto* arguments) {
        ++calls;
        LogIn(arguments, L"anna", L"secret");
    });
    const auto completion = Load(server.Url(L"/page"));
    ASSERT_TRUE(completion);
    EXPECT_TRUE(completion->succeeded);
    EXPECT_EQ(Shown(), L"\"welcome\"");
    EXPECT_EQ(calls, 1);
}

TEST_F(ChallengeTest, TheHostLearnsWhoAsksAndHow) {
    int calls = 0;
    OnChallenge([&](auto* arguments) {
        ++calls;
        BOOL cancelled = TRUE;
        const auto response = ResponseOf(arguments);
        EXPECT_EQ(TextFrom([&](LPWSTR* text) { return arguments->get_Uri(text); }), server.Url(L"/page"));
        EXPECT_EQ(TextFrom([&](LPWSTR* text) { return arguments->get_Challenge(text); }),
                  L"Basic realm=\"documents\"");
        EXPECT_EQ(arguments->get_Cancel(&cancelled), S_OK);
        EXPECT_EQ(cancelled, FALSE);
        EXPECT_EQ(TextFrom([&](LPWSTR* text) { return response->get_UserName(text); }), L"");
        EXPECT_EQ(TextFrom([&](LPWSTR* text) { return response->get_Password(text); }), L"");
    });
    ExpectRefused(Load(server.Url(L"/page")));
    EXPECT_EQ(calls, 1);
}

TEST_F(ChallengeTest, WithoutAHandlerItIsAsIfSomebodyHadCancelled) {
    ExpectRefused(Load(server.Url(L"/page")));
}

TEST_F(ChallengeTest, CancelGoesBeforeCredentials) {
    OnChallenge([](auto* arguments) {
        BOOL cancelled = FALSE;
        LogIn(arguments, L"anna", L"secret");
        EXPECT_EQ(arguments->put_Cancel(TRUE), S_OK);
        EXPECT_EQ(arguments->get_Cancel(&cancelled), S_OK);
        EXPECT_EQ(cancelled, TRUE);
    });
    ExpectRefused(Load(server.Url(L"/page")));
}

TEST_F(ChallengeTest, WhatIsPutIsWhatIsGot) {
    OnChallenge([](auto* arguments) {
        LogIn(arguments, L"berta", L"wrong");
        LogIn(arguments, L"anna", L"secret");
        const auto response = ResponseOf(arguments);
        EXPECT_EQ(TextFrom([&](LPWSTR* text) { return response->get_UserName(text); }), L"anna");
        EXPECT_EQ(TextFrom([&](LPWSTR* text) { return response->get_Password(text); }), L"secret");
    });
    const auto completion = Load(server.Url(L"/page"));
    ASSERT_TRUE(completion);
    EXPECT_TRUE(completion->succeeded);
}

TEST_F(ChallengeTest, OnePartAloneIsSentToo) {
    const std::vector<std::pair<bool, std::string>> cases = {{true, "Basic YW5uYTo="},       // anna:
                                                             {false, "Basic OnNlY3JldA=="}}; // :secret
    for (const auto& [user, expected] : cases) {
        int calls = 0;
        const EventRegistrationToken token = OnChallenge([&, putsUser = user](auto* arguments) {
            if (++calls > 1) {
                return; // it was refused
            }
            const auto response = ResponseOf(arguments);
            EXPECT_EQ(putsUser ? response->put_UserName(L"anna") : response->put_Password(L"secret"), S_OK);
        });
        ASSERT_TRUE(Load(server.Url(L"/page")));
        const auto requests = server.Requests();
        EXPECT_EQ(HeaderOf(requests.back(), "Authorization"), expected);
        EXPECT_EQ(calls, 2);
        EXPECT_EQ(view->remove_BasicAuthenticationRequested(token), S_OK);
    }
}

TEST_F(ChallengeTest, WrongCredentialsBringAnotherOne) {
    int calls = 0;
    OnChallenge([&](auto* arguments) { LogIn(arguments, L"anna", ++calls == 3 ? L"secret" : L"wrong"); });
    const auto completion = Load(server.Url(L"/page"));
    ASSERT_TRUE(completion);
    EXPECT_TRUE(completion->succeeded);
    EXPECT_EQ(calls, 3);
}

TEST_F(ChallengeTest, ScriptsMeetThemToo) {
    std::wstring uri;
    OnChallenge([&](auto* arguments) {
        uri = TextFrom([&](LPWSTR* text) { return arguments->get_Uri(text); });
        LogIn(arguments, L"anna", L"secret");
    });
    ASSERT_TRUE(Load(server.Url(L"/open")));
    EXPECT_EQ(Run(L"fetch('/data').then((answer) => answer.status)"), L"200");
    EXPECT_EQ(uri, server.Url(L"/data"));
}

TEST_F(ChallengeTest, ArgumentsRefuseWhatTheyCannotDo) {
    int calls = 0;
    OnChallenge([&](auto* arguments) {
        ++calls;
        ComPtr<ICoreWebView2Deferral> deferral;
        const auto response = ResponseOf(arguments);
        EXPECT_EQ(arguments->GetDeferral(&deferral), E_NOTIMPL);
        EXPECT_EQ(arguments->get_Uri(nullptr), E_POINTER);
        EXPECT_EQ(arguments->get_Challenge(nullptr), E_POINTER);
        EXPECT_EQ(arguments->get_Response(nullptr), E_POINTER);
        EXPECT_EQ(arguments->get_Cancel(nullptr), E_POINTER);
        EXPECT_EQ(response->get_UserName(nullptr), E_POINTER);
        EXPECT_EQ(response->get_Password(nullptr), E_POINTER);
        EXPECT_EQ(response->put_UserName(nullptr), E_POINTER);
        EXPECT_EQ(response->put_Password(nullptr), E_POINTER);
    });
    ExpectRefused(Load(server.Url(L"/page")));
    EXPECT_EQ(calls, 1);
}

TEST_F(ChallengeTest, ARemovedHandlerIsNotAsked) {
    const EventRegistrationToken token =
        OnChallenge([](auto*) { ADD_FAILURE() << "called after its removal"; });
    EXPECT_EQ(view->remove_BasicAuthenticationRequested(token), S_OK);
    ExpectRefused(Load(server.Url(L"/page")));
}

TEST_F(ChallengeTest, CloseWorksFromInsideTheHandler) {
    OnChallenge([&](auto* arguments) {
        LogIn(arguments, L"anna", L"secret");
        controller->Close();
        ReleaseAll();
    });
    ASSERT_EQ(view->Navigate(server.Url(L"/page").c_str()), S_OK);
    EXPECT_TRUE(PumpUntil([] { return LiveObjects() == 0; }));
    EXPECT_EQ(server.Requests().size(), 1U);
}

} // namespace
} // namespace webview2_runtime_test
