// Conversion of texts to numbers with error texts that do not depend on the standard library in use.
#pragma once

#include <cstdint>
#include <string>

namespace kelda {

/// The decimal number at the start of `text`, after white space and a sign; what follows its digits is ignored. White
/// space, signs and digits are those of ASCII, in every locale.
/// Throws std::invalid_argument "invalid stoi argument" without a digit, std::out_of_range "stoi argument out of range"
/// where it does not fit.
int ToInt(const std::wstring& text);

/// The same with 64 bits, and with "stoll" in the place of "stoi".
std::int64_t ToInt64(const std::wstring& text);

} // namespace kelda
