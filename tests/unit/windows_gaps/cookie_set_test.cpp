// What may be written into the cookie store, and what is refused.
#include <limits>
#include <optional>
#include <stdexcept>
#include <string>

#include <windows.h>

#include <gtest/gtest.h>
#include <wininet.h>

#include "cookie_calls.h"
#include "library_import.h"

using namespace std::string_literals;

namespace windows_gaps_test {
namespace {

constexpr Written kRejected = {ERROR_SUCCESS, COOKIE_STATE_REJECT};
constexpr Written kNotPermitted = {ERROR_INVALID_OPERATION, COOKIE_STATE_REJECT};

using SetCookieEx2 = CookieTest;

TEST_F(SetCookieEx2, RefusesNullArguments) {
    std::wstring name = L"a";
    INTERNET_COOKIE2 cookie{};
    cookie.pwszName = name.data();
    DWORD state = COOKIE_STATE_ACCEPT;
    constexpr DWORD kRefused = ERROR_INVALID_PARAMETER;

    EXPECT_EQ(InternetSetCookieEx2(nullptr, &cookie, nullptr, 0, &state), kRefused);
    EXPECT_EQ(state, static_cast<DWORD>(COOKIE_STATE_UNKNOWN));
    EXPECT_EQ(InternetSetCookieEx2(Url().c_str(), nullptr, nullptr, 0, &state), kRefused);
    EXPECT_EQ(InternetSetCookieEx2(Url().c_str(), &cookie, nullptr, 0, nullptr), kRefused);
    EXPECT_EQ(Read(Url()), kNoCookies);
}

TEST_F(SetCookieEx2, RefusesWhatIsNoUrl) {
    constexpr DWORD kUnknown = COOKIE_STATE_UNKNOWN;
    EXPECT_EQ(Write(L"", {L"a", L"1"}), kInvalid);
    EXPECT_EQ(Write(L"nonsense", {L"a", L"1"}), (Written{ERROR_INTERNET_UNRECOGNIZED_SCHEME, kUnknown}));
    EXPECT_EQ(Write(L"//host/x", {L"a", L"1"}), (Written{ERROR_INTERNET_UNRECOGNIZED_SCHEME, kUnknown}));
    EXPECT_EQ(Write(L"http://", {L"a", L"1"}), (Written{ERROR_INTERNET_INVALID_URL, kUnknown}));
    EXPECT_EQ(Write(L"about:blank", {L"a", L"1"}), (Written{ERROR_INTERNET_INVALID_URL, kUnknown}));
}

TEST_F(SetCookieEx2, RefusesACookieOfNothing) {
    EXPECT_EQ(Write(Url(), {std::nullopt, std::nullopt}), kInvalid);
    EXPECT_EQ(Write(Url(), {L"", std::nullopt}), kInvalid);
    EXPECT_EQ(Write(Url(), {std::nullopt, L""}), kInvalid);
    EXPECT_EQ(Write(Url(), {L"", L""}), kInvalid);
}

TEST_F(SetCookieEx2, TakesANameWithoutAValue) {
    EXPECT_EQ(Write(Url(), {L"name", std::nullopt}), kAccepted);
    EXPECT_EQ(Read(Url()), (Lines{"name=(null), " + Host() + ", /, 0x00000000"}));
}

TEST_F(SetCookieEx2, TakesAValueWithoutAName) {
    EXPECT_EQ(Write(Url(), {std::nullopt, L"value"}), kAccepted);
    EXPECT_EQ(Read(Url()), (Lines{"(null)=value, " + Host() + ", /, 0x00000000"}));
}

TEST_F(SetCookieEx2, TakesAnEmptyNameForNone) {
    EXPECT_EQ(Write(Url(), {L"", L"value"}), kAccepted);
    EXPECT_EQ(Read(Url()), (Lines{"(null)=value, " + Host() + ", /, 0x00000000"}));
}

TEST_F(SetCookieEx2, LetsNoTextBecomeAnAttribute) {
    for (const std::wstring& text :
         {std::wstring(L"x; HttpOnly"), std::wstring(L";"), std::wstring(L"x\r\ny"), std::wstring(L"\t"),
          std::wstring(L"x\x1F"), std::wstring(L"\x7F")}) {
        EXPECT_EQ(Write(Url(), {text, L"1"}), kInvalid);
        EXPECT_EQ(Write(Url(), {L"a", text}), kInvalid);
        EXPECT_EQ(Write(Url(), {std::nullopt, text}), kInvalid);
        EXPECT_EQ(Write(Url(), {L"a", L"1", text}), kInvalid);
        EXPECT_EQ(Write(Url(), {L"a", L"1", std::nullopt, L"/" + text}), kInvalid);
    }
    EXPECT_EQ(Read(Url()), kNoCookies);
}

TEST_F(SetCookieEx2, LetsNoNameBecomeAValue) {
    EXPECT_EQ(Write(Url(), {L"a=b", L"1"}), kInvalid);
    EXPECT_EQ(Write(Url(), {std::nullopt, L"a=b"}), kInvalid);
    EXPECT_EQ(Write(Url(), {L"a", L"b=c"}), kAccepted);
    EXPECT_EQ(Read(Url()), (Lines{"a=b=c, " + Host() + ", /, 0x00000000"}));
}

TEST_F(SetCookieEx2, TakesDomainAndPathFromTheUrl) {
    for (const std::optional<std::wstring>& none : {std::optional<std::wstring>(), std::optional(L""s)}) {
        EXPECT_EQ(Write(Url(L"/docs/page?next=/a/b#/c/"), {L"a", L"1", none, none}), kAccepted);
        EXPECT_EQ(Read(Url(L"/docs/other")), (Lines{"a=1, " + Host() + ", /docs/, 0x00000000"}));
        EXPECT_EQ(Read(Url()), kNoCookies);
        DeleteCookies(Url(L"/docs/"));
    }
}

TEST_F(SetCookieEx2, TakesTheRootWhereTheUrlHasNoPath) {
    EXPECT_EQ(Write(Url(L"?next=/a/b"), {L"a", L"1"}), kAccepted);
    EXPECT_EQ(Read(Url(L"")), (Lines{"a=1, " + Host() + ", /, 0x00000000"}));
}

TEST_F(SetCookieEx2, TakesADomainThatTheHostBelongsTo) {
    const std::wstring domain(Host().begin(), Host().end());
    EXPECT_EQ(Write(L"http://www." + domain + L"/", {L"a", L"1", L"." + domain}), kAccepted);
    EXPECT_EQ(Write(L"http://www." + domain + L"/", {L"b", L"2", domain}), kAccepted);

    EXPECT_EQ(Read(L"http://docs." + domain + L"/"),
              (Lines{"a=1, ." + Host() + ", /, 0x00000000", "b=2, " + Host() + ", /, 0x00000000"}));
    EXPECT_EQ(Read(Url()), Read(L"http://docs." + domain + L"/"));
}

TEST_F(SetCookieEx2, RejectsADomainThatTheHostDoesNotBelongTo) {
    const std::wstring domain(Host().begin(), Host().end());
    for (const std::wstring& foreign :
         {L"other.test"s, L"www." + domain, domain.substr(1), L"test"s, L"."s}) {
        EXPECT_EQ(Write(Url(), {L"a", L"1", foreign}), kRejected) << Host();
    }
    EXPECT_EQ(Read(Url()), kNoCookies);
}

TEST_F(SetCookieEx2, TakesTheHostAsDomainEvenIfItIsASingleWord) {
    EXPECT_EQ(Write(L"http://Singleword/", {L"a", L"1", L"singleWord"}), kAccepted);
    EXPECT_EQ(Read(L"http://singleword/"), (Lines{"a=1, singleWord, /, 0x00000000"}));
}

TEST_F(SetCookieEx2, NeedsPermissionForHttpOnly) {
    const NewCookie cookie = {L"a", L"1", std::nullopt, std::nullopt, INTERNET_COOKIE_HTTPONLY};
    EXPECT_EQ(Write(Url(), cookie, 0), kNotPermitted);
    EXPECT_EQ(Read(Url()), kNoCookies);

    EXPECT_EQ(Write(Url(), cookie, INTERNET_COOKIE_NON_SCRIPT), kAccepted);
    EXPECT_EQ(Read(Url()), (Lines{"a=1, " + Host() + ", /, 0x00002000"}));
}

TEST_F(SetCookieEx2, NeedsPermissionToOverwriteHttpOnly) {
    Write(Url(), {L"a", L"1", std::nullopt, std::nullopt, INTERNET_COOKIE_HTTPONLY});

    EXPECT_EQ(Write(Url(), {L"a", L"2"}, 0), kNotPermitted);
    EXPECT_EQ(Read(Url()), (Lines{"a=1, " + Host() + ", /, 0x00002000"}));

    EXPECT_EQ(Write(Url(), {L"a", L"2"}, INTERNET_COOKIE_NON_SCRIPT), kAccepted);
    EXPECT_EQ(Read(Url(), 0), (Lines{"a=2, " + Host() + ", /, 0x00000000"}));
}

TEST_F(SetCookieEx2, TellsTheStoreAllAttributesThatItHasWordsFor) {
    static std::wstring told;
    const LibraryImport<decltype(&InternetSetCookieExW)> import(
        "wininet.dll", "InternetSetCookieExW",
        [](LPCWSTR url, LPCWSTR name, LPCWSTR data, DWORD, DWORD_PTR) -> DWORD {
            told = std::wstring(url) + L" " + name + L"=" + data;
            return COOKIE_STATE_ACCEPT;
        });
    constexpr DWORD kFlags = INTERNET_COOKIE_HTTPONLY | INTERNET_COOKIE_IS_SECURE;
    const SYSTEMTIME expires = {2100, 2, 0, 3, 4, 5, 6, 789};
    FILETIME time{};
    SystemTimeToFileTime(&expires, &time);

    Write(L"https://www.Attributes.test:8443/docs/page?x",
          {L"a", L"1", L".Attributes.test", L"/Docs", kFlags, time});

    EXPECT_EQ(told, L"http://www.attributes.test/docs/page a=1; Path=/Docs; Domain=attributes.test; "
                    L"Expires=Wed, 03 Feb 2100 04:05:06 GMT; HttpOnly; Secure");
}

TEST_F(SetCookieEx2, DeletesByAnExpiryThatIsOver) {
    Write(Url(), {L"a", L"1"});
    Write(Url(), {L"b", L"2"});
    EXPECT_EQ(Write(Url(), {L"a", L"", std::nullopt, std::nullopt, 0, SecondsFromNow(-10)}), kAccepted);
    EXPECT_EQ(Read(Url()), (Lines{"b=2, " + Host() + ", /, 0x00000000"}));

    EXPECT_EQ(Write(Url(), {L"b", L"2", std::nullopt, std::nullopt, 0, FILETIME{}}), kAccepted);
    EXPECT_EQ(Read(Url()), kNoCookies);
}

TEST_F(SetCookieEx2, RefusesAnExpiryThatIsNoTime) {
    constexpr DWORD kAll = std::numeric_limits<DWORD>::max();
    EXPECT_EQ(Write(Url(), {L"a", L"1", std::nullopt, std::nullopt, 0, FILETIME{kAll, kAll}}), kInvalid);
    EXPECT_EQ(Read(Url()), kNoCookies);
}

TEST_F(SetCookieEx2, TakesTheLastExpiryThatThereIs) {
    const FILETIME last = {std::numeric_limits<DWORD>::max(), 0x7FFF35F4}; // in the year 30827
    EXPECT_EQ(Write(Url(), {L"a", L"1", std::nullopt, std::nullopt, 0, last}), kAccepted);
    EXPECT_EQ(Read(Url()), (Lines{"a=1, " + Host() + ", /, 0x00000000" + Until(last)}));
}

TEST_F(SetCookieEx2, LetsNoExceptionOut) {
    const LibraryImport<decltype(&InternetSetCookieExW)> import(
        "wininet.dll", "InternetSetCookieExW",
        [](LPCWSTR, LPCWSTR, LPCWSTR, DWORD, DWORD_PTR) -> DWORD { throw std::runtime_error("not today"); });
    EXPECT_EQ(Write(Url(), {L"a", L"1"}), (Written{ERROR_NOT_ENOUGH_MEMORY, COOKIE_STATE_UNKNOWN}));
}

} // namespace
} // namespace windows_gaps_test
