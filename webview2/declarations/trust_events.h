// Certificates of both sides, and the server's challenge for a user name and a password.
#pragma once

#include "declarations/names.h"

WEBVIEW2_ID(ICoreWebView2StringCollection, "f41f3f8a-bcc3-11eb-8529-0242ac130003")
struct DECLSPEC_NOVTABLE ICoreWebView2StringCollection : public IUnknown {
    virtual HRESULT STDMETHODCALLTYPE get_Count(UINT32* value) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetValueAtIndex(UINT32 index, LPWSTR* value) = 0;
};

WEBVIEW2_ID(ICoreWebView2Certificate, "C5FB2FCE-1CAC-4AEE-9C79-5ED0362EAAE0")
struct DECLSPEC_NOVTABLE ICoreWebView2Certificate : public IUnknown {
    virtual HRESULT STDMETHODCALLTYPE get_Subject(LPWSTR* value) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_Issuer(LPWSTR* value) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_ValidFrom(double* value) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_ValidTo(double* value) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_DerEncodedSerialNumber(LPWSTR* value) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_DisplayName(LPWSTR* value) = 0;
    virtual HRESULT STDMETHODCALLTYPE ToPemEncoding(LPWSTR* pemEncodedData) = 0;
    virtual HRESULT STDMETHODCALLTYPE
    get_PemEncodedIssuerCertificateChain(ICoreWebView2StringCollection** value) = 0;
};

WEBVIEW2_ID(ICoreWebView2ServerCertificateErrorDetectedEventArgs, "012193ED-7C13-48FF-969D-A84C1F432A14")
struct DECLSPEC_NOVTABLE ICoreWebView2ServerCertificateErrorDetectedEventArgs : public IUnknown {
    virtual HRESULT STDMETHODCALLTYPE get_ErrorStatus(COREWEBVIEW2_WEB_ERROR_STATUS* value) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_RequestUri(LPWSTR* value) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_ServerCertificate(ICoreWebView2Certificate** value) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_Action(COREWEBVIEW2_SERVER_CERTIFICATE_ERROR_ACTION* value) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_Action(COREWEBVIEW2_SERVER_CERTIFICATE_ERROR_ACTION value) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetDeferral(ICoreWebView2Deferral** deferral) = 0;
};

WEBVIEW2_ID(ICoreWebView2ServerCertificateErrorDetectedEventHandler, "969b3a26-d85e-4795-8199-fef57344da22")
struct DECLSPEC_NOVTABLE ICoreWebView2ServerCertificateErrorDetectedEventHandler : public IUnknown {
    virtual HRESULT STDMETHODCALLTYPE Invoke(ICoreWebView2* sender,
                                             ICoreWebView2ServerCertificateErrorDetectedEventArgs* args) = 0;
};

WEBVIEW2_ID(ICoreWebView2ClientCertificate, "e7188076-bcc3-11eb-8529-0242ac130003")
struct DECLSPEC_NOVTABLE ICoreWebView2ClientCertificate : public IUnknown {
    virtual HRESULT STDMETHODCALLTYPE get_Subject(LPWSTR* value) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_Issuer(LPWSTR* value) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_ValidFrom(double* value) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_ValidTo(double* value) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_DerEncodedSerialNumber(LPWSTR* value) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_DisplayName(LPWSTR* value) = 0;
    virtual HRESULT STDMETHODCALLTYPE ToPemEncoding(LPWSTR* pemEncodedData) = 0;
    virtual HRESULT STDMETHODCALLTYPE
    get_PemEncodedIssuerCertificateChain(ICoreWebView2StringCollection** value) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_Kind(COREWEBVIEW2_CLIENT_CERTIFICATE_KIND* value) = 0;
};

WEBVIEW2_ID(ICoreWebView2ClientCertificateCollection, "ef5674d2-bcc3-11eb-8529-0242ac130003")
struct DECLSPEC_NOVTABLE ICoreWebView2ClientCertificateCollection : public IUnknown {
    virtual HRESULT STDMETHODCALLTYPE get_Count(UINT32* value) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetValueAtIndex(UINT32 index,
                                                      ICoreWebView2ClientCertificate** value) = 0;
};

WEBVIEW2_ID(ICoreWebView2ClientCertificateRequestedEventArgs, "bc59db28-bcc3-11eb-8529-0242ac130003")
struct DECLSPEC_NOVTABLE ICoreWebView2ClientCertificateRequestedEventArgs : public IUnknown {
    virtual HRESULT STDMETHODCALLTYPE get_Host(LPWSTR* value) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_Port(int* value) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_IsProxy(BOOL* value) = 0;
    virtual HRESULT STDMETHODCALLTYPE
    get_AllowedCertificateAuthorities(ICoreWebView2StringCollection** value) = 0;
    virtual HRESULT STDMETHODCALLTYPE
    get_MutuallyTrustedCertificates(ICoreWebView2ClientCertificateCollection** value) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_SelectedCertificate(ICoreWebView2ClientCertificate** value) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_SelectedCertificate(ICoreWebView2ClientCertificate* value) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_Cancel(BOOL* value) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_Cancel(BOOL value) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_Handled(BOOL* value) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_Handled(BOOL value) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetDeferral(ICoreWebView2Deferral** deferral) = 0;
};

WEBVIEW2_ID(ICoreWebView2ClientCertificateRequestedEventHandler, "d7175ba2-bcc3-11eb-8529-0242ac130003")
struct DECLSPEC_NOVTABLE ICoreWebView2ClientCertificateRequestedEventHandler : public IUnknown {
    virtual HRESULT STDMETHODCALLTYPE Invoke(ICoreWebView2* sender,
                                             ICoreWebView2ClientCertificateRequestedEventArgs* args) = 0;
};

WEBVIEW2_ID(ICoreWebView2BasicAuthenticationResponse, "07023f7d-2d77-4d67-9040-6e7d428c6a40")
struct DECLSPEC_NOVTABLE ICoreWebView2BasicAuthenticationResponse : public IUnknown {
    virtual HRESULT STDMETHODCALLTYPE get_UserName(LPWSTR* userName) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_UserName(LPCWSTR userName) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_Password(LPWSTR* password) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_Password(LPCWSTR password) = 0;
};

WEBVIEW2_ID(ICoreWebView2BasicAuthenticationRequestedEventArgs, "ef05516f-d897-4f9e-b672-d8e2307a3fb0")
struct DECLSPEC_NOVTABLE ICoreWebView2BasicAuthenticationRequestedEventArgs : public IUnknown {
    virtual HRESULT STDMETHODCALLTYPE get_Uri(LPWSTR* value) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_Challenge(LPWSTR* challenge) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_Response(ICoreWebView2BasicAuthenticationResponse** response) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_Cancel(BOOL* cancel) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_Cancel(BOOL cancel) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetDeferral(ICoreWebView2Deferral** deferral) = 0;
};

WEBVIEW2_ID(ICoreWebView2BasicAuthenticationRequestedEventHandler, "58b4d6c2-18d4-497e-b39b-9a96533fa278")
struct DECLSPEC_NOVTABLE ICoreWebView2BasicAuthenticationRequestedEventHandler : public IUnknown {
    virtual HRESULT STDMETHODCALLTYPE Invoke(ICoreWebView2* sender,
                                             ICoreWebView2BasicAuthenticationRequestedEventArgs* args) = 0;
};

WEBVIEW2_ID(ICoreWebView2Deferral, "c10e7f7b-b585-46f0-a623-8befbf3e4ee0")
struct DECLSPEC_NOVTABLE ICoreWebView2Deferral : public IUnknown {
    virtual HRESULT STDMETHODCALLTYPE Complete() = 0;
};
