// Reads and writes the system's environment block, not the C runtime's copy: a change that any module makes while the
// process runs is seen.
#include "dp/environment.h"

#include <windows.h>

#include "du/string_utilities.h"

namespace dp {

std::string Environment::Get(const char* name) {
    if (name == nullptr) {
        return {};
    }
    const std::wstring wideName = du::Utf8ToWideStr(name);
    std::wstring value;
    // Too small a buffer is answered with the size wanted, terminator included; another thread may change the value
    // between two calls, hence the loop.
    DWORD needed = GetEnvironmentVariableW(wideName.c_str(), nullptr, 0);
    while (needed > value.size()) {
        value.resize(needed);
        needed = GetEnvironmentVariableW(wideName.c_str(), value.data(), needed);
    }
    value.resize(needed);
    return du::WideStrToUtf8(value);
}

void Environment::Put(const char* name, const char* value) {
    if (name == nullptr) {
        return;
    }
    const bool removes = value == nullptr || *value == '\0';
    const std::wstring wideValue = removes ? std::wstring() : du::Utf8ToWideStr(value);
    SetEnvironmentVariableW(du::Utf8ToWideStr(name).c_str(), removes ? nullptr : wideValue.c_str());
}

} // namespace dp
