// Names below the folder for temporary files.
#include "profile_folder.h"

#include <atomic>
#include <filesystem>
#include <system_error>

#include <windows.h>

namespace legacy_control {
namespace {

constexpr ULONGLONG kRemoveMilliseconds = 3000;
constexpr DWORD kBetweenTriesMilliseconds = 20;

} // namespace

ProfileFolder::ProfileFolder() {
    static std::atomic<int> count = 0;
    // A process that was killed has left its folder, and its number may be used again.
    const std::wstring name = L"kelda-legacy-control-" + std::to_wstring(GetCurrentProcessId()) + L"-" +
                              std::to_wstring(GetTickCount64()) + L"-" + std::to_wstring(++count);
    path_ = (std::filesystem::temp_directory_path() / name).wstring();
}

// Processes that Chromium has started outlive it by a moment, with files of theirs in the folder.
ProfileFolder::~ProfileFolder() {
    const ULONGLONG deadline = GetTickCount64() + kRemoveMilliseconds;
    std::error_code problem;
    std::filesystem::remove_all(path_, problem);
    while (problem && GetTickCount64() < deadline) {
        Sleep(kBetweenTriesMilliseconds);
        std::filesystem::remove_all(path_, problem);
    }
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
