// Calls on COM objects that an earlier failure, or a nested call, may have left empty.
#pragma once

#include <utility>

#include <windows.h>

#include <unknwn.h>
#include <wrl/client.h>

namespace kelda {

/// Calls `method` on `object` and keeps the object alive meanwhile, as the call may pump messages in which its owner
/// lets go of it.
/// @return the method's result; E_POINTER for an empty `object`.
template <typename Interface, typename Class, typename... Parameters, typename... Arguments>
HRESULT CallOn(const Microsoft::WRL::ComPtr<Interface>& object,
               HRESULT (STDMETHODCALLTYPE Class::*method)(Parameters...), Arguments&&... arguments) {
    // NOLINTNEXTLINE(performance-unnecessary-copy-initialization): the reference of its own is the point
    const Microsoft::WRL::ComPtr<Interface> kept = object;
    return kept ? (kept.Get()->*method)(std::forward<Arguments>(arguments)...) : E_POINTER;
}

/// Asks `from` for the interface of `to`, which lets go of what it held first.
/// @return QueryInterface's result; E_POINTER for an empty `from`.
template <typename From, typename To>
HRESULT Query(const Microsoft::WRL::ComPtr<From>& from, Microsoft::WRL::ComPtr<To>& to) {
    to.Reset();
    return from ? from->QueryInterface(IID_PPV_ARGS(to.GetAddressOf())) : E_POINTER;
}

} // namespace kelda
