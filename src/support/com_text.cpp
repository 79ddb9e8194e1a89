// Copying texts into the COM task allocator.
#include "support/com_text.h"

#include <cwchar>

#include <windows.h>

#include <objbase.h>

namespace kelda {

void ComTextDeleter::operator()(wchar_t* text) const noexcept {
    SecureZeroMemory(text, std::wcslen(text) * sizeof(wchar_t));
    CoTaskMemFree(text);
}

ComText CopyToComText(const std::wstring& text) noexcept {
    const size_t length = text.size() + 1;
    auto* const copy = static_cast<wchar_t*>(CoTaskMemAlloc(length * sizeof(wchar_t)));
    if (copy != nullptr) {
        wcscpy_s(copy, length, text.c_str());
    }
    return ComText(copy);
}

} // namespace kelda
