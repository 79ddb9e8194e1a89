// What a caller answered to `GetBindInfo`, kept so that it need not be asked again.
#pragma once

#include <optional>

#include <urlmon.h>

namespace windows_gaps {

class BindInfoCopy {
  public:
    BindInfoCopy() = default;
    ~BindInfoCopy();
    BindInfoCopy(const BindInfoCopy&) = delete;
    BindInfoCopy& operator=(const BindInfoCopy&) = delete;

    bool Kept() const { return flags_.has_value(); }
    bool Synchronous() const { return flags_.has_value() && (*flags_ & BINDF_ASYNCHRONOUS) == 0; }

    /// Takes a deep copy. On failure nothing is kept.
    HRESULT Keep(DWORD flags, const BINDINFO& info);

    /// Hands out a deep copy, the receiver's to release.
    HRESULT Give(DWORD* flags, BINDINFO* info) const;

  private:
    std::optional<DWORD> flags_;
    BINDINFO info_{};
};

} // namespace windows_gaps
