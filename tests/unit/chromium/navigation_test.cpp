// Navigations: how they start, and how each ends once.
#include "tests/unit/chromium/chromium_test.h"

namespace chromium_test {
namespace {

class Navigation : public ChromiumTest {
  protected:
    Navigation() {
        site_.Add("/page", "<title>a page</title>here");
        site_.Add("/away", test_support::Answer(302, "Location: /page\r\n", ""));
        site_.Add("/missing", test_support::Answer(404, "Content-Type: text/html\r\n", "not here"));
        site_.Add("/gone", test_support::Answer(410, "", ""));
        site_.Add("/nothing", test_support::CannedAnswer{"HTTP/1.1 204 Nothing\r\n\r\n"});
        site_.Add("/moving", "<script>location = '/page'</script>");
        site_.Add("/slowimage", "<img src='/stalled'>");
        site_.AddStalled("/stalled");
    }

    std::vector<NavigationError> Errors() const {
        std::vector<NavigationError> errors;
        for (const NavigationOutcome& outcome : client_.outcomes) {
            errors.push_back(outcome.error);
        }
        return errors;
    }
};

TEST_F(Navigation, SucceedsWhenThePageHasLoaded) {
    const NavigationOutcome outcome = Visit(*page_, client_, site_.Url("/page"));
    EXPECT_TRUE(outcome.success);
    EXPECT_EQ(outcome.error, NavigationError::None);
    EXPECT_EQ(outcome.httpStatus, 200);
    EXPECT_EQ(outcome.url, site_.Url("/page"));
    EXPECT_EQ(page_->Url(), site_.Url("/page"));
    ASSERT_EQ(client_.starts.size(), 1U);
    EXPECT_EQ(client_.starts[0].id, outcome.id);
    EXPECT_FALSE(client_.starts[0].redirected);
    EXPECT_EQ(Evaluate(*page_, "document.title"), "\"a page\"");
}

TEST_F(Navigation, IsAskedAgainForARedirect) {
    const NavigationOutcome outcome = Visit(*page_, client_, site_.Url("/away"));
    EXPECT_TRUE(outcome.success);
    EXPECT_EQ(outcome.url, site_.Url("/page"));
    ASSERT_EQ(client_.starts.size(), 2U);
    EXPECT_EQ(client_.starts[1].url, site_.Url("/page"));
    EXPECT_TRUE(client_.starts[1].redirected);
    EXPECT_EQ(client_.starts[0].id, client_.starts[1].id);
    EXPECT_EQ(client_.outcomes.size(), 1U);
}

TEST_F(Navigation, FailsWithAnErrorStatusWhetherThereIsABodyOrNot) {
    for (const auto& [path, status] : {std::pair{"/missing", 404}, std::pair{"/gone", 410}}) {
        const NavigationOutcome outcome = Visit(*page_, client_, site_.Url(path));
        EXPECT_FALSE(outcome.success) << path;
        EXPECT_EQ(outcome.error, NavigationError::HttpStatus) << path;
        EXPECT_EQ(outcome.httpStatus, status);
    }
}

TEST_F(Navigation, TellsWhyThereIsNoPage) {
    std::string closed;
    {
        const Site another;
        closed = another.Url("/");
    }
    EXPECT_EQ(Visit(*page_, client_, closed).error, NavigationError::CannotConnect);
    EXPECT_EQ(Visit(*page_, client_, "http://nobody.invalid/").error, NavigationError::HostNameNotResolved);
    EXPECT_EQ(Visit(*page_, client_, site_.Url("/nothing")).error, NavigationError::Aborted);
    EXPECT_EQ(Visit(*page_, client_, "no url").error, NavigationError::Unknown);
    EXPECT_EQ(client_.starts.size(), client_.outcomes.size());
}

TEST_F(Navigation, CancelledKeepsTheOldPage) {
    Visit(*page_, client_, site_.Url("/page"));
    client_.onStarting = [](const NavigationStart&) { return false; };
    const NavigationOutcome outcome = Visit(*page_, client_, site_.Url("/missing"));
    EXPECT_EQ(outcome.error, NavigationError::Aborted);
    EXPECT_EQ(Evaluate(*page_, "document.title"), "\"a page\"");
    EXPECT_TRUE(site_.Requests("/missing").empty());
}

TEST_F(Navigation, CancelledAtARedirectDoesNotFollowIt) {
    client_.onStarting = [](const NavigationStart& start) { return !start.redirected; };
    EXPECT_EQ(Visit(*page_, client_, site_.Url("/away")).error, NavigationError::Aborted);
    EXPECT_TRUE(site_.Requests("/page").empty());
}

TEST_F(Navigation, OfAScriptSupersedesTheOneThatIsLoading) {
    page_->Navigate(site_.Url("/moving"));
    ASSERT_TRUE(PumpUntil([&] { return client_.outcomes.size() == 2; }));
    EXPECT_EQ(client_.outcomes[0].id, client_.starts[0].id);
    EXPECT_EQ(client_.outcomes[1].id, client_.starts[1].id);
    EXPECT_TRUE(client_.outcomes[1].success);
    EXPECT_EQ(client_.outcomes[1].url, site_.Url("/page"));
}

TEST_F(Navigation, WithoutARequestIsReportedAsWell) {
    EXPECT_TRUE(Visit(*page_, client_, "data:text/html,<title>data</title>").success);
    EXPECT_TRUE(Visit(*page_, client_, "about:blank").success);
    EXPECT_EQ(client_.starts.size(), 2U);
}

TEST_F(Navigation, IsEndedByStopBeforeTheAnswer) {
    page_->Navigate(site_.Url("/stalled"));
    ASSERT_TRUE(PumpUntil([&] { return !site_.Requests("/stalled").empty(); }));
    page_->Stop();
    ASSERT_TRUE(PumpUntil([&] { return !client_.outcomes.empty(); }));
    EXPECT_EQ(Errors(), std::vector{NavigationError::Aborted});
}

TEST_F(Navigation, IsEndedByStopWhileThePageIsLoading) {
    page_->Navigate(site_.Url("/slowimage"));
    ASSERT_TRUE(PumpUntil([&] { return !site_.Requests("/stalled").empty(); }));
    page_->Stop();
    ASSERT_TRUE(PumpUntil([&] { return !client_.outcomes.empty(); }));
    EXPECT_EQ(Errors(), std::vector{NavigationError::Aborted});
}

TEST_F(Navigation, IsEndedByTheNextOne) {
    page_->Navigate(site_.Url("/stalled"));
    ASSERT_TRUE(PumpUntil([&] { return !site_.Requests("/stalled").empty(); }));
    page_->Navigate(site_.Url("/page"));
    ASSERT_TRUE(PumpUntil([&] { return client_.outcomes.size() == 2; }));
    EXPECT_EQ(Errors(), (std::vector{NavigationError::Aborted, NavigationError::None}));
}

TEST_F(Navigation, IsNotCompletedWhileItsHandlerRunsAMessageLoop) {
    // Events wait until the handler is through; callbacks do not.
    bool nested = false;
    client_.onStarting = [&](const NavigationStart&) {
        page_->Stop();
        page_->GetAllCookies([&](const auto&) { nested = true; });
        return PumpUntil([&] { return nested; }) && client_.outcomes.empty();
    };
    EXPECT_EQ(Visit(*page_, client_, site_.Url("/page")).error, NavigationError::Aborted);
    EXPECT_TRUE(nested);
}

TEST_F(Navigation, MayCloseThePageInItsHandler) {
    client_.onStarting = [&](const NavigationStart&) {
        page_.reset();
        return true;
    };
    page_->Navigate(site_.Url("/page"));
    ASSERT_TRUE(PumpUntil([&] { return page_ == nullptr; }));
    RecordingClient second;
    const auto another = CreatePage(*browser_, second);
    ASSERT_NE(another, nullptr);
    EXPECT_TRUE(Visit(*another, second, site_.Url("/page")).success);
    EXPECT_TRUE(client_.outcomes.empty());
}

TEST_F(Navigation, MayEndTheBrowserInItsHandler) {
    ASSERT_NO_FATAL_FAILURE(UseBrowserOfItsOwn());
    client_.onCompleted = [&](const NavigationOutcome&) {
        page_.reset();
        browser_.reset();
    };
    page_->Navigate(site_.Url("/page"));
    EXPECT_TRUE(PumpUntil([&] { return browser_ == nullptr && folder_.Processes().empty(); }));
}

TEST_F(Navigation, OfAPageThatIsClosedLeavesNoneInChromium) {
    ASSERT_TRUE(Visit(*page_, client_, site_.Url("/page")).success);
    ASSERT_EQ(PagesOf(*browser_).size(), 1U);
    page_->Close();
    EXPECT_TRUE(PumpUntil([&] { return PagesOf(*browser_).empty(); }));
}

TEST_F(Navigation, IsForgottenWhenThePageIsClosed) {
    page_->Navigate(site_.Url("/stalled"));
    ASSERT_TRUE(PumpUntil([&] { return !site_.Requests("/stalled").empty(); }));
    bool called = false;
    page_->Evaluate("new Promise(() => {})", [&](const auto&) { called = true; });
    page_->Close();
    EXPECT_TRUE(page_->Closed());
    page_->Navigate(site_.Url("/page"));
    page_->Stop();
    RecordingClient second;
    EXPECT_NE(CreatePage(*browser_, second), nullptr);
    EXPECT_TRUE(client_.outcomes.empty());
    EXPECT_FALSE(called);
}

} // namespace
} // namespace chromium_test
