// Looks for a text in all of the process's memory.
#include "tests/support/memory_search.h"

#include <windows.h>

namespace test_support {
namespace {

/// True where the text stands at `place` with characters of `width` bytes, low byte first.
bool StandsAt(const HiddenText& text, const volatile unsigned char* place, std::size_t width) {
    for (std::size_t index = 0; index < text.Length(); ++index) {
        if (place[index * width] != static_cast<unsigned char>(text.At(index)) ||
            (width == 2 && place[index * width + 1] != 0)) {
            return false;
        }
    }
    return true;
}

bool Readable(const MEMORY_BASIC_INFORMATION& region) {
    constexpr DWORD kReadable = PAGE_READONLY | PAGE_READWRITE | PAGE_WRITECOPY | PAGE_EXECUTE_READ |
                                PAGE_EXECUTE_READWRITE | PAGE_EXECUTE_WRITECOPY;
    return region.State == MEM_COMMIT && (region.Protect & kReadable) != 0 &&
           (region.Protect & PAGE_GUARD) == 0;
}

} // namespace

char HiddenText::At(std::size_t index) const {
    constexpr unsigned kAlphabet = 26;
    return static_cast<char>('A' + (seed_ + static_cast<unsigned>(index) * (seed_ | 1U) * 7U) % kAlphabet);
}

void HiddenText::PutInto(wchar_t* buffer) const {
    for (std::size_t index = 0; index < length_; ++index) {
        buffer[index] = static_cast<wchar_t>(At(index));
    }
    buffer[length_] = L'\0';
}

bool HiddenText::Equals(const wchar_t* text) const {
    for (std::size_t index = 0; index < length_; ++index) {
        if (text[index] != static_cast<wchar_t>(At(index))) {
            return false;
        }
    }
    return text[length_] == L'\0';
}

std::size_t CountInBlock(const HiddenText& text, const void* block, std::size_t size) {
    const auto* const begin = static_cast<const volatile unsigned char*>(block);
    const auto first = static_cast<unsigned char>(text.At(0));
    std::size_t count = 0;
    for (std::size_t offset = 0; offset + text.Length() <= size; ++offset) {
        if (begin[offset] != first) {
            continue;
        }
        if (StandsAt(text, begin + offset, 1) ||
            (offset + 2 * text.Length() <= size && StandsAt(text, begin + offset, 2))) {
            ++count;
        }
    }
    return count;
}

std::size_t CountInMemory(const HiddenText& text) {
    std::size_t count = 0;
    MEMORY_BASIC_INFORMATION region{};
    const unsigned char* address = nullptr;
    while (VirtualQuery(address, &region, sizeof(region)) != 0) {
        address = static_cast<const unsigned char*>(region.BaseAddress) + region.RegionSize;
        if (Readable(region)) {
            count += CountInBlock(text, region.BaseAddress, region.RegionSize);
        }
    }
    return count;
}

} // namespace test_support
