// Texts as COM methods take them and hand them out: in the COM task allocator, which works without CoInitialize too.
#pragma once

#include <cstring>
#include <string>
#include <string_view>

#include <objbase.h>

namespace webview2_runtime {

/// Hands out a copy that the caller frees with CoTaskMemFree.
inline HRESULT CopyOut(std::wstring_view text, LPWSTR* out) {
    if (out == nullptr) {
        return E_POINTER;
    }
    const std::size_t size = (text.size() + 1) * sizeof(wchar_t);
    *out = static_cast<LPWSTR>(CoTaskMemAlloc(size));
    if (*out == nullptr) {
        return E_OUTOFMEMORY;
    }
    std::memset(*out, 0, size);
    std::memcpy(*out, text.data(), text.size() * sizeof(wchar_t));
    return S_OK;
}

/// Takes over what a getter hands out.
class ReceivedText {
  public:
    ReceivedText() = default;
    ~ReceivedText() { CoTaskMemFree(text_); }
    ReceivedText(const ReceivedText&) = delete;
    ReceivedText& operator=(const ReceivedText&) = delete;

    /// To be handed to one getter.
    LPWSTR* Receive() { return &text_; }

    /// Empty where the getter handed out nothing.
    std::wstring Text() const { return text_ == nullptr ? std::wstring() : std::wstring(text_); }

  private:
    LPWSTR text_ = nullptr;
};

} // namespace webview2_runtime
