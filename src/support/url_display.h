// Shortening of URLs for titles and prompts.
#pragma once

#include <cstddef>
#include <string>

namespace kelda {

/// `text` without one trailing "/", shortened to `maxLength` characters by an ellipsis of three dots where it is
/// longer. Characters are those of UTF-8, so that none is cut in half. 0 shortens nothing; below 3 only dots are left.
std::string TrimUrlForDisplay(const std::string& text, size_t maxLength);

} // namespace kelda
