// Requests as the client sees and edits them, and as the server gets them.
#include <algorithm>

#include "tests/unit/chromium/chromium_test.h"

namespace chromium_test {
namespace {

using test_support::HeaderOf;

class Requests : public ChromiumTest {
  protected:
    Requests() {
        site_.Add("/page",
                  "<link rel=stylesheet href='/style'><img src='/image'><iframe src='/frame'></iframe>"
                  "<script src='/script'></script><script>fetch('/fetched')</script>");
        site_.Add("/frame", "framed");
        site_.Add("/plain", "plain");
        site_.Add("/away", test_support::Answer(302, "Location: /plain\r\n", ""));
    }

    const Request* Find(const std::string& path) const {
        const auto found = std::ranges::find(client_.requests, site_.Url(path), &Request::url);
        return found == client_.requests.end() ? nullptr : &*found;
    }
};

TEST_F(Requests, AreNotShownUnlessAskedFor) {
    EXPECT_TRUE(Visit(*page_, client_, site_.Url("/page")).success);
    EXPECT_TRUE(client_.requests.empty());
}

TEST_F(Requests, AreShownWithTheirKinds) {
    page_->SetRequestInterception(true);
    Visit(*page_, client_, site_.Url("/page"));
    ASSERT_TRUE(PumpUntil([&] { return Find("/fetched") != nullptr; }));
    for (const auto& [path, kind] :
         {std::pair{"/page", ResourceKind::Document}, std::pair{"/style", ResourceKind::Stylesheet},
          std::pair{"/image", ResourceKind::Image}, std::pair{"/frame", ResourceKind::Document},
          std::pair{"/script", ResourceKind::Script}, std::pair{"/fetched", ResourceKind::Fetch}}) {
        const Request* request = Find(path);
        ASSERT_NE(request, nullptr) << path;
        EXPECT_EQ(request->kind, kind) << path;
        EXPECT_EQ(request->method, "GET");
        EXPECT_EQ(request->mainDocument, path == std::string("/page")) << path;
    }
}

TEST_F(Requests, OfFramesOfOtherSitesAreShownAndMayBeEdited) {
    std::string frame = site_.Url("/page");
    frame.replace(frame.find("127.0.0.1"), 9, "localhost");
    site_.Add("/outer", "<iframe src='" + frame + "'></iframe>");
    page_->SetRequestInterception(true);
    client_.onRequest = [](Request& request) { request.headers.push_back({"X-Added", "1"}); };
    Visit(*page_, client_, site_.Url("/outer"));
    for (const char* path : {"/page", "/image", "/fetched"}) {
        ASSERT_TRUE(PumpUntil([&] { return !site_.Requests(path).empty(); })) << path;
        EXPECT_EQ(HeaderOf(site_.Requests(path)[0], "X-Added"), "1");
    }
    const auto found = std::ranges::find(client_.requests, frame, &Request::url);
    ASSERT_NE(found, client_.requests.end());
    EXPECT_EQ(found->kind, ResourceKind::Document);
    EXPECT_FALSE(found->mainDocument);
}

TEST_F(Requests, AreSentWithTheHeadersThatTheClientLeavesInThem) {
    page_->SetRequestInterception(true);
    client_.onRequest = [](Request& request) {
        std::erase_if(request.headers,
                      [](const Header& header) { return header.name == "Upgrade-Insecure-Requests"; });
        for (Header& header : request.headers) {
            if (header.name == "Accept") {
                header.value = "*/*";
            }
        }
        request.headers.push_back({"X-Added", "by \xC3\xA4 test"});
    };
    Visit(*page_, client_, site_.Url("/plain"));
    const auto received = site_.Requests("/plain");
    ASSERT_EQ(received.size(), 1U);
    EXPECT_EQ(HeaderOf(received[0], "Accept"), "*/*");
    EXPECT_EQ(HeaderOf(received[0], "X-Added"), "by \xC3\xA4 test");
    EXPECT_EQ(HeaderOf(received[0], "Upgrade-Insecure-Requests"), "");
}

TEST_F(Requests, OfANavigationCarryItsHeadersOnceAndInPlaceOfOthers) {
    page_->SetRequestInterception(true);
    Visit(*page_, client_, site_.Url("/away"), {{"accept", "text/extra"}, {"X-Extra", "1"}});
    ASSERT_EQ(site_.Requests("/away").size(), 1U);
    EXPECT_EQ(HeaderOf(site_.Requests("/away")[0], "accept"), "text/extra");
    EXPECT_EQ(HeaderOf(site_.Requests("/away")[0], "Accept"), "");
    EXPECT_EQ(HeaderOf(site_.Requests("/away")[0], "X-Extra"), "1");
    ASSERT_EQ(site_.Requests("/plain").size(), 1U);
    EXPECT_EQ(HeaderOf(site_.Requests("/plain")[0], "X-Extra"), "");
    ASSERT_EQ(client_.requests.size() >= 2, true);
    EXPECT_EQ(client_.requests[0].headers.back(), (Header{"X-Extra", "1"}));
    EXPECT_TRUE(client_.requests[1].redirected);
}

TEST_F(Requests, GoOutAsTheyWereIfTheirHeadersCannotBeSent) {
    site_.Add("/framed", "<iframe src='/frame'></iframe>");
    page_->SetRequestInterception(true);
    client_.onRequest = [](Request& request) { request.headers.push_back({"X-Added", "two\r\nlines"}); };
    EXPECT_TRUE(Visit(*page_, client_, site_.Url("/framed")).success);
    ASSERT_EQ(site_.Requests("/frame").size(), 1U);
    EXPECT_EQ(HeaderOf(site_.Requests("/frame")[0], "X-Added"), "");
}

TEST_F(Requests, DoNotSayThatNobodyIsLooking) {
    Visit(*page_, client_, site_.Url("/plain"));
    const auto received = site_.Requests("/plain");
    ASSERT_EQ(received.size(), 1U);
    EXPECT_NE(HeaderOf(received[0], "User-Agent").find("Chrome/"), std::string::npos);
    EXPECT_EQ(received[0].find("Headless"), std::string::npos) << received[0];
    EXPECT_EQ(Evaluate(*page_, "navigator.userAgent").find("Headless"), std::string::npos);
}

} // namespace
} // namespace chromium_test
