// The responses that the login page gets: their lines in the trace, and the way of their cookies into WinINet.
#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "du/string_utilities.h"
#include "edge_browser_test.h"
#include "tests/support/webview2/fake_responses.h"

using test_support::ExchangeContent;
using test_support::HeaderFields;
using test_support::InTurn;
using test_support::Lines;
using test_support::MakeFake;
using test_support::ScopedVariable;

namespace kelda {
namespace {

/// The reading of the headers of "request" or "response", and what it traces; the title is empty while tracing is off.
Lines Block(const std::string& of, const std::string& title, const HeaderFields& headers) {
    const std::string iterator = of + " headers iterator";
    Lines lines = {of + ".get_Headers", of + " headers.GetIterator"};
    const auto trace = [&](const std::string& text) {
        if (!title.empty()) {
            lines.push_back("[0] " + text);
        }
    };
    trace(title);
    lines.push_back(iterator + ".get_HasCurrentHeader");
    for (std::size_t index = 0; index < headers.size(); ++index) {
        lines.push_back(iterator + ".GetCurrentHeader " + std::to_string(index));
        trace(du::WideStrToUtf8(headers[index].first + L": " + headers[index].second));
        lines.push_back(iterator + ".MoveNext " + std::to_string(index + 1));
    }
    trace("End of headers");
    lines.push_back(iterator + " gone");
    return lines;
}

class Responses : public EdgeBrowserTest {
  protected:
    int textsGiven = 0;
    test_support::ReplacedImport<struct Give, decltype(CoTaskMemAlloc)> give{
        "ole32.dll", "CoTaskMemAlloc", [this](SIZE_T size) {
            ++textsGiven;
            return decltype(give)::Original(size);
        }};
    int textsFreed = 0;
    bool recordsFreed = false;
    test_support::ReplacedImport<struct Free, decltype(CoTaskMemFree)> free{
        "ole32.dll", "CoTaskMemFree", [this](void* block) {
            if (block != nullptr) {
                ++textsFreed;
                if (recordsFreed) {
                    test_support::Record("text freed");
                }
            }
            decltype(free)::Original(block);
        }};

    /// A browser that is up, with these words in the implementation variable.
    void BringUpWith(const wchar_t* words) {
        const ScopedVariable variable(kImplementationVariable, words);
        BringUp();
    }

    /// What the handler does with a response. It must not keep the arguments, nor any text of theirs.
    Lines Receive(const ExchangeContent& content, HRESULT expected = S_OK) {
        textsGiven = 0;
        textsFreed = 0;
        auto* const handler = runtime.webView.HandlerOf<ICoreWebView2WebResourceResponseReceivedEventHandler>(
            "WebResourceResponseReceived");
        if (handler == nullptr) {
            ADD_FAILURE() << "no handler";
            return {};
        }
        auto args = MakeFake<test_support::FakeResponseReceivedArgs>(runtime.script, content);
        EXPECT_EQ(handler->Invoke(nullptr, args.Get()), expected);
        Lines lines = TakeTranscript();
        EXPECT_EQ(textsFreed, textsGiven);
        EXPECT_EQ(args.Reset(), 0U) << "the arguments are still referenced";
        TakeTranscript();
        return lines;
    }

    /// The lines of the trace, or the writes into WinINet, among those.
    Lines TracedOf(const ExchangeContent& content) { return Beginning("[", Receive(content)); }
    Lines WrittenOf(const ExchangeContent& content) {
        return Beginning("InternetSetCookieEx2 ", Receive(content));
    }

    static Lines Beginning(const std::string& beginning, const Lines& lines) {
        Lines found;
        for (const std::string& line : lines) {
            if (line.starts_with(beginning)) {
                found.push_back(line);
            }
        }
        return found;
    }

    /// The write of a cookie of this name and value, and else as the defaults are.
    static std::string Write(const std::string& cookie) {
        return "InternetSetCookieEx2 http://server/login " + cookie +
               " domain=(null) path=(null) flags=0x00200000 expires=none with 0x00001000";
    }
};

const ExchangeContent kRedirect = {L"http://server/login",
                                   L"GET",
                                   {{L"Accept", L"*/*"}, {L"Cookie", L"a=1"}},
                                   302,
                                   {{L"Location", L"/next"}, {L"Set-Cookie", L"b=2"}}};

const Lines kReadsExchange = {"args.get_Request", "args.get_Response", "response.get_StatusCode",
                              "request.get_Uri", "request.get_Method"};
const Lines kLetsGo = {"response headers gone", "request headers gone", "response gone", "request gone"};

/// What comes of one Set-Cookie header that stands alone; it is header 0.
const Lines kReadsForCapture = {"args.get_Request",
                                "request.get_Uri",
                                "args.get_Response",
                                "response.get_Headers",
                                "response headers.GetIterator",
                                "response headers iterator.get_HasCurrentHeader"};
const Lines kLetsGoOfCapture = {"response headers iterator gone", "response headers gone", "response gone",
                                "request gone"};

ExchangeContent With(HeaderFields responseHeaders) {
    ExchangeContent content;
    content.responseHeaders = std::move(responseHeaders);
    return content;
}

ExchangeContent WithSetCookies(const std::vector<std::wstring>& values) {
    ExchangeContent content;
    for (const std::wstring& value : values) {
        content.responseHeaders.emplace_back(L"Set-Cookie", value);
    }
    return content;
}

TEST_F(Responses, DuringWhoseTraceTheBrowserIsDeletedAreCapturedAllTheSame) {
    BringUpWith(L"trace parse");
    auto* const handler = runtime.webView.HandlerOf<ICoreWebView2WebResourceResponseReceivedEventHandler>(
        "WebResourceResponseReceived");
    const Microsoft::WRL::ComPtr<ICoreWebView2WebResourceResponseReceivedEventHandler> kept = handler;
    auto args = MakeFake<test_support::FakeResponseReceivedArgs>(runtime.script, WithSetCookies({L"b=2"}));
    InsideTraceLine("Response 200 received", [this] { browser.reset(); });
    EXPECT_EQ(kept->Invoke(nullptr, args.Get()), S_OK);
    EXPECT_EQ(browser, nullptr);
    const Lines lines = TakeTranscript();
    EXPECT_EQ(std::count(lines.begin(), lines.end(), Write("b=2")), 1);
}

TEST_F(Responses, AreTracedWithTheHeadersOfBothSidesInOrder) {
    BringUpWith(L"trace");
    EXPECT_EQ(Receive(kRedirect),
              InTurn({kReadsExchange, Lines{"[0] Response 302 received for GET: http://server/login"},
                      Block("request", "Request headers:", kRedirect.requestHeaders),
                      Block("response", "Response headers:", kRedirect.responseHeaders), kLetsGo}));
}

TEST_F(Responses, AreReadButNotTracedWhileTracingIsOff) {
    BringUp();
    EXPECT_EQ(Receive(kRedirect), InTurn({kReadsExchange, Block("request", "", kRedirect.requestHeaders),
                                          Block("response", "", kRedirect.responseHeaders), kLetsGo}));
}

TEST_F(Responses, FreeEachTextBeforeTheyAskForTheNext) {
    BringUpWith(L"parse");
    recordsFreed = true;
    const Lines lines = Receive(WithSetCookies({L"a=1"}));
    // The second reading, that for the cookies.
    const Lines capture(std::find(lines.begin() + 1, lines.end(), "args.get_Request"), lines.end());
    EXPECT_EQ(capture, InTurn({Lines{"args.get_Request", "request.get_Uri", "text freed", "args.get_Response",
                                     "response.get_Headers", "response headers.GetIterator",
                                     "response headers iterator.get_HasCurrentHeader",
                                     "response headers iterator.GetCurrentHeader 0", Write("a=1"),
                                     "text freed", "text freed", "response headers iterator.MoveNext 1"},
                               kLetsGoOfCapture}));
}

TEST_F(Responses, MayLackTextsThatTheRuntimeSaysItGave) {
    BringUpWith(L"parse,trace");
    runtime.script.answers = {{"request.get_Method", S_FALSE},
                              {"response headers iterator.GetCurrentHeader 0", S_FALSE}};
    const Lines lines = Receive(WithSetCookies({L"a=1", L"b=2"}));
    EXPECT_EQ(Beginning("[", lines),
              (Lines{"[0] Response 200 received for : http://server/login", "[0] Request headers:",
                     "[0] End of headers", "[0] Response headers:", "[0] : ", "[0] Set-Cookie: b=2",
                     "[0] End of headers", "[0] Cookie received: b=2; domain=; path=; session; samesite=1"}));
    EXPECT_EQ(Beginning("InternetSetCookieEx2 ", lines), Lines{Write("b=2")});
}

TEST_F(Responses, WithoutAnAddressBringNoCookie) {
    BringUpWith(L"parse");
    for (const HRESULT answer : {E_FAIL, S_FALSE}) {
        runtime.script.answers = {{"request.get_Uri", answer}};
        const Lines lines = Receive(WithSetCookies({L"a=1"}));
        EXPECT_EQ(Lines(lines.end() - 7, lines.end()),
                  (Lines{"args.get_Request", "request.get_Uri", "args.get_Response", "response.get_Headers",
                         "response headers gone", "response gone", "request gone"}));
    }
}

TEST_F(Responses, WithoutHeadersStillTraceBothBlocks) {
    BringUpWith(L"trace");
    ExchangeContent content;
    content.requestHeaders = {{L"Accept", L"*/*"}};
    EXPECT_EQ(TracedOf(content), (Lines{"[0] Response 200 received for GET: http://server/login",
                                        "[0] Request headers:", "[0] Accept: */*", "[0] End of headers",
                                        "[0] Response headers:", "[0] End of headers"}));
}

TEST_F(Responses, TraceALineForEachOccurrenceOfAHeader) {
    BringUpWith(L"trace");
    EXPECT_EQ(TracedOf(With(
                  {{L"set-cookie", L"a=1"}, {L"X", L""}, {L"Set-Cookie", L"b=2"}, {L"set-cookie", L"a=1"}})),
              (Lines{"[0] Response 200 received for GET: http://server/login", "[0] Request headers:",
                     "[0] End of headers", "[0] Response headers:", "[0] set-cookie: a=1",
                     "[0] X: ", "[0] Set-Cookie: b=2", "[0] set-cookie: a=1", "[0] End of headers"}));
}

TEST_F(Responses, TraceTextsBeyondAsciiInUtf8) {
    BringUpWith(L"trace");
    ExchangeContent content = With({{L"X", L"\u00E4\u20AC"}});
    content.uri = L"http://server/\u00E4";
    EXPECT_EQ(TracedOf(content), (Lines{"[0] Response 200 received for GET: http://server/\xC3\xA4",
                                        "[0] Request headers:", "[0] End of headers", "[0] Response headers:",
                                        "[0] X: \xC3\xA4\xE2\x82\xAC", "[0] End of headers"}));
}

TEST_F(Responses, TraceTheStatusInDecimal) {
    BringUpWith(L"trace");
    for (const int status : {0, -1, 2147483647, -2147483647 - 1}) {
        ExchangeContent content;
        content.status = status;
        EXPECT_EQ(TracedOf(content).at(0),
                  "[0] Response " + std::to_string(status) + " received for GET: http://server/login");
    }
}

TEST_F(Responses, BringNoCookieToWinInetWithoutTheWordParse) {
    for (const wchar_t* words : {L"", L"trace", L"edge,Parse", L"PARSE"}) {
        BringUpWith(words);
        EXPECT_EQ(WrittenOf(WithSetCookies({L"a=1", L"b=2; path=/"})), Lines{}) << words;
    }
}

TEST_F(Responses, BringTheirCookiesToWinInetWithTheWordParseAndTraceNothing) {
    BringUpWith(L"parse");
    const ExchangeContent content = WithSetCookies({L"a=1"});
    EXPECT_EQ(Receive(content),
              InTurn({kReadsExchange, Block("request", "", {}),
                      Block("response", "", content.responseHeaders), kLetsGo, kReadsForCapture,
                      Lines{"response headers iterator.GetCurrentHeader 0", Write("a=1"),
                            "response headers iterator.MoveNext 1"},
                      kLetsGoOfCapture}));
}

TEST_F(Responses, AreTracedBeforeTheirCookiesAreTakenWhereBothAreOn) {
    BringUpWith(L"edge,trace,parse");
    const ExchangeContent content = WithSetCookies({L"a=1"});
    EXPECT_EQ(
        Receive(content),
        InTurn({kReadsExchange, Lines{"[0] Response 200 received for GET: http://server/login"},
                Block("request", "Request headers:", {}),
                Block("response", "Response headers:", content.responseHeaders), kLetsGo, kReadsForCapture,
                Lines{"response headers iterator.GetCurrentHeader 0",
                      "[0] Cookie received: a=1; domain=; path=; session; samesite=1", Write("a=1"),
                      "response headers iterator.MoveNext 1"},
                kLetsGoOfCapture}));
}

TEST_F(Responses, NameTheirCookiesInAnyCaseButInNoOtherWay) {
    BringUpWith(L"parse");
    for (const wchar_t* name : {L"SET-COOKIE", L"Set-Cookie", L"set-cookie", L"sEt-cOOkie"}) {
        EXPECT_EQ(WrittenOf(With({{name, L"a=1"}})), Lines{Write("a=1")}) << name;
    }
    for (const wchar_t* name : {L"Set-Cookie2", L"Set-Cookie ", L" Set-Cookie", L"Set_Cookie", L"Set-Cooki",
                                L"", L"Cookie", L"set-coo\u212Aie", L"\u017Fet-cookie"}) {
        EXPECT_EQ(WrittenOf(With({{name, L"a=1"}})), Lines{}) << name;
    }
}

TEST_F(Responses, WriteTheirCookiesInTheOrderOfTheHeadersOneByOne) {
    BringUpWith(L"parse");
    EXPECT_EQ(WrittenOf(With({{L"Set-Cookie", L"a=1"},
                              {L"Date", L"today"},
                              {L"Set-Cookie", L"b=2, c=3"},
                              {L"set-cookie", L"a=4"}})),
              (Lines{Write("a=1"), Write("b=2, c=3"), Write("a=4")}));
}

TEST_F(Responses, WriteTheirCookiesToTheAddressOfTheirRequest) {
    BringUpWith(L"parse");
    ExchangeContent content = WithSetCookies({L"a=1"});
    content.uri = L"https://other/path?query";
    EXPECT_EQ(WrittenOf(content),
              Lines{"InternetSetCookieEx2 https://other/path?query a=1 domain=(null) path=(null) "
                    "flags=0x00200000 expires=none with 0x00001000"});
}

TEST_F(Responses, StartEachCookieFromTheDefaults) {
    BringUpWith(L"parse");
    EXPECT_EQ(WrittenOf(WithSetCookies(
                            {L"a=1; Secure; HttpOnly; Domain=server; Path=/dir; SameSite=Strict", L"b=2"}))
                  .at(1),
              Write("b=2"));
}

TEST_F(Responses, ShowACookieWithoutAnEqualSignAndDoNotWriteIt) {
    BringUpWith(L"parse,trace");
    const Lines lines = Receive(WithSetCookies({L"flag; Secure", L"a=1"}));
    EXPECT_EQ(Beginning("InternetSetCookieEx2 ", lines), Lines{Write("a=1")});
    const Lines traced = Beginning("[", lines);
    EXPECT_EQ(Lines(traced.end() - 3, traced.end()),
              (Lines{"[0] Cookie received: =; domain=; path=; session; samesite=1", "[0] Invalid cookie",
                     "[0] Cookie received: a=1; domain=; path=; session; samesite=1"}));
}

TEST_F(Responses, SayThatACookieHasNoNameEvenWhileTracingIsOff) {
    BringUpWith(L"parse");
    EXPECT_EQ(TracedOf(WithSetCookies({L"flag"})), Lines{"[0] Invalid cookie"});
}

// What the runtime could tell for the trace it may not be able to tell again.
TEST_F(Responses, BringTheCookiesUpToTheOneThatCannotBeReadAgain) {
    BringUpWith(L"parse,trace");
    runtime.script.during["response headers iterator.MoveNext 2"] = [this] {
        runtime.script.answers = {{"response headers iterator.GetCurrentHeader 1", E_FAIL}};
    };
    const Lines lines = Receive(WithSetCookies({L"a=1", L"b=2"}));
    EXPECT_EQ(Beginning("InternetSetCookieEx2 ", lines), Lines{Write("a=1")});
    EXPECT_NE(std::find(lines.begin(), lines.end(), "[0] Set-Cookie: b=2"), lines.end());
}

TEST_F(Responses, GoOnAfterACookieThatWinInetRefuses) {
    BringUpWith(L"parse");
    winInet.setterAnswers[L"a"] = {ERROR_INVALID_PARAMETER, COOKIE_STATE_REJECT};
    const Lines lines = Receive(WithSetCookies({L"a=1", L"b=2"}));
    EXPECT_EQ(Beginning("InternetSetCookieEx2 ", lines), (Lines{Write("a=1"), Write("b=2")}));
    EXPECT_EQ(Beginning("[", lines), Lines{"[0] Cookie not accepted; res=87 state=5"});
}

TEST_F(Responses, GoOnAfterACookieWhoseMaxAgeIsNoNumber) {
    BringUpWith(L"parse");
    const Lines lines = Receive(WithSetCookies({L"a=1; Max-Age=soon", L"b=2"}));
    EXPECT_EQ(Beginning("InternetSetCookieEx2 ", lines), (Lines{Write("a=1"), Write("b=2")}));
    EXPECT_EQ(Beginning("[", lines), Lines{"[0] Invalid Max-Age: soon"});
}

TEST_F(Responses, GoOnAfterACookieWithADateWhoseNumbersAreNone) {
    BringUpWith(L"parse,trace");
    const Lines lines =
        Receive(WithSetCookies({L"a=1", L"b=2; Expires=Wed, xx Jun 2021 10:18:14 GMT", L"c=3"}));
    EXPECT_EQ(Beginning("InternetSetCookieEx2 ", lines), (Lines{Write("a=1"), Write("c=3")}));
    const Lines traced = Beginning("[", lines);
    EXPECT_EQ(Lines(traced.end() - 3, traced.end()),
              (Lines{"[0] Cookie received: a=1; domain=; path=; session; samesite=1",
                     "[0] Failed: invalid stoi argument error code: -2147467259",
                     "[0] Cookie received: c=3; domain=; path=; session; samesite=1"}));
}

TEST_F(Responses, GoOnAfterACookieWithADateWhoseNumbersAreTooGreat) {
    BringUpWith(L"parse");
    const Lines lines =
        Receive(WithSetCookies({L"a=1", L"b=2; Expires=Wed, 09 Jun 99999999999 10:18:14 GMT", L"c=3"}));
    EXPECT_EQ(Beginning("InternetSetCookieEx2 ", lines), (Lines{Write("a=1"), Write("c=3")}));
    EXPECT_EQ(Beginning("[", lines), Lines{"[0] Failed: stoi argument out of range error code: -2147467259"});
}

/// Each call that can fail, and what is then left of the trace and of the writes.
struct FailingCall {
    const char* call;
    Lines trace;
    Lines writes;
};

TEST_F(Responses, EndABlockEarlyAndWithoutAWordWhereTheRuntimeFails) {
    BringUpWith(L"parse,trace");
    ExchangeContent content = kRedirect;
    content.responseHeaders = {{L"Set-Cookie", L"a=1"}, {L"Set-Cookie", L"b=2"}};
    const std::string first = "[0] Response 302 received for GET: http://server/login";
    const Lines requestBlock = {"[0] Request headers:", "[0] Accept: */*", "[0] Cookie: a=1",
                                "[0] End of headers"};
    const Lines emptyRequestBlock = {"[0] Request headers:", "[0] End of headers"};
    const Lines responseBlock = {"[0] Response headers:", "[0] Set-Cookie: a=1", "[0] Set-Cookie: b=2",
                                 "[0] End of headers"};
    const Lines emptyResponseBlock = {"[0] Response headers:", "[0] End of headers"};
    const Lines oneOfRequest = {"[0] Request headers:", "[0] Accept: */*", "[0] End of headers"};
    const Lines oneOfResponse = {"[0] Response headers:", "[0] Set-Cookie: a=1", "[0] End of headers"};
    const Lines receivedA = {"[0] Cookie received: a=1; domain=; path=; session; samesite=1"};
    const Lines received =
        InTurn({receivedA, {"[0] Cookie received: b=2; domain=; path=; session; samesite=1"}});
    const Lines both = {Write("a=1"), Write("b=2")};
    const FailingCall table[] = {
        {"args.get_Request",
         InTurn({{"[0] Response 302 received for : "}, emptyRequestBlock, responseBlock}),
         {}},
        {"args.get_Response",
         InTurn({{"[0] Response 0 received for GET: http://server/login"}, requestBlock, emptyResponseBlock}),
         {}},
        {"response.get_StatusCode",
         InTurn({{"[0] Response 0 received for GET: http://server/login"},
                 requestBlock,
                 responseBlock,
                 received}),
         both},
        {"request.get_Uri",
         InTurn({{"[0] Response 302 received for GET: "}, requestBlock, responseBlock}),
         {}},
        {"request.get_Method",
         InTurn({{"[0] Response 302 received for : http://server/login"},
                 requestBlock,
                 responseBlock,
                 received}),
         both},
        {"request.get_Headers", InTurn({{first}, emptyRequestBlock, responseBlock, received}), both},
        {"request headers.GetIterator", InTurn({{first}, emptyRequestBlock, responseBlock, received}), both},
        {"request headers iterator.get_HasCurrentHeader",
         InTurn({{first}, emptyRequestBlock, responseBlock, received}), both},
        {"request headers iterator.GetCurrentHeader 1",
         InTurn({{first}, oneOfRequest, responseBlock, received}), both},
        {"request headers iterator.MoveNext 1", InTurn({{first}, oneOfRequest, responseBlock, received}),
         both},
        {"response.get_Headers", InTurn({{first}, requestBlock, emptyResponseBlock}), {}},
        {"response headers.GetIterator", InTurn({{first}, requestBlock, emptyResponseBlock}), {}},
        {"response headers iterator.get_HasCurrentHeader",
         InTurn({{first}, requestBlock, emptyResponseBlock}),
         {}},
        {"response headers iterator.GetCurrentHeader 0",
         InTurn({{first}, requestBlock, emptyResponseBlock}),
         {}},
        {"response headers iterator.GetCurrentHeader 1",
         InTurn({{first}, requestBlock, oneOfResponse, receivedA}),
         {Write("a=1")}},
        {"response headers iterator.MoveNext 1",
         InTurn({{first}, requestBlock, oneOfResponse, receivedA}),
         {Write("a=1")}},
    };
    for (const FailingCall& failing : table) {
        runtime.script.answers = {{failing.call, E_FAIL}};
        const Lines lines = Receive(content);
        EXPECT_EQ(Beginning("[", lines), failing.trace) << failing.call;
        EXPECT_EQ(Beginning("InternetSetCookieEx2 ", lines), failing.writes) << failing.call;
    }
}

} // namespace
} // namespace kelda
