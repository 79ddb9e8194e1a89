// Tracing of the host utility library: a tracer is called with a trace type and yields a formatter, into which text and
// numbers are streamed. The line is written when the formatter dies.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <type_traits>

#include "du/api.h"

namespace dp {

/// The kind of a trace line, as a number in the trace.
enum class TraceType : int {
    Information = 0,
    Warning = 2,
    Failure = 3,
};

/// What a pointer must not point to when it is streamed.
template <typename T>
concept NeitherTextNorAddress =
    !std::is_same_v<std::remove_const_t<T>, char> && !std::is_same_v<std::remove_const_t<T>, wchar_t> &&
    !std::is_same_v<std::remove_const_t<T>, void>;

/// Collects one trace line and writes it when destroyed; destruction never throws and keeps the thread's last error.
/// Narrow text is taken as UTF-8, wide text as UTF-16 and written as UTF-8; a null text reads "(null)". A double prints
/// the shortest digits that read back as the same number. Only a `const void*` or `void*` prints as an address, in
/// lower-case hexadecimal with "0x" before it; any other pointer has to be cast to one, so that no text in an unexpected
/// character type is taken for an address.
///
/// Belongs to one thread. `module` and `component` must outlive it; null reads "(null)".
class HOST_UTILITY_API TraceFormatter {
  public:
    TraceFormatter(const char* module, const char* component, TraceType type);
    ~TraceFormatter();
    TraceFormatter(const TraceFormatter&) = delete;
    TraceFormatter& operator=(const TraceFormatter&) = delete;

    TraceFormatter& operator<<(bool value); ///< "true" or "false".
    TraceFormatter& operator<<(char value);
    TraceFormatter& operator<<(wchar_t value);
    TraceFormatter& operator<<(int value);
    TraceFormatter& operator<<(unsigned int value);
    TraceFormatter& operator<<(long value);
    TraceFormatter& operator<<(unsigned long value);
    TraceFormatter& operator<<(long long value);
    TraceFormatter& operator<<(unsigned long long value);
    TraceFormatter& operator<<(double value);
    TraceFormatter& operator<<(const char* text);
    TraceFormatter& operator<<(const wchar_t* text);
    TraceFormatter& operator<<(std::string_view text);
    TraceFormatter& operator<<(std::wstring_view text);
    TraceFormatter& operator<<(const std::string& text);
    TraceFormatter& operator<<(const std::wstring& text);
    TraceFormatter& operator<<(const void* address);
    TraceFormatter& operator<<(std::nullptr_t); ///< "0x0".

    template <NeitherTextNorAddress T>
    TraceFormatter& operator<<(T* pointer) = delete;

  private:
    struct Line;
    std::unique_ptr<Line> line_;
};

/// Names the module and the component whose lines it makes. Both texts must outlive it. May be used on any thread.
class HOST_UTILITY_API MeridoTracer {
  public:
    MeridoTracer(const char* module, const char* component);

    TraceFormatter operator()(TraceType type) const;

  private:
    const char* module_;
    const char* component_;
};

} // namespace dp
