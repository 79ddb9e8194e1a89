// Cookies as servers write them, and URLs, without a browser.
#include "testbed/legacy_control/cookie_text.h"

#include <gtest/gtest.h>

namespace legacy_control {
namespace {

TEST(CookieText, IsANameAndAValue) {
    const auto cookie = ReadCookieText(" a = b=c ");
    ASSERT_TRUE(cookie);
    EXPECT_EQ(cookie->name, "a");
    EXPECT_EQ(cookie->value, "b=c");
    EXPECT_FALSE(cookie->httpOnly || cookie->secure || cookie->sameSiteNone || cookie->maxAge);
}

TEST(CookieText, HasAttributesInAnyCase) {
    const auto cookie = ReadCookieText("a=b; DOMAIN=.Example.COM;path=/docs ; Max-Age=5; httponly;Secure; "
                                       "samesite=NONE; expires=Thu, 01 Jan 1970 00:00:01 GMT");
    ASSERT_TRUE(cookie);
    EXPECT_EQ(cookie->domain, "example.com");
    EXPECT_EQ(cookie->path, "/docs");
    EXPECT_EQ(cookie->maxAge, 5);
    EXPECT_EQ(cookie->expires, "Thu, 01 Jan 1970 00:00:01 GMT");
    EXPECT_TRUE(cookie->httpOnly && cookie->secure && cookie->sameSiteNone);
}

TEST(CookieText, WithoutANameIsNone) {
    EXPECT_FALSE(ReadCookieText("value"));
    EXPECT_FALSE(ReadCookieText("=value"));
    EXPECT_FALSE(ReadCookieText(""));
}

TEST(CookieText, LeavesOutWhatMeansNothing) {
    const auto cookie = ReadCookieText("a=b; Path=relative; Max-Age=soon; ; Else=1");
    ASSERT_TRUE(cookie);
    EXPECT_EQ(cookie->path, "");
    EXPECT_FALSE(cookie->maxAge);
}

TEST(Url, HasAHostAndAPath) {
    const auto parts = TakeApart("https://user@Example.com:8080/a/b?c=/d#e");
    ASSERT_TRUE(parts);
    EXPECT_EQ(parts->scheme, "https");
    EXPECT_EQ(parts->host, "example.com");
    EXPECT_EQ(parts->path, "/a/b");
}

TEST(Url, WithoutAPathHasTheRoot) {
    EXPECT_EQ(TakeApart("http://host?query")->path, "/");
    EXPECT_EQ(TakeApart("http://host")->path, "/");
}

TEST(Url, OfOtherSchemesIsNone) {
    EXPECT_FALSE(TakeApart("about:blank"));
    EXPECT_FALSE(TakeApart("file:///a"));
    EXPECT_FALSE(TakeApart("http:relative"));
}

TEST(Url, GivesACookieItsPath) {
    EXPECT_EQ(DefaultPath({"http", "host", "/a/b"}), "/a");
    EXPECT_EQ(DefaultPath({"http", "host", "/a/"}), "/a");
    EXPECT_EQ(DefaultPath({"http", "host", "/a"}), "/");
}

} // namespace
} // namespace legacy_control
