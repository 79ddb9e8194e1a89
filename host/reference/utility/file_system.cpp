// Path composition and the folder for temporary files.
#include "du/file_system.h"

#include <windows.h>

#include <string_view>

#include "du/string_utilities.h"

namespace du {

namespace {

bool IsSeparator(char character) {
    return character == '\\' || character == '/';
}

// Length of the leading part whose separator means the root and hence stays: "C:\" or a single separator.
std::size_t RootLength(std::string_view path) {
    if (path.size() >= 3 && path[1] == ':' && IsSeparator(path[2])) {
        return 3;
    }
    return !path.empty() && IsSeparator(path[0]) ? 1 : 0;
}

} // namespace

void FileSpec::SetLocation(const std::string& directory) {
    path_ = directory;
    const std::size_t root = RootLength(path_);
    while (path_.size() > root && IsSeparator(path_.back())) {
        path_.pop_back();
    }
}

void FileSpec::PushDirectory(const std::string& name) {
    if (name.empty()) {
        return;
    }
    if (!path_.empty() && !IsSeparator(path_.back())) {
        path_ += '\\';
    }
    path_ += name;
}

std::string FileSpec::GetPath() const {
    return path_;
}

std::string FileSystem::GetTempDir() {
    std::wstring path;
    DWORD needed = GetTempPathW(0, nullptr);
    while (needed > path.size()) {
        path.resize(needed);
        needed = GetTempPathW(needed, path.data());
    }
    path.resize(needed);
    FileSpec directory;
    directory.SetLocation(WideStrToUtf8(path));
    return directory.GetPath();
}

} // namespace du
