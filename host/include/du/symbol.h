// The host utility library's name and address string.
#pragma once

#include <string>

#include "du/api.h"

namespace du {

/// A narrow (UTF-8) text with value semantics.
class HOST_UTILITY_API Symbol {
  public:
    Symbol();
    Symbol(const char* text); ///< Copies `text`; null makes an empty symbol.

    /// The text, NUL-terminated; never null. Valid until the symbol changes or dies.
    const char* safe_c_str() const noexcept;

  private:
    std::string text_;
};

} // namespace du
