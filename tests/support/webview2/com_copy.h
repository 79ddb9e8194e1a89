// Texts that the fakes hand out.
#pragma once

#include <cwchar>
#include <string>

#include <windows.h>

#include <objbase.h>

namespace test_support {

/// A copy for a caller who frees it.
inline wchar_t* ComCopy(const std::wstring& text) {
    auto* const copy = static_cast<wchar_t*>(CoTaskMemAlloc((text.size() + 1) * sizeof(wchar_t)));
    wcscpy_s(copy, text.size() + 1, text.c_str());
    return copy;
}

} // namespace test_support
