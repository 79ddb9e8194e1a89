// Max-Age and Expires: what they accept, what they trace, and which of them decides.
#include <limits>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "du/string_utilities.h"
#include "parsed_cookie.h"

using namespace std::string_literals;
using test_support::Lines;

namespace kelda {
namespace {

constexpr double kUnchanged = 77;

class CookieDates : public ParsedCookieTest {
  protected:
    static double AfterMaxAge(const std::wstring& text) {
        CookieRecord cookie;
        cookie.expires = kUnchanged;
        ParseMaxAge(cookie, text);
        return cookie.expires;
    }
    static double AfterExpires(const std::wstring& text) {
        CookieRecord cookie;
        cookie.expires = kUnchanged;
        ParseExpires(cookie, text);
        return cookie.expires;
    }

    /// That each text changes nothing and is traced, with colons and hyphens as blanks.
    static void ExpectInvalidExpires(const std::vector<std::wstring>& texts) {
        for (const std::wstring& text : texts) {
            EXPECT_EQ(AfterExpires(text), kUnchanged) << text;
            std::string traced = du::WideStrToUtf8(text);
            for (char& c : traced) {
                c = c == ':' || c == '-' ? ' ' : c;
            }
            EXPECT_EQ(TakeTranscript(), Lines{"[0] Invalid Expires: " + traced});
        }
    }

    template <typename Exception>
    static void ExpectError(const std::wstring& expires, const char* what) {
        CookieRecord cookie;
        cookie.expires = kUnchanged;
        try {
            ParseExpires(cookie, expires);
            ADD_FAILURE() << what << " was expected";
        } catch (const Exception& exception) {
            EXPECT_STREQ(exception.what(), what);
        }
        EXPECT_EQ(cookie.expires, kUnchanged);
        EXPECT_EQ(TakeTranscript(), Lines{});
    }
};

TEST_F(CookieDates, MaxAgeBeforeExpiresDecides) {
    const CookieRecord cookie = Parsed(L"a=b; Max-Age=60; Expires=Wed, 09 Jun 2021 10:18:14 GMT");
    EXPECT_EQ(cookie.expires, kNow + 60);
    EXPECT_EQ(cookie.session, 0);
}

TEST_F(CookieDates, MaxAgeAfterExpiresDecidesToo) {
    const CookieRecord cookie = Parsed(L"a=b; Expires=Thu, 10 Jun 2021 10:18:14 GMT; Max-Age=60");
    EXPECT_EQ(cookie.expires, kNow + 60);
    EXPECT_EQ(cookie.session, 0);
}

TEST_F(CookieDates, ExpiresAfterAnInvalidMaxAgeIsSkipped) {
    const CookieRecord cookie = Parsed(L"a=b; Max-Age=abc; Expires=Wed, 09 Jun 2021 10:18:14 GMT");
    EXPECT_EQ(Show(cookie), L"[a]=[b]");
    EXPECT_EQ(TakeTranscript(), Lines{"[0] Invalid Max-Age: abc"});
}

TEST_F(CookieDates, ASkippedExpiresIsNotEvenRead) {
    EXPECT_EQ(Parsed(L"a=b; Max-Age; Expires=nonsense; Expires=Wed, x Jun 2021 10:18:14 GMT").expires, -1.0);
    EXPECT_EQ(TakeTranscript(), Lines{"[0] Invalid Max-Age: "});
}

TEST_F(CookieDates, AnInvalidMaxAgeLeavesWhatExpiresHasSet) {
    const CookieRecord cookie = Parsed(L"a=b; Expires=Thu, 01 Jan 1970 00:00:07 GMT; Max-Age=x");
    EXPECT_EQ(Show(cookie), L"[a]=[b] expires=7.000000 session=0");
    EXPECT_EQ(TakeTranscript(), Lines{"[0] Invalid Max-Age: x"});
}

TEST_F(CookieDates, TheLastMaxAgeAndTheLastExpiresWin) {
    EXPECT_EQ(Parsed(L"a=b; Max-Age=60; max-age=61").expires, kNow + 61);
    EXPECT_EQ(Parsed(L"a=b; Max-Age=60; Max-Age=x").expires, kNow + 60);
    EXPECT_EQ(
        Parsed(L"a=b; Expires=Thu, 01 Jan 1970 00:00:01 GMT; Expires=Thu, 01 Jan 1970 00:00:02 GMT").expires,
        2.0);
    EXPECT_EQ(Parsed(L"a=b; Expires=Thu, 01 Jan 1970 00:00:01 GMT; Expires=x").expires, 1.0);
}

TEST_F(CookieDates, ANegativeMaxAgeIsAnInstantInThePast) {
    const CookieRecord cookie = Parsed(L"a=b; Max-Age=-1");
    EXPECT_EQ(cookie.expires, kNow - 1);
    EXPECT_EQ(cookie.session, 0);
}

TEST_F(CookieDates, ExpiresAtTheEpochIsNoSessionCookie) {
    const CookieRecord cookie = Parsed(L"a=b; expires=Thu, 01 Jan 1970 00:00:00 GMT");
    EXPECT_EQ(cookie.expires, 0.0);
    EXPECT_EQ(cookie.session, 0);
}

TEST_F(CookieDates, AnEarlierExpiryThanThatOfASessionIsNoSessionCookie) {
    EXPECT_EQ(Show(Parsed(L"a=b; Expires=Wed, 31 Dec 1969 23:59:58 GMT")),
              L"[a]=[b] expires=-2.000000 session=0");
}

TEST_F(CookieDates, TheSecondBeforeTheEpochIsTheNumberOfNoExpiry) {
    EXPECT_EQ(Show(Parsed(L"a=b; Expires=Wed, 31 Dec 1969 23:59:59 GMT")), L"[a]=[b]");
    EXPECT_EQ(Show(Parsed(L"a=b; Max-Age=-1623233895")), L"[a]=[b]");
    EXPECT_EQ(TakeTranscript(), Lines{});
}

TEST_F(CookieDates, TheSessionFlagFollowsTheExpiryWhateverItWas) {
    CookieRecord cookie;
    cookie.session = 0;
    EXPECT_TRUE(ParseSetCookie(cookie, L"a=b"));
    EXPECT_EQ(cookie.session, 1);
    cookie.expires = 5;
    EXPECT_TRUE(ParseSetCookie(cookie, L"a=b"));
    EXPECT_EQ(cookie.session, 0);
}

TEST_F(CookieDates, MaxAgeTakesTheNumberAtTheStart) {
    const std::pair<std::wstring, double> texts[] = {
        {L"0", 0},
        {L"60", 60},
        {L"60abc", 60},
        {L"+5", 5},
        {L"  7", 7},
        {L"\r\n\v8", 8},
        {L"0x10", 0},
        {L"1.9", 1},
        {L"010", 10},
        {L"-0", 0},
        {L"60 ", 60},
        {L"1,000", 1},
        {L"2147483648", 2147483648.0},
        {L"-3600", -3600},
        {L"6\0007"s, 6},
    };
    for (const auto& [text, seconds] : texts) {
        EXPECT_EQ(AfterMaxAge(text), kNow + seconds) << text;
    }
    EXPECT_EQ(TakeTranscript(), Lines{});
}

TEST_F(CookieDates, AMaxAgeThatIsNoNumberOrTooGreatIsTracedAndChangesNothing) {
    for (const std::wstring text :
         {L"", L"abc", L"-", L"+", L"--1", L"- 1", L"\"60\"", L"x60", L"\u0661", L"9223372036854775808",
          L"-9223372036854775809", L"99999999999999999999"}) {
        EXPECT_EQ(AfterMaxAge(text), kUnchanged) << text;
        EXPECT_EQ(TakeTranscript(), Lines{"[0] Invalid Max-Age: " + du::WideStrToUtf8(text)});
    }
}

TEST_F(CookieDates, AMaxAgeAtTheLimitsOf64BitsDoesNotWrap) {
    EXPECT_EQ(AfterMaxAge(L"9223372036854775807"), 9223372036854775808.0 + kNow);
    EXPECT_EQ(AfterMaxAge(L"-9223372036854775808"), -9223372036854775808.0 + kNow);
    // The exact sum is rounded once.
    EXPECT_EQ(AfterMaxAge(L"9007199254740993"), static_cast<double>(9007199254740993 + 1623233894));

    clock = {0, 0};
    EXPECT_EQ(AfterMaxAge(L"-9223372036854775808"), -9223372036854775808.0 - 11644473600.0);
    EXPECT_EQ(AfterMaxAge(L"9223372036854775807"), static_cast<double>(9223372036854775807 - 11644473600));
    EXPECT_EQ(TakeTranscript(), Lines{});
}

TEST_F(CookieDates, TheClockIsTruncatedTowardTheEpoch) {
    clock = {0xd53e7fff, 0x019db1de}; // a 100-nanosecond interval before 1970
    EXPECT_EQ(AfterMaxAge(L"3"), 3.0);
}

TEST_F(CookieDates, ATracedTextIsUtf8EvenWhereItWasNoUtf16) {
    EXPECT_EQ(AfterMaxAge(L"\u00fc\U0001f36a"), kUnchanged);
    EXPECT_EQ(AfterMaxAge(std::wstring(L"a") + wchar_t{0xd83c} + L"b"), kUnchanged);
    EXPECT_EQ(AfterExpires(std::wstring(1, wchar_t{0xdf6a}) + L"-:"), kUnchanged);
    EXPECT_EQ(TakeTranscript(), (Lines{"[0] Invalid Max-Age: \xc3\xbc\xf0\x9f\x8d\xaa",
                                       "[0] Invalid Max-Age: a\xef\xbf\xbd"
                                       "b",
                                       "[0] Invalid Expires: \xef\xbf\xbd  "}));
}

TEST_F(CookieDates, ExpiresWithHyphensIsAccepted) {
    EXPECT_EQ(Parsed(L"a=b; Expires=Wed, 09-Jun-2021 10:18:14 GMT").expires, 1623233894.0);
    EXPECT_EQ(Parsed(L"a=b; Expires=Wed, 09 Jun 2021 10:18:14 GMT").expires, 1623233894.0);
    EXPECT_EQ(TakeTranscript(), Lines{});
}

TEST_F(CookieDates, ExpiresInUtcIsTracedWithItsColonsReplaced) {
    EXPECT_EQ(Show(Parsed(L"a=b; Expires=Wed, 09 Jun 2021 10:18:14 UTC")), L"[a]=[b]");
    EXPECT_EQ(TakeTranscript(), Lines{"[0] Invalid Expires: Wed, 09 Jun 2021 10 18 14 UTC"});
}

TEST_F(CookieDates, ExpiresIsReadWordByWord) {
    const std::pair<const wchar_t*, double> dates[] = {
        {L"Wed, 9 jUN 2021 10:18:14 GMT", 1623233894},
        {L"anything 09, JUN 2021x +10 018 14.9 GMT", 1623233894},
        {L"  Wed,\t09\nJun\r2021\v10\f18 : 14 GMT\t", 1623233894},
        {L"-Wed:09:Jun:2021:10-18-14-GMT-", 1623233894},
        {L"Mon, 01 Jan 1601 00:00:00 GMT", -11644473600},
        {L"Sat, 01 Jan 2000 00:00:00 GMT", 946684800},
        {L"Thu, 29 Feb 2024 00:00:00 GMT", 1709164800},
        {L"Tue, 19 Jan 2038 03:14:08 GMT", 2147483648},
        {L"Fri, 31 Dec 9999 23:59:59 GMT", 253402300799},
        {L"Fri, 31 Dec 30827 23:59:59 GMT", 910670515199},
    };
    for (const auto& [text, seconds] : dates) {
        EXPECT_EQ(AfterExpires(text), seconds) << text;
    }
    EXPECT_EQ(TakeTranscript(), Lines{});
}

TEST_F(CookieDates, EveryMonthHasItsName) {
    const std::pair<const wchar_t*, int> months[] = {
        {L"jan", 0},   {L"FEB", 31},  {L"Mar", 59},  {L"Apr", 90},  {L"May", 120}, {L"Jun", 151},
        {L"Jul", 181}, {L"Aug", 212}, {L"Sep", 243}, {L"Oct", 273}, {L"Nov", 304}, {L"Dec", 334},
    };
    for (const auto& [name, days] : months) {
        EXPECT_EQ(AfterExpires(std::wstring(L"X 1 ") + name + L" 1970 00:00:00 GMT"), days * 86400.0) << name;
    }
}

TEST_F(CookieDates, ExpiresOfAnotherShapeIsTracedAndChangesNothing) {
    ExpectInvalidExpires({
        L"",
        L" ",
        L":-:",
        L"0",
        L"Session",
        L"09 Jun 2021 10:18:14 GMT",
        L"Wed, 09 Jun 2021 10:18:14",
        L"Wed, 09 Jun 2021 10:18 GMT",
        L"Wed, 09 Jun 2021 10:18:14 gmt",
        L"Wed, 09 Jun 2021 10:18:14 GMT.",
        L"Wed, 09 Jun 2021 10:18:14 +0000",
        L"Wed, 09 Jun 2021 10:18:14 GMT +0000",
        L"Wed, 09 Jun 2021 10:18:14 GMT-1",
        L"Wednesday, 09-Jun-21 10:18:14 PM GMT",
        L"Wed Jun  9 10:18:14 2021",
        L"2021-06-09T10:18:14Z",
        L"a b c d e f g h",
    });
}

TEST_F(CookieDates, ADateThatThereIsNotIsTracedAndChangesNothing) {
    ExpectInvalidExpires({
        L"Wed, 09 Foo 2021 10:18:14 GMT",
        L"Wed, 09 June 2021 10:18:14 GMT",
        L"Wed, 09 06 2021 10:18:14 GMT",
        L"Wed, 09 Ju\u00d1 2021 10:18:14 GMT",
        L"Wed, 00 Jun 2021 10:18:14 GMT",
        L"Wed, 31 Jun 2021 10:18:14 GMT",
        L"Wed, 32 Jul 2021 10:18:14 GMT",
        L"Tue, 30 Feb 2021 00:00:00 GMT",
        L"Wed, 09 Jun 2021 24:00:00 GMT",
        L"Wed, 09 Jun 2021 10:60:14 GMT",
        L"Wed, 09 Jun 2021 10:18:60 GMT",
        L"Wed, 09-Jun-21 10:18:14 GMT",
        L"Sun, 31 Dec 1600 23:59:59 GMT",
        L"Wed, 09 Jun 0 10:18:14 GMT",
        L"Wed, 09 Jun 65535 10:18:14 GMT",
    });
}

TEST_F(CookieDates, TheSystemDecidesWhichDatesThereAre) {
    // The last year, leap days that are none: systems differ, so it is a replaced one that refuses here.
    const test_support::ReplacedImport<struct Refuse, decltype(SystemTimeToFileTime)> refuse{
        "KERNEL32.dll", "SystemTimeToFileTime", [](const SYSTEMTIME* time, FILETIME* result) {
            for (const WORD field : {time->wYear, time->wMonth, time->wDayOfWeek, time->wDay, time->wHour,
                                     time->wMinute, time->wSecond, time->wMilliseconds}) {
                test_support::Record(std::to_string(field));
            }
            *result = {1, 1};
            return FALSE;
        }};
    EXPECT_EQ(AfterExpires(L"Thu, 29-Feb-30828 23:58:59 GMT"), kUnchanged);
    EXPECT_EQ(TakeTranscript(), (Lines{"30828", "2", "0", "29", "23", "58", "59", "0",
                                       "[0] Invalid Expires: Thu, 29 Feb 30828 23 58 59 GMT"}));
}

TEST_F(CookieDates, NumbersThatNeedMoreThan16BitsDoNotWrapIntoADate) {
    ExpectInvalidExpires({
        L"Wed, 65545 Jun 2021 10:18:14 GMT",
        L"Wed, 09 Jun 67557 10:18:14 GMT",
        L"Wed, 09 Jun 2021 65546:18:14 GMT",
        L"Wed, 09 Jun 2021 10:65554:14 GMT",
        L"Wed, 09 Jun 2021 10:18:65550 GMT",
        L"Wed, 09 Jun 2021 10:18:2147483647 GMT",
    });
}

TEST_F(CookieDates, AFieldThatIsNoNumberThrowsAnInvalidArgument) {
    for (const wchar_t* text : {L"Wed, x Jun 2021 10:18:14 GMT", L"Wed, 9 Jun y2021 10:18:14 GMT",
                                L"Wed, 9 Jun 2021 T10:18:14 GMT", L"Wed, 9 Jun 2021 10:+:14 GMT",
                                L"Wed, 9 Jun 2021 10:18:\u0664 GMT", L"Wed, Jun 9 2021 10:18:14 GMT"}) {
        ExpectError<std::invalid_argument>(text, "invalid stoi argument");
    }
}

TEST_F(CookieDates, AFieldBeyondTheRangeOfIntThrowsOutOfRange) {
    for (const wchar_t* text :
         {L"Wed, 2147483648 Jun 2021 10:18:14 GMT", L"Wed, 9 Jun 99999999999 10:18:14 GMT",
          L"Wed, 9 Jun 2021 4294967306:18:14 GMT", L"Wed, 9 Jun 2021 10:2147483648:14 GMT",
          L"Wed, 9 Jun 2021 10:18:99999999999999999999 GMT"}) {
        ExpectError<std::out_of_range>(text, "stoi argument out of range");
    }
}

TEST_F(CookieDates, AllFieldsAreConvertedFromTheDayToTheSecondBeforeTheDateIsJudged) {
    ExpectError<std::invalid_argument>(L"Wed, 99999 Foo 0 24:60:x GMT", "invalid stoi argument");
    ExpectError<std::out_of_range>(L"Wed, 2147483648 Jun x 10:18:14 GMT", "stoi argument out of range");
    ExpectError<std::invalid_argument>(L"Wed, x Jun 2147483648 10:18:14 GMT", "invalid stoi argument");
}

TEST_F(CookieDates, AnErrorLeavesTheParserAndNothingOfTheHeaderInTheRecord) {
    CookieRecord cookie;
    EXPECT_THROW(ParseSetCookie(cookie, L"a=b; Path=/; Secure; Expires=Wed, 09 Jun 2021 10:18:14 GMT; "
                                        L"Expires=Wed, x Jun 2021 10:18:14 GMT; HttpOnly"),
                 std::invalid_argument);
    EXPECT_EQ(Show(cookie), L"[]=[]");
}

TEST_F(CookieDates, AnExpiresOfAMegabyteIsTracedWhole) {
    std::wstring text;
    while (text.size() < 1 << 20) {
        text += L"a ";
    }
    ExpectInvalidExpires({text});
}

} // namespace
} // namespace kelda
