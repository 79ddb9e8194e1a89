// The program's own operator new and delete.
#include "tests/support/freed_blocks.h"

#include <cstdlib>
#include <new>
#include <utility>

#include <malloc.h>

namespace {

const std::function<void(const void*, std::size_t)>* currentWatch = nullptr;

} // namespace

void* operator new(std::size_t size) {
    void* const block = std::malloc(size);
    if (block == nullptr) {
        throw std::bad_alloc();
    }
    return block;
}

void operator delete(void* block) noexcept {
    if (currentWatch != nullptr && block != nullptr) {
        (*currentWatch)(block, _msize(block));
    }
    std::free(block);
}

void operator delete(void* block, std::size_t /*size*/) noexcept {
    operator delete(block);
}

namespace test_support {

FreedBlocksWatch::FreedBlocksWatch(std::function<void(const void*, std::size_t)> watch)
    : watch_(std::move(watch)) {
    currentWatch = &watch_;
}

FreedBlocksWatch::~FreedBlocksWatch() {
    currentWatch = nullptr;
}

} // namespace test_support
