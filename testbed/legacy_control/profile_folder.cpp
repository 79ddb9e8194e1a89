// Names below the folder for temporary files.
#include "profile_folder.h"

#include <atomic>
#include <filesystem>

#include <windows.h>

namespace legacy_control {

ProfileFolder::ProfileFolder() {
    static std::atomic<int> count = 0;
    // The number of a process that has gone may be used again while its folder is still there.
    const std::wstring name = L"kelda-legacy-control-" + std::to_wstring(GetCurrentProcessId()) + L"-" +
                              std::to_wstring(GetTickCount64()) + L"-" + std::to_wstring(++count);
    path_ = (std::filesystem::temp_directory_path() / name).wstring();
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
