// Texts in the COM task allocator, as COM methods hand them out and take them.
#pragma once

#include <memory>
#include <string>

namespace kelda {

/// Zeroes and frees: many of these texts are credentials, and zeroing the others costs nothing.
struct ComTextDeleter {
    void operator()(wchar_t* text) const noexcept;
};

/// Owns a text of the COM task allocator until it is released to a caller.
using ComText = std::unique_ptr<wchar_t, ComTextDeleter>;

/// Stands for the out-parameter of a COM getter and puts what it gives into `text` at the end of the full expression.
class ReceiveText {
  public:
    explicit ReceiveText(ComText& text) : text_(text) {}
    ~ReceiveText() { text_.reset(received_); }
    ReceiveText(const ReceiveText&) = delete;
    ReceiveText& operator=(const ReceiveText&) = delete;

    operator wchar_t**() { return &received_; }

  private:
    ComText& text_;
    wchar_t* received_ = nullptr;
};

/// A copy of `text` in the COM task allocator; null when memory runs out.
ComText CopyToComText(const std::wstring& text) noexcept;

} // namespace kelda
