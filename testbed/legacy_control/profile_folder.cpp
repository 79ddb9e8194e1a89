// Names below the folder for temporary files.
#include "profile_folder.h"

#include <atomic>
#include <filesystem>

#include <windows.h>

#include "testbed/chromium/launch.h"

namespace legacy_control {
namespace {

constexpr ULONGLONG kRemoveMilliseconds = 3000;
constexpr ULONGLONG kTryMilliseconds = 500;
constexpr DWORD kBetweenLooksMilliseconds = 10;

bool Exists(const std::wstring& folder) {
    return GetFileAttributesW(folder.c_str()) != INVALID_FILE_ATTRIBUTES;
}

} // namespace

ProfileFolder::ProfileFolder() {
    static std::atomic<int> count = 0;
    // A process that was killed has left its folder, and its number may be used again.
    const std::wstring name = L"kelda-legacy-control-" + std::to_wstring(GetCurrentProcessId()) + L"-" +
                              std::to_wstring(GetTickCount64()) + L"-" + std::to_wstring(++count);
    path_ = (std::filesystem::temp_directory_path() / name).wstring();
}

// Not by std::filesystem::remove_all, which goes on for ever over a link whose target vanishes meanwhile. More than one try:
// processes that Chromium has started outlive it by a moment, and write there.
ProfileFolder::~ProfileFolder() {
    const ULONGLONG deadline = GetTickCount64() + kRemoveMilliseconds;
    while (Exists(path_) && GetTickCount64() < deadline) {
        DWORD error = ERROR_SUCCESS;
        testbed::chromium::StartRemoving(testbed::chromium::NativeFolder(path_, error));
        const ULONGLONG nextTry = GetTickCount64() + kTryMilliseconds;
        while (Exists(path_) && GetTickCount64() < nextTry) {
            Sleep(kBetweenLooksMilliseconds);
        }
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
