// Basic challenges: who is asked, how often, and what server and caller see.
#include <array>
#include <utility>

#include <gmock/gmock.h>

#include "challenge_server.h"
#include "recording_caller.h"

using test_support::Answer;
using test_support::CannedServer;

namespace windows_gaps_test {
namespace {

using Strings = std::vector<std::string>;

const Offer kRight = {S_OK, L"ann", L"secret"};
const Offer kWrong = {S_OK, L"ann", L"guess"};
const std::string kWrongSent = "Basic YW5uOmd1ZXNz";

const Lines kSuccess = {"GetBindInfo",          "OnStartBinding 0x000000FF",
                        "BeginningTransaction", "Authenticate",
                        "OnResponse 200",       "OnDataAvailable, read 12 so far",
                        "OnStopBinding S_OK",   "BindToStorage S_OK and a stream"};

using Challenge = BindTest;

TEST_F(Challenge, IsAnsweredWithTheOfferedCredentials) {
    const CannedServer server(Protected());
    caller_->offers = {kRight};

    Bind(server.Url(), caller_.Get());

    EXPECT_EQ(TakeTranscript(), kSuccess);
    EXPECT_EQ(caller_->body, "the document");
    EXPECT_EQ(Summary(server), (Strings{"/", "/", "/ with " + kAnn}));
}

TEST_F(Challenge, OfTheServiceProviderKindOfCallerIsAnsweredAlike) {
    const CannedServer server(Protected());
    caller_->offering = Offering::ByService;
    caller_->offers = {kRight};

    Bind(server.Url(), caller_.Get());

    EXPECT_EQ(TakeTranscript(), kSuccess);
}

TEST_F(Challenge, AnsweredOnceServesLaterBindsOfTheProcessWithoutHelp) {
    const CannedServer server(Protected());
    caller_->offers = {kRight};
    Bind(server.Url(L"/login"), caller_.Get());
    TakeTranscript();

    Bind(server.Url(L"/later"), caller_.Get(), MonikerOf::Urlmon);

    EXPECT_EQ(Summary(server).back(), "/later with " + kAnn);
    EXPECT_EQ(server.Requests().size(), 4U);
    EXPECT_THAT(TakeTranscript(), testing::Contains("OnResponse 200"));
}

TEST_F(Challenge, AsksAgainAfterWrongCredentials) {
    const CannedServer server(Protected());
    caller_->offers = {kWrong, kRight};

    Bind(server.Url(), caller_.Get());

    Lines expected = kSuccess;
    expected.insert(expected.begin() + 3, "Authenticate");
    EXPECT_EQ(TakeTranscript(), expected);
    EXPECT_EQ(Summary(server), (Strings{"/", "/", "/ with " + kWrongSent, "/", "/ with " + kAnn}));
}

TEST_F(Challenge, IsFinalAfterThreeWrongAnswers) {
    const CannedServer server(Protected());
    caller_->offers = {kWrong, kWrong, kWrong, kRight};

    Bind(server.Url(), caller_.Get());

    EXPECT_EQ(TakeTranscript(),
              (Lines{"GetBindInfo", "OnStartBinding 0x000000FF", "BeginningTransaction", "Authenticate",
                     "Authenticate", "Authenticate", "OnResponse 401", "OnDataAvailable, read 6 so far",
                     "OnStopBinding S_OK", "BindToStorage S_OK and a stream"}));
    EXPECT_EQ(caller_->body, "denied");
    EXPECT_EQ(caller_->offers.size(), 1U);
}

TEST_F(Challenge, IsFinalWhenNobodyIsNamed) {
    const CannedServer server(Protected());
    caller_->offers = {{S_OK, std::nullopt, std::nullopt}};

    Bind(server.Url(), caller_.Get());

    EXPECT_EQ(TakeTranscript(), (Lines{"GetBindInfo", "OnStartBinding 0x000000FF", "BeginningTransaction",
                                       "Authenticate", "OnResponse 401", "OnDataAvailable, read 6 so far",
                                       "OnStopBinding S_OK", "BindToStorage S_OK and a stream"}));
    EXPECT_EQ(Summary(server), (Strings{"/"}));
}

TEST_F(Challenge, IsFinalForACallerWithoutCredentials) {
    const CannedServer server(Protected());
    caller_->offering = Offering::Never;

    Bind(server.Url(), caller_.Get());

    EXPECT_EQ(TakeTranscript(), (Lines{"GetBindInfo", "OnStartBinding 0x000000FF", "BeginningTransaction",
                                       "OnResponse 401", "OnDataAvailable, read 6 so far",
                                       "OnStopBinding S_OK", "BindToStorage S_OK and a stream"}));
    EXPECT_EQ(Summary(server), (Strings{"/"}));
}

TEST_F(Challenge, OfAnotherSchemeAsksNobody) {
    const CannedServer server(Protected(kAnn, "WWW-Authenticate: Digest realm=\"Docs\", nonce=\"1\"\r\n"));
    caller_->offers = {kRight};

    Bind(server.Url(), caller_.Get());

    EXPECT_EQ(caller_->offers.size(), 1U);
    EXPECT_THAT(TakeTranscript(), testing::Contains("OnResponse 401"));
}

TEST_F(Challenge, IsFoundAmongOthers) {
    const std::string digest = R"(Digest realm="Docs, Basic", nonce="1")";
    const std::array<std::string, 4> forms = {
        "WWW-Authenticate: " + digest + "\r\n" + kChallenge,
        kChallenge + "WWW-Authenticate: " + digest + "\r\n",
        "WWW-Authenticate: Basic realm=\"Docs\", " + digest + "\r\n",
        "www-authenticate: " + digest + ", basic realm=\"Docs\"\r\n",
    };
    for (const std::string& form : forms) {
        SCOPED_TRACE(form);
        const CannedServer server(Protected(kAnn, form));
        caller_->offers = {kRight};

        Bind(server.Url(), caller_.Get());

        EXPECT_EQ(TakeTranscript(), kSuccess);
        EXPECT_EQ(Summary(server).back(), "/ with " + kAnn);
    }
}

TEST_F(Challenge, CredentialsTravelAsUtf8WhateverTheyHold) {
    const CannedServer server(Protected("Basic RE9NXGrDtnJnOnA6QHNzIHfDtnJkIOKCrPCdhJ4="));
    caller_->offers = {{S_OK, L"DOM\\j\u00f6rg", L"p:@ss w\u00f6rd \u20ac\U0001D11E"}};

    Bind(server.Url(), caller_.Get());

    EXPECT_EQ(TakeTranscript(), kSuccess);
}

TEST_F(Challenge, CredentialsBehindAnotherChallengeTravelAlike) {
    const CannedServer server(Protected("Basic RE9NXGrDtnJnOnA6QHNzIHfDtnJkIOKCrPCdhJ4=",
                                        "WWW-Authenticate: Digest x, Basic realm=\"D\"\r\n"));
    caller_->offers = {{S_OK, L"DOM\\j\u00f6rg", L"p:@ss w\u00f6rd \u20ac\U0001D11E"}};

    Bind(server.Url(), caller_.Get());

    EXPECT_EQ(TakeTranscript(), kSuccess);
}

TEST_F(Challenge, AnEmptyPasswordIsAnAnswer) {
    const CannedServer server(Protected("Basic YW5uOg=="));
    caller_->offers = {{S_OK, L"ann", L""}};

    Bind(server.Url(), caller_.Get());

    EXPECT_EQ(TakeTranscript(), kSuccess);
}

TEST_F(Challenge, AdditionalHeadersGoWithEveryAttempt) {
    const CannedServer server(Protected());
    caller_->additionalHeaders = L"X-Probe: 1\r\n";
    caller_->offers = {kRight};

    Bind(server.Url(), caller_.Get());

    EXPECT_EQ(TakeTranscript(), kSuccess);
    for (const std::string& request : server.Requests()) {
        EXPECT_EQ(test_support::HeaderOf(request, "X-Probe"), "1") << request;
    }
}

TEST_F(Challenge, PostedDataGoesWithEveryAttempt) {
    const CannedServer server(Protected());
    caller_->posted = "a=1&b=2";
    caller_->offers = {kRight};

    Bind(server.Url(), caller_.Get());

    EXPECT_EQ(TakeTranscript(), kSuccess);
    for (const std::string& request : server.Requests()) {
        EXPECT_TRUE(request.starts_with("POST / ")) << request;
        EXPECT_TRUE(request.ends_with("\r\n\r\na=1&b=2")) << request;
    }
}

TEST_F(Challenge, OfAnExtendedCallerIsAnsweredAlike) {
    const CannedServer server(Protected());
    caller_->extended = true;
    caller_->offers = {kRight};

    Bind(server.Url(), caller_.Get());

    Lines expected = kSuccess;
    expected.front() = "GetBindInfoEx";
    EXPECT_EQ(TakeTranscript(), expected);
}

TEST_F(Challenge, AsksInALaterBindThoughAnEarlierOneGotItWrong) {
    const CannedServer server(Protected());
    caller_->offers = {kWrong, {E_ABORT, std::nullopt, std::nullopt}};
    Bind(server.Url(), caller_.Get());
    TakeTranscript();
    caller_->offers = {kRight};

    Bind(server.Url(), caller_.Get());

    EXPECT_EQ(TakeTranscript(), kSuccess);
}

TEST_F(Challenge, WithoutABodyIsAnsweredAlike) {
    const CannedServer server([](const std::string& request) {
        return test_support::HeaderOf(request, "Authorization").empty() ? Answer(401, kChallenge, "")
                                                                        : Answer(200, "", "the document");
    });
    caller_->offers = {kRight};

    Bind(server.Url(), caller_.Get());

    EXPECT_EQ(TakeTranscript(), kSuccess);
}

TEST_F(Challenge, BehindARedirectIsAnsweredWhereItCameFrom) {
    const CannedServer server([](const std::string& request) {
        return request.starts_with("GET /start ") ? Answer(302, "Location: /inside\r\n", "moved")
                                                  : Protected()(request);
    });
    caller_->offers = {kRight};

    Bind(server.Url(L"/start"), caller_.Get());

    EXPECT_EQ(TakeTranscript(), kSuccess);
    EXPECT_EQ(Summary(server), (Strings{"/start", "/inside", "/inside", "/inside with " + kAnn}));
}

TEST_F(Challenge, OfAnotherServerGetsTheCredentialsAndTheFirstServerDoesNot) {
    const CannedServer inside(Protected());
    const std::wstring target = inside.Url(L"/inside");
    const CannedServer gate([&](const std::string& /*request*/) {
        return Answer(302, "Location: " + std::string(target.begin(), target.end()) + "\r\n", "moved");
    });
    caller_->offers = {kRight};

    Bind(gate.Url(), caller_.Get());

    EXPECT_EQ(TakeTranscript(), kSuccess);
    EXPECT_EQ(Summary(gate), (Strings{"/"}));
    EXPECT_EQ(Summary(inside), (Strings{"/inside", "/inside", "/inside with " + kAnn}));
}

TEST_F(Challenge, CredentialsAreNotSentToWhatElseTheCallerFetchesMeanwhile) {
    const CannedServer server(Protected());
    const CannedServer elsewhere(Protected());
    caller_->offers = {kRight};
    caller_->onProgress = [&](ULONG code) {
        if (code == BINDSTATUS_SENDINGREQUEST) {
            Bind(elsewhere.Url(), nullptr);
        }
    };

    Bind(server.Url(), caller_.Get());

    EXPECT_EQ(Summary(server).back(), "/ with " + kAnn);
    EXPECT_GE(elsewhere.Requests().size(), 2U);
    for (const std::string& line : Summary(elsewhere)) {
        EXPECT_EQ(line, "/");
    }
}

TEST_F(Challenge, IsAnsweredAlikeWhenAskingTakesAMessageLoop) {
    const CannedServer server(Protected());
    caller_->offers = {kRight};
    caller_->onAuthenticate = [](LPWSTR, LPWSTR) {
        bool due = false;
        const UINT_PTR timer = SetTimer(nullptr, 0, 50, nullptr);
        PumpUntil([&] { return std::exchange(due, true); });
        KillTimer(nullptr, timer);
    };

    Bind(server.Url(), caller_.Get());

    EXPECT_EQ(TakeTranscript(), kSuccess);
}

} // namespace
} // namespace windows_gaps_test
