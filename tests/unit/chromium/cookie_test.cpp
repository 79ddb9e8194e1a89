// Cookies: set, read and deleted, and the profiles that they belong to.
#include <algorithm>
#include <ctime>
#include <optional>

#include "tests/unit/chromium/chromium_test.h"

namespace chromium_test {
namespace {

using test_support::HeaderOf;

class Cookies : public ChromiumTest {
  protected:
    Cookies() {
        site_.Add("/page", "here");
        site_.Add("/sets", "set",
                  "Set-Cookie: session=1; Path=/sets; HttpOnly\r\nSet-Cookie: lasting=2; Max-Age=1000; "
                  "SameSite=Strict\r\n");
    }

    static std::vector<Cookie> Read(const std::function<void(Page::CookiesRead)>& ask) {
        const auto cookies = std::make_shared<std::optional<std::vector<Cookie>>>();
        ask([cookies](auto read) { *cookies = std::move(read); });
        EXPECT_TRUE(PumpUntil([&] { return cookies->has_value(); }));
        auto sorted = cookies->value_or(std::vector<Cookie>());
        std::ranges::sort(sorted, {}, &Cookie::name);
        return sorted;
    }
    std::vector<Cookie> Get(const std::string& path, Page* page = nullptr) {
        return Read([&](auto read) {
            (page == nullptr ? page_.get() : page)->GetCookies({site_.Url(path)}, std::move(read));
        });
    }
    std::vector<Cookie> GetAll() {
        return Read([&](auto read) { page_->GetAllCookies(std::move(read)); });
    }
    bool Set(const Cookie& cookie) {
        const auto taken = std::make_shared<std::optional<bool>>();
        page_->SetCookie(cookie, [taken](bool success) { *taken = success; });
        EXPECT_TRUE(PumpUntil([&] { return taken->has_value(); }));
        return taken->value_or(false);
    }
    static Cookie Loopback(const std::string& name) { return {name, "value", "127.0.0.1"}; }
};

TEST_F(Cookies, OfAServerAreReadWithAllThatTheyAre) {
    Visit(*page_, client_, site_.Url("/sets"));
    const auto cookies = Get("/sets");
    ASSERT_EQ(cookies.size(), 2U);
    EXPECT_EQ(cookies[0].name, "lasting");
    EXPECT_EQ(cookies[0].value, "2");
    EXPECT_EQ(cookies[0].domain, "127.0.0.1");
    EXPECT_EQ(cookies[0].path, "/");
    EXPECT_NEAR(cookies[0].expires, static_cast<double>(std::time(nullptr)) + 1000, 60);
    EXPECT_EQ(cookies[0].sameSite, SameSite::Strict);
    EXPECT_FALSE(cookies[0].httpOnly);
    EXPECT_EQ(cookies[1].name, "session");
    EXPECT_EQ(cookies[1].path, "/sets");
    EXPECT_EQ(cookies[1].expires, -1);
    EXPECT_EQ(cookies[1].sameSite, SameSite::Unspecified);
    EXPECT_TRUE(cookies[1].httpOnly);
    EXPECT_EQ(Get("/page").size(), 1U);
}

TEST_F(Cookies, SetRightBeforeANavigationAreSentWithIt) {
    page_->SetCookie(Loopback("fresh"));
    Visit(*page_, client_, site_.Url("/page"));
    ASSERT_EQ(site_.Requests("/page").size(), 1U);
    EXPECT_EQ(HeaderOf(site_.Requests("/page")[0], "Cookie"), "fresh=value");
}

TEST_F(Cookies, AreSetForAHostOrForItsSubdomains) {
    EXPECT_TRUE(Set({"host", "1", "host.test"}));
    EXPECT_TRUE(Set({"domain", "2", ".host.test"}));
    const auto cookies = GetAll();
    ASSERT_EQ(cookies.size(), 2U);
    EXPECT_EQ(cookies[0].domain, ".host.test");
    EXPECT_EQ(cookies[1].domain, "host.test");
}

TEST_F(Cookies, ThatChromiumRefusesAreReportedAsNotTaken) {
    Cookie cookie = Loopback("refused");
    cookie.sameSite = SameSite::None;
    EXPECT_FALSE(Set(cookie));
    EXPECT_TRUE(Get("/page").empty());
}

TEST_F(Cookies, AreDeletedByUrlByDomainOrAllTogether) {
    for (const char* name : {"one", "two", "three", "four"}) {
        ASSERT_TRUE(Set(Loopback(name)));
    }
    page_->DeleteCookies("one", site_.Url("/page"));
    page_->DeleteCookies("two", "127.0.0.1", "/");
    page_->DeleteCookies("three", "127.0.0.1", "/elsewhere");
    EXPECT_EQ(Get("/page").size(), 2U);
    page_->DeleteAllCookies();
    EXPECT_TRUE(GetAll().empty());
}

TEST_F(Cookies, PastTheirTimeAreDeleted) {
    ASSERT_TRUE(Set(Loopback("old")));
    Cookie past = Loopback("old");
    past.expires = 1;
    Set(past);
    EXPECT_TRUE(Get("/page").empty());
}

TEST_F(Cookies, OfAPageInPrivateAreItsOwn) {
    ASSERT_TRUE(Set(Loopback("shared")));
    RecordingClient others;
    RecordingClient privates;
    const auto other = CreatePage(*browser_, others);
    const auto inPrivate = CreatePage(*browser_, privates, true);
    ASSERT_NE(other, nullptr);
    ASSERT_NE(inPrivate, nullptr);
    EXPECT_EQ(Get("/page", other.get()).size(), 1U);
    EXPECT_TRUE(Get("/page", inPrivate.get()).empty());
    Visit(*inPrivate, privates, site_.Url("/sets"));
    EXPECT_EQ(Get("/sets", inPrivate.get()).size(), 2U);
    EXPECT_EQ(Get("/sets").size(), 1U);
}

TEST_F(Cookies, ThatLastAreThereInTheNextBrowserOfTheFolder) {
    ASSERT_NO_FATAL_FAILURE(UseBrowserOfItsOwn());
    Cookie lasting = Loopback("lasting");
    lasting.expires = static_cast<double>(std::time(nullptr)) + 1000;
    ASSERT_TRUE(Set(lasting));
    ASSERT_TRUE(Set(Loopback("session")));
    ASSERT_NO_FATAL_FAILURE(UseBrowserOfItsOwn());
    const auto cookies = GetAll();
    ASSERT_EQ(cookies.size(), 1U);
    EXPECT_EQ(cookies[0].name, "lasting");
}

} // namespace
} // namespace chromium_test
