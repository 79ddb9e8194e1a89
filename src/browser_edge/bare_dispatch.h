// The answers that the host object and the object behind its member have in common: both are bare IDispatch objects
// without type information.
#pragma once

#include <windows.h>

#include <oaidl.h>

namespace kelda {

/// Answers `IID_IDispatch` only, not even `IID_IUnknown`: script needs no more, and nothing else is to get hold of it.
inline HRESULT QueryDispatchOnly(IDispatch* self, REFIID iid, void** object) {
    if (object == nullptr) {
        return E_POINTER;
    }
    if (iid != IID_IDispatch) {
        *object = nullptr;
        return E_NOINTERFACE;
    }
    self->AddRef();
    *object = self;
    return S_OK;
}

inline HRESULT NoTypeInfoCount(UINT* count) {
    if (count == nullptr) {
        return E_POINTER;
    }
    *count = 0;
    return S_OK;
}

inline HRESULT NoTypeInfo(ITypeInfo** info) {
    if (info != nullptr) {
        *info = nullptr;
    }
    return E_NOTIMPL;
}

} // namespace kelda
