// Conversion of texts to numbers with error texts that do not depend on the standard library in use.
#pragma once

#include <string>

namespace kelda {

/// The decimal number at the start of `text`, after white space and a sign; what follows its digits is ignored.
/// Throws std::invalid_argument "invalid stoi argument" without a digit, std::out_of_range "stoi argument out of range"
/// where it does not fit.
int ToInt(const std::wstring& text);

} // namespace kelda
