// The bookkeeping of answers alone: orders of events that a real Chromium only now and then has.
#include <algorithm>
#include <utility>

#include <gtest/gtest.h>

#include "testbed/chromium/responses.h"

namespace testbed::chromium {
namespace {

constexpr const char* kMainFrame = "main frame";

/// The events of one request, as Chromium words them.
class Told {
  public:
    explicit Told(std::string request, std::string type = "Image", std::string frame = kMainFrame)
        : request_(std::move(request)), type_(std::move(type)), frame_(std::move(frame)) {}

    std::vector<Response> Request(const std::string& url) {
        return responses->OnEvent("Network.requestWillBeSent", RequestTo(url));
    }
    std::vector<Response> Redirect(const std::string& url, int status, bool wired = true) {
        Json params = RequestTo(url);
        params["redirectResponse"] = AnswerWith(status);
        params["redirectHasExtraInfo"] = wired;
        return responses->OnEvent("Network.requestWillBeSent", params);
    }
    std::vector<Response> Sent(const std::string& value) {
        return responses->OnEvent("Network.requestWillBeSentExtraInfo",
                                  {{"requestId", request_}, {"headers", {{"X-Sent", value}}}});
    }
    std::vector<Response> Answer(int status, bool wired = true) {
        return responses->OnEvent(
            "Network.responseReceived",
            {{"requestId", request_}, {"response", AnswerWith(status)}, {"hasExtraInfo", wired}});
    }
    std::vector<Response> WireAnswer(int status, const std::string& value) {
        return responses->OnEvent("Network.responseReceivedExtraInfo",
                                  {{"requestId", request_},
                                   {"statusCode", status},
                                   {"headers", {{"X-Wire", value}}},
                                   {"headersText", "HTTP/1.1 " + std::to_string(status) +
                                                       " Of The Wire\r\nX-Wire: " + value + "\r\n\r\n"}});
    }
    std::vector<Response> Cached() {
        return responses->OnEvent("Network.requestServedFromCache", {{"requestId", request_}});
    }
    std::vector<Response> Finish() {
        return responses->OnEvent("Network.loadingFinished", {{"requestId", request_}});
    }
    std::vector<Response> Fail() {
        return responses->OnEvent("Network.loadingFailed", {{"requestId", request_}});
    }

    Responses* responses = nullptr;

  private:
    Json RequestTo(const std::string& url) const {
        return {{"requestId", request_},
                {"type", type_},
                {"frameId", frame_},
                {"request", {{"url", url}, {"method", "GET"}, {"headers", {{"X-Asked", "1"}}}}}};
    }
    static Json AnswerWith(int status) {
        return {{"status", status}, {"statusText", "Told"}, {"headers", {{"X-Told", "1"}}}};
    }

    std::string request_;
    std::string type_;
    std::string frame_;
};

class ResponsesTest : public testing::Test {
  protected:
    Told Request(const std::string& request, const std::string& type = "Image",
                 const std::string& frame = kMainFrame) {
        Told told(request, type, frame);
        told.responses = &responses_;
        return told;
    }

    Responses responses_{kMainFrame};
};

TEST_F(ResponsesTest, AreCompleteWithWhatWentOverTheWire) {
    Told request = Request("one");
    EXPECT_TRUE(request.Request("http://host.test/").empty());
    EXPECT_TRUE(request.Sent("sent").empty());
    EXPECT_TRUE(request.WireAnswer(200, "wire").empty());
    const auto complete = request.Answer(200);
    ASSERT_EQ(complete.size(), 1U);
    EXPECT_EQ(complete[0].url, "http://host.test/");
    EXPECT_EQ(complete[0].method, "GET");
    EXPECT_EQ(complete[0].status, 200);
    EXPECT_EQ(complete[0].reason, "Told");
    EXPECT_EQ(complete[0].requestHeaders, (Headers{{"X-Sent", "sent"}}));
    EXPECT_EQ(complete[0].headers, (Headers{{"X-Wire", "wire"}}));
}

TEST_F(ResponsesTest, MayComeInTheOtherOrder) {
    Told request = Request("one");
    request.Request("http://host.test/");
    EXPECT_TRUE(request.Answer(200).empty());
    EXPECT_TRUE(request.Sent("sent").empty());
    const auto complete = request.WireAnswer(200, "wire");
    ASSERT_EQ(complete.size(), 1U);
    EXPECT_EQ(complete[0].requestHeaders, (Headers{{"X-Sent", "sent"}}));
    EXPECT_EQ(complete[0].headers, (Headers{{"X-Wire", "wire"}}));
}

TEST_F(ResponsesTest, MayBeOnTheWireBeforeTheirRequestIsKnown) {
    Told request = Request("one");
    request.Sent("sent");
    request.WireAnswer(200, "wire");
    request.Request("http://host.test/");
    EXPECT_EQ(request.Answer(200).size(), 1U);
}

TEST_F(ResponsesTest, ThatNeverWereOnTheWireAreCompleteAtOnce) {
    Told request = Request("one");
    request.Request("https://host.test/");
    const auto complete = request.Answer(200, false);
    ASSERT_EQ(complete.size(), 1U);
    EXPECT_EQ(complete[0].requestHeaders, (Headers{{"X-Asked", "1"}}));
    EXPECT_EQ(complete[0].headers, (Headers{{"X-Told", "1"}}));
}

TEST_F(ResponsesTest, OutOfMemoryAreCompleteAtOnceThoughMoreIsPromised) {
    Told request = Request("one");
    request.Request("https://host.test/");
    EXPECT_TRUE(request.Cached().empty());
    EXPECT_EQ(request.Answer(200).size(), 1U);
    Told unknown = Request("unknown");
    EXPECT_TRUE(unknown.Cached().empty());
}

TEST_F(ResponsesTest, OfRedirectsArePairedOneByOne) {
    Told request = Request("one");
    request.Request("http://host.test/1");
    request.Sent("first");
    request.WireAnswer(302, "first");
    const auto first = request.Redirect("http://host.test/2", 302);
    ASSERT_EQ(first.size(), 1U);
    EXPECT_EQ(first[0].url, "http://host.test/1");
    EXPECT_EQ(first[0].requestHeaders, (Headers{{"X-Sent", "first"}}));
    // One out of a cache, and then two whose other half is late.
    EXPECT_EQ(request.Redirect("http://host.test/3", 301, false).size(), 1U);
    EXPECT_TRUE(request.Redirect("http://host.test/4", 307).empty());
    EXPECT_TRUE(request.Answer(200).empty());
    request.Sent("third");
    const auto third = request.WireAnswer(307, "third");
    ASSERT_EQ(third.size(), 1U);
    EXPECT_EQ(third[0].url, "http://host.test/3");
    EXPECT_EQ(third[0].status, 307);
    EXPECT_EQ(third[0].requestHeaders, (Headers{{"X-Sent", "third"}}));
    request.Sent("fourth");
    const auto fourth = request.WireAnswer(200, "fourth");
    ASSERT_EQ(fourth.size(), 1U);
    EXPECT_EQ(fourth[0].url, "http://host.test/4");
    EXPECT_EQ(fourth[0].headers, (Headers{{"X-Wire", "fourth"}}));
}

TEST_F(ResponsesTest, WaitForThoseBeforeThem) {
    Told request = Request("one");
    request.Request("http://host.test/1");
    request.Redirect("http://host.test/2", 302);
    EXPECT_TRUE(request.Answer(200, false).empty());
    const auto complete = request.WireAnswer(302, "first");
    ASSERT_EQ(complete.size(), 2U);
    EXPECT_EQ(complete[0].status, 302);
    EXPECT_EQ(complete[1].status, 200);
}

TEST_F(ResponsesTest, ThatOnlySayThatTheCacheIsGoodAreToldAsTheyCame) {
    Told request = Request("one");
    request.Request("http://host.test/");
    request.WireAnswer(304, "wire");
    const auto complete = request.Answer(200);
    ASSERT_EQ(complete.size(), 1U);
    EXPECT_EQ(complete[0].status, 304);
    EXPECT_EQ(complete[0].reason, "Of The Wire");
}

TEST_F(ResponsesTest, OfAnythingButHttpAreNone) {
    for (const char* url : {"data:,", "file:///C:/", "blob:http://host.test/1", "chrome-error://dino/"}) {
        Told request = Request(url);
        request.Request(url);
        EXPECT_TRUE(request.Answer(200, false).empty()) << url;
    }
    EXPECT_EQ(responses_.Remembered(), 0U);
}

TEST_F(ResponsesTest, OfUnknownRequestsAreNone) {
    Told request = Request("unknown");
    EXPECT_TRUE(request.Answer(200, false).empty());
    EXPECT_TRUE(request.Finish().empty());
    EXPECT_EQ(responses_.Remembered(), 0U);
    EXPECT_TRUE(responses_.OnEvent("Network.policyUpdated", Json::object()).empty());
    EXPECT_TRUE(responses_.OnEvent("Page.frameNavigated", {{"requestId", "unknown"}}).empty());
}

TEST_F(ResponsesTest, AreToldOnceThoughAStreamIsAnsweredAgainAndAgain) {
    Told request = Request("one");
    request.Request("http://host.test/1");
    request.Redirect("http://host.test/2", 302);
    EXPECT_TRUE(request.Answer(200).empty());
    EXPECT_TRUE(request.Answer(206, false).empty());
    request.WireAnswer(302, "first");
    const auto complete = request.WireAnswer(200, "second");
    ASSERT_EQ(complete.size(), 1U);
    EXPECT_EQ(complete[0].status, 200);
    EXPECT_TRUE(request.Answer(200, false).empty());
}

TEST_F(ResponsesTest, OfAFailedRequestAreForgotten) {
    Told request = Request("one");
    request.Request("http://host.test/");
    request.Sent("sent");
    request.WireAnswer(200, "wire");
    EXPECT_TRUE(request.Fail().empty());
    EXPECT_EQ(responses_.Remembered(), 0U);
    EXPECT_TRUE(request.Answer(200, false).empty());
}

TEST_F(ResponsesTest, ThatCameBeforeTheFailureAreToldWhenTheyAreComplete) {
    Told request = Request("one");
    request.Request("http://host.test/1");
    request.Redirect("http://host.test/2", 302);
    EXPECT_TRUE(request.Fail().empty());
    const auto complete = request.WireAnswer(302, "first");
    ASSERT_EQ(complete.size(), 1U);
    EXPECT_EQ(complete[0].url, "http://host.test/1");
    EXPECT_EQ(responses_.Remembered(), 0U);
}

TEST_F(ResponsesTest, LeaveNothingBehind) {
    for (int i = 0; i < 10; ++i) {
        Told request = Request(std::to_string(i));
        request.Request("http://host.test/1");
        request.Sent("first");
        request.WireAnswer(302, "first");
        request.Redirect("http://host.test/2", 302);
        request.WireAnswer(200, "second");
        request.Answer(200);
        EXPECT_EQ(responses_.Remembered(), 1U);
        request.Finish();
        EXPECT_EQ(responses_.Remembered(), 0U);
    }
}

TEST_F(ResponsesTest, AreForgottenInTheEndIfTheirRequestNeverEnds) {
    Told oldest = Request("oldest");
    Told next = Request("next");
    oldest.Request("http://host.test/");
    next.Request("http://host.test/");
    for (std::size_t i = 0; i < Responses::kMostRemembered; ++i) {
        EXPECT_EQ(responses_.Remembered(), std::min(i + 2, Responses::kMostRemembered));
        Request(std::to_string(i)).Sent("after its end");
        if (i + 3 == Responses::kMostRemembered + 1) {
            EXPECT_TRUE(oldest.Answer(200, false).empty());
            EXPECT_EQ(next.Answer(200, false).size(), 1U);
        }
    }
}

TEST_F(ResponsesTest, OfNavigationsAreLateUntilTheyAreComplete) {
    Told navigation = Request("one", "Document");
    navigation.Request("http://host.test/1");
    EXPECT_EQ(responses_.Late(), std::nullopt);
    navigation.Redirect("http://host.test/2", 302);
    EXPECT_NE(responses_.Late(), std::nullopt);
    navigation.WireAnswer(302, "first");
    EXPECT_EQ(responses_.Late(), std::nullopt);
    navigation.WireAnswer(200, "second");
    navigation.Answer(200);
    EXPECT_EQ(responses_.Late(), std::nullopt);
}

TEST_F(ResponsesTest, OfOthersAreNeverLate) {
    for (Told request : {Request("image"), Request("frame", "Document", "another frame")}) {
        request.Request("http://host.test/1");
        request.Answer(200);
        EXPECT_EQ(responses_.Late(), std::nullopt);
    }
}

TEST_F(ResponsesTest, AreToldWithoutTheirOtherHalfOnceItIsGivenUp) {
    Told navigation = Request("one", "Document");
    navigation.Request("http://host.test/1");
    navigation.Redirect("http://host.test/2", 302);
    const auto late = responses_.Late();
    ASSERT_NE(late, std::nullopt);
    EXPECT_TRUE(responses_.GiveUp(*late + 1).empty());
    const auto complete = responses_.GiveUp(*late);
    ASSERT_EQ(complete.size(), 1U);
    EXPECT_EQ(complete[0].status, 302);
    EXPECT_EQ(complete[0].headers, (Headers{{"X-Told", "1"}}));
    EXPECT_EQ(responses_.Late(), std::nullopt);
    EXPECT_TRUE(responses_.GiveUp(*late).empty());
    EXPECT_TRUE(navigation.Answer(200).empty());
    EXPECT_NE(responses_.Late(), late);
}

TEST_F(ResponsesTest, ThatAreGivenUpKeepTheirRequestAndLeaveTheNextOneItsOwn) {
    Told navigation = Request("one", "Document");
    navigation.Request("http://host.test/1");
    navigation.Sent("first");
    navigation.Redirect("http://host.test/2", 302);
    const auto given = responses_.GiveUp(responses_.Late().value_or(0));
    ASSERT_EQ(given.size(), 1U);
    EXPECT_EQ(given[0].requestHeaders, (Headers{{"X-Sent", "first"}}));
    navigation.Sent("second");
    navigation.Answer(200);
    const auto last = navigation.WireAnswer(200, "second");
    ASSERT_EQ(last.size(), 1U);
    EXPECT_EQ(last[0].requestHeaders, (Headers{{"X-Sent", "second"}}));
    EXPECT_EQ(last[0].headers, (Headers{{"X-Wire", "second"}}));
}

} // namespace
} // namespace testbed::chromium
