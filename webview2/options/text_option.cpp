// Copies in the task allocator.
#include "options/text_option.h"

#include <cwchar>
#include <utility>

namespace webview2_detail {
namespace {

using Text = std::unique_ptr<wchar_t, TaskMemoryDeleter>;

/// @return null when memory runs out.
Text CopyOf(const wchar_t* text) {
    const std::size_t size = std::wcslen(text) + 1;
    Text copy(static_cast<wchar_t*>(CoTaskMemAlloc(size * sizeof(wchar_t))));
    if (copy) {
        std::wmemcpy(copy.get(), text, size);
    }
    return copy;
}

} // namespace

HRESULT TextOption::Get(LPWSTR* value) const {
    if (value == nullptr) {
        return E_POINTER;
    }
    *value = nullptr;
    if (text_ == nullptr) {
        return S_OK;
    }
    *value = CopyOf(text_).release();
    return *value != nullptr ? S_OK : E_OUTOFMEMORY;
}

HRESULT TextOption::Put(LPCWSTR value) {
    Text copy;
    if (value != nullptr) {
        copy = CopyOf(value);
        if (!copy) {
            return E_OUTOFMEMORY;
        }
    }
    owned_ = std::move(copy);
    text_ = owned_.get();
    return S_OK;
}

} // namespace webview2_detail
