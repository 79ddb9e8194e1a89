// Looks for a secret in what windows_gaps.dll frees.
#pragma once

#include <cstddef>
#include <cstdlib>
#include <malloc.h>
#include <stdexcept>

#include <windows.h>

#include "testbed/support/import_patch.h"
#include "tests/support/memory_search.h"

namespace windows_gaps_test {

/// While it lives, each block that the library frees is searched before it goes. One at a time.
class FreedByLibrary {
  public:
    explicit FreedByLibrary(const test_support::HiddenText& secret) {
        watched = &secret;
        found = 0;
        original = Patch(reinterpret_cast<void*>(&Free));
        if (original == nullptr) {
            throw std::logic_error("the library frees nothing through its import table");
        }
    }
    ~FreedByLibrary() { Patch(original); }
    FreedByLibrary(const FreedByLibrary&) = delete;
    FreedByLibrary& operator=(const FreedByLibrary&) = delete;

    /// How often the secret was still there.
    static std::size_t Found() { return found; }

  private:
    static void* Patch(void* function) {
        return testbed::PatchImport(GetModuleHandleW(L"windows_gaps.dll"), "msvcrt.dll", "free", function);
    }
    static void __cdecl Free(void* block) {
        if (block != nullptr) {
            found += test_support::CountInBlock(*watched, block, _msize(block));
        }
        std::free(block);
    }

    static inline const test_support::HiddenText* watched = nullptr;
    static inline std::size_t found = 0;
    static inline void* original = nullptr;
};

} // namespace windows_gaps_test
