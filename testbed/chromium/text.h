// Between UTF-8, which Chromium is spoken to in, and the UTF-16 of Windows.
#pragma once

#include <string>
#include <string_view>

namespace testbed::chromium {

/// What is no Unicode comes out as U+FFFD.
std::string ToUtf8(std::wstring_view text);
std::wstring ToUtf16(std::string_view text);

/// Whether two names of headers are one: the case of letters of ASCII does not matter.
bool SameName(std::string_view one, std::string_view other);

} // namespace testbed::chromium
