// One property of the options object: a text, which may be unset.
#pragma once

#include <windows.h>

#include <objbase.h>

#include <memory>

namespace webview2_detail {

struct TaskMemoryDeleter {
    void operator()(void* block) const noexcept { CoTaskMemFree(block); }
};

class TextOption {
  public:
    /// Unset.
    TextOption() = default;
    /// @param text what it is until it is put; has to live as long as the program, so that making it needs no memory.
    explicit TextOption(const wchar_t* text) : text_(text) {}

    /// @param value receives a copy, the caller's to free with CoTaskMemFree; null if the property is unset.
    HRESULT Get(LPWSTR* value) const;

    /// @param value is copied; null unsets the property.
    HRESULT Put(LPCWSTR value);

  private:
    const wchar_t* text_ = nullptr;
    std::unique_ptr<wchar_t, TaskMemoryDeleter> owned_; // of text_, once it was put
};

} // namespace webview2_detail
