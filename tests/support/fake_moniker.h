// An IMoniker whose bind to a stream a test plays itself.
#pragma once

#include <functional>
#include <string>
#include <utility>

#include <objidl.h>

#include "tests/support/fake_object.h"

namespace test_support {

class FakeMoniker final : public FakeObject<IMoniker> {
  public:
    explicit FakeMoniker(std::string name = "moniker") : FakeObject(std::move(name)) {}

    std::function<HRESULT(IBindCtx* context, IStream** stream)> bind;

    HRESULT STDMETHODCALLTYPE BindToStorage(IBindCtx* context, IMoniker* toLeft, REFIID iid,
                                            void** object) override {
        Record(std::string("BindToStorage ") + (iid == IID_IStream ? "IStream" : "other") +
               (toLeft == nullptr ? "" : " with a moniker to the left"));
        AddRef(); // the caller may release it meanwhile
        const auto play = bind;
        const HRESULT result = play(context, reinterpret_cast<IStream**>(object));
        Release();
        return result;
    }

    HRESULT STDMETHODCALLTYPE GetClassID(CLSID* /*id*/) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE IsDirty() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Load(IStream* /*stream*/) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Save(IStream* /*stream*/, BOOL /*clearDirty*/) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetSizeMax(ULARGE_INTEGER* /*size*/) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE BindToObject(IBindCtx* /*context*/, IMoniker* /*toLeft*/, REFIID /*iid*/,
                                           void** /*object*/) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE Reduce(IBindCtx* /*context*/, DWORD /*howFar*/, IMoniker** /*toLeft*/,
                                     IMoniker** /*reduced*/) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE ComposeWith(IMoniker* /*right*/, BOOL /*onlyIfNotGeneric*/,
                                          IMoniker** /*composite*/) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE Enum(BOOL /*forward*/, IEnumMoniker** /*enumerator*/) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE IsEqual(IMoniker* /*other*/) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Hash(DWORD* /*hash*/) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE IsRunning(IBindCtx* /*context*/, IMoniker* /*toLeft*/,
                                        IMoniker* /*newlyRunning*/) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE GetTimeOfLastChange(IBindCtx* /*context*/, IMoniker* /*toLeft*/,
                                                  FILETIME* /*time*/) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE Inverse(IMoniker** /*inverse*/) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE CommonPrefixWith(IMoniker* /*other*/, IMoniker** /*prefix*/) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE RelativePathTo(IMoniker* /*other*/, IMoniker** /*path*/) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE GetDisplayName(IBindCtx* /*context*/, IMoniker* /*toLeft*/,
                                             LPOLESTR* /*name*/) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE ParseDisplayName(IBindCtx* /*context*/, IMoniker* /*toLeft*/, LPOLESTR /*name*/,
                                               ULONG* /*eaten*/, IMoniker** /*result*/) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE IsSystemMoniker(DWORD* /*kind*/) override { return E_NOTIMPL; }
};

} // namespace test_support
