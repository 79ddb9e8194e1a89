// User name and password as `IAuthenticate::Authenticate` hands them over, kept in the very memory that it allocated.
#pragma once

#include <string_view>
#include <utility>

#include <windows.h>

namespace windows_gaps {

/// A text by `CoTaskMemAlloc` that is zeroed before it is freed.
class TaskSecret {
  public:
    TaskSecret() = default;
    ~TaskSecret() { Reset(); }
    TaskSecret(const TaskSecret&) = delete;
    TaskSecret& operator=(const TaskSecret&) = delete;
    TaskSecret(TaskSecret&&) = delete;
    TaskSecret& operator=(TaskSecret&&) = delete;

    /// For an out-parameter; what was held is gone.
    LPWSTR* Receive() {
        Reset();
        return &text_;
    }
    void Reset();

    bool Given() const { return text_ != nullptr; }
    /// Never null.
    LPCWSTR CStr() const { return text_ == nullptr ? L"" : text_; }

  private:
    LPWSTR text_ = nullptr;
};

struct OfferedCredentials {
    TaskSecret userName;
    TaskSecret password;

    /// False where `Authenticate` succeeded without naming anybody.
    bool Given() const { return userName.Given() || password.Given(); }

    void Forget() {
        userName.Reset();
        password.Reset();
    }
};

} // namespace windows_gaps
