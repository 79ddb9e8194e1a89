// Wiping of what a caller allocated for us.
#include "offered_credentials.h"

#include <cwchar>

#include <objbase.h>

namespace windows_gaps {

void TaskSecret::Reset() {
    if (text_ != nullptr) {
        SecureZeroMemory(text_, std::wcslen(text_) * sizeof(wchar_t));
        CoTaskMemFree(text_);
        text_ = nullptr;
    }
}

} // namespace windows_gaps
