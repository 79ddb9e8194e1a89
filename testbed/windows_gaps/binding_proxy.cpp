// What the proxy does beyond passing on.
#include "binding_proxy.h"

namespace windows_gaps {

HRESULT BindingProxy::QueryInterface(REFIID iid, void** object) {
    if (iid != IID_IUnknown && iid != IID_IBinding) {
        return attempt_->QueryInterface(iid, object);
    }
    *object = static_cast<IBinding*>(this);
    AddRef();
    return S_OK;
}

HRESULT BindingProxy::Abort() {
    aborted_ = true;
    return attempt_->Abort();
}

HRESULT BindingProxy::GetBindResult(CLSID* protocol, DWORD* result, LPOLESTR* text, DWORD* reserved) {
    const HRESULT outcome = attempt_->GetBindResult(protocol, result, text, reserved);
    if (SUCCEEDED(outcome) && FAILED(failure_)) {
        *result = static_cast<DWORD>(failure_);
    }
    return outcome;
}

} // namespace windows_gaps
