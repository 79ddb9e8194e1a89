// The cookie manager on a real profile.
#include <cmath>
#include <limits>

#include "tests/unit/webview2_runtime/runtime_test.h"

namespace webview2_runtime_test {
namespace {

using test_support::Answer;
using test_support::CannedAnswer;
using test_support::CannedServer;
using test_support::HeaderOf;

CannedAnswer CookieSite(const std::string& request) {
    if (request.starts_with("GET /login ")) {
        return Answer(200,
                      "Content-Type: text/html\r\nSet-Cookie: session=1; HttpOnly\r\nSet-Cookie: deep=2; "
                      "Path=/login\r\n"
                      "Set-Cookie: strict=3; SameSite=Strict; Max-Age=3600\r\n",
                      "<link rel=icon href=data:,>");
    }
    return Answer(200, "Content-Type: text/html\r\n", "<link rel=icon href=data:,>");
}

struct CookieValues {
    std::wstring name;
    std::wstring value;
    std::wstring domain;
    std::wstring path;
    double expires = 0;
    BOOL httpOnly = FALSE;
    BOOL secure = FALSE;
    BOOL session = FALSE;
    COREWEBVIEW2_COOKIE_SAME_SITE_KIND sameSite{};
};

CookieValues Read(ICoreWebView2Cookie* cookie) {
    CookieValues values;
    values.name = TextFrom([&](LPWSTR* text) { return cookie->get_Name(text); });
    values.value = TextFrom([&](LPWSTR* text) { return cookie->get_Value(text); });
    values.domain = TextFrom([&](LPWSTR* text) { return cookie->get_Domain(text); });
    values.path = TextFrom([&](LPWSTR* text) { return cookie->get_Path(text); });
    EXPECT_EQ(cookie->get_Expires(&values.expires), S_OK);
    EXPECT_EQ(cookie->get_IsHttpOnly(&values.httpOnly), S_OK);
    EXPECT_EQ(cookie->get_IsSecure(&values.secure), S_OK);
    EXPECT_EQ(cookie->get_IsSession(&values.session), S_OK);
    EXPECT_EQ(cookie->get_SameSite(&values.sameSite), S_OK);
    return values;
}

std::vector<CookieValues> Read(ICoreWebView2CookieList* list) {
    std::vector<CookieValues> cookies;
    UINT32 count = 0;
    EXPECT_EQ(list->get_Count(&count), S_OK);
    ComPtr<ICoreWebView2Cookie> cookie;
    for (UINT32 i = 0; i < count && SUCCEEDED(list->GetValueAtIndex(i, &cookie)); ++i) {
        cookies.push_back(Read(cookie.Get()));
        cookie.Reset();
    }
    EXPECT_EQ(cookies.size(), count);
    EXPECT_EQ(list->GetValueAtIndex(count, &cookie), E_INVALIDARG);
    return cookies;
}

struct ListAnswer {
    HRESULT result = E_PENDING;
    ComPtr<ICoreWebView2CookieList> list;
};

ListAnswer List(LPCWSTR url, ICoreWebView2CookieManager* source) {
    return Completed<ICoreWebView2GetCookiesCompletedHandler, ListAnswer>(
               [&](auto* handler) { return source->GetCookies(url, handler); },
               [](HRESULT result, ICoreWebView2CookieList* list) {
                   return ListAnswer{result, list};
               })
        .value_or(ListAnswer());
}

class CookieTest : public WebViewTest {
  protected:
    void SetUp() override {
        WebViewTest::SetUp();
        ASSERT_TRUE(view);
        ASSERT_EQ(view->get_CookieManager(&manager), S_OK);
    }
    void TearDown() override {
        manager.Reset();
        WebViewTest::TearDown();
    }

    std::vector<CookieValues> Cookies(const std::wstring& url, ICoreWebView2CookieManager* source) {
        const ListAnswer answer = List(url.c_str(), source);
        EXPECT_EQ(answer.result, S_OK);
        return answer.list ? Read(answer.list.Get()) : std::vector<CookieValues>();
    }

    std::wstring Names(const std::wstring& url) {
        std::wstring names;
        for (const CookieValues& cookie : Cookies(url, manager.Get())) {
            names += cookie.name + L" ";
        }
        return names;
    }

    ComPtr<ICoreWebView2Cookie> Make(const wchar_t* name, const wchar_t* value = L"v",
                                     const wchar_t* domain = L"127.0.0.1", const wchar_t* path = L"/") {
        ComPtr<ICoreWebView2Cookie> cookie;
        EXPECT_EQ(manager->CreateCookie(name, value, domain, path, &cookie), S_OK) << name;
        return cookie;
    }

    ComPtr<ICoreWebView2CookieManager> manager;
    CannedServer server{CookieSite};
};

TEST_F(CookieTest, WhatAServerSetsIsListedSortedWithAllItsAttributes) {
    ASSERT_TRUE(Load(server.Url(L"/login")));
    const auto cookies = Cookies(server.Url(L"/login"), manager.Get());
    ASSERT_EQ(cookies.size(), 3U);
    EXPECT_EQ(cookies[0].name, L"deep");
    EXPECT_EQ(cookies[0].path, L"/login");
    EXPECT_EQ(cookies[1].name, L"session");
    EXPECT_EQ(cookies[1].value, L"1");
    EXPECT_EQ(cookies[1].domain, L"127.0.0.1");
    EXPECT_EQ(cookies[1].httpOnly, TRUE);
    EXPECT_EQ(cookies[1].session, TRUE);
    EXPECT_EQ(cookies[1].expires, -1);
    EXPECT_EQ(cookies[1].sameSite, COREWEBVIEW2_COOKIE_SAME_SITE_KIND_LAX);
    EXPECT_EQ(cookies[2].name, L"strict");
    EXPECT_EQ(cookies[2].session, FALSE);
    EXPECT_GT(cookies[2].expires, 1.7e9);
    EXPECT_EQ(cookies[2].sameSite, COREWEBVIEW2_COOKIE_SAME_SITE_KIND_STRICT);
    EXPECT_EQ(Names(server.Url(L"/other")), L"session strict ");
    EXPECT_EQ(Names(L""), L"deep session strict ");
}

TEST_F(CookieTest, AStoredCookieGoesOutWithTheNextNavigation) {
    const auto cookie = Make(L"BIGipServer", L"node1");
    EXPECT_EQ(cookie->put_IsHttpOnly(TRUE), S_OK);
    EXPECT_EQ(manager->AddOrUpdateCookie(cookie.Get()), S_OK);
    ASSERT_TRUE(Load(server.Url(L"/page")));
    EXPECT_EQ(HeaderOf(server.Requests().front(), "Cookie"), "BIGipServer=node1");
    EXPECT_EQ(cookie->put_Value(L"node2"), S_OK);
    EXPECT_EQ(manager->AddOrUpdateCookie(cookie.Get()), S_OK);
    EXPECT_EQ(Cookies(server.Url(), manager.Get()).at(0).value, L"node2");
}

TEST_F(CookieTest, AFreshCookieIsALaxSessionCookie) {
    const CookieValues fresh = Read(Make(L"name", L"value", L"example.com", L"/path").Get());
    EXPECT_EQ(fresh.name, L"name");
    EXPECT_EQ(fresh.value, L"value");
    EXPECT_EQ(fresh.domain, L"example.com");
    EXPECT_EQ(fresh.path, L"/path");
    EXPECT_EQ(fresh.expires, -1);
    EXPECT_EQ(fresh.session, TRUE);
    EXPECT_EQ(fresh.sameSite, COREWEBVIEW2_COOKIE_SAME_SITE_KIND_LAX);
    EXPECT_EQ(fresh.httpOnly, FALSE);
    EXPECT_EQ(fresh.secure, FALSE);
}

TEST_F(CookieTest, ACopyIsACookieOfItsOwn) {
    const auto original = Make(L"name", L"before");
    ComPtr<ICoreWebView2Cookie> copy;
    ASSERT_EQ(manager->CopyCookie(original.Get(), &copy), S_OK);
    EXPECT_EQ(original->put_Value(L"after"), S_OK);
    EXPECT_EQ(Read(copy.Get()).value, L"before");
    EXPECT_EQ(manager->CopyCookie(nullptr, &copy), E_POINTER);
}

TEST_F(CookieTest, NamesThatAreEmptyOrPaddedAreRefused) {
    ComPtr<ICoreWebView2Cookie> cookie;
    for (const wchar_t* name : {L"", L" name", L"name ", L" ", L"\tname"}) {
        EXPECT_EQ(manager->CreateCookie(name, L"v", L"127.0.0.1", L"/", &cookie), E_INVALIDARG);
    }
    EXPECT_EQ(manager->CreateCookie(nullptr, L"v", L"127.0.0.1", L"/", &cookie), E_POINTER);
    EXPECT_EQ(manager->CreateCookie(L"n", L"v", L"127.0.0.1", L"/", nullptr), E_POINTER);
    EXPECT_FALSE(cookie);
}

TEST_F(CookieTest, ExpiriesThatAreNoTimeAreRefused) {
    const auto cookie = Make(L"name");
    EXPECT_EQ(cookie->put_Expires(4e9), S_OK);
    for (const double refused : {-2.0, -0.5, std::nan(""), std::numeric_limits<double>::infinity(),
                                 -std::numeric_limits<double>::infinity()}) {
        EXPECT_EQ(cookie->put_Expires(refused), E_INVALIDARG) << refused;
    }
    EXPECT_EQ(Read(cookie.Get()).expires, 4e9);
    EXPECT_EQ(cookie->put_Expires(-1), S_OK);
    EXPECT_EQ(Read(cookie.Get()).session, TRUE);
}

TEST_F(CookieTest, CookiesThatCannotBeStoredAreRefusedAtOnce) {
    EXPECT_EQ(manager->AddOrUpdateCookie(Make(L"name", L"v", L"").Get()), E_INVALIDARG);
    EXPECT_EQ(manager->AddOrUpdateCookie(Make(L"a;b").Get()), E_INVALIDARG);
    EXPECT_EQ(manager->AddOrUpdateCookie(Make(L"a=b").Get()), E_INVALIDARG);
    EXPECT_EQ(manager->AddOrUpdateCookie(Make(L"name", L"a;b").Get()), E_INVALIDARG);
    EXPECT_EQ(manager->AddOrUpdateCookie(nullptr), E_POINTER);
    EXPECT_EQ(Names(L""), L"");
}

TEST_F(CookieTest, SameSiteNoneIsStoredOnlyIfSecure) {
    const auto insecure = Make(L"insecure");
    const auto secure = Make(L"secure");
    EXPECT_EQ(insecure->put_SameSite(COREWEBVIEW2_COOKIE_SAME_SITE_KIND_NONE), S_OK);
    EXPECT_EQ(secure->put_SameSite(COREWEBVIEW2_COOKIE_SAME_SITE_KIND_NONE), S_OK);
    EXPECT_EQ(secure->put_IsSecure(TRUE), S_OK);
    EXPECT_EQ(manager->AddOrUpdateCookie(insecure.Get()), S_OK);
    EXPECT_EQ(manager->AddOrUpdateCookie(secure.Get()), S_OK);
    const auto cookies = Cookies(L"", manager.Get());
    ASSERT_EQ(cookies.size(), 1U);
    EXPECT_EQ(cookies[0].name, L"secure");
    EXPECT_EQ(cookies[0].secure, TRUE);
    EXPECT_EQ(cookies[0].sameSite, COREWEBVIEW2_COOKIE_SAME_SITE_KIND_NONE);
}

TEST_F(CookieTest, DeletesWhatIsNamed) {
    for (const wchar_t* name : {L"a", L"b", L"c", L"d"}) {
        ASSERT_EQ(manager->AddOrUpdateCookie(Make(name).Get()), S_OK);
    }
    // Chromium may list a cookie for a moment longer: deleting is not waited for.
    const auto become = [&](const std::wstring& names) {
        return PumpUntil([&] { return Names(L"") == names; });
    };
    EXPECT_EQ(manager->DeleteCookie(Make(L"a").Get()), S_OK);
    EXPECT_TRUE(become(L"b c d "));
    EXPECT_EQ(manager->DeleteCookies(L"b", server.Url().c_str()), S_OK);
    EXPECT_TRUE(become(L"c d "));
    EXPECT_EQ(manager->DeleteCookiesWithDomainAndPath(L"c", L"127.0.0.1", L"/"), S_OK);
    EXPECT_TRUE(become(L"d "));
    EXPECT_EQ(manager->DeleteCookies(L"", server.Url().c_str()), E_INVALIDARG);
    EXPECT_EQ(manager->DeleteAllCookies(), S_OK);
    EXPECT_TRUE(become(L""));
}

TEST_F(CookieTest, AnInPrivateViewHasCookiesOfItsOwn) {
    ASSERT_EQ(manager->AddOrUpdateCookie(Make(L"ordinary").Get()), S_OK);
    const auto inPrivate = MakeController(true).controller;
    ASSERT_TRUE(inPrivate);
    ComPtr<ICoreWebView2> privateView;
    ComPtr<ICoreWebView2_2> privateView2;
    ComPtr<ICoreWebView2CookieManager> privateManager;
    ASSERT_EQ(inPrivate->get_CoreWebView2(&privateView), S_OK);
    ASSERT_EQ(privateView.As(&privateView2), S_OK);
    ASSERT_EQ(privateView2->get_CookieManager(&privateManager), S_OK);
    EXPECT_TRUE(Cookies(L"", privateManager.Get()).empty());
    ASSERT_EQ(privateManager->AddOrUpdateCookie(Make(L"private").Get()), S_OK);
    EXPECT_EQ(Cookies(L"", privateManager.Get()).size(), 1U);
    EXPECT_EQ(Names(L""), L"ordinary ");
    EXPECT_EQ(inPrivate->Close(), S_OK);
}

TEST_F(CookieTest, AListIsASnapshot) {
    ASSERT_EQ(manager->AddOrUpdateCookie(Make(L"name", L"before").Get()), S_OK);
    const auto kept = List(nullptr, manager.Get()).list;
    ASSERT_TRUE(kept);
    EXPECT_EQ(controller->Close(), S_OK);
    const auto cookies = Read(kept.Get());
    ASSERT_EQ(cookies.size(), 1U);
    EXPECT_EQ(cookies[0].value, L"before");
}

TEST_F(CookieTest, AFailureIsReportedWhenChromiumIsGone) {
    manager.Reset();
    ASSERT_NO_FATAL_FAILURE(UseChromiumOfItsOwn());
    ASSERT_EQ(view->get_CookieManager(&manager), S_OK);
    KillChromium();
    const ListAnswer answer = List(L"", manager.Get());
    EXPECT_EQ(answer.result, E_FAIL);
    EXPECT_FALSE(answer.list);
}

} // namespace
} // namespace webview2_runtime_test
