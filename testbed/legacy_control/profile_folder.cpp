// Names below the folder for temporary files.
#include "profile_folder.h"

#include <atomic>
#include <filesystem>
#include <system_error>

#include <windows.h>

namespace legacy_control {

ProfileFolder::ProfileFolder() {
    static std::atomic<int> count = 0;
    // A process that was killed has left its folder, and its number may be used again.
    const std::wstring name = L"kelda-legacy-control-" + std::to_wstring(GetCurrentProcessId()) + L"-" +
                              std::to_wstring(GetTickCount64()) + L"-" + std::to_wstring(++count);
    path_ = (std::filesystem::temp_directory_path() / name).wstring();
}

ProfileFolder::~ProfileFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
}

std::shared_ptr<ProfileFolder> ProfileFolder::OfThisThread() {
    thread_local std::weak_ptr<ProfileFolder> current;
    auto folder = current.lock();
    if (folder == nullptr) {
        folder.reset(new ProfileFolder);
        current = folder;
    }
    return folder;
}

} // namespace legacy_control
