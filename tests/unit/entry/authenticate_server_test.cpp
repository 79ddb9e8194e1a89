// What follows the probe: the login dialog for one of its outcomes, and a plain answer for every other. Probe and dialog are
// the tests' own.
#include <algorithm>
#include <functional>
#include <new>
#include <string>
#include <thread>
#include <utility>

#include <gtest/gtest.h>

#include "dialog/form_based_authentication_dialog.h"
#include "du/string_utilities.h"
#include "kelda/kelda.h"
#include "probe/server_basic_authentication.h"
#include "tests/support/transcript.h"

using test_support::Lines;
using test_support::Record;

namespace kelda {
namespace {

AuthenticationStatus probeStatus = AuthenticationStatus::None;
bool dialogResult = false;
std::function<void()> duringProbe;

} // namespace

ServerBasicAuthentication::ServerBasicAuthentication(std::wstring promptText, std::wstring captionText,
                                                     std::string serverUrl, std::string urlPath,
                                                     std::string ownerDevice)
    : promptText_(std::move(promptText)),
      captionText_(std::move(captionText)),
      serverUrl_(std::move(serverUrl)),
      urlPath_(std::move(urlPath)),
      ownerDevice_(std::move(ownerDevice)) {}

void ServerBasicAuthentication::SessionAuthenticationComplete(int status) {
    status_ = status;
}

HWND ServerBasicAuthentication::GetParentWindow() {
    return nullptr;
}

AuthenticationStatus ProbeServer(ServerBasicAuthentication& authentication) {
    if (const auto act = std::exchange(duringProbe, nullptr)) {
        act();
    }
    Record("probe of " + authentication.ServerUrl() + " and " + authentication.UrlPath());
    return probeStatus;
}

bool RunFormBasedAuthentication(const std::wstring& promptText, const char* serverUrl) {
    Record("dialog \"" + du::WideStrToUtf8(promptText) + "\" " + serverUrl);
    return dialogResult;
}

namespace {

constexpr AuthenticationStatus kAllButFormBased[] = {
    AuthenticationStatus::None,      AuthenticationStatus::Authenticated, AuthenticationStatus::Failed,
    AuthenticationStatus::Cancelled, AuthenticationStatus::Unauthorized,
};

class AuthenticatedServer : public test_support::TranscriptTest {
  protected:
    /// What it comes to when the probe and then the dialog, if there is one, end like this.
    static bool Outcome(AuthenticationStatus status, bool dialogAnswer,
                        const char* serverUrl = "http://server/", const char* urlPath = "documents") {
        probeStatus = status;
        dialogResult = dialogAnswer;
        return AuthenticateServer(L"Log in f\u00fcr", L"Caption", "viewer", serverUrl, urlPath);
    }

    /// All but the trace.
    static Lines TakeCalls() {
        Lines lines = TakeTranscript();
        std::erase_if(lines, [](const std::string& line) { return line.starts_with('['); });
        return lines;
    }
};

TEST_F(AuthenticatedServer, ThatWantsItsLoginFormGetsTheDialogAfterTheProbe) {
    Outcome(AuthenticationStatus::FormBasedRequired, false);
    EXPECT_EQ(TakeCalls(), (Lines{"probe of http://server/ and documents",
                                  "dialog \"Log in f\xc3\xbcr\" http://server/"}));
}

TEST_F(AuthenticatedServer, ThatWantsItsLoginFormIsDecidedByTheDialog) {
    EXPECT_TRUE(Outcome(AuthenticationStatus::FormBasedRequired, true));
    EXPECT_FALSE(Outcome(AuthenticationStatus::FormBasedRequired, false));
}

TEST_F(AuthenticatedServer, OpensItsDialogWithTheUrlAsGivenAndNotWithTheProbedAddress) {
    for (const std::string url : {"http://server", "http://server//", "HTTP://B\xc3\xbc cher/?a=b#c", ""}) {
        Outcome(AuthenticationStatus::FormBasedRequired, true, url.c_str(), "path");
        EXPECT_EQ(TakeCalls().back(), "dialog \"Log in f\xc3\xbcr\" " + url);
    }
}

TEST_F(AuthenticatedServer, GetsNoDialogForAnyOtherOutcomeOfTheProbe) {
    for (const AuthenticationStatus status : kAllButFormBased) {
        EXPECT_EQ(Outcome(status, true), status == AuthenticationStatus::Authenticated);
        EXPECT_EQ(TakeCalls(), Lines{"probe of http://server/ and documents"});
    }
}

TEST_F(AuthenticatedServer, IsProbedWithoutAPathWhereThatIsNull) {
    Outcome(AuthenticationStatus::FormBasedRequired, true, "http://server", nullptr);
    EXPECT_EQ(TakeCalls(),
              (Lines{"probe of http://server and ", "dialog \"Log in f\xc3\xbcr\" http://server"}));
}

TEST_F(AuthenticatedServer, IsAskedForOnceAtATime) {
    duringProbe = [] {
        EXPECT_FALSE(AuthenticateServer(L"", L"", "viewer", "http://other", nullptr));
        std::thread([] {
            EXPECT_FALSE(AuthenticateServer(L"", L"", "viewer", "http://third", nullptr));
        }).join();
        const std::string line =
            "[0] AuthenticateServer() is still going on in this process - not started again";
        const Lines lines = TakeTranscript();
        EXPECT_EQ(std::count(lines.begin(), lines.end(), line), 2);
        EXPECT_EQ(lines.size(), 4U) << "the first call's own two lines beside";
    };
    EXPECT_TRUE(Outcome(AuthenticationStatus::Authenticated, false));
    EXPECT_EQ(TakeCalls(), Lines{"probe of http://server/ and documents"});
    EXPECT_TRUE(Outcome(AuthenticationStatus::Authenticated, false)) << "the next call";
}

TEST_F(AuthenticatedServer, ThatFailsWithAnExceptionCanBeAskedForAgain) {
    duringProbe = [] { throw std::bad_alloc(); };
    EXPECT_THROW(Outcome(AuthenticationStatus::Authenticated, false), std::bad_alloc);
    EXPECT_TRUE(Outcome(AuthenticationStatus::Authenticated, false));
}

TEST_F(AuthenticatedServer, IsNeverShownADialogByTheProbeAlone) {
    probeStatus = AuthenticationStatus::FormBasedRequired;
    EXPECT_EQ(ApplyBasicAuthentication(L"", L"", "viewer", "http://server", ""), probeStatus);
    EXPECT_EQ(TakeCalls(), Lines{"probe of http://server and "});
}

} // namespace
} // namespace kelda
