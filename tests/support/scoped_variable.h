// An environment variable for the duration of a test, set with the system's own functions.
#pragma once

#include <windows.h>

#include <string>

namespace test_support {

/// The variable's value as the system has it; `present` tells an empty value from none.
struct SystemValue {
    bool present = false;
    std::wstring text;
};

inline SystemValue ReadVariable(const wchar_t* name) {
    std::wstring text(32768, L'\0');
    SetLastError(ERROR_SUCCESS);
    const DWORD length = GetEnvironmentVariableW(name, text.data(), static_cast<DWORD>(text.size()));
    if (length == 0 && GetLastError() == ERROR_ENVVAR_NOT_FOUND) {
        return {};
    }
    text.resize(length);
    return {true, text};
}

/// Sets or, with null, removes the variable, and puts back what was there.
class ScopedVariable {
  public:
    ScopedVariable(const wchar_t* name, const wchar_t* value) : name_(name), previous_(ReadVariable(name)) {
        SetEnvironmentVariableW(name, value);
    }
    ~ScopedVariable() {
        SetEnvironmentVariableW(name_, previous_.present ? previous_.text.c_str() : nullptr);
    }
    ScopedVariable(const ScopedVariable&) = delete;
    ScopedVariable& operator=(const ScopedVariable&) = delete;

  private:
    const wchar_t* name_;
    SystemValue previous_;
};

} // namespace test_support
