// Lines leave with one system call each and no buffer of ours, so that a crash loses none.
#include "utility/trace_output.h"

#include <string>
#include <utility>

#include "utility/trace_line.h"

namespace host_reference {

namespace {

// Set while this thread is inside a sink: a line that the sink itself traces is written but not told to it again.
thread_local bool insideSink = false;

class SinkScope {
  public:
    SinkScope() { insideSink = true; }
    ~SinkScope() { insideSink = false; }
    SinkScope(const SinkScope&) = delete;
    SinkScope& operator=(const SinkScope&) = delete;
};

UniqueHandle Owned(HANDLE file) {
    return UniqueHandle(file != INVALID_HANDLE_VALUE ? file : nullptr);
}

// Only the right to append: the system puts each write at the end of the file.
UniqueHandle OpenForAppend(const wchar_t* path) {
    return Owned(CreateFileW(path, FILE_APPEND_DATA, FILE_SHARE_READ, nullptr, OPEN_ALWAYS,
                             FILE_ATTRIBUTE_NORMAL, nullptr));
}

} // namespace

TraceOutput& TraceOutput::Instance() {
    static TraceOutput& output = *new TraceOutput;
    return output;
}

void TraceOutput::SetSink(TraceSink sink, void* context) {
    const std::scoped_lock lock(mutex_);
    sink_ = sink;
    sinkContext_ = context;
}

bool TraceOutput::SetFile(const wchar_t* path) {
    const bool wantsFile = path != nullptr && *path != L'\0';
    UniqueHandle file = wantsFile ? OpenForAppend(path) : nullptr;
    if (wantsFile && !file) {
        return false;
    }
    const std::scoped_lock lock(mutex_);
    file_ = std::move(file);
    return true;
}

void TraceOutput::SetEnabled(bool enabled) {
    const std::scoped_lock lock(mutex_);
    enabled_ = enabled;
}

void TraceOutput::Write(const char* module, const char* component, dp::TraceType type,
                        std::string_view text) {
    const std::string escaped = Escaped(text);
    WriteLine(module, component, type, escaped);
    TellSink(module, component, type, escaped.c_str());
}

void TraceOutput::WriteLine(const char* module, const char* component, dp::TraceType type,
                            std::string_view escapedText) {
    const std::scoped_lock lock(mutex_);
    if (!enabled_) {
        return;
    }
    // Under the lock, so that the times in a file never go backwards.
    const std::string line = FormatLine(module, component, type, escapedText);
    // Asked for each line: a program may redirect its stderr at any time, and one without has none to write to.
    HANDLE target = file_ ? file_.get() : GetStdHandle(STD_ERROR_HANDLE);
    DWORD written = 0;
    WriteFile(target, line.data(), static_cast<DWORD>(line.size()), &written, nullptr);
}

void TraceOutput::TellSink(const char* module, const char* component, dp::TraceType type,
                           const char* escapedText) {
    if (insideSink) {
        return;
    }
    TraceSink sink = nullptr;
    void* context = nullptr;
    {
        const std::scoped_lock lock(mutex_);
        sink = sink_;
        context = sinkContext_;
    }
    if (sink != nullptr) {
        const SinkScope scope;
        sink(context, module, component, type, escapedText);
    }
}

void SetTraceSink(TraceSink sink, void* context) {
    TraceOutput::Instance().SetSink(sink, context);
}

bool SetTraceFile(const wchar_t* path) {
    return TraceOutput::Instance().SetFile(path);
}

void SetTraceOutputEnabled(bool enabled) {
    TraceOutput::Instance().SetEnabled(enabled);
}

} // namespace host_reference
