// A text that nobody finds in memory afterwards: it never moves while it is filled, and is zeroed before it is freed.
#pragma once

#include <algorithm>
#include <cstddef>
#include <memory>
#include <string_view>
#include <utility>

#include <windows.h>

namespace windows_gaps {

class SecretText {
  public:
    /// An empty text without any room.
    SecretText() = default;

    /// Room for `capacity` characters and the terminator, zeroed.
    explicit SecretText(std::size_t capacity)
        : text_(std::make_unique<wchar_t[]>(capacity + 1)), size_(capacity + 1) {}

    explicit SecretText(std::wstring_view text) : SecretText(text.size()) {
        std::ranges::copy(text, text_.get());
    }

    ~SecretText() { Wipe(); }
    SecretText(const SecretText&) = delete;
    SecretText& operator=(const SecretText&) = delete;
    SecretText(SecretText&& other) noexcept
        : text_(std::move(other.text_)), size_(std::exchange(other.size_, 0)) {}
    SecretText& operator=(SecretText&& other) noexcept {
        Wipe();
        text_ = std::move(other.text_);
        size_ = std::exchange(other.size_, 0);
        return *this;
    }

    /// To be filled with a terminated text of at most `Size()` characters, terminator included. Null without room.
    wchar_t* Data() { return text_.get(); }
    std::size_t Size() const { return size_; }

    /// The characters before the terminator; valid until this object changes.
    std::wstring_view View() const {
        return text_ == nullptr ? std::wstring_view() : std::wstring_view(text_.get());
    }

    /// The same, terminated.
    const wchar_t* CStr() const { return text_ == nullptr ? L"" : text_.get(); }

  private:
    void Wipe() {
        if (text_ != nullptr) {
            SecureZeroMemory(text_.get(), size_ * sizeof(wchar_t));
        }
    }

    std::unique_ptr<wchar_t[]> text_;
    std::size_t size_ = 0;
};

} // namespace windows_gaps
