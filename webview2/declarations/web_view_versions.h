// The later views of the web view, each with the calls that its release added.
#pragma once

#include "declarations/names.h"
#include "declarations/web_view.h"

WEBVIEW2_ID(ICoreWebView2_2, "9E8F0CF8-E670-4B5E-B2BC-73E061E3184C")
struct DECLSPEC_NOVTABLE ICoreWebView2_2 : public ICoreWebView2 {
    virtual HRESULT STDMETHODCALLTYPE
    add_WebResourceResponseReceived(ICoreWebView2WebResourceResponseReceivedEventHandler* eventHandler,
                                    EventRegistrationToken* token) = 0;
    virtual HRESULT STDMETHODCALLTYPE remove_WebResourceResponseReceived(EventRegistrationToken token) = 0;
    virtual HRESULT STDMETHODCALLTYPE
    NavigateWithWebResourceRequest(ICoreWebView2WebResourceRequest* request) = 0;
    virtual HRESULT STDMETHODCALLTYPE add_DOMContentLoaded(
        ICoreWebView2DOMContentLoadedEventHandler* eventHandler, EventRegistrationToken* token) = 0;
    virtual HRESULT STDMETHODCALLTYPE remove_DOMContentLoaded(EventRegistrationToken token) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_CookieManager(ICoreWebView2CookieManager** cookieManager) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_Environment(ICoreWebView2Environment** environment) = 0;
};

WEBVIEW2_ID(ICoreWebView2_3, "A0D6DF20-3B92-416D-AA0C-437A9C727857")
struct DECLSPEC_NOVTABLE ICoreWebView2_3 : public ICoreWebView2_2 {
    virtual HRESULT STDMETHODCALLTYPE TrySuspend(ICoreWebView2TrySuspendCompletedHandler* handler) = 0;
    virtual HRESULT STDMETHODCALLTYPE Resume() = 0;
    virtual HRESULT STDMETHODCALLTYPE get_IsSuspended(BOOL* isSuspended) = 0;
    virtual HRESULT STDMETHODCALLTYPE SetVirtualHostNameToFolderMapping(
        LPCWSTR hostName, LPCWSTR folderPath, COREWEBVIEW2_HOST_RESOURCE_ACCESS_KIND accessKind) = 0;
    virtual HRESULT STDMETHODCALLTYPE ClearVirtualHostNameToFolderMapping(LPCWSTR hostName) = 0;
};

WEBVIEW2_ID(ICoreWebView2_4, "20d02d59-6df2-42dc-bd06-f98a694b1302")
struct DECLSPEC_NOVTABLE ICoreWebView2_4 : public ICoreWebView2_3 {
    virtual HRESULT STDMETHODCALLTYPE add_FrameCreated(ICoreWebView2FrameCreatedEventHandler* eventHandler,
                                                       EventRegistrationToken* token) = 0;
    virtual HRESULT STDMETHODCALLTYPE remove_FrameCreated(EventRegistrationToken token) = 0;
    virtual HRESULT STDMETHODCALLTYPE add_DownloadStarting(
        ICoreWebView2DownloadStartingEventHandler* eventHandler, EventRegistrationToken* token) = 0;
    virtual HRESULT STDMETHODCALLTYPE remove_DownloadStarting(EventRegistrationToken token) = 0;
};

WEBVIEW2_ID(ICoreWebView2_5, "bedb11b8-d63c-11eb-b8bc-0242ac130003")
struct DECLSPEC_NOVTABLE ICoreWebView2_5 : public ICoreWebView2_4 {
    virtual HRESULT STDMETHODCALLTYPE add_ClientCertificateRequested(
        ICoreWebView2ClientCertificateRequestedEventHandler* eventHandler, EventRegistrationToken* token) = 0;
    virtual HRESULT STDMETHODCALLTYPE remove_ClientCertificateRequested(EventRegistrationToken token) = 0;
};

WEBVIEW2_ID(ICoreWebView2_6, "499aadac-d92c-4589-8a75-111bfc167795")
struct DECLSPEC_NOVTABLE ICoreWebView2_6 : public ICoreWebView2_5 {
    virtual HRESULT STDMETHODCALLTYPE OpenTaskManagerWindow() = 0;
};

WEBVIEW2_ID(ICoreWebView2_7, "79c24d83-09a3-45ae-9418-487f32a58740")
struct DECLSPEC_NOVTABLE ICoreWebView2_7 : public ICoreWebView2_6 {
    virtual HRESULT STDMETHODCALLTYPE PrintToPdf(LPCWSTR ResultFilePath,
                                                 ICoreWebView2PrintSettings* printSettings,
                                                 ICoreWebView2PrintToPdfCompletedHandler* handler) = 0;
};

WEBVIEW2_ID(ICoreWebView2_8, "E9632730-6E1E-43AB-B7B8-7B2C9E62E094")
struct DECLSPEC_NOVTABLE ICoreWebView2_8 : public ICoreWebView2_7 {
    virtual HRESULT STDMETHODCALLTYPE add_IsMutedChanged(
        ICoreWebView2IsMutedChangedEventHandler* eventHandler, EventRegistrationToken* token) = 0;
    virtual HRESULT STDMETHODCALLTYPE remove_IsMutedChanged(EventRegistrationToken token) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_IsMuted(BOOL* value) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_IsMuted(BOOL value) = 0;
    virtual HRESULT STDMETHODCALLTYPE
    add_IsDocumentPlayingAudioChanged(ICoreWebView2IsDocumentPlayingAudioChangedEventHandler* eventHandler,
                                      EventRegistrationToken* token) = 0;
    virtual HRESULT STDMETHODCALLTYPE remove_IsDocumentPlayingAudioChanged(EventRegistrationToken token) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_IsDocumentPlayingAudio(BOOL* value) = 0;
};

WEBVIEW2_ID(ICoreWebView2_9, "4d7b2eab-9fdc-468d-b998-a9260b5ed651")
struct DECLSPEC_NOVTABLE ICoreWebView2_9 : public ICoreWebView2_8 {
    virtual HRESULT STDMETHODCALLTYPE add_IsDefaultDownloadDialogOpenChanged(
        ICoreWebView2IsDefaultDownloadDialogOpenChangedEventHandler* handler,
        EventRegistrationToken* token) = 0;
    virtual HRESULT STDMETHODCALLTYPE
    remove_IsDefaultDownloadDialogOpenChanged(EventRegistrationToken token) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_IsDefaultDownloadDialogOpen(BOOL* value) = 0;
    virtual HRESULT STDMETHODCALLTYPE OpenDefaultDownloadDialog() = 0;
    virtual HRESULT STDMETHODCALLTYPE CloseDefaultDownloadDialog() = 0;
    virtual HRESULT STDMETHODCALLTYPE get_DefaultDownloadDialogCornerAlignment(
        COREWEBVIEW2_DEFAULT_DOWNLOAD_DIALOG_CORNER_ALIGNMENT* value) = 0;
    virtual HRESULT STDMETHODCALLTYPE
    put_DefaultDownloadDialogCornerAlignment(COREWEBVIEW2_DEFAULT_DOWNLOAD_DIALOG_CORNER_ALIGNMENT value) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_DefaultDownloadDialogMargin(POINT* value) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_DefaultDownloadDialogMargin(POINT value) = 0;
};

WEBVIEW2_ID(ICoreWebView2_10, "b1690564-6f5a-4983-8e48-31d1143fecdb")
struct DECLSPEC_NOVTABLE ICoreWebView2_10 : public ICoreWebView2_9 {
    virtual HRESULT STDMETHODCALLTYPE
    add_BasicAuthenticationRequested(ICoreWebView2BasicAuthenticationRequestedEventHandler* eventHandler,
                                     EventRegistrationToken* token) = 0;
    virtual HRESULT STDMETHODCALLTYPE remove_BasicAuthenticationRequested(EventRegistrationToken token) = 0;
};

WEBVIEW2_ID(ICoreWebView2_11, "0be78e56-c193-4051-b943-23b460c08bdb")
struct DECLSPEC_NOVTABLE ICoreWebView2_11 : public ICoreWebView2_10 {
    virtual HRESULT STDMETHODCALLTYPE CallDevToolsProtocolMethodForSession(
        LPCWSTR sessionId, LPCWSTR methodName, LPCWSTR parametersAsJson,
        ICoreWebView2CallDevToolsProtocolMethodCompletedHandler* handler) = 0;
    virtual HRESULT STDMETHODCALLTYPE add_ContextMenuRequested(
        ICoreWebView2ContextMenuRequestedEventHandler* eventHandler, EventRegistrationToken* token) = 0;
    virtual HRESULT STDMETHODCALLTYPE remove_ContextMenuRequested(EventRegistrationToken token) = 0;
};

WEBVIEW2_ID(ICoreWebView2_12, "35D69927-BCFA-4566-9349-6B3E0D154CAC")
struct DECLSPEC_NOVTABLE ICoreWebView2_12 : public ICoreWebView2_11 {
    virtual HRESULT STDMETHODCALLTYPE add_StatusBarTextChanged(
        ICoreWebView2StatusBarTextChangedEventHandler* eventHandler, EventRegistrationToken* token) = 0;
    virtual HRESULT STDMETHODCALLTYPE remove_StatusBarTextChanged(EventRegistrationToken token) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_StatusBarText(LPWSTR* value) = 0;
};

WEBVIEW2_ID(ICoreWebView2_13, "f75f09a8-667e-4983-88d6-c8773f315e84")
struct DECLSPEC_NOVTABLE ICoreWebView2_13 : public ICoreWebView2_12 {
    virtual HRESULT STDMETHODCALLTYPE get_Profile(ICoreWebView2Profile** value) = 0;
};

WEBVIEW2_ID(ICoreWebView2_14, "6daa4f10-4a90-4753-8898-77c5df534165")
struct DECLSPEC_NOVTABLE ICoreWebView2_14 : public ICoreWebView2_13 {
    virtual HRESULT STDMETHODCALLTYPE
    add_ServerCertificateErrorDetected(ICoreWebView2ServerCertificateErrorDetectedEventHandler* eventHandler,
                                       EventRegistrationToken* token) = 0;
    virtual HRESULT STDMETHODCALLTYPE remove_ServerCertificateErrorDetected(EventRegistrationToken token) = 0;
    virtual HRESULT STDMETHODCALLTYPE ClearServerCertificateErrorActions(
        ICoreWebView2ClearServerCertificateErrorActionsCompletedHandler* handler) = 0;
};

WEBVIEW2_ID(ICoreWebView2_15, "517B2D1D-7DAE-4A66-A4F4-10352FFB9518")
struct DECLSPEC_NOVTABLE ICoreWebView2_15 : public ICoreWebView2_14 {
    virtual HRESULT STDMETHODCALLTYPE add_FaviconChanged(
        ICoreWebView2FaviconChangedEventHandler* eventHandler, EventRegistrationToken* token) = 0;
    virtual HRESULT STDMETHODCALLTYPE remove_FaviconChanged(EventRegistrationToken token) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_FaviconUri(LPWSTR* value) = 0;
    virtual HRESULT STDMETHODCALLTYPE
    GetFavicon(COREWEBVIEW2_FAVICON_IMAGE_FORMAT format,
               ICoreWebView2GetFaviconCompletedHandler* completedHandler) = 0;
};
