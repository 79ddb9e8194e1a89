// The system reads PNG where icons are: as the picture of an icon resource.
#include "toolkit/icon_file.h"

#include <cstddef>
#include <vector>

#include "du/string_utilities.h"
#include "toolkit/unique_handle.h"

namespace host_reference {

namespace {

// More than any icon needs; what else lies there under the name is left alone.
constexpr LONGLONG kLargestFile = 1 << 20;
constexpr DWORD kIconVersion = 0x00030000;

UniqueHandle Owned(HANDLE file) {
    return UniqueHandle(file != INVALID_HANDLE_VALUE ? file : nullptr);
}

std::wstring ProgramFolder() {
    std::wstring path(MAX_PATH, L'\0');
    DWORD length = GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size()));
    while (length == path.size()) {
        path.resize(path.size() * 2);
        length = GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size()));
    }
    path.resize(length);
    return path.substr(0, path.find_last_of(L'\\') + 1);
}

std::vector<BYTE> ReadSmallFile(const std::wstring& path) {
    const UniqueHandle file = Owned(CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr,
                                                OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
    LARGE_INTEGER size = {};
    if (!file || GetFileSizeEx(file.get(), &size) == FALSE || size.QuadPart > kLargestFile) {
        return {};
    }
    std::vector<BYTE> content(static_cast<std::size_t>(size.QuadPart));
    DWORD read = 0;
    if (ReadFile(file.get(), content.data(), static_cast<DWORD>(content.size()), &read, nullptr) == FALSE) {
        return {};
    }
    content.resize(read);
    return content;
}

} // namespace

UniqueIcon LoadIconFile(const std::string& name, int width, int height) {
    if (name.empty()) {
        return nullptr;
    }
    std::vector<BYTE> picture = ReadSmallFile(ProgramFolder() + du::Utf8ToWideStr(name));
    if (picture.empty()) {
        return nullptr;
    }
    return UniqueIcon(CreateIconFromResourceEx(picture.data(), static_cast<DWORD>(picture.size()), TRUE,
                                               kIconVersion, width, height, LR_DEFAULTCOLOR));
}

} // namespace host_reference
