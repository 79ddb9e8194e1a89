// Everything but the bind to storage is the real moniker's.
#include "challenge_moniker.h"

#include <new>
#include <utility>

#include <wrl/client.h>

#include "com_object.h"
#include "negotiated_bind.h"

using Microsoft::WRL::ComPtr;

namespace windows_gaps {
namespace {

class ChallengeMoniker final : public ComObject<IMoniker> {
  public:
    explicit ChallengeMoniker(ComPtr<IMoniker> real) : real_(std::move(real)) {}

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
        if (iid == IID_IUnknown || iid == IID_IPersist || iid == IID_IPersistStream || iid == IID_IMoniker) {
            *object = static_cast<IMoniker*>(this);
            AddRef();
            return S_OK;
        }
        return real_->QueryInterface(iid, object);
    }

    HRESULT STDMETHODCALLTYPE BindToStorage(IBindCtx* context, IMoniker* toLeft, REFIID iid,
                                            void** object) override {
        const ComPtr<IMoniker> real = real_; // the caller may release this object meanwhile
        return context == nullptr || object == nullptr
                   ? real->BindToStorage(context, toLeft, iid, object)
                   : BindNegotiated(real.Get(), context, toLeft, iid, object);
    }

    HRESULT STDMETHODCALLTYPE GetClassID(CLSID* id) override { return real_->GetClassID(id); }
    HRESULT STDMETHODCALLTYPE IsDirty() override { return real_->IsDirty(); }
    HRESULT STDMETHODCALLTYPE Load(IStream* stream) override { return real_->Load(stream); }
    HRESULT STDMETHODCALLTYPE Save(IStream* stream, BOOL clearDirty) override {
        return real_->Save(stream, clearDirty);
    }
    HRESULT STDMETHODCALLTYPE GetSizeMax(ULARGE_INTEGER* size) override { return real_->GetSizeMax(size); }
    HRESULT STDMETHODCALLTYPE BindToObject(IBindCtx* context, IMoniker* toLeft, REFIID iid,
                                           void** object) override {
        return real_->BindToObject(context, toLeft, iid, object);
    }
    HRESULT STDMETHODCALLTYPE Reduce(IBindCtx* context, DWORD howFar, IMoniker** toLeft,
                                     IMoniker** reduced) override {
        return real_->Reduce(context, howFar, toLeft, reduced);
    }
    HRESULT STDMETHODCALLTYPE ComposeWith(IMoniker* right, BOOL onlyIfNotGeneric,
                                          IMoniker** composite) override {
        return real_->ComposeWith(right, onlyIfNotGeneric, composite);
    }
    HRESULT STDMETHODCALLTYPE Enum(BOOL forward, IEnumMoniker** enumerator) override {
        return real_->Enum(forward, enumerator);
    }
    HRESULT STDMETHODCALLTYPE IsEqual(IMoniker* other) override { return real_->IsEqual(other); }
    HRESULT STDMETHODCALLTYPE Hash(DWORD* hash) override { return real_->Hash(hash); }
    HRESULT STDMETHODCALLTYPE IsRunning(IBindCtx* context, IMoniker* toLeft,
                                        IMoniker* newlyRunning) override {
        return real_->IsRunning(context, toLeft, newlyRunning);
    }
    HRESULT STDMETHODCALLTYPE GetTimeOfLastChange(IBindCtx* context, IMoniker* toLeft,
                                                  FILETIME* time) override {
        return real_->GetTimeOfLastChange(context, toLeft, time);
    }
    HRESULT STDMETHODCALLTYPE Inverse(IMoniker** inverse) override { return real_->Inverse(inverse); }
    HRESULT STDMETHODCALLTYPE CommonPrefixWith(IMoniker* other, IMoniker** prefix) override {
        return real_->CommonPrefixWith(other, prefix);
    }
    HRESULT STDMETHODCALLTYPE RelativePathTo(IMoniker* other, IMoniker** path) override {
        return real_->RelativePathTo(other, path);
    }
    HRESULT STDMETHODCALLTYPE GetDisplayName(IBindCtx* context, IMoniker* toLeft, LPOLESTR* name) override {
        return real_->GetDisplayName(context, toLeft, name);
    }
    HRESULT STDMETHODCALLTYPE ParseDisplayName(IBindCtx* context, IMoniker* toLeft, LPOLESTR name,
                                               ULONG* eaten, IMoniker** result) override {
        return real_->ParseDisplayName(context, toLeft, name, eaten, result);
    }
    HRESULT STDMETHODCALLTYPE IsSystemMoniker(DWORD* kind) override { return real_->IsSystemMoniker(kind); }

  private:
    ComPtr<IMoniker> real_;
};

} // namespace

HRESULT WINAPI CreateChallengeMoniker(IMoniker* base, LPCWSTR url, IMoniker** moniker) {
    const HRESULT result = CreateURLMoniker(base, url, moniker);
    if (FAILED(result)) {
        return result;
    }
    *moniker = new (std::nothrow) ChallengeMoniker(TakeOver(*moniker));
    return *moniker == nullptr ? E_OUTOFMEMORY : result;
}

} // namespace windows_gaps
