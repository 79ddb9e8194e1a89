// What a compiled interface looks like to whoever calls it through its table of functions. For compilers that follow the
// Itanium C++ ABI, as ours does.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <optional>

namespace webview2_test {

/// The slot of the table that calls of a virtual method go through; none for a method that is not virtual, or not in the
/// table that the object starts with.
///
/// The ABI makes a pointer to a virtual method of two words: one more than the offset of its slot in bytes, and the offset
/// of the part of the object whose table it is. A method that is not virtual has its (even) address in the first.
template <typename Method>
std::optional<std::size_t> SlotOf(Method method) {
    struct {
        std::uintptr_t address;
        std::ptrdiff_t part;
    } words{};
    static_assert(sizeof(words) == sizeof(method));
    std::memcpy(&words, &method, sizeof(words));
    if ((words.address & 1) == 0 || words.part != 0) {
        return std::nullopt;
    }
    return (words.address - 1) / sizeof(void*);
}

/// How many slots the table of `Interface` has: the slot that the next method would get.
template <typename Interface>
std::size_t SlotsOf() {
    struct Longer : Interface {
        virtual void Next() = 0;
    };
    return SlotOf(&Longer::Next).value();
}

} // namespace webview2_test
