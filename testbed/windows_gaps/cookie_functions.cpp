// The platform's calling shapes around Wine's store and what is known of its cookies.
#include "cookie_functions.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cwchar>
#include <exception>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "cookie_address.h"
#include "cookie_array.h"
#include "cookie_details.h"
#include "cookie_store.h"
#include "cookie_table.h"
#include "environment_text.h"

namespace windows_gaps {
namespace {

constexpr DWORD kSameSite = INTERNET_COOKIE_SAME_SITE_LAX | INTERNET_COOKIE_SAME_SITE_STRICT;

/// Guards the table, and keeps it in step with the store.
std::mutex mutex;

CookieTable& Table() {
    static CookieTable table;
    return table;
}

/// What a test says of the cookies that its server sets.
DWORD ServerCookieFlags() {
    const auto text = EnvironmentText(L"KELDA_TEST_SERVER_COOKIE_FLAGS");
    if (!text) {
        return 0;
    }
    wchar_t* end = nullptr;
    const DWORD flags = std::wcstoul(text->c_str(), &end, 0);
    if (*end != L'\0') {
        std::fputs("KELDA_TEST_SERVER_COOKIE_FLAGS is no number.\n", stderr);
        return 0;
    }
    return flags;
}

std::optional<std::wstring> Given(PCWSTR text) {
    return text == nullptr || *text == L'\0' ? std::nullopt : std::optional<std::wstring>(text);
}

/// Whether a text would come out of a `Set-Cookie` line as it went in, and so could not bring attributes of its own.
bool KeepsItsPlace(const std::wstring& text) {
    return std::ranges::none_of(text, [](wchar_t character) {
        return character < L' ' || character == L'\x7F' || character == L';';
    });
}

bool KeepsItsPlace(const CookieDetails& cookie) {
    return KeepsItsPlace(cookie.SentName()) && cookie.SentName().find(L'=') == std::wstring::npos &&
           KeepsItsPlace(cookie.SentValue()) && KeepsItsPlace(cookie.domain) && KeepsItsPlace(cookie.path);
}

/// @return nothing for a cookie that has neither name nor value.
std::optional<CookieDetails> Understand(const INTERNET_COOKIE2& cookie, const CookieAddress& address) {
    CookieDetails details{.name = Given(cookie.pwszName),
                          .value = std::nullopt,
                          .domain = Given(cookie.pwszDomain).value_or(address.host),
                          .path = Given(cookie.pwszPath).value_or(std::wstring(DirectoryOf(address.path))),
                          .flags = cookie.dwFlags,
                          .expires = std::nullopt};
    if (cookie.pwszValue != nullptr) {
        details.value = cookie.pwszValue;
    }
    if (!details.name && details.value.value_or(L"").empty()) {
        return std::nullopt;
    }
    if (cookie.fExpiresSet != FALSE) {
        details.expires = cookie.ftExpires;
    }
    return details;
}

/// @return nothing for an expiry that is no time, an empty text for none.
std::optional<std::wstring> ExpiryText(const CookieDetails& cookie) {
    if (!cookie.expires) {
        return L"";
    }
    SYSTEMTIME time{};
    std::array<wchar_t, INTERNET_RFC1123_BUFSIZE + 1> text{}; // a year may have five digits
    if (FileTimeToSystemTime(&*cookie.expires, &time) == FALSE ||
        InternetTimeFromSystemTimeW(&time, INTERNET_RFC1123_FORMAT, text.data(), sizeof(text)) == FALSE) {
        return std::nullopt;
    }
    return text.data();
}

/// Writes into the store, and remembers what was written.
DWORD Store(const CookieAddress& address, const CookieDetails& cookie, const std::wstring& expiryText,
            bool mayBeHttpOnly, DWORD& state) {
    const std::scoped_lock lock(mutex);
    state = WriteCookieStore(address, cookie, expiryText, mayBeHttpOnly);
    switch (state) {
    case COOKIE_STATE_UNKNOWN: // nothing else is left that Wine would refuse
        state = COOKIE_STATE_REJECT;
        return ERROR_SUCCESS;
    case COOKIE_STATE_REJECT:
        return ERROR_INVALID_OPERATION;
    default:
        break;
    }
    if (cookie.IsOver()) {
        Table().Forget(cookie);
    } else {
        Table().Remember(cookie);
    }
    return ERROR_SUCCESS;
}

std::vector<CookieDetails> CookiesFor(const CookieAddress& address, DWORD flags) {
    const std::scoped_lock lock(mutex);
    return Table().Describe(ReadCookieStore(address, (flags & INTERNET_COOKIE_NON_SCRIPT) != 0), address,
                            ServerCookieFlags());
}

} // namespace

DWORD WINAPI GetCookies(PCWSTR url, PCWSTR name, DWORD flags, INTERNET_COOKIE2** cookies, DWORD* count) try {
    if (cookies != nullptr) {
        *cookies = nullptr;
    }
    if (count != nullptr) {
        *count = 0;
    }
    if (url == nullptr || cookies == nullptr || count == nullptr) {
        return ERROR_INVALID_PARAMETER;
    }
    CookieAddress address;
    if (const DWORD error = ResolveCookieAddress(url, address); error != ERROR_SUCCESS) {
        return error;
    }
    std::vector<CookieDetails> found = CookiesFor(address, flags);
    std::erase_if(found, [&](const CookieDetails& cookie) {
        return (name != nullptr && cookie.name.value_or(L"") != name) ||
               ((flags & INTERNET_COOKIE_SAME_SITE_LEVEL_CROSS_SITE) != 0 && (cookie.flags & kSameSite) != 0);
    });
    if (found.empty()) {
        return ERROR_NO_MORE_ITEMS;
    }
    CookieArray array = MakeCookieArray(found);
    if (array == nullptr) {
        return ERROR_NOT_ENOUGH_MEMORY;
    }
    *cookies = array.release();
    *count = static_cast<DWORD>(found.size());
    return ERROR_SUCCESS;
} catch (const std::exception&) {
    return ERROR_NOT_ENOUGH_MEMORY; // what else could be missing is made of memory too
}

DWORD WINAPI SetCookie(PCWSTR url, const INTERNET_COOKIE2* cookie, PCWSTR /*policy*/, DWORD flags,
                       DWORD* state) try {
    if (state != nullptr) {
        *state = COOKIE_STATE_UNKNOWN;
    }
    if (url == nullptr || cookie == nullptr || state == nullptr) {
        return ERROR_INVALID_PARAMETER;
    }
    CookieAddress address;
    if (const DWORD error = ResolveCookieAddress(url, address); error != ERROR_SUCCESS) {
        return error;
    }
    const auto details = Understand(*cookie, address);
    if (!details || !KeepsItsPlace(*details)) {
        return ERROR_INVALID_PARAMETER;
    }
    const auto expiryText = ExpiryText(*details);
    if (!expiryText) {
        return ERROR_INVALID_PARAMETER;
    }
    return Store(address, *details, *expiryText, (flags & INTERNET_COOKIE_NON_SCRIPT) != 0, *state);
} catch (const std::exception&) {
    return ERROR_NOT_ENOUGH_MEMORY; // what else could be missing is made of memory too
}

void WINAPI FreeCookies(INTERNET_COOKIE2* cookies, DWORD /*count*/) {
    const CookieArray array(cookies); // frees it
}

} // namespace windows_gaps
