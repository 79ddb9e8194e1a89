// Interfaces of the control with every method unsupported: a subclass overrides what there is.
#pragma once

#include <windows.h>

#include <exdisp.h>
#include <oleidl.h>

namespace legacy_control {

/// The browser, for scripts and hosts.
class WebBrowserStubs : public IWebBrowser2 {
  public:
    // IDispatch
    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*,
                                     UINT*) override {
        return E_NOTIMPL;
    }

    // IWebBrowser
    HRESULT STDMETHODCALLTYPE GoBack() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GoForward() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GoHome() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GoSearch() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Navigate(BSTR, VARIANT*, VARIANT*, VARIANT*, VARIANT*) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE Refresh() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Refresh2(VARIANT*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Stop() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_Application(IDispatch**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_Parent(IDispatch**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_Container(IDispatch**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_Document(IDispatch**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_TopLevelContainer(VARIANT_BOOL*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_Type(BSTR*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_Left(LONG*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE put_Left(LONG) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_Top(LONG*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE put_Top(LONG) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_Width(LONG*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE put_Width(LONG) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_Height(LONG*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE put_Height(LONG) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_LocationName(BSTR*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_LocationURL(BSTR*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_Busy(VARIANT_BOOL*) override { return E_NOTIMPL; }

    // IWebBrowserApp
    HRESULT STDMETHODCALLTYPE Quit() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE ClientToWindow(int*, int*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE PutProperty(BSTR, VARIANT) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetProperty(BSTR, VARIANT*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_Name(BSTR*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_HWND(SHANDLE_PTR*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_FullName(BSTR*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_Path(BSTR*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_Visible(VARIANT_BOOL*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE put_Visible(VARIANT_BOOL) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_StatusBar(VARIANT_BOOL*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE put_StatusBar(VARIANT_BOOL) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_StatusText(BSTR*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE put_StatusText(BSTR) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_ToolBar(int*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE put_ToolBar(int) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_MenuBar(VARIANT_BOOL*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE put_MenuBar(VARIANT_BOOL) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_FullScreen(VARIANT_BOOL*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE put_FullScreen(VARIANT_BOOL) override { return E_NOTIMPL; }

    // IWebBrowser2
    HRESULT STDMETHODCALLTYPE Navigate2(VARIANT*, VARIANT*, VARIANT*, VARIANT*, VARIANT*) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE QueryStatusWB(OLECMDID, OLECMDF*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE ExecWB(OLECMDID, OLECMDEXECOPT, VARIANT*, VARIANT*) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE ShowBrowserBar(VARIANT*, VARIANT*, VARIANT*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_ReadyState(READYSTATE*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_Offline(VARIANT_BOOL*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE put_Offline(VARIANT_BOOL) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_Silent(VARIANT_BOOL*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE put_Silent(VARIANT_BOOL) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_RegisterAsBrowser(VARIANT_BOOL*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE put_RegisterAsBrowser(VARIANT_BOOL) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_RegisterAsDropTarget(VARIANT_BOOL*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE put_RegisterAsDropTarget(VARIANT_BOOL) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_TheaterMode(VARIANT_BOOL*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE put_TheaterMode(VARIANT_BOOL) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_AddressBar(VARIANT_BOOL*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE put_AddressBar(VARIANT_BOOL) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_Resizable(VARIANT_BOOL*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE put_Resizable(VARIANT_BOOL) override { return E_NOTIMPL; }
};

/// The embedded object.
class OleObjectStubs : public IOleObject {
  public:
    // IOleObject
    HRESULT STDMETHODCALLTYPE SetClientSite(IOleClientSite*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetClientSite(IOleClientSite**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE SetHostNames(LPCOLESTR, LPCOLESTR) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Close(DWORD) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE SetMoniker(DWORD, IMoniker*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetMoniker(DWORD, DWORD, IMoniker**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE InitFromData(IDataObject*, WINBOOL, DWORD) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetClipboardData(DWORD, IDataObject**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE DoVerb(LONG, LPMSG, IOleClientSite*, LONG, HWND, LPCRECT) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE EnumVerbs(IEnumOLEVERB**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Update() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE IsUpToDate() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetUserClassID(CLSID*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetUserType(DWORD, LPOLESTR*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE SetExtent(DWORD, SIZEL*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetExtent(DWORD, SIZEL*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Advise(IAdviseSink*, DWORD*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Unadvise(DWORD) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE EnumAdvise(IEnumSTATDATA**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetMiscStatus(DWORD, DWORD*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE SetColorScheme(LOGPALETTE*) override { return E_NOTIMPL; }
};

} // namespace legacy_control
