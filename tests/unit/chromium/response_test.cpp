// Answers as the client hears of them.
#include <algorithm>

#include "testbed/chromium/text.h"
#include "tests/unit/chromium/chromium_test.h"

namespace chromium_test {
namespace {

using test_support::Answer;

class Answers : public ChromiumTest {
  protected:
    Answers() {
        site_.Add("/page", "here", "Set-Cookie: seen=1\r\n");
        site_.Add("/first", Answer(302, "Location: /second\r\nSet-Cookie: one=1; HttpOnly\r\n", ""));
        site_.Add("/second", Answer(302, "set-cookie: two=2\r\nLocation: /page\r\n", ""));
        site_.Add("/nothing", test_support::CannedAnswer{"HTTP/1.1 204 Nothing\r\nX-Name: 1\r\n\r\n"});
        client_.onStarting = [this](const NavigationStart& start) {
            log_.push_back("start " + PathOf(start.url));
            return true;
        };
        client_.onResponse = [this](const Response& response) {
            if (PathOf(response.url) != "/favicon.ico") {
                log_.push_back(std::to_string(response.status) + " " + PathOf(response.url));
            }
        };
        client_.onCompleted = [this](const NavigationOutcome&) { log_.push_back("completed"); };
    }

    std::string OnAnotherSite(const std::string& path) const {
        std::string url = site_.Url(path);
        return url.replace(url.find("127.0.0.1"), 9, "localhost");
    }
    static std::string PathOf(const std::string& url) {
        return url.substr(url.find('/', url.find("//") + 2));
    }

    const Response* Find(const std::string& path) const {
        const auto found = std::ranges::find_if(
            client_.responses, [&](const Response& response) { return PathOf(response.url) == path; });
        return found == client_.responses.end() ? nullptr : &*found;
    }
    /// Waits for the answer of that path.
    const Response* Await(const std::string& path) {
        EXPECT_TRUE(PumpUntil([&] { return Find(path) != nullptr; })) << path;
        return Find(path);
    }
    /// A page that is answered with these headers, the last of which ends with the line.
    Headers HeadersOf(const std::string& headers) {
        site_.Add("/headers",
                  test_support::CannedAnswer{"HTTP/1.1 200 Fine\r\n" + headers +
                                             "\r\nConnection: close\r\nContent-Length: 0\r\n\r\n"});
        Visit(*page_, client_, site_.Url("/headers"));
        const Response* response = Find("/headers");
        if (response == nullptr || response->headers.size() < 2) {
            ADD_FAILURE() << "without an answer";
            return {};
        }
        EXPECT_EQ(response->headers.back(), (Header{"Content-Length", "0"}));
        return {response->headers.begin(), response->headers.end() - 2};
    }

    using Log = std::vector<std::string>;
    Log log_;
};

std::string ValueOf(const Headers& headers, const std::string& name) {
    const auto found = std::ranges::find(headers, name, &Header::name);
    return found == headers.end() ? "none" : found->value;
}

TEST_F(Answers, SayWhatWasAskedAndWhatWasAnswered) {
    Visit(*page_, client_, site_.Url("/page"));
    const Response* response = Find("/page");
    ASSERT_NE(response, nullptr);
    EXPECT_EQ(response->url, site_.Url("/page"));
    EXPECT_EQ(response->method, "GET");
    EXPECT_EQ(response->status, 200);
    EXPECT_EQ(response->reason, "Canned");
    EXPECT_EQ(response->headers,
              (Headers{{"Content-Type", "text/html"}, {"Set-Cookie", "seen=1"}, {"Content-Length", "4"}}));
    EXPECT_EQ(ValueOf(response->requestHeaders, "Cookie"), "none");
}

TEST_F(Answers, SayWhichCookiesWereSent) {
    Visit(*page_, client_, site_.Url("/page"));
    client_.responses.clear();
    Visit(*page_, client_, site_.Url("/page"), {{"X-Extra", "\xC3\xA4"}});
    const Response* response = Find("/page");
    ASSERT_NE(response, nullptr);
    EXPECT_EQ(ValueOf(response->requestHeaders, "Cookie"), "seen=1");
    EXPECT_EQ(ValueOf(response->requestHeaders, "X-Extra"), "\xC3\xA4");
}

TEST_F(Answers, OfRedirectsComeOneByOneBetweenTheStartsAndTheCompletion) {
    Visit(*page_, client_, site_.Url("/first"));
    EXPECT_EQ(log_, (Log{"start /first", "302 /first", "start /second", "302 /second", "start /page",
                         "200 /page", "completed"}));
    EXPECT_EQ(ValueOf(Find("/first")->headers, "Set-Cookie"), "one=1; HttpOnly");
    EXPECT_EQ(ValueOf(Find("/second")->headers, "set-cookie"), "two=2");
    EXPECT_EQ(ValueOf(Find("/second")->requestHeaders, "Cookie"), "one=1");
    EXPECT_EQ(ValueOf(Find("/page")->requestHeaders, "Cookie"), "one=1; two=2");
}

TEST_F(Answers, ComeAlsoWhereThereIsNoPage) {
    EXPECT_EQ(Visit(*page_, client_, site_.Url("/nothing")).error, NavigationError::Aborted);
    EXPECT_EQ(log_, (Log{"start /nothing", "204 /nothing", "completed"}));
    log_.clear();
    EXPECT_EQ(Visit(*page_, client_, site_.Url("/missing")).error, NavigationError::HttpStatus);
    EXPECT_EQ(log_, (Log{"start /missing", "404 /missing", "completed"}));
}

TEST_F(Answers, OfACancelledRedirectComeAsWell) {
    client_.onStarting = [](const NavigationStart& start) { return !start.redirected; };
    Visit(*page_, client_, site_.Url("/first"));
    EXPECT_EQ(log_, (Log{"302 /first", "completed"}));
}

TEST_F(Answers, AreNoneWhereNobodyAnswers) {
    std::string closed;
    {
        const Site another;
        closed = another.Url("/dead");
    }
    site_.Add("/asking", "<script>fetch('" + closed + "').catch(() => fetch('/page'))</script>");
    Visit(*page_, client_, site_.Url("/asking"));
    Await("/page");
    EXPECT_EQ(Visit(*page_, client_, closed).error, NavigationError::CannotConnect);
    EXPECT_EQ(Find("/dead"), nullptr);
}

TEST_F(Answers, ThatThePageMustNotSeeAreNotShownEither) {
    site_.Add("/asking",
              "<script>fetch('" + OnAnotherSite("/refused") + "').catch(() => fetch('/page'))</script>");
    Visit(*page_, client_, site_.Url("/asking"));
    Await("/page");
    EXPECT_EQ(site_.Requests("/refused").size(), 1U);
    EXPECT_EQ(Find("/refused"), nullptr);
}

TEST_F(Answers, OfEverythingInThePageComeOnce) {
    site_.Add(
        "/whole",
        "<link rel=stylesheet href='/style'><img src='/image'><iframe src='/frame'></iframe>"
        "<script src='/script'></script><script>fetch('/fetched'); navigator.sendBeacon('/beacon', 'x');"
        "new EventSource('/stream')</script><video src='/video'></video><iframe src='" +
            OnAnotherSite("/elsewhere") + "'></iframe>");
    site_.Add("/image", Answer(302, "Location: /picture\r\nSet-Cookie: image=1\r\n", ""));
    site_.Add("/elsewhere", "<img src='/inside'>");
    Visit(*page_, client_, site_.Url("/whole"));
    for (const char* path : {"/whole", "/style", "/image", "/picture", "/frame", "/script", "/fetched",
                             "/beacon", "/stream", "/video", "/elsewhere", "/inside", "/favicon.ico"}) {
        const Response* response = Await(path);
        ASSERT_NE(response, nullptr) << path;
        EXPECT_EQ(response->method, path == std::string("/beacon") ? "POST" : "GET");
        EXPECT_EQ(std::ranges::count(client_.responses, response->url, &Response::url), 1) << path;
    }
    EXPECT_EQ(ValueOf(Find("/image")->headers, "Set-Cookie"), "image=1");
}

TEST_F(Answers, OfWorkersComeToo) {
    const std::string script = "Content-Type: text/javascript\r\n";
    site_.Add("/working", "<script>new Worker('/worker')</script>");
    site_.Add("/worker", Answer(200, script, "fetch('/fetched', {method: 'PUT'}); new Worker('/nested')"));
    site_.Add("/nested", Answer(200, script, "fetch('/deeper')"));
    Visit(*page_, client_, site_.Url("/working"));
    for (const char* path : {"/worker", "/fetched", "/nested", "/deeper"}) {
        Await(path);
    }
    EXPECT_EQ(Find("/fetched")->method, "PUT");
    EXPECT_NE(ValueOf(Find("/deeper")->requestHeaders, "Host"), "none");
}

TEST_F(Answers, OutOfTheCacheComeAsWell) {
    // The style comes from memory, the picture from the disk.
    const std::string headers = "Cache-Control: max-age=1000\r\nX-Name: 1\r\n";
    site_.Add("/style", Answer(200, headers + "Content-Type: text/css\r\n", "body { }"));
    site_.Add("/picture", Answer(200, headers, "no picture"));
    site_.Add("/caching", "<link rel=stylesheet href='/style'><img src='/picture'>");
    Visit(*page_, client_, site_.Url("/caching"));
    client_.responses.clear();
    Visit(*page_, client_, site_.Url("/caching"));
    for (const char* path : {"/style", "/picture"}) {
        const Response* response = Await(path);
        ASSERT_NE(response, nullptr);
        EXPECT_EQ(response->status, 200);
        EXPECT_EQ(ValueOf(response->headers, "X-Name"), "1");
        EXPECT_EQ(site_.Requests(path).size(), 1U);
    }
}

TEST_F(Answers, ThatConfirmTheCacheAreShownAsTheyCame) {
    const test_support::CannedServer server([](const std::string& request) {
        return test_support::HeaderOf(request, "If-None-Match").empty()
                   ? Answer(200, "ETag: \"1\"\r\nContent-Type: text/html\r\n", "tagged")
                   : test_support::CannedAnswer{
                         "HTTP/1.1 304 Unchanged\r\nETag: \"1\"\r\nSet-Cookie: a=1\r\n\r\n"};
    });
    const std::string url = ToUtf8(server.Url(L"/tagged"));
    Visit(*page_, client_, url);
    client_.responses.clear();
    const NavigationOutcome outcome = Visit(*page_, client_, url);
    EXPECT_TRUE(outcome.success);
    EXPECT_EQ(outcome.httpStatus, 200);
    const Response* response = Find("/tagged");
    ASSERT_NE(response, nullptr);
    EXPECT_EQ(response->status, 304);
    EXPECT_EQ(response->reason, "Unchanged");
    EXPECT_EQ(response->headers, (Headers{{"ETag", "\"1\""}, {"Set-Cookie", "a=1"}}));
}

TEST_F(Answers, HaveAllTheirCookiesInOrder) {
    std::string headers;
    Headers expected;
    for (int i = 0; i < 20; ++i) {
        const std::string name = i % 3 == 0 ? "Set-Cookie" : i % 3 == 1 ? "set-cookie" : "SET-COOKIE";
        const std::string value =
            "name" + std::to_string((i * 7) % 20) + "=" + std::to_string(i) + "; Path=/";
        headers.append(i == 0 ? "" : "\r\n").append(name).append(": ").append(value);
        expected.push_back({name, value});
    }
    EXPECT_EQ(HeadersOf(headers), expected);
}

TEST_F(Answers, KeepWhatIsOddInHeaders) {
    EXPECT_EQ(
        HeadersOf(
            "X-Empty:\r\nx-Blanks: \t many \t\r\nX-Folded: one\r\n  two\r\nX-Utf8: \xC3\xA4\r\nNo colon\r\n"
            "Set-Cookie: a=\xE4 b\r\nX-After: 1\r\nX-Twice: 1\r\nX-Twice:\r\nX-Colons : a:b"),
        (Headers{{"X-Empty", ""},
                 {"x-Blanks", "many"},
                 {"X-Folded", "one two"},
                 {"X-Utf8", "\xC3\xA4"},
                 {"Set-Cookie", "a=\xC3\xA4 b"},
                 {"X-After", "1"},
                 {"X-Twice", "1"},
                 {"X-Twice", ""},
                 {"X-Colons", "a:b"}}));
}

TEST_F(Answers, MayHaveNoHeadersAtAll) {
    // The body; and what has the server close.
    site_.Add("/bare", test_support::CannedAnswer{"HTTP/1.1 200\r\n\r\nConnection: close"});
    EXPECT_TRUE(Visit(*page_, client_, site_.Url("/bare")).success);
    const Response* response = Find("/bare");
    ASSERT_NE(response, nullptr);
    EXPECT_EQ(response->status, 200);
    EXPECT_EQ(response->reason, "");
    EXPECT_TRUE(response->headers.empty());
}

TEST_F(Answers, WaitWhileTheClientIsBusyAndSoDoesWhatFollowsThem) {
    bool nested = false;
    client_.onResponse = [&](const Response& response) {
        log_.push_back("busy " + PathOf(response.url));
        page_->GetAllCookies([&](const auto&) { nested = true; });
        EXPECT_TRUE(PumpUntil([&] { return nested; }));
        log_.push_back("done");
    };
    Visit(*page_, client_, site_.Url("/nothing"));
    EXPECT_EQ(log_, (Log{"start /nothing", "busy /nothing", "done", "completed"}));
}

TEST_F(Answers, MayEndEverything) {
    ASSERT_NO_FATAL_FAILURE(UseBrowserOfItsOwn());
    client_.onResponse = [this](const Response&) {
        page_.reset();
        browser_.reset();
    };
    page_->Navigate(site_.Url("/first"));
    EXPECT_TRUE(PumpUntil([&] { return browser_ == nullptr && folder_.Processes().empty(); }));
    EXPECT_EQ(client_.responses.size(), 1U);
    EXPECT_EQ(log_, (Log{"start /first"}));
}

TEST_F(Answers, ComeFromTheNetworkThoughThereIsAServiceWorker) {
    site_.Add("/worker.js", Answer(200, "Content-Type: text/javascript\r\n",
                                   "onfetch = (event) => event.respondWith(new Response('of the worker'))"));
    site_.Add("/registering",
              "<script>navigator.serviceWorker.register('/worker.js')"
              ".then(() => navigator.serviceWorker.ready).then(() => { document.title = 'ready' })</script>");
    site_.Add("/fetching", "<img src='/image'><script>fetch('/fetched')</script>");
    page_->SetRequestInterception(true);
    Visit(*page_, client_, site_.Url("/registering"));
    ASSERT_TRUE(PumpUntil([&] { return Evaluate(*page_, "document.title") == "\"ready\""; }));
    client_.requests.clear();
    Visit(*page_, client_, site_.Url("/fetching"));
    for (const char* path : {"/fetching", "/image", "/fetched"}) {
        Await(path);
        EXPECT_EQ(site_.Requests(path).size(), 1U) << path;
        EXPECT_EQ(std::ranges::count(client_.requests, site_.Url(path), &Request::url), 1) << path;
    }
}

} // namespace
} // namespace chromium_test
