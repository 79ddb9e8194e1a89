// Puts the negotiating callback in the place of the caller's and repeats the bind while that says so.
#include "negotiated_bind.h"

#include <new>
#include <utility>

#include <wrl/client.h>

#include "negotiating_callback.h"
#include "pending_credentials.h"

using Microsoft::WRL::ComPtr;

namespace windows_gaps {
namespace {

/// Holds the place of the caller's callback in a bind context, and gives it back.
class Registration {
  public:
    Registration(IBindCtx* context, NegotiatingCallback* callback) : context_(context), callback_(callback) {
        if (SUCCEEDED(RegisterBindStatusCallback(context, callback, &callers_, 0)) && callers_ == nullptr) {
            RevokeBindStatusCallback(context, callback);
        }
        callback->Serve(callers_.Get());
    }
    ~Registration() {
        if (callers_ != nullptr) {
            RegisterBindStatusCallback(context_.Get(), callers_.Get(), nullptr, 0);
        }
    }
    Registration(const Registration&) = delete;
    Registration& operator=(const Registration&) = delete;

    /// False if there is nobody to negotiate with.
    bool Held() const { return callers_ != nullptr; }

  private:
    ComPtr<IBindCtx> context_;
    ComPtr<NegotiatingCallback> callback_;
    ComPtr<IBindStatusCallback> callers_;
};

void ReleaseResult(void** object) {
    if (auto* unwanted = static_cast<IUnknown*>(std::exchange(*object, nullptr))) {
        unwanted->Release();
    }
}

} // namespace

HRESULT BindNegotiated(IMoniker* moniker, IBindCtx* context, IMoniker* toLeft, REFIID iid, void** object) {
    ComPtr<IMoniker> target(moniker);
    const ComPtr<NegotiatingCallback> callback = TakeOver(new (std::nothrow) NegotiatingCallback);
    if (callback == nullptr) {
        return E_OUTOFMEMORY;
    }
    const Registration registration(context, callback.Get());
    HRESULT result = target->BindToStorage(context, toLeft, iid, object);
    if (!registration.Held()) {
        return result;
    }
    while (callback->MustRepeat()) {
        callback->BeginNextAttempt();
        // The challenge came from where redirects have led; WinINet would forget the credentials on the way there.
        if (!callback->Location().empty()) {
            result = CreateURLMoniker(nullptr, callback->Location().c_str(), &target);
        }
        if (target != nullptr) {
            const PendingCredentials pending(callback->Credentials());
            result = target->BindToStorage(context, toLeft, iid, object);
        }
    }
    result = callback->EndBind(result);
    if (FAILED(result)) {
        ReleaseResult(object);
    }
    return result;
}

} // namespace windows_gaps
