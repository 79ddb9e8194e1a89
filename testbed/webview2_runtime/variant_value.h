// Values between scripts, which speak JSON, and automation objects, which speak VARIANT.
#pragma once

#include <optional>
#include <utility>

#include <windows.h>

#include <nlohmann/json.hpp>
#include <oleauto.h>

namespace webview2_runtime {

/// Clears itself.
class Variant {
  public:
    Variant() { VariantInit(&value_); }
    ~Variant() { VariantClear(&value_); }
    Variant(Variant&& other) noexcept : Variant() { std::swap(value_, other.value_); }
    Variant(const Variant&) = delete;
    Variant& operator=(const Variant&) = delete;
    Variant& operator=(Variant&&) = delete;

    VARIANT* Receive() { return &value_; }
    const VARIANT& Get() const { return value_; }

  private:
    VARIANT value_{};
};

/// @return nothing for arrays and objects.
std::optional<Variant> VariantFromJson(const nlohmann::json& value);

/// @return nothing for what JSON has no word for, objects included.
std::optional<nlohmann::json> JsonFromVariant(const VARIANT& value);

/// The object of a value, without a new reference; null if it holds none.
IDispatch* ObjectOf(const VARIANT& value);

} // namespace webview2_runtime
