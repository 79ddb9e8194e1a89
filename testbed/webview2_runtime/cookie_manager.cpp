// What is wrong with a cookie in itself is refused at once; the rest is Chromium's decision.
#include "cookie_manager.h"

#include <algorithm>
#include <new>
#include <optional>
#include <string>
#include <utility>

#include "cookie.h"
#include "testbed/chromium/text.h"

namespace webview2_runtime {
namespace {

using Microsoft::WRL::ComPtr;
using testbed::chromium::Page;
using testbed::chromium::ToUtf8;
using CookiesHandler = ICoreWebView2GetCookiesCompletedHandler;

bool IsBlankPadded(const std::string& text) {
    constexpr char kBlanks[] = " \t";
    return text.find_first_of(kBlanks) == 0 ||
           (!text.empty() && text.find_last_of(kBlanks) == text.size() - 1);
}

bool HasForbiddenCharacter(const std::string& text, std::string_view forbidden) {
    return std::ranges::any_of(text, [&](char character) {
        return static_cast<unsigned char>(character) < ' ' || character == '\x7f' ||
               forbidden.find(character) != std::string_view::npos;
    });
}

bool CanBeStored(const testbed::chromium::Cookie& cookie) {
    return !cookie.domain.empty() && !HasForbiddenCharacter(cookie.name, ";=") &&
           !HasForbiddenCharacter(cookie.value, ";");
}

void Complete(CookiesHandler* handler,
              std::optional<std::vector<testbed::chromium::Cookie>> cookies) noexcept {
    ComPtr<CookieList> list;
    try {
        if (cookies) {
            list = MakeObject<CookieList>(std::move(*cookies));
        }
    } catch (const std::bad_alloc&) {
        handler->Invoke(E_OUTOFMEMORY, nullptr);
        return;
    }
    handler->Invoke(list ? S_OK : E_FAIL, list.Get());
}

} // namespace

HRESULT CookieManager::CreateCookie(LPCWSTR name, LPCWSTR value, LPCWSTR domain, LPCWSTR path,
                                    ICoreWebView2Cookie** cookie) {
    return WithPage([&](Page&) -> HRESULT {
        if (name == nullptr || value == nullptr || domain == nullptr || path == nullptr ||
            cookie == nullptr) {
            return E_POINTER;
        }
        testbed::chromium::Cookie fresh;
        fresh.name = ToUtf8(name);
        fresh.value = ToUtf8(value);
        fresh.domain = ToUtf8(domain);
        fresh.path = ToUtf8(path);
        fresh.sameSite = testbed::chromium::SameSite::Lax;
        if (fresh.name.empty() || IsBlankPadded(fresh.name)) {
            return E_INVALIDARG;
        }
        return HandOut(MakeObject<Cookie>(std::move(fresh)), cookie);
    });
}

HRESULT CookieManager::CopyCookie(ICoreWebView2Cookie* cookieParam, ICoreWebView2Cookie** cookie) {
    return WithPage([&](Page&) -> HRESULT {
        if (cookieParam == nullptr || cookie == nullptr) {
            return E_POINTER;
        }
        testbed::chromium::Cookie copy;
        const HRESULT result = ReadCookie(cookieParam, copy);
        return FAILED(result) ? result : HandOut(MakeObject<Cookie>(std::move(copy)), cookie);
    });
}

HRESULT CookieManager::GetCookies(LPCWSTR uri, CookiesHandler* handler) {
    return WithPage([&](Page& page) -> HRESULT {
        if (handler == nullptr) {
            return E_POINTER;
        }
        const auto read = [owner = ComPtr<CookiesHandler>(handler)](auto cookies) {
            Complete(owner.Get(), std::move(cookies));
        };
        if (uri == nullptr || *uri == L'\0') {
            page.GetAllCookies(read);
        } else {
            page.GetCookies({ToUtf8(uri)}, read);
        }
        return S_OK;
    });
}

HRESULT CookieManager::AddOrUpdateCookie(ICoreWebView2Cookie* cookie) {
    return WithPage([&](Page& page) -> HRESULT {
        if (cookie == nullptr) {
            return E_POINTER;
        }
        testbed::chromium::Cookie stored;
        const HRESULT result = ReadCookie(cookie, stored);
        if (FAILED(result) || !CanBeStored(stored)) {
            return FAILED(result) ? result : E_INVALIDARG;
        }
        page.SetCookie(stored);
        return S_OK;
    });
}

HRESULT CookieManager::DeleteCookie(ICoreWebView2Cookie* cookie) {
    return WithPage([&](Page& page) -> HRESULT {
        if (cookie == nullptr) {
            return E_POINTER;
        }
        testbed::chromium::Cookie deleted;
        const HRESULT result = ReadCookie(cookie, deleted);
        if (SUCCEEDED(result)) {
            page.DeleteCookies(deleted.name, deleted.domain, deleted.path);
        }
        return result;
    });
}

HRESULT CookieManager::DeleteCookies(LPCWSTR name, LPCWSTR uri) {
    return WithPage([&](Page& page) -> HRESULT {
        if (name == nullptr || uri == nullptr) {
            return E_POINTER;
        }
        if (*name == L'\0' || *uri == L'\0') {
            return E_INVALIDARG;
        }
        page.DeleteCookies(ToUtf8(name), ToUtf8(uri));
        return S_OK;
    });
}

HRESULT CookieManager::DeleteCookiesWithDomainAndPath(LPCWSTR name, LPCWSTR domain, LPCWSTR path) {
    return WithPage([&](Page& page) -> HRESULT {
        if (name == nullptr || domain == nullptr || path == nullptr) {
            return E_POINTER;
        }
        if (*name == L'\0' || *domain == L'\0' || *path == L'\0') {
            return E_INVALIDARG;
        }
        page.DeleteCookies(ToUtf8(name), ToUtf8(domain), ToUtf8(path));
        return S_OK;
    });
}

HRESULT CookieManager::DeleteAllCookies() {
    return WithPage([](Page& page) {
        page.DeleteAllCookies();
        return S_OK;
    });
}

} // namespace webview2_runtime
