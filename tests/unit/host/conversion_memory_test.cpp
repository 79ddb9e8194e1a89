// Credentials pass through the conversions: the only memory that may ever hold a converted text is the result's own.
#include "du/string_utilities.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <cstdlib>

#include "testbed/support/import_patch.h"

namespace {

constexpr const wchar_t* kLibrary = L"host_utility.dll";
constexpr std::size_t kLength = 1000; ///< Beyond any buffer that a string has within itself.

std::size_t allocations = 0;

void* CountingAllocation(std::size_t size) {
    ++allocations;
    return std::malloc(size);
}

/// Counts what the library allocates while it lives.
class AllocationCount {
  public:
    AllocationCount() : original_(Patch(reinterpret_cast<void*>(&CountingAllocation))) { allocations = 0; }
    ~AllocationCount() { Patch(original_); }
    AllocationCount(const AllocationCount&) = delete;
    AllocationCount& operator=(const AllocationCount&) = delete;

  private:
    static void* Patch(void* function) {
        return testbed::PatchImport(GetModuleHandleW(kLibrary), "msvcrt.dll", "malloc", function);
    }

    void* original_;
};

TEST(ConversionMemory, WideResultIsAllocatedOnce) {
    const std::string text = std::string(kLength, 'p') + "\xc3\xbc\xf0\x9f\x94\x91";
    const AllocationCount count;
    const std::wstring converted = du::Utf8ToWideStr(text);
    EXPECT_EQ(allocations, 1U);
    EXPECT_EQ(converted.size(), kLength + 3);
}

TEST(ConversionMemory, NarrowResultIsAllocatedOnce) {
    const std::wstring text = std::wstring(kLength, L'p') + L"\u00fc\U0001f511";
    const AllocationCount count;
    const std::string converted = du::WideStrToUtf8(text);
    EXPECT_EQ(allocations, 1U);
    EXPECT_EQ(converted.size(), kLength + 6);
}

} // namespace
