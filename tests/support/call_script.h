// What the fakes of one system answer, and what happens meanwhile.
#pragma once

#include <functional>
#include <map>
#include <string>

#include <windows.h>

namespace test_support {

/// Shared by all fakes of one system. A call is named "object.Method", or "object.Method argument" where it takes one
/// that tells it apart.
class CallScript {
  public:
    /// Records the call with its arguments, lets happen what is to happen in it, and gives its answer.
    HRESULT Call(const std::string& name, const std::string& arguments = {}) const;

    /// Answers other than S_OK.
    std::map<std::string, HRESULT> answers;

    /// What happens inside a call, as when the system pumps messages there.
    std::map<std::string, std::function<void()>> during;

    /// Switched off where a test is not about single calls.
    bool recordsCalls = true;
};

/// For transcripts: null reads "(null)".
std::string Narrow(const wchar_t* text);

} // namespace test_support
