// Copies of the array, each element counted.
#include "options/scheme_registrations.h"

#include <objbase.h>

#include <algorithm>
#include <utility>

namespace webview2_detail {
namespace {

using Registration = ICoreWebView2CustomSchemeRegistration*;

/// A new array with a reference to each element; null for none and when memory runs out.
Registration* CopyOf(UINT32 count, const Registration* registrations) {
    if (count == 0) {
        return nullptr;
    }
    auto* const copy = static_cast<Registration*>(CoTaskMemAlloc(count * sizeof(void*)));
    if (copy != nullptr) {
        std::copy_n(registrations, count, copy);
        std::for_each_n(copy, count, [](Registration registration) { registration->AddRef(); });
    }
    return copy;
}

void Free(UINT32 count, Registration* registrations) {
    std::for_each_n(registrations, count, [](Registration registration) { registration->Release(); });
    CoTaskMemFree(registrations);
}

} // namespace

SchemeRegistrations::~SchemeRegistrations() {
    Free(count_, registrations_);
}

HRESULT SchemeRegistrations::Get(UINT32* count, Registration** registrations) const {
    if (count == nullptr || registrations == nullptr) {
        return E_POINTER;
    }
    *count = 0;
    *registrations = CopyOf(count_, registrations_);
    if (count_ != 0 && *registrations == nullptr) {
        return E_OUTOFMEMORY;
    }
    *count = count_;
    return S_OK;
}

HRESULT SchemeRegistrations::Set(UINT32 count, const Registration* registrations) {
    if (count != 0 && (registrations == nullptr ||
                       std::find(registrations, registrations + count, nullptr) != registrations + count)) {
        return E_POINTER;
    }
    Registration* const copy = CopyOf(count, registrations);
    if (count != 0 && copy == nullptr) {
        return E_OUTOFMEMORY;
    }
    // Released last: a registration's last release is its own code, which may call us.
    const UINT32 formerCount = std::exchange(count_, count);
    Free(formerCount, std::exchange(registrations_, copy));
    return S_OK;
}

} // namespace webview2_detail
