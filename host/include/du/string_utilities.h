// Text conversion and splitting of the host utility library. NUL characters within a text are kept; a text whose length,
// converted or not, does not fit an int makes a conversion throw std::length_error.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "du/api.h"

namespace du {

/// UTF-8 to UTF-16. What is no valid UTF-8 becomes U+FFFD. The result is filled in place: no other copy is made.
HOST_UTILITY_API std::wstring Utf8ToWideStr(std::string_view text);

/// UTF-16 to UTF-8. A lone surrogate becomes U+FFFD. The result is filled in place: no other copy is made.
HOST_UTILITY_API std::string WideStrToUtf8(std::wstring_view text);

/// The pieces of `text` between occurrences of `separator`, in order; empty pieces are left out. An empty separator
/// gives the whole text as one piece, unless it is empty too.
HOST_UTILITY_API std::vector<std::string> StringSplit(std::string_view text, std::string_view separator);

} // namespace du
