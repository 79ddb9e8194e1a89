// What the host of a page answers that adds nothing to the control: no menus, no drops, no addresses and no data of its own.
// What it wants of the control, and what pages see of it, is left to the derived class.
#pragma once

#include <windows.h>

#include <mshtmhst.h>

namespace kelda {

class PlainDocHost : public IDocHostUIHandler {
  public:
    /// So the control shows none.
    HRESULT STDMETHODCALLTYPE ShowContextMenu(DWORD /*id*/, POINT* /*position*/, IUnknown* /*commands*/,
                                              IDispatch* /*object*/) override {
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE ShowUI(DWORD /*id*/, IOleInPlaceActiveObject* /*active*/,
                                     IOleCommandTarget* /*commands*/, IOleInPlaceFrame* /*frame*/,
                                     IOleInPlaceUIWindow* /*document*/) override {
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE HideUI() override { return S_OK; }
    HRESULT STDMETHODCALLTYPE UpdateUI() override { return S_OK; }
    HRESULT STDMETHODCALLTYPE EnableModeless(BOOL /*enable*/) override { return S_OK; }
    HRESULT STDMETHODCALLTYPE OnDocWindowActivate(BOOL /*activate*/) override { return S_OK; }
    HRESULT STDMETHODCALLTYPE OnFrameWindowActivate(BOOL /*activate*/) override { return S_OK; }
    HRESULT STDMETHODCALLTYPE ResizeBorder(LPCRECT /*border*/, IOleInPlaceUIWindow* /*window*/,
                                           BOOL /*frame*/) override {
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE TranslateAccelerator(LPMSG /*message*/, const GUID* /*group*/,
                                                   DWORD /*command*/) override {
        return S_FALSE;
    }

    // These announce a replacement with S_OK, so that each gives none.
    HRESULT STDMETHODCALLTYPE GetOptionKeyPath(LPOLESTR* key, DWORD /*reserved*/) override {
        return None(key);
    }
    HRESULT STDMETHODCALLTYPE GetDropTarget(IDropTarget* /*own*/, IDropTarget** target) override {
        return None(target);
    }
    HRESULT STDMETHODCALLTYPE TranslateUrl(DWORD /*flags*/, OLECHAR* /*url*/, OLECHAR** translated) override {
        return None(translated);
    }
    HRESULT STDMETHODCALLTYPE FilterDataObject(IDataObject* /*own*/, IDataObject** filtered) override {
        return None(filtered);
    }

  private:
    template <typename Replacement>
    static HRESULT None(Replacement** replacement) {
        if (replacement != nullptr) {
            *replacement = nullptr;
        }
        return S_OK;
    }
};

} // namespace kelda
