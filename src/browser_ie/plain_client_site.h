// What an OLE client site answers that only shows its object in a window: there is nothing to save, and no container.
#pragma once

#include <windows.h>

#include <oleidl.h>

namespace kelda {

class PlainClientSite : public IOleClientSite {
  public:
    HRESULT STDMETHODCALLTYPE SaveObject() override { return E_NOTIMPL; }
    /// There are no monikers for objects in a window.
    HRESULT STDMETHODCALLTYPE GetMoniker(DWORD /*assign*/, DWORD /*which*/, IMoniker** moniker) override {
        if (moniker != nullptr) {
            *moniker = nullptr;
        }
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE GetContainer(IOleContainer** container) override {
        if (container != nullptr) {
            *container = nullptr;
        }
        return E_NOINTERFACE;
    }
    HRESULT STDMETHODCALLTYPE ShowObject() override { return S_OK; }
    HRESULT STDMETHODCALLTYPE OnShowWindow(BOOL /*show*/) override { return S_OK; }
    HRESULT STDMETHODCALLTYPE RequestNewObjectLayout() override { return E_NOTIMPL; }
};

} // namespace kelda
