// Replaces what windows_gaps.dll imports, so that a test can watch its calls and make them fail.
#pragma once

#include <stdexcept>
#include <string>

#include <windows.h>

#include "testbed/support/import_patch.h"

namespace windows_gaps_test {

/// One imported function, for as long as this object lives. `Function` is its pointer type.
template <typename Function>
class LibraryImport {
  public:
    LibraryImport(const char* library, const char* function, Function replacement)
        : library_(library),
          function_(function),
          original_(reinterpret_cast<Function>(Patch(reinterpret_cast<void*>(replacement)))) {
        if (original_ == nullptr) {
            throw std::invalid_argument(std::string(function) + " is not imported");
        }
    }
    ~LibraryImport() { Patch(reinterpret_cast<void*>(original_)); }
    LibraryImport(const LibraryImport&) = delete;
    LibraryImport& operator=(const LibraryImport&) = delete;

  private:
    void* Patch(void* function) const {
        return testbed::PatchImport(GetModuleHandleW(L"windows_gaps.dll"), library_, function_, function);
    }

    const char* library_;
    const char* function_;
    Function original_;
};

} // namespace windows_gaps_test
