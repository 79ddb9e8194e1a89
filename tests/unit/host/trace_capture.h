// Trace lines as a sink is told them, and as they stand in a file.
#pragma once

#include <windows.h>

#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "host_reference/tracing.h"

namespace host_test {

struct CapturedLine {
    std::string module;
    std::string component;
    dp::TraceType type = dp::TraceType::Information;
    std::string text;

    bool operator==(const CapturedLine&) const = default;
};

/// Records each line that is traced on any thread while it lives. Nothing is written elsewhere meanwhile.
class TraceCapture {
  public:
    TraceCapture() {
        host_reference::SetTraceOutputEnabled(false);
        host_reference::SetTraceSink(&TraceCapture::Receive, this);
    }
    ~TraceCapture() {
        host_reference::SetTraceSink(nullptr, nullptr);
        host_reference::SetTraceOutputEnabled(true);
    }
    TraceCapture(const TraceCapture&) = delete;
    TraceCapture& operator=(const TraceCapture&) = delete;

    std::vector<CapturedLine> Lines() const {
        const std::scoped_lock lock(mutex_);
        return lines_;
    }

  private:
    static void Receive(void* context, const char* module, const char* component, dp::TraceType type,
                        const char* text) {
        auto& self = *static_cast<TraceCapture*>(context);
        const std::scoped_lock lock(self.mutex_);
        self.lines_.push_back({module, component, type, text});
    }

    mutable std::mutex mutex_;
    std::vector<CapturedLine> lines_;
};

/// The text of one line into which `values` are streamed.
template <typename... Values>
std::string Traced(const Values&... values) {
    const TraceCapture capture;
    {
        dp::TraceFormatter formatter("module", "component", dp::TraceType::Information);
        static_cast<void>((formatter << ... << values));
    }
    const std::vector<CapturedLine> lines = capture.Lines();
    return lines.size() == 1 ? lines[0].text : "not exactly one line";
}

/// A file of the test's own; its name has letters beyond ASCII. It is deleted in the end.
class ScratchFile {
  public:
    ScratchFile() {
        std::wstring directory(MAX_PATH + 1, L'\0');
        directory.resize(GetTempPathW(static_cast<DWORD>(directory.size()), directory.data()));
        path_ = directory + L"host_test_gr\u00fc\u00df_" + std::to_wstring(GetCurrentProcessId()) + L".txt";
        DeleteFileW(path_.c_str());
    }
    ~ScratchFile() { DeleteFileW(path_.c_str()); }
    ScratchFile(const ScratchFile&) = delete;
    ScratchFile& operator=(const ScratchFile&) = delete;

    const wchar_t* Path() const { return path_.c_str(); }

    /// Opens the file for reading while others may write to it; a file that cannot be opened reads as empty.
    std::string Content() const {
        HANDLE file = CreateFileW(Path(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                  OPEN_EXISTING, 0, nullptr);
        if (file == INVALID_HANDLE_VALUE) {
            return {};
        }
        std::string content(GetFileSize(file, nullptr), '\0');
        DWORD length = 0;
        ReadFile(file, content.data(), static_cast<DWORD>(content.size()), &length, nullptr);
        CloseHandle(file);
        content.resize(length);
        return content;
    }

  private:
    std::wstring path_;
};

/// `content` cut at its line ends; a last line without one is given as it is, with " (no line end)" behind it.
inline std::vector<std::string> LinesOf(std::string_view content) {
    std::vector<std::string> lines;
    while (!content.empty()) {
        const std::size_t end = content.find('\n');
        if (end == std::string_view::npos) {
            lines.push_back(std::string(content) + " (no line end)");
            break;
        }
        lines.emplace_back(content.substr(0, end));
        content.remove_prefix(end + 1);
    }
    return lines;
}

} // namespace host_test
