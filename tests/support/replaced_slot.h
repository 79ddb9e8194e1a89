// Replaces one entry of a class's vtable, for objects that the code under test makes itself.
#pragma once

#include <stdexcept>

#include <windows.h>

namespace test_support {

/// All objects of the class answer calls of that slot with `function` for as long as this lives.
class ReplacedSlot {
  public:
    /// @param object    One of them, by the interface whose slot it is.
    /// @param slot      Counted from 0.
    template <typename Interface, typename Function>
    ReplacedSlot(Interface* object, size_t slot, Function* function)
        : entry_(*reinterpret_cast<void***>(object) + slot), original_(*entry_) {
        if (!Write(reinterpret_cast<void*>(function))) {
            throw std::runtime_error("the vtable cannot be written");
        }
    }
    ~ReplacedSlot() { Write(original_); }
    ReplacedSlot(const ReplacedSlot&) = delete;
    ReplacedSlot& operator=(const ReplacedSlot&) = delete;

  private:
    bool Write(void* function) const {
        DWORD protection = 0;
        if (VirtualProtect(entry_, sizeof(void*), PAGE_READWRITE, &protection) == FALSE) {
            return false;
        }
        *entry_ = function;
        return VirtualProtect(entry_, sizeof(void*), protection, &protection) != FALSE;
    }

    void** entry_;
    void* original_;
};

} // namespace test_support
