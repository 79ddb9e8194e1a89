// Watches the large blocks among the program's own allocations, those that hold a long text of the test's, and makes one of
// them fail. Linking it replaces the program's global operator new and delete.
#pragma once

#include <cstddef>

namespace kelda {

/// From this size on a block is large.
inline constexpr std::size_t kLargeBlock = 10'000;

std::ptrdiff_t LargeBlocksInUse();

/// Lets one large allocation fail, that after so many others, while this object lives. One at a time.
class FailingLargeBlock {
  public:
    explicit FailingLargeBlock(std::size_t blocksBefore);
    ~FailingLargeBlock();
    FailingLargeBlock(const FailingLargeBlock&) = delete;
    FailingLargeBlock& operator=(const FailingLargeBlock&) = delete;
};

} // namespace kelda
