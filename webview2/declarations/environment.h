// The environment: what a process starts its browser with, and what makes requests and controllers.
#pragma once

#include "declarations/names.h"

WEBVIEW2_ID(ICoreWebView2EnvironmentOptions, "2fde08a8-1e9a-4766-8c05-95a9ceb9d1c5")
struct DECLSPEC_NOVTABLE ICoreWebView2EnvironmentOptions : public IUnknown {
    virtual HRESULT STDMETHODCALLTYPE get_AdditionalBrowserArguments(LPWSTR* value) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_AdditionalBrowserArguments(LPCWSTR value) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_Language(LPWSTR* value) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_Language(LPCWSTR value) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_TargetCompatibleBrowserVersion(LPWSTR* value) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_TargetCompatibleBrowserVersion(LPCWSTR value) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_AllowSingleSignOnUsingOSPrimaryAccount(BOOL* allow) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_AllowSingleSignOnUsingOSPrimaryAccount(BOOL allow) = 0;
};

WEBVIEW2_ID(ICoreWebView2EnvironmentOptions2, "ff85c98a-1ba7-4a6b-90c8-2b752c89e9e2")
struct DECLSPEC_NOVTABLE ICoreWebView2EnvironmentOptions2 : public IUnknown {
    virtual HRESULT STDMETHODCALLTYPE get_ExclusiveUserDataFolderAccess(BOOL* value) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_ExclusiveUserDataFolderAccess(BOOL value) = 0;
};

WEBVIEW2_ID(ICoreWebView2EnvironmentOptions3, "4a5c436e-a9e3-4a2e-89c3-910d3513f5cc")
struct DECLSPEC_NOVTABLE ICoreWebView2EnvironmentOptions3 : public IUnknown {
    virtual HRESULT STDMETHODCALLTYPE get_IsCustomCrashReportingEnabled(BOOL* value) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_IsCustomCrashReportingEnabled(BOOL value) = 0;
};

WEBVIEW2_ID(ICoreWebView2EnvironmentOptions4, "ac52d13f-0d38-475a-9dca-876580d6793e")
struct DECLSPEC_NOVTABLE ICoreWebView2EnvironmentOptions4 : public IUnknown {
    virtual HRESULT STDMETHODCALLTYPE GetCustomSchemeRegistrations(
        UINT32* count, ICoreWebView2CustomSchemeRegistration*** schemeRegistrations) = 0;
    virtual HRESULT STDMETHODCALLTYPE SetCustomSchemeRegistrations(
        UINT32 count, ICoreWebView2CustomSchemeRegistration** schemeRegistrations) = 0;
};

WEBVIEW2_ID(ICoreWebView2EnvironmentOptions5, "0ae35d64-c47f-4464-814e-259c345d1501")
struct DECLSPEC_NOVTABLE ICoreWebView2EnvironmentOptions5 : public IUnknown {
    virtual HRESULT STDMETHODCALLTYPE get_EnableTrackingPrevention(BOOL* value) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_EnableTrackingPrevention(BOOL value) = 0;
};

WEBVIEW2_ID(ICoreWebView2EnvironmentOptions6, "57d29cc3-c84f-42a0-b0e2-effbd5e179de")
struct DECLSPEC_NOVTABLE ICoreWebView2EnvironmentOptions6 : public IUnknown {
    virtual HRESULT STDMETHODCALLTYPE get_AreBrowserExtensionsEnabled(BOOL* value) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_AreBrowserExtensionsEnabled(BOOL value) = 0;
};

WEBVIEW2_ID(ICoreWebView2EnvironmentOptions7, "c48d539f-e39f-441c-ae68-1f66e570bdc5")
struct DECLSPEC_NOVTABLE ICoreWebView2EnvironmentOptions7 : public IUnknown {
    virtual HRESULT STDMETHODCALLTYPE get_ChannelSearchKind(COREWEBVIEW2_CHANNEL_SEARCH_KIND* value) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_ChannelSearchKind(COREWEBVIEW2_CHANNEL_SEARCH_KIND value) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_ReleaseChannels(COREWEBVIEW2_RELEASE_CHANNELS* value) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_ReleaseChannels(COREWEBVIEW2_RELEASE_CHANNELS value) = 0;
};

WEBVIEW2_ID(ICoreWebView2EnvironmentOptions8, "7c7ecf51-e918-5caf-853c-e9a2bcc27775")
struct DECLSPEC_NOVTABLE ICoreWebView2EnvironmentOptions8 : public IUnknown {
    virtual HRESULT STDMETHODCALLTYPE get_ScrollBarStyle(COREWEBVIEW2_SCROLLBAR_STYLE* value) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_ScrollBarStyle(COREWEBVIEW2_SCROLLBAR_STYLE value) = 0;
};

WEBVIEW2_ID(ICoreWebView2CustomSchemeRegistration, "d60ac92c-37a6-4b26-a39e-95cfe59047bb")
struct DECLSPEC_NOVTABLE ICoreWebView2CustomSchemeRegistration : public IUnknown {
    virtual HRESULT STDMETHODCALLTYPE get_SchemeName(LPWSTR* schemeName) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_TreatAsSecure(BOOL* treatAsSecure) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_TreatAsSecure(BOOL value) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetAllowedOrigins(UINT32* allowedOriginsCount,
                                                        LPWSTR** allowedOrigins) = 0;
    virtual HRESULT STDMETHODCALLTYPE SetAllowedOrigins(UINT32 allowedOriginsCount,
                                                        LPCWSTR* allowedOrigins) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_HasAuthorityComponent(BOOL* hasAuthorityComponent) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_HasAuthorityComponent(BOOL hasAuthorityComponent) = 0;
};

WEBVIEW2_ID(ICoreWebView2Environment, "b96d755e-0319-4e92-a296-23436f46a1fc")
struct DECLSPEC_NOVTABLE ICoreWebView2Environment : public IUnknown {
    virtual HRESULT STDMETHODCALLTYPE CreateCoreWebView2Controller(
        HWND parentWindow, ICoreWebView2CreateCoreWebView2ControllerCompletedHandler* handler) = 0;
    virtual HRESULT STDMETHODCALLTYPE
    CreateWebResourceResponse(IStream* content, int statusCode, LPCWSTR reasonPhrase, LPCWSTR headers,
                              ICoreWebView2WebResourceResponse** response) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_BrowserVersionString(LPWSTR* versionInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE add_NewBrowserVersionAvailable(
        ICoreWebView2NewBrowserVersionAvailableEventHandler* eventHandler, EventRegistrationToken* token) = 0;
    virtual HRESULT STDMETHODCALLTYPE remove_NewBrowserVersionAvailable(EventRegistrationToken token) = 0;
};

WEBVIEW2_ID(ICoreWebView2Environment2, "41f3632b-5ef4-404f-ad82-2d606c5a9a21")
struct DECLSPEC_NOVTABLE ICoreWebView2Environment2 : public ICoreWebView2Environment {
    virtual HRESULT STDMETHODCALLTYPE CreateWebResourceRequest(LPCWSTR uri, LPCWSTR Method, IStream* postData,
                                                               LPCWSTR Headers,
                                                               ICoreWebView2WebResourceRequest** value) = 0;
};

WEBVIEW2_ID(ICoreWebView2Environment3, "80a22ae3-be7c-4ce2-afe1-5a50056cdeeb")
struct DECLSPEC_NOVTABLE ICoreWebView2Environment3 : public ICoreWebView2Environment2 {
    virtual HRESULT STDMETHODCALLTYPE CreateCoreWebView2CompositionController(
        HWND ParentWindow, ICoreWebView2CreateCoreWebView2CompositionControllerCompletedHandler* handler) = 0;
    virtual HRESULT STDMETHODCALLTYPE CreateCoreWebView2PointerInfo(ICoreWebView2PointerInfo** value) = 0;
};

WEBVIEW2_ID(ICoreWebView2Environment4, "20944379-6dcf-41d6-a0a0-abc0fc50de0d")
struct DECLSPEC_NOVTABLE ICoreWebView2Environment4 : public ICoreWebView2Environment3 {
    virtual HRESULT STDMETHODCALLTYPE GetAutomationProviderForWindow(HWND hwnd, IUnknown** value) = 0;
};

WEBVIEW2_ID(ICoreWebView2Environment5, "319e423d-e0d7-4b8d-9254-ae9475de9b17")
struct DECLSPEC_NOVTABLE ICoreWebView2Environment5 : public ICoreWebView2Environment4 {
    virtual HRESULT STDMETHODCALLTYPE add_BrowserProcessExited(
        ICoreWebView2BrowserProcessExitedEventHandler* eventHandler, EventRegistrationToken* token) = 0;
    virtual HRESULT STDMETHODCALLTYPE remove_BrowserProcessExited(EventRegistrationToken token) = 0;
};

WEBVIEW2_ID(ICoreWebView2Environment6, "e59ee362-acbd-4857-9a8e-d3644d9459a9")
struct DECLSPEC_NOVTABLE ICoreWebView2Environment6 : public ICoreWebView2Environment5 {
    virtual HRESULT STDMETHODCALLTYPE CreatePrintSettings(ICoreWebView2PrintSettings** value) = 0;
};

WEBVIEW2_ID(ICoreWebView2Environment7, "43c22296-3bbd-43a4-9c00-5c0df6dd29a2")
struct DECLSPEC_NOVTABLE ICoreWebView2Environment7 : public ICoreWebView2Environment6 {
    virtual HRESULT STDMETHODCALLTYPE get_UserDataFolder(LPWSTR* value) = 0;
};

WEBVIEW2_ID(ICoreWebView2Environment8, "d6eb91dd-c3d2-45e5-bd29-6dc2bc4de9cf")
struct DECLSPEC_NOVTABLE ICoreWebView2Environment8 : public ICoreWebView2Environment7 {
    virtual HRESULT STDMETHODCALLTYPE add_ProcessInfosChanged(
        ICoreWebView2ProcessInfosChangedEventHandler* eventHandler, EventRegistrationToken* token) = 0;
    virtual HRESULT STDMETHODCALLTYPE remove_ProcessInfosChanged(EventRegistrationToken token) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetProcessInfos(ICoreWebView2ProcessInfoCollection** value) = 0;
};

WEBVIEW2_ID(ICoreWebView2Environment9, "f06f41bf-4b5a-49d8-b9f6-fa16cd29f274")
struct DECLSPEC_NOVTABLE ICoreWebView2Environment9 : public ICoreWebView2Environment8 {
    virtual HRESULT STDMETHODCALLTYPE CreateContextMenuItem(LPCWSTR Label, IStream* iconStream,
                                                            COREWEBVIEW2_CONTEXT_MENU_ITEM_KIND Kind,
                                                            ICoreWebView2ContextMenuItem** value) = 0;
};

WEBVIEW2_ID(ICoreWebView2Environment10, "ee0eb9df-6f12-46ce-b53f-3f47b9c928e0")
struct DECLSPEC_NOVTABLE ICoreWebView2Environment10 : public ICoreWebView2Environment9 {
    virtual HRESULT STDMETHODCALLTYPE
    CreateCoreWebView2ControllerOptions(ICoreWebView2ControllerOptions** value) = 0;
    virtual HRESULT STDMETHODCALLTYPE CreateCoreWebView2ControllerWithOptions(
        HWND ParentWindow, ICoreWebView2ControllerOptions* options,
        ICoreWebView2CreateCoreWebView2ControllerCompletedHandler* handler) = 0;
    virtual HRESULT STDMETHODCALLTYPE CreateCoreWebView2CompositionControllerWithOptions(
        HWND ParentWindow, ICoreWebView2ControllerOptions* options,
        ICoreWebView2CreateCoreWebView2CompositionControllerCompletedHandler* handler) = 0;
};

WEBVIEW2_ID(ICoreWebView2ControllerOptions, "12aae616-8ccb-44ec-bcb3-eb1831881635")
struct DECLSPEC_NOVTABLE ICoreWebView2ControllerOptions : public IUnknown {
    virtual HRESULT STDMETHODCALLTYPE get_ProfileName(LPWSTR* value) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_ProfileName(LPCWSTR value) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_IsInPrivateModeEnabled(BOOL* value) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_IsInPrivateModeEnabled(BOOL value) = 0;
};

WEBVIEW2_ID(ICoreWebView2CreateCoreWebView2EnvironmentCompletedHandler,
            "4e8a3389-c9d8-4bd2-b6b5-124fee6cc14d")
struct DECLSPEC_NOVTABLE ICoreWebView2CreateCoreWebView2EnvironmentCompletedHandler : public IUnknown {
    virtual HRESULT STDMETHODCALLTYPE Invoke(HRESULT errorCode, ICoreWebView2Environment* result) = 0;
};

WEBVIEW2_ID(ICoreWebView2CreateCoreWebView2ControllerCompletedHandler, "6c4819f3-c9b7-4260-8127-c9f5bde7f68c")
struct DECLSPEC_NOVTABLE ICoreWebView2CreateCoreWebView2ControllerCompletedHandler : public IUnknown {
    virtual HRESULT STDMETHODCALLTYPE Invoke(HRESULT errorCode, ICoreWebView2Controller* result) = 0;
};
