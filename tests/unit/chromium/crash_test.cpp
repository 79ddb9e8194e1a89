// What comes of it when a renderer or all of Chromium goes.
#include "tests/unit/chromium/secure_server.h"

#include <memory>
#include <optional>
#include <utility>
#include <vector>

namespace chromium_test {
namespace {

class Crashes : public ChromiumTest {
  protected:
    Crashes() {
        site_.Add("/page", "here");
        site_.Add("/secret",
                  test_support::Answer(401, "WWW-Authenticate: Basic realm=\"documents\"\r\n", ""));
        site_.Add("/alerts", "<script>alert('hear')</script>");
        site_.Add("/waiting", "<img src='/stalled'>");
        site_.AddStalled("/stalled");
    }
    void SetUp() override { UseBrowserOfItsOwn(); }

    /// Kills Chromium while a client's function runs, and lets that go on when it is known.
    void KillMeanwhile() {
        folder_.KillChromium();
        EXPECT_TRUE(PumpUntil([&] { return !browser_->Alive(); }));
        EXPECT_TRUE(client_.outcomes.empty()) << "while the client is busy";
    }
    void ExpectFailedNavigation() {
        ASSERT_TRUE(PumpUntil([&] { return !client_.crashes.empty(); }));
        EXPECT_EQ(client_.crashes, std::vector{Crash::Browser});
        ASSERT_EQ(client_.outcomes.size(), 1U);
        EXPECT_EQ(client_.outcomes[0].id, client_.starts[0].id);
        EXPECT_EQ(client_.outcomes[0].error, NavigationError::RendererCrashed);
        page_.reset();
        browser_.reset();
        EXPECT_TRUE(PumpUntil([&] { return folder_.Processes().empty(); }));
    }

    void WaitForStalled() {
        page_->Navigate(site_.Url("/stalled"));
        ASSERT_TRUE(PumpUntil([&] { return !site_.Requests("/stalled").empty(); }));
    }
};

TEST_F(Crashes, OfChromiumFailWhatIsPending) {
    WaitForStalled();
    std::vector<std::string> failures;
    page_->Evaluate("new Promise(() => {})",
                    [&](const auto& json) { failures.push_back(json.value_or("evaluate")); });
    folder_.KillChromium();
    ASSERT_TRUE(PumpUntil([&] { return !client_.crashes.empty(); }));
    EXPECT_EQ(client_.crashes, std::vector{Crash::Browser});
    EXPECT_EQ(failures, std::vector<std::string>{"evaluate"});
    ASSERT_EQ(client_.outcomes.size(), 1U);
    EXPECT_EQ(client_.outcomes[0].error, NavigationError::RendererCrashed);
    EXPECT_FALSE(browser_->Alive());
}

TEST_F(Crashes, OfChromiumFailWhatIsAskedForAfterwards) {
    folder_.KillChromium();
    ASSERT_TRUE(PumpUntil([&] { return !client_.crashes.empty(); }));
    EXPECT_EQ(Evaluate(*page_, "1"), "failed");
    const auto taken = std::make_shared<std::optional<bool>>();
    page_->SetCookie({"name", "value", "host.test"}, [taken](bool success) { *taken = success; });
    EXPECT_TRUE(PumpUntil([&] { return taken->has_value(); }));
    EXPECT_EQ(*taken, false);
    RecordingClient second;
    EXPECT_EQ(CreatePage(*browser_, second), nullptr);
}

TEST_F(Crashes, OfChromiumFailNavigationsThatAreAskedForAfterwards) {
    folder_.KillChromium();
    ASSERT_TRUE(PumpUntil([&] { return !client_.crashes.empty(); }));
    const NavigationOutcome outcome = Visit(*page_, client_, site_.Url("/page"));
    ASSERT_EQ(client_.starts.size(), 1U);
    EXPECT_EQ(outcome.id, client_.starts[0].id);
    EXPECT_EQ(outcome.error, NavigationError::RendererCrashed);
    EXPECT_EQ(outcome.url, site_.Url("/page"));
}

TEST_F(Crashes, OfChromiumLeaveTheFolderToTheNextOne) {
    folder_.KillChromium();
    ASSERT_TRUE(PumpUntil([&] { return !client_.crashes.empty(); }));
    const Opening next = OpenBrowser(folder_.Path());
    ASSERT_NE(next.browser, nullptr) << next.error;
    EXPECT_NE(next.browser, browser_);
    RecordingClient client;
    const auto page = CreatePage(*next.browser, client);
    ASSERT_NE(page, nullptr);
    EXPECT_TRUE(Visit(*page, client, site_.Url("/page")).success);
}

TEST_F(Crashes, OfChromiumWhileANavigationWaitsForTheClientFailIt) {
    client_.onStarting = [this](const NavigationStart&) {
        KillMeanwhile();
        return true;
    };
    page_->Navigate(site_.Url("/page"));
    ExpectFailedNavigation();
}

TEST_F(Crashes, OfChromiumWhileARequestWaitsForTheClientFailItsNavigation) {
    page_->SetRequestInterception(true);
    client_.onRequest = [this](const Request&) { KillMeanwhile(); };
    page_->Navigate(site_.Url("/page"));
    ExpectFailedNavigation();
}

TEST_F(Crashes, OfChromiumWhileAnAnswerIsLookedAtFailItsNavigation) {
    client_.onResponse = [this](const Response&) { KillMeanwhile(); };
    page_->Navigate(site_.Url("/waiting"));
    ExpectFailedNavigation();
}

TEST_F(Crashes, OfChromiumWhileACertificateWaitsFailItsNavigation) {
    const SecureServer server;
    page_->SetCertificateReports(true);
    client_.onCertificate = [this](const CertificateProblem&) {
        KillMeanwhile();
        return CertificateDecision::AlwaysAllow;
    };
    page_->Navigate(server.Url());
    ExpectFailedNavigation();
}

TEST_F(Crashes, OfChromiumWhileAChallengeWaitsFailItsNavigation) {
    client_.onChallenge = [this](const AuthenticationChallenge&) {
        KillMeanwhile();
        return AuthenticationAnswer{false, "me", "secret"};
    };
    page_->Navigate(site_.Url("/secret"));
    ExpectFailedNavigation();
}

TEST_F(Crashes, OfChromiumTakeTheMessageBoxOfAScriptAway) {
    bool killed = false;
    const Ticks ticks([&] {
        if (FindBox(site_.Url("/alerts")) != nullptr && !std::exchange(killed, true)) {
            folder_.KillChromium();
        }
    });
    page_->Navigate(site_.Url("/alerts"));
    ExpectFailedNavigation();
    EXPECT_TRUE(killed);
    EXPECT_EQ(FindBox(site_.Url("/alerts")), nullptr);
}

TEST_F(Crashes, OfThePageTakeTheMessageBoxOfItsScriptAway) {
    bool killed = false;
    const Ticks ticks([&] {
        if (FindBox(site_.Url("/alerts")) != nullptr && !std::exchange(killed, true)) {
            folder_.KillRenderers();
        }
    });
    page_->Navigate(site_.Url("/alerts"));
    ASSERT_TRUE(PumpUntil([&] { return !client_.crashes.empty(); }));
    EXPECT_EQ(client_.crashes, std::vector{Crash::Renderer});
    EXPECT_EQ(FindBox(site_.Url("/alerts")), nullptr);
    EXPECT_TRUE(Visit(*page_, client_, site_.Url("/page")).success);
}

TEST_F(Crashes, OfThePageAreReportedAndAreOverWithTheNextNavigation) {
    Visit(*page_, client_, site_.Url("/page"));
    std::vector<std::string> failures;
    page_->Evaluate("new Promise(() => {})",
                    [&](const auto& json) { failures.push_back(json.value_or("evaluate")); });
    page_->Navigate("chrome://crash");
    ASSERT_TRUE(PumpUntil([&] { return !client_.crashes.empty(); }));
    EXPECT_EQ(client_.crashes, std::vector{Crash::Renderer});
    EXPECT_EQ(failures, std::vector<std::string>{"evaluate"});
    EXPECT_EQ(client_.starts.size(), client_.outcomes.size());
    EXPECT_TRUE(Visit(*page_, client_, site_.Url("/page")).success);
    EXPECT_EQ(Evaluate(*page_, "1"), "1");
}

TEST_F(Crashes, OfThePageDoNotKeepSettingsAndTheNextNavigationWaitingForEachOther) {
    page_->Navigate("chrome://crash");
    ASSERT_TRUE(PumpUntil([&] { return !client_.crashes.empty(); }));
    page_->AddDocumentScript("window.added = 1", {});
    EXPECT_TRUE(Visit(*page_, client_, site_.Url("/page")).success);
    EXPECT_TRUE(PumpUntil([&] { return Evaluate(*page_, "1") == "1"; }));
    EXPECT_TRUE(Visit(*page_, client_, site_.Url("/page")).success);
    EXPECT_EQ(Evaluate(*page_, "window.added"), "1");
}

TEST_F(Crashes, MayDestroyEverythingInTheFailingCallback) {
    WaitForStalled();
    page_->Evaluate("new Promise(() => {})", [&](const auto&) {
        page_.reset();
        browser_.reset();
    });
    page_->Evaluate("new Promise(() => {})",
                    [&](const auto&) { ADD_FAILURE() << "of a page that has gone"; });
    folder_.KillChromium();
    EXPECT_TRUE(PumpUntil([&] { return browser_ == nullptr && folder_.Processes().empty(); }));
    EXPECT_TRUE(client_.crashes.empty());
}

} // namespace
} // namespace chromium_test
