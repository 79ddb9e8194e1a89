// Headers as they were on the wire, out of what Chromium makes of them.
#include <gtest/gtest.h>

#include "testbed/chromium/header_text.h"

namespace testbed::chromium {
namespace {

TEST(HeaderText, KeepsTheOrderTheCaseAndEveryOccurrence) {
    const Json object = {
        {"Content-Length", "1"}, {"Set-Cookie", "a=1\nb=2"}, {"X-Empty", ""}, {"set-cookie", "c=3"}};
    EXPECT_EQ(HeadersOnTheWire(object, "HTTP/1.1 200 OK\r\nSet-Cookie: a=1\r\nX-Empty:\r\nset-cookie: c=3\r\n"
                                       "Set-Cookie : b=2\r\nContent-Length: 1\r\n\r\n"),
              (Headers{{"Set-Cookie", "a=1"},
                       {"X-Empty", ""},
                       {"set-cookie", "c=3"},
                       {"Set-Cookie", "b=2"},
                       {"Content-Length", "1"}}));
}

TEST(HeaderText, DoesWithoutTheText) {
    EXPECT_EQ(HeadersOnTheWire({{"B", "2"}, {"A", "1\n\n3"}}, {}),
              (Headers{{"A", "1"}, {"A", ""}, {"A", "3"}, {"B", "2"}}));
    EXPECT_TRUE(HeadersOnTheWire(Json::object(), "HTTP/1.1 200\r\n\r\n").empty());
}

TEST(HeaderText, TakesNoLineThatIsNoHeader) {
    EXPECT_EQ(
        HeadersOnTheWire({{"A", "1 2"}}, "HTTP/1.1 200 A: 1\r\nno colon\r\n: no name\r\nA: 1\r\n 2\r\nB: 3"),
        (Headers{{"A", "1 2"}}));
}

TEST(HeaderText, ReadsBytesAsUtf8IfTheyAre) {
    // As Chromium shows each byte: the Euro sign in UTF-8, then a small a with two dots in Latin text, and then those
    // bytes that Latin text has no character for.
    const Json object = {
        {"A", "1\xC3\xA2\xE2\x80\x9A\xC2\xAC"}, {"B", "\xC3\xA4"}, {"C", "\xC2\x81\xC2\x9D"}};
    EXPECT_EQ(HeadersOnTheWire(object, {}),
              (Headers{{"A", "1\xE2\x82\xAC"}, {"B", "\xC3\xA4"}, {"C", "\xC2\x81\xC2\x9D"}}));
}

TEST(HeaderText, LosesNothingWhereTheTextHasLostALineEnd) {
    const Json object = {{"A", "\xC3\xA4"}, {"B", "2"}, {"C", "3"}, {"Set-Cookie", "a=\xC3\xA4\nb=2\nc=3"}};
    EXPECT_EQ(HeadersOnTheWire(
                  object, "HTTP/1.1 200 OK\r\nSet-Cookie: a=Set-Cookie: b=2\r\nC: 3\r\nSet-Cookie: c=3\r\n"
                          "A: B: 2\r\n\r\n"),
              (Headers{{"Set-Cookie", "a=\xC3\xA4"},
                       {"C", "3"},
                       {"Set-Cookie", "b=2"},
                       {"A", "\xC3\xA4"},
                       {"B", "2"},
                       {"Set-Cookie", "c=3"}}));
}

TEST(HeaderText, ReplacesHeadersOfTheSameNameWhateverItsCase) {
    Headers headers = {{"Accept", "1"}, {"B", "2"}};
    Replace(headers, {{"accept", "3"}, {"C", "4"}});
    EXPECT_EQ(headers, (Headers{{"B", "2"}, {"accept", "3"}, {"C", "4"}}));
}

} // namespace
} // namespace testbed::chromium
