// Copies by the platform's own function, which knows what a bind info holds.
#include "bind_info_copy.h"

namespace windows_gaps {

BindInfoCopy::~BindInfoCopy() {
    if (Kept()) {
        ReleaseBindInfo(&info_);
    }
}

HRESULT BindInfoCopy::Keep(DWORD flags, const BINDINFO& info) {
    info_.cbSize = sizeof(info_);
    const HRESULT result = CopyBindInfo(&info, &info_);
    if (SUCCEEDED(result)) {
        flags_ = flags;
    }
    return result;
}

HRESULT BindInfoCopy::Give(DWORD* flags, BINDINFO* info) const {
    *flags = *flags_;
    return CopyBindInfo(&info_, info);
}

} // namespace windows_gaps
