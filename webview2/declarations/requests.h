// What goes to the server and what comes back: requests, responses, headers and their events.
#pragma once

#include "declarations/names.h"

WEBVIEW2_ID(ICoreWebView2HttpHeadersCollectionIterator, "0702fc30-f43b-47bb-ab52-a42cb552ad9f")
struct DECLSPEC_NOVTABLE ICoreWebView2HttpHeadersCollectionIterator : public IUnknown {
    virtual HRESULT STDMETHODCALLTYPE GetCurrentHeader(LPWSTR* name, LPWSTR* value) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_HasCurrentHeader(BOOL* hasCurrent) = 0;
    virtual HRESULT STDMETHODCALLTYPE MoveNext(BOOL* hasNext) = 0;
};

WEBVIEW2_ID(ICoreWebView2HttpRequestHeaders, "e86cac0e-5523-465c-b536-8fb9fc8c8c60")
struct DECLSPEC_NOVTABLE ICoreWebView2HttpRequestHeaders : public IUnknown {
    virtual HRESULT STDMETHODCALLTYPE GetHeader(LPCWSTR name, LPWSTR* value) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetHeaders(LPCWSTR name,
                                                 ICoreWebView2HttpHeadersCollectionIterator** value) = 0;
    virtual HRESULT STDMETHODCALLTYPE Contains(LPCWSTR name, BOOL* value) = 0;
    virtual HRESULT STDMETHODCALLTYPE SetHeader(LPCWSTR name, LPCWSTR value) = 0;
    virtual HRESULT STDMETHODCALLTYPE RemoveHeader(LPCWSTR name) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetIterator(ICoreWebView2HttpHeadersCollectionIterator** value) = 0;
};

WEBVIEW2_ID(ICoreWebView2HttpResponseHeaders, "03c5ff5a-9b45-4a88-881c-89a9f328619c")
struct DECLSPEC_NOVTABLE ICoreWebView2HttpResponseHeaders : public IUnknown {
    virtual HRESULT STDMETHODCALLTYPE AppendHeader(LPCWSTR name, LPCWSTR value) = 0;
    virtual HRESULT STDMETHODCALLTYPE Contains(LPCWSTR name, BOOL* value) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetHeader(LPCWSTR name, LPWSTR* value) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetHeaders(LPCWSTR name,
                                                 ICoreWebView2HttpHeadersCollectionIterator** value) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetIterator(ICoreWebView2HttpHeadersCollectionIterator** value) = 0;
};

WEBVIEW2_ID(ICoreWebView2WebResourceRequest, "97055cd4-512c-4264-8b5f-e3f446cea6a5")
struct DECLSPEC_NOVTABLE ICoreWebView2WebResourceRequest : public IUnknown {
    virtual HRESULT STDMETHODCALLTYPE get_Uri(LPWSTR* uri) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_Uri(LPCWSTR uri) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_Method(LPWSTR* method) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_Method(LPCWSTR method) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_Content(IStream** content) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_Content(IStream* content) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_Headers(ICoreWebView2HttpRequestHeaders** headers) = 0;
};

WEBVIEW2_ID(ICoreWebView2WebResourceResponse, "aafcc94f-fa27-48fd-97df-830ef75aaec9")
struct DECLSPEC_NOVTABLE ICoreWebView2WebResourceResponse : public IUnknown {
    virtual HRESULT STDMETHODCALLTYPE get_Content(IStream** content) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_Content(IStream* content) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_Headers(ICoreWebView2HttpResponseHeaders** headers) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_StatusCode(int* statusCode) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_StatusCode(int statusCode) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_ReasonPhrase(LPWSTR* reasonPhrase) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_ReasonPhrase(LPCWSTR reasonPhrase) = 0;
};

WEBVIEW2_ID(ICoreWebView2WebResourceRequestedEventArgs, "453e667f-12c7-49d4-be6d-ddbe7956f57a")
struct DECLSPEC_NOVTABLE ICoreWebView2WebResourceRequestedEventArgs : public IUnknown {
    virtual HRESULT STDMETHODCALLTYPE get_Request(ICoreWebView2WebResourceRequest** request) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_Response(ICoreWebView2WebResourceResponse** response) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_Response(ICoreWebView2WebResourceResponse* response) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetDeferral(ICoreWebView2Deferral** deferral) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_ResourceContext(COREWEBVIEW2_WEB_RESOURCE_CONTEXT* context) = 0;
};

WEBVIEW2_ID(ICoreWebView2WebResourceRequestedEventHandler, "ab00b74c-15f1-4646-80e8-e76341d25d71")
struct DECLSPEC_NOVTABLE ICoreWebView2WebResourceRequestedEventHandler : public IUnknown {
    virtual HRESULT STDMETHODCALLTYPE Invoke(ICoreWebView2* sender,
                                             ICoreWebView2WebResourceRequestedEventArgs* args) = 0;
};

WEBVIEW2_ID(ICoreWebView2WebResourceResponseViewGetContentCompletedHandler,
            "875738e1-9fa2-40e3-8b74-2e8972dd6fe7")
struct DECLSPEC_NOVTABLE ICoreWebView2WebResourceResponseViewGetContentCompletedHandler : public IUnknown {
    virtual HRESULT STDMETHODCALLTYPE Invoke(HRESULT errorCode, IStream* result) = 0;
};

WEBVIEW2_ID(ICoreWebView2WebResourceResponseView, "79701053-7759-4162-8F7D-F1B3F084928D")
struct DECLSPEC_NOVTABLE ICoreWebView2WebResourceResponseView : public IUnknown {
    virtual HRESULT STDMETHODCALLTYPE get_Headers(ICoreWebView2HttpResponseHeaders** headers) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_StatusCode(int* statusCode) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_ReasonPhrase(LPWSTR* reasonPhrase) = 0;
    virtual HRESULT STDMETHODCALLTYPE
    GetContent(ICoreWebView2WebResourceResponseViewGetContentCompletedHandler* handler) = 0;
};

WEBVIEW2_ID(ICoreWebView2WebResourceResponseReceivedEventArgs, "d1db483d-6796-4b8b-80fc-13712bb716f4")
struct DECLSPEC_NOVTABLE ICoreWebView2WebResourceResponseReceivedEventArgs : public IUnknown {
    virtual HRESULT STDMETHODCALLTYPE get_Request(ICoreWebView2WebResourceRequest** value) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_Response(ICoreWebView2WebResourceResponseView** value) = 0;
};

WEBVIEW2_ID(ICoreWebView2WebResourceResponseReceivedEventHandler, "7de9898a-24f5-40c3-a2de-d4f458e69828")
struct DECLSPEC_NOVTABLE ICoreWebView2WebResourceResponseReceivedEventHandler : public IUnknown {
    virtual HRESULT STDMETHODCALLTYPE Invoke(ICoreWebView2* sender,
                                             ICoreWebView2WebResourceResponseReceivedEventArgs* args) = 0;
};
