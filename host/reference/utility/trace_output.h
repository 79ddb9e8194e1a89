// Where trace lines go: stderr or a file, and a sink. One object for the process, never destroyed, so that a line traced
// while modules are being unloaded still finds it.
#pragma once

#include <windows.h>

#include <memory>
#include <mutex>
#include <string_view>

#include "host_reference/tracing.h"

namespace host_reference {

struct HandleCloser {
    void operator()(HANDLE handle) const noexcept { CloseHandle(handle); }
};

/// Owns a kernel handle; empty for none, never INVALID_HANDLE_VALUE.
using UniqueHandle = std::unique_ptr<void, HandleCloser>;

/// Every member may be called on any thread.
class TraceOutput {
  public:
    static TraceOutput& Instance();

    void SetSink(TraceSink sink, void* context);
    bool SetFile(const wchar_t* path);
    void SetEnabled(bool enabled);

    /// Writes one line and tells it to the sink. May throw std::bad_alloc, and what the sink throws.
    void Write(const char* module, const char* component, dp::TraceType type, std::string_view text);

  private:
    TraceOutput() = default;

    void WriteLine(const char* module, const char* component, dp::TraceType type,
                   std::string_view escapedText);
    void TellSink(const char* module, const char* component, dp::TraceType type, const char* escapedText);

    std::mutex mutex_; ///< Guards all that follows; never held while a sink runs.
    UniqueHandle file_;
    bool enabled_ = true;
    TraceSink sink_ = nullptr;
    void* sinkContext_ = nullptr;
};

} // namespace host_reference
