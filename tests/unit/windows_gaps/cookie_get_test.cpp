// What the cookie store is said to hold, and the memory in which it is said.
#include <cstddef>
#include <stdexcept>
#include <string>
#include <string_view>

#include <windows.h>

#include <gmock/gmock.h>
#include <wininet.h>

#include "cookie_calls.h"
#include "library_import.h"
#include "tests/support/scoped_variable.h"

namespace windows_gaps_test {
namespace {

constexpr DWORD kNoMemory = ERROR_NOT_ENOUGH_MEMORY;

/// As a server's `Set-Cookie` would.
void SetAsServer(const std::wstring& url, const wchar_t* name, const wchar_t* data) {
    EXPECT_EQ(InternetSetCookieExW(url.c_str(), name, data, INTERNET_COOKIE_HTTPONLY, 0),
              static_cast<DWORD>(COOKIE_STATE_ACCEPT));
}

using GetCookieEx2 = CookieTest;

TEST_F(GetCookieEx2, RefusesNullArguments) {
    INTERNET_COOKIE2 untouched{};
    INTERNET_COOKIE2* cookies = &untouched;
    DWORD count = 7;
    constexpr DWORD kRefused = ERROR_INVALID_PARAMETER;

    EXPECT_EQ(InternetGetCookieEx2(nullptr, nullptr, 0, &cookies, &count), kRefused);
    EXPECT_EQ(cookies, nullptr);
    EXPECT_EQ(count, 0U);
    EXPECT_EQ(InternetGetCookieEx2(Url().c_str(), nullptr, 0, nullptr, &count), kRefused);
    EXPECT_EQ(InternetGetCookieEx2(Url().c_str(), nullptr, 0, &cookies, nullptr), kRefused);
}

TEST_F(GetCookieEx2, RefusesWhatIsNoUrl) {
    EXPECT_EQ(Read(L""), (Lines{"error 87"}));
    EXPECT_EQ(Read(L"nonsense"), (Lines{"error 12006"}));
    EXPECT_EQ(Read(L"//host/x"), (Lines{"error 12006"}));
    EXPECT_EQ(Read(L"http://"), (Lines{"error 12005"}));
    EXPECT_EQ(Read(L"about:blank"), (Lines{"error 12005"}));
}

TEST_F(GetCookieEx2, FindsNoneWhereThereIsNone) {
    INTERNET_COOKIE2 untouched{};
    INTERNET_COOKIE2* cookies = &untouched;
    DWORD count = 7;
    EXPECT_EQ(InternetGetCookieEx2(Url().c_str(), nullptr, INTERNET_COOKIE_NON_SCRIPT, &cookies, &count),
              static_cast<DWORD>(ERROR_NO_MORE_ITEMS));
    EXPECT_EQ(cookies, nullptr);
    EXPECT_EQ(count, 0U);
}

TEST_F(GetCookieEx2, GivesBackAllThatWasWritten) {
    const FILETIME expires = SecondsFromNow(3600);
    constexpr DWORD kFlags =
        INTERNET_COOKIE_IS_SECURE | INTERNET_COOKIE_HTTPONLY | INTERNET_COOKIE_SAME_SITE_STRICT;
    EXPECT_EQ(Write(Url(), {L"session", L"a b\"c,d", L"." + std::wstring(Host().begin(), Host().end()), L"/",
                            kFlags, expires}),
              kAccepted);
    EXPECT_EQ(Write(Url(), {L"empty", L"", std::nullopt, std::nullopt, INTERNET_COOKIE_SAME_SITE_LAX}),
              kAccepted);

    EXPECT_THAT(Read(Url()), testing::UnorderedElementsAre("session=a b\"c,d, ." + Host() +
                                                               ", /, 0x00102001" + Until(expires),
                                                           "empty=, " + Host() + ", /, 0x00200000"));
}

TEST_F(GetCookieEx2, NeedsPermissionForHttpOnly) {
    Write(Url(), {L"a", L"1", std::nullopt, std::nullopt, INTERNET_COOKIE_HTTPONLY});
    EXPECT_EQ(Read(Url(), 0), kNoCookies);
    Write(Url(), {L"b", L"2"});
    EXPECT_EQ(Read(Url(), 0), (Lines{"b=2, " + Host() + ", /, 0x00000000"}));
    EXPECT_EQ(Read(Url(), INTERNET_COOKIE_NON_SCRIPT).size(), 2U);
}

TEST_F(GetCookieEx2, FindsByName) {
    Write(Url(), {L"a", L"1"});
    Write(Url(), {L"ab", L"2"});
    Write(Url(), {std::nullopt, L"nameless"});

    EXPECT_EQ(Read(Url(), 0, L"ab"), (Lines{"ab=2, " + Host() + ", /, 0x00000000"}));
    EXPECT_EQ(Read(Url(), 0, L"nameless"), kNoCookies);
    EXPECT_EQ(Read(Url(), 0, L"c"), kNoCookies);
    EXPECT_EQ(Read(Url(), 0, nullptr).size(), 3U);
}

TEST_F(GetCookieEx2, LeavesOutSameSiteCookiesForAnotherSite) {
    Write(Url(), {L"a", L"1", std::nullopt, std::nullopt, INTERNET_COOKIE_SAME_SITE_LAX});
    Write(Url(), {L"b", L"2", std::nullopt, std::nullopt, INTERNET_COOKIE_SAME_SITE_STRICT});
    EXPECT_EQ(Read(Url(), INTERNET_COOKIE_SAME_SITE_LEVEL_CROSS_SITE), kNoCookies);
    Write(Url(), {L"c", L"3"});
    EXPECT_EQ(Read(Url(), INTERNET_COOKIE_SAME_SITE_LEVEL_CROSS_SITE),
              (Lines{"c=3, " + Host() + ", /, 0x00000000"}));
}

TEST_F(GetCookieEx2, TellsTheLastOfTwoThatAreTheSame) {
    Write(Url(), {L"name", L"1", std::nullopt, L"/Docs", INTERNET_COOKIE_SAME_SITE_LAX});
    Write(Url(), {L"Name", L"1", std::wstring(Host().begin(), Host().end()), L"/docs"});
    EXPECT_EQ(Read(Url(L"/docs/")).size(), 1U) << "to Wine's store they are one";
    EXPECT_EQ(Read(Url(L"/docs/")), (Lines{"Name=1, " + Host() + ", /docs, 0x00000000"}));
}

TEST_F(GetCookieEx2, TellsEachOfSeveralPathsItsOwn) {
    Write(Url(), {L"a", L"1", std::nullopt, L"/", 0});
    Write(Url(), {L"a", L"1", std::nullopt, L"/docs", INTERNET_COOKIE_SAME_SITE_LAX});
    Write(Url(), {L"a", L"1", std::nullopt, L"/docs/private/", INTERNET_COOKIE_SAME_SITE_STRICT});

    const std::string root = "a=1, " + Host() + ", /, 0x00000000";
    const std::string docs = "a=1, " + Host() + ", /docs, 0x00200000";
    EXPECT_EQ(Read(Url(L"/other")), (Lines{root}));
    EXPECT_THAT(Read(Url(L"/docs/x")), testing::UnorderedElementsAre(root, docs));
    EXPECT_THAT(Read(Url(L"/docs/private/")),
                testing::UnorderedElementsAre(root, docs, "a=1, " + Host() + ", /docs/private/, 0x00100000"));
}

TEST_F(GetCookieEx2, TellsEachOfTwoFoldersItsOwn) {
    Write(Url(), {L"a", L"1", std::nullopt, L"/books", INTERNET_COOKIE_SAME_SITE_LAX});
    Write(Url(), {L"a", L"1", std::nullopt, L"/docs", INTERNET_COOKIE_SAME_SITE_STRICT});

    EXPECT_EQ(Read(Url(L"/books/")), (Lines{"a=1, " + Host() + ", /books, 0x00200000"}));
    EXPECT_EQ(Read(Url(L"/docs/")), (Lines{"a=1, " + Host() + ", /docs, 0x00100000"}));
    EXPECT_EQ(Read(Url(L"/docs-old/")), (Lines{"a=1, " + Host() + ", /docs, 0x00100000"}))
        << "Wine compares the beginnings";
    EXPECT_EQ(Read(Url(L"/docs")), kNoCookies);
}

TEST_F(GetCookieEx2, TellsEachOfSeveralHostsItsOwn) {
    const std::wstring below = L"http://www." + std::wstring(Host().begin(), Host().end()) + L"/";
    const std::wstring beside = L"http://docs." + std::wstring(Host().begin(), Host().end()) + L"/";
    Write(below, {L"a", L"1", std::nullopt, std::nullopt, INTERNET_COOKIE_SAME_SITE_LAX});
    Write(beside, {L"a", L"1", std::nullopt, std::nullopt, INTERNET_COOKIE_SAME_SITE_STRICT});

    EXPECT_EQ(Read(below), (Lines{"a=1, www." + Host() + ", /, 0x00200000"}));
    EXPECT_EQ(Read(beside), (Lines{"a=1, docs." + Host() + ", /, 0x00100000"}));
    EXPECT_EQ(Read(Url()), kNoCookies);
}

TEST_F(GetCookieEx2, TakesAHostInAnyCase) {
    Write(L"http://TakesAHost.InAnyCase.test/", {L"a", L"1"});
    EXPECT_EQ(Read(L"HTTP://takesahost.INANYCASE.test/"),
              (Lines{"a=1, takesahost.inanycase.test, /, 0x00000000"}));
}

TEST_F(GetCookieEx2, TellsOfServersCookiesWhatTheTestSays) {
    SetAsServer(Url(L"/docs/page"), L"own", L"1; Path=/docs; Secure");
    SetAsServer(Url(L"/docs/page"), L"b", L"x=y; Path=/docs; HttpOnly");
    {
        const test_support::ScopedVariable flags(L"KELDA_TEST_SERVER_COOKIE_FLAGS", L"0x200000");
        EXPECT_EQ(Read(Url(L"/docs/"), 0, L"own"), (Lines{"own=1, " + Host() + ", /, 0x00200000"}));
        EXPECT_EQ(Read(Url(L"/docs/"), INTERNET_COOKIE_NON_SCRIPT, L"b"),
                  (Lines{"b=x=y, " + Host() + ", /, 0x00200000"}));
    }
    const test_support::ScopedVariable noFlags(L"KELDA_TEST_SERVER_COOKIE_FLAGS", nullptr);
    EXPECT_EQ(Read(Url(L"/docs/"), 0), (Lines{"own=1, " + Host() + ", /, 0x00000000"}));
    const test_support::ScopedVariable nonsense(L"KELDA_TEST_SERVER_COOKIE_FLAGS", L"8192 or so");
    EXPECT_EQ(Read(Url(L"/docs/"), 0), (Lines{"own=1, " + Host() + ", /, 0x00000000"}));
}

TEST_F(GetCookieEx2, TellsNothingOldOfACookieThatTheServerHasChanged) {
    const FILETIME expires = SecondsFromNow(3600);
    Write(Url(), {L"a", L"1", std::nullopt, std::nullopt, INTERNET_COOKIE_SAME_SITE_STRICT, expires});
    SetAsServer(Url(), L"a", L"2; Path=/");
    EXPECT_EQ(Read(Url()), (Lines{"a=2, " + Host() + ", /, 0x00000000"}));
}

TEST_F(GetCookieEx2, TellsNothingOfACookieThatTheStoreHasNoLonger) {
    Write(Url(), {L"a", L"1"});
    SetAsServer(Url(), L"a", L"1; Path=/; Expires=Wed, 09 Jun 2021 10:18:14 GMT");
    EXPECT_EQ(Read(Url()), kNoCookies);
}

TEST_F(GetCookieEx2, TellsNothingOldOfACookieAfterTheExpiryThatWasWritten) {
    Write(Url(),
          {L"a", L"1", std::nullopt, std::nullopt, INTERNET_COOKIE_SAME_SITE_STRICT, SecondsFromNow(3600)});
    SetAsServer(Url(), L"a", L"1; Path=/");
    const LibraryImport<decltype(&GetSystemTimeAsFileTime)> later(
        "kernel32.dll", "GetSystemTimeAsFileTime", [](FILETIME* time) { *time = SecondsFromNow(3601); });
    EXPECT_EQ(Read(Url()), (Lines{"a=1, " + Host() + ", /, 0x00000000"}));
}

TEST_F(GetCookieEx2, HasForgottenWhatWasDeleted) {
    Write(Url(), {L"a", L"1", std::nullopt, std::nullopt, INTERNET_COOKIE_SAME_SITE_STRICT});
    Write(Url(), {L"a", L"1", std::nullopt, std::nullopt, 0, SecondsFromNow(-10)});
    SetAsServer(Url(), L"a", L"1; Path=/");
    EXPECT_EQ(Read(Url()), (Lines{"a=1, " + Host() + ", /, 0x00000000"}));
}

TEST_F(GetCookieEx2, ReadsAStoreThatGrowsMeanwhile) {
    static int calls;
    static std::wstring growing;
    calls = 0;
    growing = Url();
    const auto grow = [](LPCWSTR url, LPCWSTR name, LPWSTR data, LPDWORD size, DWORD flags,
                         LPVOID reserved) -> BOOL {
        const BOOL result = InternetGetCookieExW(url, name, data, size, flags, reserved);
        const DWORD error = GetLastError();
        if (calls++ == 0) {
            SetAsServer(growing, L"b", (std::wstring(1000, L'x') + L"; Path=/").c_str());
        }
        SetLastError(error);
        return result;
    };
    Write(Url(), {L"a", L"1"});
    const LibraryImport<decltype(&InternetGetCookieExW)> import("wininet.dll", "InternetGetCookieExW", grow);

    EXPECT_EQ(Read(Url()).size(), 2U);
    EXPECT_EQ(calls, 3);
}

/// The blocks that windows_gaps.dll has from the process's heap.
class HeapCount {
  public:
    HeapCount() { count = 0; }

    static LPVOID WINAPI Allocate(HANDLE heap, DWORD flags, SIZE_T size) {
        ++count;
        lastSize = size;
        return HeapAlloc(heap, flags, size);
    }
    static BOOL WINAPI Free(HANDLE heap, DWORD flags, LPVOID block) {
        count -= block == nullptr ? 0 : 1;
        return HeapFree(heap, flags, block);
    }
    static inline int count = 0;
    static inline SIZE_T lastSize = 0;

  private:
    const LibraryImport<decltype(&HeapAlloc)> allocate_{"kernel32.dll", "HeapAlloc", &Allocate};
    const LibraryImport<decltype(&HeapFree)> free_{"kernel32.dll", "HeapFree", &Free};
};

TEST_F(GetCookieEx2, GivesOneBlockThatFreeingGivesBack) {
    Write(Url(), {L"a", L"1"});
    Write(Url(), {L"b", L"2", std::nullopt, std::nullopt, INTERNET_COOKIE_HTTPONLY});
    const HeapCount heap;
    INTERNET_COOKIE2* cookies = nullptr;
    DWORD count = 0;

    ASSERT_EQ(InternetGetCookieEx2(Url().c_str(), nullptr, INTERNET_COOKIE_NON_SCRIPT, &cookies, &count), 0U);
    EXPECT_EQ(HeapCount::count, 1);
    EXPECT_EQ(count, 2U);
    const std::wstring_view lastText = cookies[1].pwszPath;
    EXPECT_EQ(static_cast<const void*>(lastText.data() + lastText.size() + 1),
              static_cast<const void*>(reinterpret_cast<const std::byte*>(cookies) + HeapCount::lastSize));
    EXPECT_EQ(Read(Url(), 0, L"c"), kNoCookies);
    EXPECT_EQ(HeapCount::count, 1);

    InternetFreeCookies(cookies, count);
    EXPECT_EQ(HeapCount::count, 0);
    InternetFreeCookies(nullptr, 0);
    EXPECT_EQ(HeapCount::count, 0);
}

TEST_F(GetCookieEx2, FailsWithoutMemory) {
    Write(Url(), {L"a", L"1"});
    const LibraryImport<decltype(&HeapAlloc)> import("kernel32.dll", "HeapAlloc",
                                                     [](HANDLE, DWORD, SIZE_T) -> LPVOID { return nullptr; });
    INTERNET_COOKIE2 untouched{};
    INTERNET_COOKIE2* cookies = &untouched;
    DWORD count = 7;

    EXPECT_EQ(InternetGetCookieEx2(Url().c_str(), nullptr, 0, &cookies, &count), kNoMemory);
    EXPECT_EQ(cookies, nullptr);
    EXPECT_EQ(count, 0U);
}

TEST_F(GetCookieEx2, LetsNoExceptionOut) {
    const LibraryImport<decltype(&InternetGetCookieExW)> import(
        "wininet.dll", "InternetGetCookieExW", [](LPCWSTR, LPCWSTR, LPWSTR, LPDWORD, DWORD, LPVOID) -> BOOL {
            throw std::runtime_error("no cookies today");
        });
    EXPECT_EQ(Read(Url()), (Lines{"error 8"}));
}

} // namespace
} // namespace windows_gaps_test
