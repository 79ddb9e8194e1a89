// A WinINet cookie store that a test fills itself, in place of the system's.
#pragma once

#include <algorithm>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "cookies/text_or_empty.h"
#include "cookies/win_inet_cookies.h"
#include "du/string_utilities.h"
#include "tests/support/replaced_import.h"
#include "tests/support/transcript.h"

namespace test_support {

/// Records every call. Arrays that it has handed out count as living fakes until they are freed. There may be one store
/// at a time.
class FakeWinInetStore {
  public:
    FakeWinInetStore() = default;
    FakeWinInetStore(const FakeWinInetStore&) = delete;
    FakeWinInetStore& operator=(const FakeWinInetStore&) = delete;

    /// What the getter hands out, in this order; with none it fails as the system's does. Texts may be null.
    std::vector<INTERNET_COOKIE2> cookies;

    /// The getter's answer. With a failure it hands out nothing.
    DWORD getterResult = ERROR_SUCCESS;

    /// What the setter answers, and the state that it reports.
    struct Answer {
        DWORD result = ERROR_SUCCESS;
        DWORD state = COOKIE_STATE_ACCEPT;
    };
    Answer setterAnswer;

    /// The same for cookies of one name.
    std::map<std::wstring, Answer> setterAnswers;

    /// False: the setter leaves the state as it is.
    bool reportsState = true;

    /// False: the getter succeeds and counts, but hands out nothing.
    bool handsOutArrays = true;

    /// True: a getter that fails leaves a pointer and a count that mean nothing.
    bool leavesRubbish = false;

    /// Lets things happen inside the setter.
    std::function<void()> duringSet;

    void Hold(const wchar_t* name, const wchar_t* value, DWORD flags = 0) {
        INTERNET_COOKIE2 cookie{};
        cookie.pwszName = const_cast<PWSTR>(name);
        cookie.pwszValue = const_cast<PWSTR>(value);
        cookie.pwszDomain = const_cast<PWSTR>(L"server");
        cookie.pwszPath = const_cast<PWSTR>(L"/");
        cookie.dwFlags = flags;
        cookies.push_back(cookie);
    }

  private:
    struct HandedOut {
        std::vector<INTERNET_COOKIE2> cookies;
        LiveFake live;
    };

    static std::string Text(PCWSTR text) { return text != nullptr ? du::WideStrToUtf8(text) : "(null)"; }
    static std::string Expiry(const INTERNET_COOKIE2& cookie) {
        const std::uint64_t time =
            (std::uint64_t{cookie.ftExpires.dwHighDateTime} << 32U) | cookie.ftExpires.dwLowDateTime;
        return cookie.fExpiresSet != FALSE ? std::to_string(time) : time == 0 ? "none" : "unset, but a time";
    }

    DWORD Get(PCWSTR url, PCWSTR name, DWORD flags, INTERNET_COOKIE2** out, DWORD* count) {
        Record("InternetGetCookieEx2 " + Text(url) + " name=" + Text(name) + " with " + Hexadecimal(flags));
        if (getterResult != ERROR_SUCCESS || cookies.empty()) {
            *out = leavesRubbish ? reinterpret_cast<INTERNET_COOKIE2*>(0x10) : nullptr;
            *count = leavesRubbish ? 1 : 0;
            return getterResult != ERROR_SUCCESS ? getterResult : ERROR_NO_MORE_ITEMS;
        }
        *count = static_cast<DWORD>(cookies.size());
        if (handsOutArrays) {
            handedOut_.push_back(std::make_unique<HandedOut>());
            handedOut_.back()->cookies = cookies;
            *out = handedOut_.back()->cookies.data();
        }
        return ERROR_SUCCESS;
    }
    DWORD Set(PCWSTR url, const INTERNET_COOKIE2* cookie, PCWSTR policy, DWORD flags, DWORD* state) {
        Record("InternetSetCookieEx2 " + Text(url) + " " + Text(cookie->pwszName) + "=" +
               Text(cookie->pwszValue) + " domain=" + Text(cookie->pwszDomain) +
               " path=" + Text(cookie->pwszPath) + " flags=" + Hexadecimal(cookie->dwFlags) + " expires=" +
               Expiry(*cookie) + (policy == nullptr ? "" : " policy") + " with " + Hexadecimal(flags));
        if (duringSet) {
            duringSet();
        }
        const auto own = setterAnswers.find(kelda::TextOrEmpty(cookie->pwszName));
        const Answer& answer = own != setterAnswers.end() ? own->second : setterAnswer;
        if (reportsState) {
            *state = answer.state;
        }
        return answer.result;
    }
    void Free(const INTERNET_COOKIE2* array, DWORD count) {
        Record("InternetFreeCookies " + std::to_string(count));
        const auto found =
            std::ranges::find_if(handedOut_, [&](const auto& each) { return each->cookies.data() == array; });
        ASSERT_NE(found, handedOut_.end()) << "not an array of the store's";
        EXPECT_EQ(count, (*found)->cookies.size());
        handedOut_.erase(found);
    }

    std::vector<std::unique_ptr<HandedOut>> handedOut_;

    ReplacedImport<struct GetCookies, DWORD(PCWSTR, PCWSTR, DWORD, INTERNET_COOKIE2**, DWORD*)> get_{
        "wininet.dll", "InternetGetCookieEx2",
        [this](PCWSTR url, PCWSTR name, DWORD flags, INTERNET_COOKIE2** out, DWORD* count) {
            return Get(url, name, flags, out, count);
        }};
    ReplacedImport<struct SetCookie, DWORD(PCWSTR, const INTERNET_COOKIE2*, PCWSTR, DWORD, DWORD*)> set_{
        "wininet.dll", "InternetSetCookieEx2",
        [this](PCWSTR url, const INTERNET_COOKIE2* cookie, PCWSTR policy, DWORD flags, DWORD* state) {
            return Set(url, cookie, policy, flags, state);
        }};
    ReplacedImport<struct FreeCookies, void(INTERNET_COOKIE2*, DWORD)> free_{
        "wininet.dll", "InternetFreeCookies",
        [this](INTERNET_COOKIE2* array, DWORD count) { Free(array, count); }};
};

} // namespace test_support
