// A VARIANT that is cleared.
#pragma once

#include <windows.h>

#include <oleauto.h>

namespace kelda {

struct ScopedVariant : VARIANT {
    ScopedVariant() : VARIANT{} { VariantInit(this); }
    ~ScopedVariant() { VariantClear(this); }
    ScopedVariant(const ScopedVariant&) = delete;
    ScopedVariant& operator=(const ScopedVariant&) = delete;
};

} // namespace kelda
