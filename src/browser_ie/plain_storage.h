// The storage that OleCreate wants and the control does not need: nothing of a browser is ever saved.
#pragma once

#include <windows.h>

#include <objidl.h>

namespace kelda {

class PlainStorage : public IStorage {
  public:
    HRESULT STDMETHODCALLTYPE CreateStream(const OLECHAR* /*name*/, DWORD /*mode*/, DWORD /*reserved*/,
                                           DWORD /*reserved*/, IStream** stream) override {
        return Nothing(stream);
    }
    HRESULT STDMETHODCALLTYPE OpenStream(const OLECHAR* /*name*/, void* /*reserved*/, DWORD /*mode*/,
                                         DWORD /*reserved*/, IStream** stream) override {
        return Nothing(stream);
    }
    HRESULT STDMETHODCALLTYPE CreateStorage(const OLECHAR* /*name*/, DWORD /*mode*/, DWORD /*reserved*/,
                                            DWORD /*reserved*/, IStorage** storage) override {
        return Nothing(storage);
    }
    HRESULT STDMETHODCALLTYPE OpenStorage(const OLECHAR* /*name*/, IStorage* /*priority*/, DWORD /*mode*/,
                                          SNB /*exclude*/, DWORD /*reserved*/, IStorage** storage) override {
        return Nothing(storage);
    }
    HRESULT STDMETHODCALLTYPE CopyTo(DWORD /*count*/, const IID* /*exclude*/, SNB /*exclude*/,
                                     IStorage* /*destination*/) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE MoveElementTo(const OLECHAR* /*name*/, IStorage* /*destination*/,
                                            const OLECHAR* /*newName*/, DWORD /*flags*/) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE Commit(DWORD /*flags*/) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Revert() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE EnumElements(DWORD /*reserved*/, void* /*reserved*/, DWORD /*reserved*/,
                                           IEnumSTATSTG** elements) override {
        return Nothing(elements);
    }
    HRESULT STDMETHODCALLTYPE DestroyElement(const OLECHAR* /*name*/) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE RenameElement(const OLECHAR* /*oldName*/, const OLECHAR* /*newName*/) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE SetElementTimes(const OLECHAR* /*name*/, const FILETIME* /*created*/,
                                              const FILETIME* /*read*/,
                                              const FILETIME* /*written*/) override {
        return E_NOTIMPL;
    }
    /// The one thing that OleCreate insists on.
    HRESULT STDMETHODCALLTYPE SetClass(REFCLSID /*classId*/) override { return S_OK; }
    HRESULT STDMETHODCALLTYPE SetStateBits(DWORD /*bits*/, DWORD /*mask*/) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Stat(STATSTG* /*statistics*/, DWORD /*flags*/) override { return E_NOTIMPL; }

  private:
    template <typename Object>
    static HRESULT Nothing(Object** object) {
        if (object != nullptr) {
            *object = nullptr;
        }
        return E_NOTIMPL;
    }
};

} // namespace kelda
