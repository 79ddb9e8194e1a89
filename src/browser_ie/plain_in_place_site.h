// What an in-place site answers that has no menus, no undo and no scroll bars of its own. Where it is, and the coming and
// going of the object, are left to the derived class.
#pragma once

#include <windows.h>

#include <oleidl.h>

namespace kelda {

class PlainInPlaceSite : public IOleInPlaceSite {
  public:
    HRESULT STDMETHODCALLTYPE ContextSensitiveHelp(BOOL /*enter*/) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE CanInPlaceActivate() override { return S_OK; }
    HRESULT STDMETHODCALLTYPE OnUIActivate() override { return S_OK; }
    HRESULT STDMETHODCALLTYPE Scroll(SIZE /*extent*/) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE OnUIDeactivate(BOOL /*undoable*/) override { return S_OK; }
    HRESULT STDMETHODCALLTYPE DiscardUndoState() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE DeactivateAndUndo() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE OnPosRectChange(LPCRECT /*position*/) override { return E_NOTIMPL; }
};

} // namespace kelda
