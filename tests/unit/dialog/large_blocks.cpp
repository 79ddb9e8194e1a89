// The program's own operator new and delete.
#include "large_blocks.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <iterator>
#include <new>
#include <optional>

namespace {

std::array<void*, 64> largeBlocks{};
std::optional<std::size_t> blocksBeforeFailure;

bool MustFail() {
    if (!blocksBeforeFailure) {
        return false;
    }
    if (*blocksBeforeFailure == 0) {
        blocksBeforeFailure.reset();
        return true;
    }
    --*blocksBeforeFailure;
    return false;
}

} // namespace

void* operator new(std::size_t size) {
    const bool large = size >= kelda::kLargeBlock;
    void* const block = large && MustFail() ? nullptr : std::malloc(size);
    if (block == nullptr) {
        throw std::bad_alloc();
    }
    if (large) {
        auto place = std::find(largeBlocks.begin(), largeBlocks.end(), nullptr);
        if (place == largeBlocks.end()) {
            std::abort(); // an exception would be taken for the failure that a test has asked for
        }
        *place = block;
    }
    return block;
}

void operator delete(void* block) noexcept {
    if (block != nullptr) {
        std::replace(largeBlocks.begin(), largeBlocks.end(), block, static_cast<void*>(nullptr));
    }
    std::free(block);
}

void operator delete(void* block, std::size_t /*size*/) noexcept {
    operator delete(block);
}

namespace kelda {

std::ptrdiff_t LargeBlocksInUse() {
    return std::ssize(largeBlocks) - std::count(largeBlocks.begin(), largeBlocks.end(), nullptr);
}

FailingLargeBlock::FailingLargeBlock(std::size_t blocksBefore) {
    blocksBeforeFailure = blocksBefore;
}

FailingLargeBlock::~FailingLargeBlock() {
    blocksBeforeFailure.reset();
}

} // namespace kelda
