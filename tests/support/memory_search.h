// Looks for a text in all of the process's memory.
#pragma once

#include <cstddef>
#include <string>

namespace test_support {

/// A text that is nowhere in memory but where it is put: it is kept encoded, and compared character by character.
class HiddenText {
  public:
    /// `length` characters that depend on `seed`.
    HiddenText(std::size_t length, unsigned seed) : length_(length), seed_(seed) {}

    std::size_t Length() const { return length_; }

    /// The character at `index`, an ASCII letter.
    char At(std::size_t index) const;

    /// Writes the text and a terminator.
    void PutInto(wchar_t* buffer) const;

    /// True for a copy of it, without ever making one.
    bool Equals(const wchar_t* text) const;

  private:
    std::size_t length_;
    unsigned seed_;
};

/// How often the text stands in a block of memory, as UTF-8 or as UTF-16.
std::size_t CountInBlock(const HiddenText& text, const void* block, std::size_t size);

/// How often the text stands in readable memory of the process, as UTF-8 or as UTF-16.
std::size_t CountInMemory(const HiddenText& text);

} // namespace test_support
