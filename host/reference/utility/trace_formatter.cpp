// Collects the text of one line; what becomes of it is the trace output's business.
#include "dp/merido_tracer.h"

#include <windows.h>

#include <array>
#include <charconv>
#include <cstdint>

#include "du/string_utilities.h"
#include "utility/trace_output.h"

namespace dp {

namespace {

constexpr const char* kNullText = "(null)";

const char* OrNullText(const char* text) {
    return text != nullptr ? text : kNullText;
}

template <typename... Arguments>
void AppendNumber(std::string& text, Arguments... arguments) {
    std::array<char, 32> digits = {};
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), arguments...).ptr;
    text.append(digits.data(), end);
}

} // namespace

struct TraceFormatter::Line {
    const char* module;
    const char* component;
    TraceType type;
    std::string text;
};

TraceFormatter::TraceFormatter(const char* module, const char* component, TraceType type)
    : line_(new Line{OrNullText(module), OrNullText(component), type, {}}) {}

TraceFormatter::~TraceFormatter() {
    // Tracing between a failed call and the question for its error must not change the answer.
    const DWORD error = GetLastError();
    try {
        host_reference::TraceOutput::Instance().Write(line_->module, line_->component, line_->type,
                                                      line_->text);
    } catch (...) {
        // Out of memory, or a sink that threw: there is nobody to tell, and the line's author must go on.
    }
    SetLastError(error);
}

TraceFormatter& TraceFormatter::operator<<(bool value) {
    return *this << (value ? "true" : "false");
}

TraceFormatter& TraceFormatter::operator<<(char value) {
    return *this << std::string_view(&value, 1);
}

TraceFormatter& TraceFormatter::operator<<(wchar_t value) {
    return *this << std::wstring_view(&value, 1);
}

TraceFormatter& TraceFormatter::operator<<(int value) {
    AppendNumber(line_->text, value);
    return *this;
}

TraceFormatter& TraceFormatter::operator<<(unsigned int value) {
    AppendNumber(line_->text, value);
    return *this;
}

TraceFormatter& TraceFormatter::operator<<(long value) {
    AppendNumber(line_->text, value);
    return *this;
}

TraceFormatter& TraceFormatter::operator<<(unsigned long value) {
    AppendNumber(line_->text, value);
    return *this;
}

TraceFormatter& TraceFormatter::operator<<(long long value) {
    AppendNumber(line_->text, value);
    return *this;
}

TraceFormatter& TraceFormatter::operator<<(unsigned long long value) {
    AppendNumber(line_->text, value);
    return *this;
}

TraceFormatter& TraceFormatter::operator<<(double value) {
    AppendNumber(line_->text, value);
    return *this;
}

TraceFormatter& TraceFormatter::operator<<(const char* text) {
    return *this << std::string_view(OrNullText(text));
}

TraceFormatter& TraceFormatter::operator<<(const wchar_t* text) {
    return text != nullptr ? *this << std::wstring_view(text) : *this << kNullText;
}

TraceFormatter& TraceFormatter::operator<<(std::string_view text) {
    line_->text += text;
    return *this;
}

TraceFormatter& TraceFormatter::operator<<(std::wstring_view text) {
    line_->text += du::WideStrToUtf8(text);
    return *this;
}

TraceFormatter& TraceFormatter::operator<<(const std::string& text) {
    return *this << std::string_view(text);
}

TraceFormatter& TraceFormatter::operator<<(const std::wstring& text) {
    return *this << std::wstring_view(text);
}

TraceFormatter& TraceFormatter::operator<<(const void* address) {
    line_->text += "0x";
    AppendNumber(line_->text, reinterpret_cast<std::uintptr_t>(address), 16);
    return *this;
}

TraceFormatter& TraceFormatter::operator<<(std::nullptr_t) {
    return *this << static_cast<const void*>(nullptr);
}

MeridoTracer::MeridoTracer(const char* module, const char* component)
    : module_(module), component_(component) {}

TraceFormatter MeridoTracer::operator()(TraceType type) const {
    return {module_, component_, type};
}

} // namespace dp
