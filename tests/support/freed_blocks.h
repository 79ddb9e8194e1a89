// Shows a test the memory blocks that the program's strings and containers give back. Linking it replaces the program's
// global operator new and delete.
#pragma once

#include <cstddef>
#include <functional>

namespace test_support {

/// Called with each block just before it is freed, while this object lives. One at a time; it must not free memory itself.
/// A block may be overwritten as soon as it is freed, so looking at memory later would miss what was in it.
class FreedBlocksWatch {
  public:
    explicit FreedBlocksWatch(std::function<void(const void* block, std::size_t size)> watch);
    ~FreedBlocksWatch();
    FreedBlocksWatch(const FreedBlocksWatch&) = delete;
    FreedBlocksWatch& operator=(const FreedBlocksWatch&) = delete;

  private:
    std::function<void(const void* block, std::size_t size)> watch_;
};

} // namespace test_support
