// Values of automation: texts and numbers that free themselves.
#pragma once

#include <string>
#include <utility>

#include <windows.h>

#include <nlohmann/json.hpp>
#include <oleauto.h>

namespace legacy_control {

/// Clears itself.
class Variant {
  public:
    Variant() { VariantInit(&value_); }
    ~Variant() { VariantClear(&value_); }
    Variant(Variant&& other) noexcept : Variant() { std::swap(value_, other.value_); }
    Variant& operator=(Variant&& other) noexcept {
        std::swap(value_, other.value_);
        return *this;
    }
    Variant(const Variant&) = delete;
    Variant& operator=(const Variant&) = delete;

    VARIANT* Receive() { return &value_; }
    const VARIANT& Get() const { return value_; }

  private:
    VARIANT value_{};
};

/// @throws std::bad_alloc
BSTR MakeText(const std::string& text);
/// @throws std::bad_alloc
Variant TextVariant(const std::string& text);
Variant NumberVariant(LONG number);

/// Of arrays and objects nothing is left: they come out as null.
Variant VariantFromJson(const nlohmann::json& value);

/// @return UTF-8; empty for null.
std::string TextOf(BSTR text);

} // namespace legacy_control
