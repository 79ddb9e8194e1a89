// The resource language's syntax: nested lists in parentheses of names, texts in double quotes and whole numbers. What they
// mean is not known here. No Windows in it.
#pragma once

#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace host_reference {

/// What is wrong with a description, and on which line (counted from 1).
class DescriptionError : public std::runtime_error {
  public:
    DescriptionError(int line, const std::string& reason) : std::runtime_error(reason), line_(line) {}

    int Line() const noexcept { return line_; }

  private:
    int line_;
};

/// Returns a name in double quotes, for error texts.
std::string Quoted(std::string_view name);

struct ResourceNode {
    enum class Kind { List, Name, Text, Number };

    Kind kind = Kind::List;
    int line = 1;     ///< Where it begins.
    std::string text; ///< Of a name or a text, without its quotes.
    int number = 0;
    std::vector<ResourceNode> children; ///< Of a list.
};

/// Reads a whole description: a row of lists. Takes time in proportion to its length, and not more of the stack than
/// `kDeepestNesting` lists need.
/// @return a list without parentheses of its own around all that was read; its line is the description's last.
/// @throws DescriptionError
ResourceNode ParseResource(std::string_view text);

inline constexpr int kDeepestNesting = 32;
inline constexpr std::size_t kLongestName = 128;
inline constexpr int kLargestNumber = 32767; ///< The system keeps window coordinates in 16 bits.

} // namespace host_reference
