// Stands in for what a real host knows of itself: two environment variables, and the program's own file name.
#include "dp/merido_info.h"

#include <windows.h>

#include <utility>

#include "dp/environment.h"
#include "du/string_utilities.h"

namespace dp {

namespace {

constexpr const char* kApplicationNameVariable = "MERIDO_APPLICATION_NAME";
constexpr const char* kLocalPrefsVariable = "MERIDO_USER_PREFS_LOCAL_DIR";

std::wstring ProgramPath() {
    std::wstring path(MAX_PATH, L'\0');
    DWORD length = GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size()));
    // A path that fills the buffer was cut short.
    while (length == path.size()) {
        path.resize(path.size() * 2);
        length = GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size()));
    }
    path.resize(length);
    return path;
}

std::string ProgramName() {
    const std::wstring path = ProgramPath();
    const std::size_t separator = path.find_last_of(L"\\/");
    const std::wstring file = separator == std::wstring::npos ? path : path.substr(separator + 1);
    return du::WideStrToUtf8(file.substr(0, file.rfind(L'.')));
}

} // namespace

std::string MeridoInfo::GetApplicationName() {
    std::string name = Environment::Get(kApplicationNameVariable);
    return name.empty() ? ProgramName() : name;
}

bool MeridoInfo::GetMeridoUserPrefsLocalDir(std::string& directory) {
    std::string value = Environment::Get(kLocalPrefsVariable);
    if (value.empty()) {
        return false;
    }
    directory = std::move(value);
    return true;
}

} // namespace dp
