// The host's text with value semantics: a thin coat over std::string.
#include "du/symbol.h"

namespace du {

Symbol::Symbol() = default;

Symbol::Symbol(const char* text) : text_(text != nullptr ? text : "") {}

const char* Symbol::safe_c_str() const noexcept {
    return text_.c_str();
}

} // namespace du
