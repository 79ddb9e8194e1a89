// A value object of the host's.
#include "controller_options.h"

#include <algorithm>
#include <string_view>

namespace webview2_runtime {
namespace {

constexpr std::size_t kLongestProfileName = 64;

bool IsProfileCharacter(wchar_t character) {
    return (character >= L'a' && character <= L'z') || (character >= L'A' && character <= L'Z') ||
           (character >= L'0' && character <= L'9') ||
           std::wstring_view(L"#@$()+-_~. ").find(character) != std::wstring_view::npos;
}

bool IsProfileName(std::wstring_view name) {
    return !name.empty() && name.size() <= kLongestProfileName && !name.ends_with(L' ') &&
           !name.ends_with(L'.') && std::ranges::all_of(name, IsProfileCharacter);
}

} // namespace

HRESULT ControllerOptions::get_ProfileName(LPWSTR* value) {
    return Guarded([&] { return CopyOut(profileName_, value); });
}

HRESULT ControllerOptions::put_ProfileName(LPCWSTR value) {
    return Guarded([&]() -> HRESULT {
        if (value == nullptr) {
            return E_POINTER;
        }
        if (!IsProfileName(value)) {
            return E_INVALIDARG;
        }
        profileName_ = value;
        return S_OK;
    });
}

HRESULT ControllerOptions::get_IsInPrivateModeEnabled(BOOL* value) {
    return GuardedGet(value, [&] { return inPrivate_ ? TRUE : FALSE; });
}

HRESULT ControllerOptions::put_IsInPrivateModeEnabled(BOOL value) {
    return Guarded([&] {
        inPrivate_ = value != FALSE;
        return S_OK;
    });
}

} // namespace webview2_runtime
