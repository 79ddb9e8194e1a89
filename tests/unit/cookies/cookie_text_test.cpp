// The lines that the trace shows of cookies, and the date in them.
#include "cookies/cookie_text.h"

#include <limits>
#include <string>
#include <utility>

#include <gtest/gtest.h>

namespace kelda {
namespace {

CookieRecord Named(const wchar_t* name, const wchar_t* value) {
    CookieRecord cookie;
    cookie.name = name;
    cookie.value = value;
    return cookie;
}

CookieRecord Expiring(double expires, int session) {
    CookieRecord cookie;
    cookie.expires = expires;
    cookie.session = session;
    return cookie;
}

TEST(RecordLine, ADefaultRecordShowsDomainPathSessionAndSameSite) {
    EXPECT_EQ(ToSetCookieString({}), L"=; domain=; path=; session; samesite=1");
    EXPECT_EQ(ToSetCookieString(Named(L"SID", L"abc")), L"SID=abc; domain=; path=; session; samesite=1");
}

TEST(RecordLine, EverythingHasItsPlace) {
    CookieRecord cookie = Named(L"SID", L"abc");
    cookie.path = L"/";
    cookie.expires = 1623233894;
    cookie.httpOnly = 1;
    cookie.sameSite = CookieSameSite::Strict;
    cookie.secure = 1;
    cookie.session = 0;
    EXPECT_EQ(ToSetCookieString(cookie), L"SID=abc; domain=; path=/; httponly; secure; samesite=2; "
                                         L"expires=Wed, 9 Jun 2021 10:18:14 GMT");
}

TEST(RecordLine, TextsAreShownAsTheyAre) {
    CookieRecord cookie = Named(L"\u00fc;=", L"\" \"");
    cookie.domain = L".Example.COM";
    cookie.path = L"/\U0001f36a";
    EXPECT_EQ(ToSetCookieString(cookie),
              L"\u00fc;==\" \"; domain=.Example.COM; path=/\U0001f36a; session; samesite=1");
}

TEST(RecordLine, TheEpochIsAnExpiryAndNoSession) {
    EXPECT_EQ(ToSetCookieString(Expiring(0.0, 0)),
              L"=; domain=; path=; samesite=1; expires=Thu, 1 Jan 1970 00:00:00 GMT");
}

TEST(RecordLine, TheSessionFlagDecidesOnSessionAndTheExpiryOnExpires) {
    EXPECT_EQ(ToSetCookieString(Expiring(0.0, 1)),
              L"=; domain=; path=; session; samesite=1; expires=Thu, 1 Jan 1970 00:00:00 GMT");
    EXPECT_EQ(ToSetCookieString(Expiring(-1.0, 0)), L"=; domain=; path=; samesite=1");
}

TEST(RecordLine, AnyNonZeroFlagIsSet) {
    CookieRecord cookie;
    cookie.httpOnly = -1;
    cookie.secure = 2;
    cookie.session = 256;
    EXPECT_EQ(ToSetCookieString(cookie), L"=; domain=; path=; httponly; secure; session; samesite=1");
}

TEST(RecordLine, SameSiteIsANumberEvenWhereItIsNoPolicy) {
    for (const auto& [sameSite, shown] :
         {std::pair{0, L"0"}, {1, L"1"}, {2, L"2"}, {-7, L"-7"}, {12345678, L"12345678"}}) {
        CookieRecord cookie;
        cookie.sameSite = static_cast<CookieSameSite>(sameSite);
        EXPECT_EQ(ToSetCookieString(cookie), std::wstring(L"=; domain=; path=; session; samesite=") + shown);
    }
}

TEST(RecordLine, ExpiriesAreTruncatedAndStayWithinTheSystemsDates) {
    using Double = std::numeric_limits<double>;
    const std::pair<double, const wchar_t*> expiries[] = {
        {1623233894.9, L"Wed, 9 Jun 2021 10:18:14 GMT"},
        {-0.5, L"Thu, 1 Jan 1970 00:00:00 GMT"},
        {-2, L"Wed, 31 Dec 1969 23:59:58 GMT"},
        {253402300799, L"Fri, 31 Dec 9999 23:59:59 GMT"},
        {-11644473600, L"Mon, 1 Jan 1601 00:00:01 GMT"},
        {-1e18, L"Mon, 1 Jan 1601 00:00:01 GMT"},
        {Double::quiet_NaN(), L"Mon, 1 Jan 1601 00:00:01 GMT"},
        {1e300, L"Fri, 31 Dec 30827 23:59:59 GMT"},
        {Double::infinity(), L"Fri, 31 Dec 30827 23:59:59 GMT"},
    };
    for (const auto& [expires, date] : expiries) {
        EXPECT_EQ(ToSetCookieString(Expiring(expires, 0)),
                  std::wstring(L"=; domain=; path=; samesite=1; expires=") + date);
    }
}

TEST(CookieDate, DayAndYearAreNotPaddedButTheTimeIs) {
    const std::pair<SYSTEMTIME, const wchar_t*> dates[] = {
        {{2021, 6, 3, 9, 10, 18, 14, 999}, L"Wed, 9 Jun 2021 10:18:14 GMT"},
        {{7, 1, 0, 31, 1, 2, 3, 0}, L"Sun, 31 Jan 7 01:02:03 GMT"},
        {{30827, 12, 6, 1, 0, 0, 0, 0}, L"Sat, 1 Dec 30827 00:00:00 GMT"},
    };
    for (const auto& [time, text] : dates) {
        EXPECT_EQ(FormatCookieDate(time), text);
    }
}

TEST(CookieDate, EveryWeekdayAndMonthHasItsName) {
    const wchar_t* weekdays[] = {L"Sun", L"Mon", L"Tue", L"Wed", L"Thu", L"Fri", L"Sat"};
    for (WORD day = 0; day < 7; ++day) {
        EXPECT_EQ(FormatCookieDate({2000, 1, day, 1, 0, 0, 0, 0}),
                  std::wstring(weekdays[day]) + L", 1 Jan 2000 00:00:00 GMT");
    }
    const wchar_t* months[] = {L"Jan", L"Feb", L"Mar", L"Apr", L"May", L"Jun",
                               L"Jul", L"Aug", L"Sep", L"Oct", L"Nov", L"Dec"};
    for (WORD month = 1; month <= 12; ++month) {
        EXPECT_EQ(FormatCookieDate({2000, month, 0, 1, 0, 0, 0, 0}),
                  std::wstring(L"Sun, 1 ") + months[month - 1] + L" 2000 00:00:00 GMT");
    }
}

TEST(CookieDate, FieldsOutOfRangeAreShownAsTheyAreAndHaveNoName) {
    EXPECT_EQ(FormatCookieDate({}), L"Sun, 0  0 00:00:00 GMT");
    EXPECT_EQ(FormatCookieDate({2000, 13, 7, 1, 0, 0, 0, 0}), L", 1  2000 00:00:00 GMT");
    EXPECT_EQ(FormatCookieDate({65535, 65535, 65535, 65535, 65535, 65535, 65535, 65535}),
              L", 65535  65535 65535:65535:65535 GMT");
}

class StoreLine : public ::testing::Test {
  protected:
    std::wstring name = L"SID";
    std::wstring value = L"abc";
    std::wstring domain = L"example.com";
    std::wstring path = L"/";
    INTERNET_COOKIE2 cookie{name.data(), value.data(), domain.data(), path.data(), 0, {}, FALSE};
};

TEST_F(StoreLine, ShowsTheFlagsInHexadecimalWithoutLeadingZeros) {
    const std::pair<DWORD, const wchar_t*> flags[] = {
        {0, L"0x0"}, {0x2001, L"0x2001"}, {0x20abcd, L"0x20abcd"}, {0xFFFFFFFF, L"0xffffffff"}};
    for (const auto& [number, shown] : flags) {
        cookie.dwFlags = number;
        EXPECT_EQ(ToStoreLine(cookie), std::wstring(L"SID=abc; domain=example.com; path=/; flags=") + shown);
    }
}

TEST_F(StoreLine, ShowsTheExpiryOnlyWhereItIsSet) {
    cookie.dwFlags = 0x2001;
    cookie.ftExpires = {0xc1a2f700, 0x01d75d18};
    EXPECT_EQ(ToStoreLine(cookie), L"SID=abc; domain=example.com; path=/; flags=0x2001");
    cookie.fExpiresSet = TRUE;
    EXPECT_EQ(ToStoreLine(cookie), L"SID=abc; domain=example.com; path=/; flags=0x2001; "
                                   L"Expires=Wed, 9 Jun 2021 10:18:14 GMT");
    cookie.fExpiresSet = -1;
    EXPECT_TRUE(ToStoreLine(cookie).ends_with(L"; Expires=Wed, 9 Jun 2021 10:18:14 GMT"));
}

TEST_F(StoreLine, ADateThatTheSystemDoesNotTakeIsShownWithoutValues) {
    cookie.ftExpires = {0xFFFFFFFF, 0xFFFFFFFF};
    cookie.fExpiresSet = TRUE;
    EXPECT_TRUE(ToStoreLine(cookie).ends_with(L"; Expires=Sun, 0  0 00:00:00 GMT"));
}

TEST_F(StoreLine, AMissingTextIsEmpty) {
    EXPECT_EQ(ToStoreLine({}), L"=; domain=; path=; flags=0x0");
}

} // namespace
} // namespace kelda
