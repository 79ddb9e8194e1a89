// The kinds that scripts and simple host objects exchange.
#include "variant_value.h"

#include <cstdint>
#include <limits>
#include <new>
#include <string>

#include "testbed/chromium/text.h"

namespace webview2_runtime {
namespace {

using nlohmann::json;

void PutNumber(const json& value, VARIANT& out) {
    const double number = value.get<double>();
    const bool isInteger = value.is_number_integer() && number >= std::numeric_limits<LONG>::min() &&
                           number <= std::numeric_limits<LONG>::max();
    if (isInteger) {
        V_VT(&out) = VT_I4;
        V_I4(&out) = static_cast<LONG>(value.get<std::int64_t>());
    } else {
        V_VT(&out) = VT_R8;
        V_R8(&out) = number;
    }
}

void PutText(const std::string& text, VARIANT& out) {
    const std::wstring wide = testbed::chromium::ToUtf16(text);
    V_BSTR(&out) = SysAllocStringLen(wide.data(), static_cast<UINT>(wide.size()));
    if (V_BSTR(&out) == nullptr) {
        throw std::bad_alloc();
    }
    V_VT(&out) = VT_BSTR;
}

json TextOf(BSTR text) {
    return text == nullptr ? "" : testbed::chromium::ToUtf8({text, SysStringLen(text)});
}

} // namespace

std::optional<Variant> VariantFromJson(const json& value) {
    Variant variant;
    VARIANT& out = *variant.Receive();
    if (value.is_null()) {
        V_VT(&out) = VT_NULL;
    } else if (value.is_boolean()) {
        V_VT(&out) = VT_BOOL;
        V_BOOL(&out) = value.get<bool>() ? VARIANT_TRUE : VARIANT_FALSE;
    } else if (value.is_number()) {
        PutNumber(value, out);
    } else if (value.is_string()) {
        PutText(value.get<std::string>(), out);
    } else {
        return std::nullopt;
    }
    return variant;
}

std::optional<json> JsonFromVariant(const VARIANT& value) {
    switch (V_VT(&value)) {
    case VT_EMPTY:
    case VT_NULL:
        return json(nullptr);
    case VT_BOOL:
        return json(V_BOOL(&value) != VARIANT_FALSE);
    case VT_I2:
        return json(V_I2(&value));
    case VT_I4:
        return json(V_I4(&value));
    case VT_UI4:
        return json(V_UI4(&value));
    case VT_R4:
        return json(V_R4(&value));
    case VT_R8:
        return json(V_R8(&value));
    case VT_BSTR:
        return TextOf(V_BSTR(&value));
    case VT_DISPATCH:
        return V_DISPATCH(&value) == nullptr ? std::optional(json(nullptr)) : std::nullopt;
    default:
        return std::nullopt;
    }
}

IDispatch* ObjectOf(const VARIANT& value) {
    return V_VT(&value) == VT_DISPATCH ? V_DISPATCH(&value) : nullptr;
}

} // namespace webview2_runtime
