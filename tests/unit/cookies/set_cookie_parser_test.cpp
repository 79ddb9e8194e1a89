// Set-Cookie headers: name, value and the attributes but for the dates.
#include "cookies/set_cookie_parser.h"

#include <string>
#include <utility>

#include "parsed_cookie.h"

using namespace std::string_literals;
using test_support::Lines;

namespace kelda {
namespace {

struct Row {
    std::wstring header;
    std::wstring shown;
};

class SetCookie : public ParsedCookieTest {
  protected:
    template <size_t Count>
    static void ExpectParsed(const Row (&rows)[Count]) {
        for (const Row& row : rows) {
            EXPECT_EQ(Show(Parsed(row.header)), row.shown) << row.header;
        }
        EXPECT_EQ(TakeTranscript(), Lines{});
    }
};

TEST_F(SetCookie, NameAndValueAloneMakeASessionCookieThatIsLax) {
    const CookieRecord cookie = Parsed(L"SID=abc");
    EXPECT_EQ(cookie.name, L"SID");
    EXPECT_EQ(cookie.value, L"abc");
    EXPECT_EQ(cookie.domain, L"");
    EXPECT_EQ(cookie.path, L"");
    EXPECT_EQ(cookie.sameSite, CookieSameSite::Lax);
    EXPECT_EQ(cookie.secure, 0);
    EXPECT_EQ(cookie.httpOnly, 0);
    EXPECT_EQ(cookie.expires, -1.0);
    EXPECT_EQ(cookie.session, 1);
}

TEST_F(SetCookie, BlanksAndQuotesAroundTheValueAreDropped) {
    ExpectParsed({{L" SID = \"abc\" ; Path=/; HttpOnly", L"[SID]=[abc] path=/ httpOnly=1"}});
}

TEST_F(SetCookie, WithoutAnEqualsSignIsRefusedAndLeavesTheRecordAsItWas) {
    for (const wchar_t* header : {L"novalue", L"", L" ", L";", L"; Secure; HttpOnly"}) {
        CookieRecord cookie;
        cookie.name = L"before";
        cookie.expires = 5;
        cookie.session = 0;
        EXPECT_FALSE(ParseSetCookie(cookie, header)) << header;
        EXPECT_EQ(Show(cookie), L"[before]=[] expires=5.000000 session=0");
    }
}

TEST_F(SetCookie, NameOrValueMayBeEmpty) {
    ExpectParsed(
        {{L"=v", L"[]=[v]"}, {L"a=", L"[a]=[]"}, {L"=", L"[]=[]"}, {L" = ; Secure", L"[]=[] secure=1"}});
}

TEST_F(SetCookie, TheNameIsAllBeforeTheFirstEqualsSign) {
    ExpectParsed({{L"flag; a=b", L"[flag; a]=[b]"},
                  {L"; Path=/", L"[; Path]=[/]"},
                  {L"\"a\"=b", L"[\"a\"]=[b]"},
                  {L"a=b=c==", L"[a]=[b=c==]"},
                  {L"a b\t=c", L"[a b]=[c]"}});
}

TEST_F(SetCookie, AQuoteIsDroppedFromEitherEndOfTheValueAndNowhereElse) {
    ExpectParsed({
        {L"a=\"b\"", L"[a]=[b]"},
        {L"a=\"b", L"[a]=[b]"},
        {L"a=b\"", L"[a]=[b]"},
        {L"a=\"", L"[a]=[]"},
        {L"a=\"\"", L"[a]=[]"},
        {L"a=\"\"\"", L"[a]=[\"]"},
        {L"a=\"\"b\"\"", L"[a]=[\"b\"]"},
        {L"a=b\"c", L"[a]=[b\"c]"},
        {L"a=\" b \"", L"[a]=[ b ]"},
        {L"a='b'", L"[a]=['b']"},
        {L"a=\"b;c\"", L"[a]=[b]"},
        {L"a=b; Path=\"/\"; Domain=\"x\"", L"[a]=[b] domain=\"x\" path=\"/\""},
    });
}

TEST_F(SetCookie, OnlySpacesAndTabsAreBlanks) {
    ExpectParsed({
        {L"\t a \t=\t b c \t; Path = /x y ", L"[a]=[b c] path=/x y"},
        {L"a\r=\nb", L"[a\r]=[\nb]"},
        {L"a\u00a0=\u00a0b", L"[a\u00a0]=[\u00a0b]"},
        {L"a=b;\nSecure;Path\r=/;\u00a0HttpOnly", L"[a]=[b]"},
    });
}

TEST_F(SetCookie, EmptyAttributesAreHarmless) {
    ExpectParsed({{L"a=b;;; ;", L"[a]=[b]"},
                  {L"a=b;", L"[a]=[b]"},
                  {L"a=b;=;= ;=x; = /", L"[a]=[b]"},
                  {L"a=;;Secure;;", L"[a]=[] secure=1"}});
}

TEST_F(SetCookie, TheDomainIsKeptExactlyAsItIsGiven) {
    ExpectParsed({{L"a=b; Domain=.Example.COM", L"[a]=[b] domain=.Example.COM"},
                  {L"a=b; Domain=no domain!", L"[a]=[b] domain=no domain!"}});
}

TEST_F(SetCookie, NamesOfAttributesMatchInAnyCaseAndOnlyAsAWhole) {
    ExpectParsed({
        {L"a=b; DOMAIN=x; pAtH=y; SAMESITE=nOnE; HTTPONLY; secURE",
         L"[a]=[b] domain=x path=y httpOnly=1 sameSite=0 secure=1"},
        {L"a=b; domains=x; pat=y; same-site=strict; http only; secured; max age=1; expire=1", L"[a]=[b]"},
        {L"a=b; dom\u0101in=x; \uff50ath=y; secur\u00c9; http\u00d6nly", L"[a]=[b]"},
        {L"a=b; path\0=x; secure\0"s, L"[a]=[b]"},
    });
}

TEST_F(SetCookie, TheHeaderMayBeATextOfTheRecord) {
    CookieRecord cookie;
    cookie.name = L"a=b; Path=/";
    EXPECT_TRUE(ParseSetCookie(cookie, cookie.name));
    EXPECT_EQ(Show(cookie), L"[a]=[b] path=/");
}

TEST_F(SetCookie, AnUnknownSameSitePolicyChangesNothing) {
    ExpectParsed({
        {L"a=b; SameSite=STRICT; samesite=bogus", L"[a]=[b] sameSite=2"},
        {L"a=b; SameSite", L"[a]=[b]"},
        {L"a=b; SameSite=", L"[a]=[b]"},
        {L"a=b; SameSite=None; SameSite", L"[a]=[b] sameSite=0"},
        {L"a=b; SameSite=\"Strict\"", L"[a]=[b]"},
        {L"a=b; SameSite=Strict=", L"[a]=[b]"},
    });
}

TEST_F(SetCookie, TheLastKnownSameSitePolicyWins) {
    ExpectParsed({{L"a=b; SameSite=Strict; SameSite=None", L"[a]=[b] sameSite=0"},
                  {L"a=b; SameSite=None; SameSite= lAX ", L"[a]=[b]"}});
}

TEST_F(SetCookie, AFlagIsSetWhateverItsValue) {
    ExpectParsed({{L"a=b; HttpOnly=false; Secure=0", L"[a]=[b] httpOnly=1 secure=1"},
                  {L"a=b;HttpOnly=;Secure =x=y", L"[a]=[b] httpOnly=1 secure=1"}});
}

TEST_F(SetCookie, TheLastDomainAndPathWinEvenWhenEmpty) {
    ExpectParsed({{L"a=b; Domain=x; Path=/1; Domain=y; Path=/2", L"[a]=[b] domain=y path=/2"},
                  {L"a=b; Domain=x; Path=/1; Domain; Path=", L"[a]=[b]"},
                  {L"a=b; Path=/a=b", L"[a]=[b] path=/a=b"}});
}

TEST_F(SetCookie, UnknownAttributesCostNothing) {
    std::wstring header = L"a=b";
    for (int i = 0; i < 20; ++i) {
        header += L"; Priority=High; Partitioned; x" + std::to_wstring(i) + L"=Secure";
    }
    EXPECT_EQ(Show(Parsed(header + L"; Path=/end")), L"[a]=[b] path=/end");
    EXPECT_EQ(TakeTranscript(), Lines{});
}

TEST_F(SetCookie, AnyCharacterButTheSeparatorsBelongsToNameAndValue) {
    ExpectParsed({{L"\u00fc=\u20ac,\U0001f36a", L"[\u00fc]=[\u20ac,\U0001f36a]"},
                  {L"a\0b=c\0d; path=/\0e"s, L"[a\0b]=[c\0d] path=/\0e"s},
                  {std::wstring(L"a=") + wchar_t{0xd83c}, std::wstring(L"[a]=[") + wchar_t{0xd83c} + L"]"}});
}

TEST_F(SetCookie, WorkGrowsNoFasterThanTheHeader) {
    // A copy of the rest for each attribute would take longer than a test may last.
    constexpr size_t kLength = 4'000'000;
    const auto repeated = [](const std::wstring& attributes) {
        std::wstring header = L"a=b";
        while (header.size() < kLength) {
            header += attributes;
        }
        return header;
    };
    const std::pair<std::wstring, std::wstring> headers[] = {
        {L"a=b" + std::wstring(kLength, L';') + L"Secure", L"[a]=[b] secure=1"},
        {repeated(L"; Path=/; x=y; SameSite=None"), L"[a]=[b] path=/ sameSite=0"},
        {repeated(L"; Expires=Thu, 01 Jan 1970 00:00:07 GMT"), L"[a]=[b] expires=7.000000 session=0"},
        {repeated(L"; Max-Age=7"), L"[a]=[b] expires=1623233901.000000 session=0"},
        {L"a=b;" + std::wstring(kLength, L' ') + L"Secure", L"[a]=[b] secure=1"},
        {L"a=b;" + std::wstring(kLength, L'='), L"[a]=[b]"},
        {L"a=b; Path" + std::wstring(kLength, L'x'), L"[a]=[b]"},
    };
    for (const auto& [header, shown] : headers) {
        EXPECT_EQ(Show(Parsed(header)), shown);
    }
}

TEST_F(SetCookie, ValueAndPathOfAMegabyteAreKept) {
    const std::wstring text(1 << 20, L'x');
    const CookieRecord cookie = Parsed(L"a=" + text + L"; Path=" + text);
    EXPECT_TRUE(cookie.value == text);
    EXPECT_TRUE(cookie.path == text);
}

TEST(TrimBlanks, TakesSpacesAndTabsOffBothEnds) {
    const std::pair<std::wstring, std::wstring> texts[] = {
        {L"", L""},
        {L" ", L""},
        {L" \t \t", L""},
        {L"a", L"a"},
        {L" \ta b\tc\t ", L"a b\tc"},
        {L"\r\n a \v\f", L"\r\n a \v\f"},
        {L"\u00a0a\u2003", L"\u00a0a\u2003"},
        {L" \0 "s, L"\0"s},
    };
    for (const auto& [text, trimmed] : texts) {
        std::wstring edited = text;
        TrimBlanks(edited);
        EXPECT_EQ(edited, trimmed) << text;
    }
}

} // namespace
} // namespace kelda
