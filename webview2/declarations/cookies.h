// The browser's cookies.
#pragma once

#include "declarations/names.h"

WEBVIEW2_ID(ICoreWebView2Cookie, "AD26D6BE-1486-43E6-BF87-A2034006CA21")
struct DECLSPEC_NOVTABLE ICoreWebView2Cookie : public IUnknown {
    virtual HRESULT STDMETHODCALLTYPE get_Name(LPWSTR* name) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_Value(LPWSTR* value) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_Value(LPCWSTR value) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_Domain(LPWSTR* domain) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_Path(LPWSTR* path) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_Expires(double* expires) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_Expires(double expires) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_IsHttpOnly(BOOL* isHttpOnly) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_IsHttpOnly(BOOL isHttpOnly) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_SameSite(COREWEBVIEW2_COOKIE_SAME_SITE_KIND* sameSite) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_SameSite(COREWEBVIEW2_COOKIE_SAME_SITE_KIND sameSite) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_IsSecure(BOOL* isSecure) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_IsSecure(BOOL isSecure) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_IsSession(BOOL* isSession) = 0;
};

WEBVIEW2_ID(ICoreWebView2CookieList, "f7f6f714-5d2a-43c6-9503-346ece02d186")
struct DECLSPEC_NOVTABLE ICoreWebView2CookieList : public IUnknown {
    virtual HRESULT STDMETHODCALLTYPE get_Count(UINT32* value) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetValueAtIndex(UINT32 index, ICoreWebView2Cookie** value) = 0;
};

WEBVIEW2_ID(ICoreWebView2GetCookiesCompletedHandler, "5a4f5069-5c15-47c3-8646-f4de1c116670")
struct DECLSPEC_NOVTABLE ICoreWebView2GetCookiesCompletedHandler : public IUnknown {
    virtual HRESULT STDMETHODCALLTYPE Invoke(HRESULT errorCode, ICoreWebView2CookieList* result) = 0;
};

WEBVIEW2_ID(ICoreWebView2CookieManager, "177CD9E7-B6F5-451A-94A0-5D7A3A4C4141")
struct DECLSPEC_NOVTABLE ICoreWebView2CookieManager : public IUnknown {
    virtual HRESULT STDMETHODCALLTYPE CreateCookie(LPCWSTR name, LPCWSTR value, LPCWSTR domain, LPCWSTR path,
                                                   ICoreWebView2Cookie** cookie) = 0;
    virtual HRESULT STDMETHODCALLTYPE CopyCookie(ICoreWebView2Cookie* cookieParam,
                                                 ICoreWebView2Cookie** cookie) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetCookies(LPCWSTR uri,
                                                 ICoreWebView2GetCookiesCompletedHandler* handler) = 0;
    virtual HRESULT STDMETHODCALLTYPE AddOrUpdateCookie(ICoreWebView2Cookie* cookie) = 0;
    virtual HRESULT STDMETHODCALLTYPE DeleteCookie(ICoreWebView2Cookie* cookie) = 0;
    virtual HRESULT STDMETHODCALLTYPE DeleteCookies(LPCWSTR name, LPCWSTR uri) = 0;
    virtual HRESULT STDMETHODCALLTYPE DeleteCookiesWithDomainAndPath(LPCWSTR name, LPCWSTR domain,
                                                                     LPCWSTR path) = 0;
    virtual HRESULT STDMETHODCALLTYPE DeleteAllCookies() = 0;
};
