// The kinds that pages and hosts exchange.
#include "variant.h"

#include <cstdint>
#include <limits>
#include <new>

#include "testbed/chromium/text.h"

namespace legacy_control {

using nlohmann::json;

BSTR MakeText(const std::string& text) {
    const std::wstring wide = testbed::chromium::ToUtf16(text);
    BSTR made = SysAllocStringLen(wide.data(), static_cast<UINT>(wide.size()));
    if (made == nullptr) {
        throw std::bad_alloc();
    }
    return made;
}

Variant TextVariant(const std::string& text) {
    Variant variant;
    V_BSTR(variant.Receive()) = MakeText(text);
    V_VT(variant.Receive()) = VT_BSTR;
    return variant;
}

Variant NumberVariant(LONG number) {
    Variant variant;
    V_VT(variant.Receive()) = VT_I4;
    V_I4(variant.Receive()) = number;
    return variant;
}

Variant VariantFromJson(const json& value) {
    if (value.is_string()) {
        return TextVariant(value.get<std::string>());
    }
    Variant variant;
    VARIANT& out = *variant.Receive();
    if (value.is_boolean()) {
        V_VT(&out) = VT_BOOL;
        V_BOOL(&out) = value.get<bool>() ? VARIANT_TRUE : VARIANT_FALSE;
    } else if (value.is_number()) {
        const double number = value.get<double>();
        const bool fits = value.is_number_integer() && number >= std::numeric_limits<LONG>::min() &&
                          number <= std::numeric_limits<LONG>::max();
        if (fits) {
            return NumberVariant(static_cast<LONG>(value.get<std::int64_t>()));
        }
        V_VT(&out) = VT_R8;
        V_R8(&out) = number;
    } else {
        V_VT(&out) = VT_NULL;
    }
    return variant;
}

std::string TextOf(BSTR text) {
    return text == nullptr ? std::string() : testbed::chromium::ToUtf8({text, SysStringLen(text)});
}

} // namespace legacy_control
