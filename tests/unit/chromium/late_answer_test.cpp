// A page whose Chromium tells the second half of an answer late, or never. A real one has not been seen to; so this one is
// played, on a connection that leads nowhere.
#include "tests/unit/chromium/chromium_test.h"

namespace chromium_test {
namespace {

constexpr const char* kMainFrameId = "main frame";
constexpr const char* kLoader = "loader";

class LateAnswers : public testing::Test {
  protected:
    LateAnswers() {
        session_->SetClient(client_);
        client_.onStarting = [this](const NavigationStart& start) {
            log_.push_back("start " + start.url);
            return true;
        };
        client_.onResponse = [this](const Response& response) {
            log_.push_back("answer " + std::to_string(response.status) + " with " +
                           std::to_string(response.headers.size()));
        };
        client_.onCompleted = [this](const NavigationOutcome& outcome) {
            log_.push_back(outcome.success ? "success" : "failure");
        };
    }

    static Json RequestTo(const std::string& url) {
        return {{"url", url}, {"method", "GET"}, {"headers", Json::object()}};
    }
    static Json AnswerWith(int status) { return {{"status", status}, {"headers", Json::object()}}; }

    void Start(const std::string& url) {
        session_->OnEvent("Network.requestWillBeSent", {{"requestId", kLoader},
                                                        {"frameId", kMainFrameId},
                                                        {"type", "Document"},
                                                        {"request", RequestTo(url)}});
        session_->OnEvent("Fetch.requestPaused", {{"requestId", "paused"},
                                                  {"networkId", kLoader},
                                                  {"frameId", kMainFrameId},
                                                  {"resourceType", "Document"},
                                                  {"request", RequestTo(url)}});
    }
    void Redirect(const std::string& url) {
        session_->OnEvent("Network.requestWillBeSent", {{"requestId", kLoader},
                                                        {"frameId", kMainFrameId},
                                                        {"type", "Document"},
                                                        {"request", RequestTo(url)},
                                                        {"redirectResponse", AnswerWith(302)},
                                                        {"redirectHasExtraInfo", true}});
        session_->OnEvent("Fetch.requestPaused", {{"requestId", "paused again"},
                                                  {"redirectedRequestId", "paused"},
                                                  {"networkId", kLoader},
                                                  {"frameId", kMainFrameId},
                                                  {"resourceType", "Document"},
                                                  {"request", RequestTo(url)}});
    }
    void Answer() {
        session_->OnEvent("Network.responseReceived", {{"requestId", kLoader},
                                                       {"frameId", kMainFrameId},
                                                       {"type", "Document"},
                                                       {"response", AnswerWith(200)},
                                                       {"hasExtraInfo", true}});
    }
    void WireAnswer(int status) {
        session_->OnEvent(
            "Network.responseReceivedExtraInfo",
            {{"requestId", kLoader}, {"statusCode", status}, {"headers", {{"Of-The", "wire"}}}});
    }
    void Load() {
        session_->OnEvent(
            "Page.frameNavigated",
            {{"frame", {{"id", kMainFrameId}, {"url", "http://host.test/"}, {"loaderId", kLoader}}}});
        session_->OnEvent("Page.lifecycleEvent", {{"name", "load"}, {"loaderId", kLoader}});
    }

    using Log = std::vector<std::string>;
    Log log_;
    RecordingClient client_;
    std::shared_ptr<PageSession> session_ = std::make_shared<PageSession>(
        std::make_shared<Connection>(), PageSession::Address{"session", kMainFrameId, ""},
        std::make_shared<AllowedCertificates>());
};

TEST_F(LateAnswers, OfANavigationStillComeBeforeItsCompletion) {
    Start("http://host.test/");
    Answer();
    Load();
    EXPECT_EQ(log_, (Log{"start http://host.test/"}));
    EXPECT_EQ(session_->Url(), "about:blank");
    WireAnswer(200);
    EXPECT_EQ(log_, (Log{"start http://host.test/", "answer 200 with 1", "success"}));
    EXPECT_EQ(session_->Url(), "http://host.test/");
}

TEST_F(LateAnswers, OfRedirectsStillComeBeforeTheNextStart) {
    Start("http://host.test/1");
    Redirect("http://host.test/2");
    Answer();
    Load();
    EXPECT_EQ(log_, (Log{"start http://host.test/1"}));
    WireAnswer(302);
    EXPECT_EQ(log_, (Log{"start http://host.test/1", "answer 302 with 1", "start http://host.test/2"}));
    WireAnswer(200);
    EXPECT_EQ(log_, (Log{"start http://host.test/1", "answer 302 with 1", "start http://host.test/2",
                         "answer 200 with 1", "success"}));
}

TEST_F(LateAnswers, AreToldAsTheyAreWhenTheSecondHalfDoesNotCome) {
    Start("http://host.test/");
    Answer();
    Load();
    session_->OnEvent(PageSession::kAnswerMissingEvent, {{"number", 1}});
    EXPECT_EQ(log_, (Log{"start http://host.test/", "answer 200 with 0", "success"}));
}

TEST_F(LateAnswers, AreGivenUpWhenChromiumHasAnsweredAQuestionMeanwhile) {
    const ProfileFolder folder;
    const auto connection = StartChromium(folder);
    ASSERT_TRUE(connection);
    session_ = OpenBarePage(connection, kMainFrameId);
    ASSERT_TRUE(session_);
    session_->SetClient(client_);
    Start("http://host.test/");
    Answer();
    Load();
    EXPECT_EQ(log_, (Log{"start http://host.test/"}));
    EXPECT_TRUE(PumpUntil([&] { return log_.size() == 3; }));
    EXPECT_EQ(log_, (Log{"start http://host.test/", "answer 200 with 0", "success"}));
    connection->End();
}

TEST_F(LateAnswers, DoNotHoldPicturesBack) {
    struct Pictures : PictureSink {
        void OnPicture(const std::string& png) override { last = png; }
        void OnRendererReplaced() override {}
        std::string last;
    } pictures;
    session_->SetPictureSink(&pictures);
    Start("http://host.test/");
    Answer();
    Load();
    session_->OnEvent(kPictureEvent, {{"sessionId", 1}, {"data", "a picture"}});
    EXPECT_EQ(pictures.last, "a picture");
    EXPECT_EQ(log_, (Log{"start http://host.test/"}));
}

TEST_F(LateAnswers, AreDroppedWhenChromiumGoes) {
    Start("http://host.test/");
    Answer();
    Load();
    session_->OnConnectionLost();
    EXPECT_EQ(log_, (Log{"start http://host.test/", "failure"}));
    EXPECT_EQ(client_.crashes, std::vector{Crash::Browser});
}

TEST_F(LateAnswers, MayCloseThePageBeforeWhatWaitedForThem) {
    Start("http://host.test/");
    Answer();
    Load();
    client_.onResponse = [this](const Response&) { session_->Close(); };
    WireAnswer(200);
    EXPECT_EQ(log_, (Log{"start http://host.test/"}));
    WireAnswer(200);
    EXPECT_EQ(client_.responses.size(), 1U);
}

} // namespace
} // namespace chromium_test
