// Zeroing of memory that held a credential.
#pragma once

#include <string>

#include <windows.h>

namespace kelda {

/// Zeroes the whole buffer that a string uses now, its unused capacity included.
template <typename Character>
void Wipe(std::basic_string<Character>& text) noexcept {
    text.resize(text.capacity()); // within the capacity: nothing moves, nothing throws
    SecureZeroMemory(text.data(), text.size() * sizeof(Character));
    text.clear();
}

/// Wipes a string when the scope ends. Declare it right after the string that it guards.
template <typename Character>
class WipeOnExit {
  public:
    explicit WipeOnExit(std::basic_string<Character>& text) noexcept : text_(text) {}
    ~WipeOnExit() { Wipe(text_); }
    WipeOnExit(const WipeOnExit&) = delete;
    WipeOnExit& operator=(const WipeOnExit&) = delete;

  private:
    std::basic_string<Character>& text_;
};

} // namespace kelda
