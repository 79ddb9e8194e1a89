// Replaces functions that the test program imports from system DLLs, so that tests can watch calls and make them fail
// while the code under test calls the platform by its own names.
#pragma once

#include <functional>
#include <stdexcept>
#include <string>
#include <utility>

#include <windows.h>

#include "testbed/support/import_patch.h"

namespace test_support {

template <typename Tag, typename Signature>
class ReplacedImport;

/// Lets `replacement` answer calls of one imported function for as long as this object lives. `Tag` tells the functions
/// of one signature apart; there may be one object a tag at a time.
template <typename Tag, typename Result, typename... Arguments>
class ReplacedImport<Tag, Result(Arguments...)> {
  public:
    ReplacedImport(const char* library, const char* function, std::function<Result(Arguments...)> replacement)
        : library_(library), function_(function) {
        answer = std::move(replacement);
        original = reinterpret_cast<Function>(testbed::PatchImport(
            GetModuleHandleW(nullptr), library_, function_, reinterpret_cast<void*>(&Answer)));
        if (original == nullptr) {
            throw std::invalid_argument(std::string(function) + " is not imported");
        }
    }
    ~ReplacedImport() {
        testbed::PatchImport(GetModuleHandleW(nullptr), library_, function_,
                             reinterpret_cast<void*>(original));
        answer = nullptr;
    }
    ReplacedImport(const ReplacedImport&) = delete;
    ReplacedImport& operator=(const ReplacedImport&) = delete;

    /// The function as it is without the replacement.
    static Result Original(Arguments... arguments) { return original(arguments...); }

  private:
    using Function = Result(WINAPI*)(Arguments...);

    static Result WINAPI Answer(Arguments... arguments) { return answer(arguments...); }

    static inline std::function<Result(Arguments...)> answer;
    static inline Function original = nullptr;
    const char* library_;
    const char* function_;
};

} // namespace test_support
