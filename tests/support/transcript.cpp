// One list of what happened in a test.
#include "tests/support/transcript.h"

#include <array>
#include <cstdio>
#include <string_view>
#include <utility>

#include "host_reference/tracing.h"

namespace test_support {
namespace {

Lines& Entries() {
    static Lines entries;
    return entries;
}

} // namespace

void Record(std::string entry) {
    Entries().push_back(std::move(entry));
}

Lines InTurn(std::initializer_list<Lines> parts) {
    Lines all;
    for (const Lines& part : parts) {
        all.insert(all.end(), part.begin(), part.end());
    }
    return all;
}

std::string Hexadecimal(unsigned long value) {
    std::array<char, 16> text{};
    std::snprintf(text.data(), text.size(), "0x%08lX", value);
    return text.data();
}

void TranscriptTest::RecordTrace(void* self, const char* module, const char* component, dp::TraceType type,
                                 const char* text) {
    auto* const test = static_cast<TranscriptTest*>(self);
    std::string entry = "[" + std::to_string(static_cast<int>(type)) + "] " + text;
    if (std::string_view(module) != "kelda" || std::string_view(component) != test->component_) {
        entry += std::string(" (") + module + "/" + component + ")";
    }
    Record(std::move(entry));
    if (test->insideTraceLine_ && std::string_view(text).find(test->awaitedText_) != std::string_view::npos) {
        std::exchange(test->insideTraceLine_, nullptr)();
    }
}

void TranscriptTest::InsideTraceLine(std::string text, std::function<void()> act) {
    awaitedText_ = std::move(text);
    insideTraceLine_ = std::move(act);
}

TranscriptTest::TranscriptTest(const char* component)
    : component_(component), livingAtStart_(LiveFake::Count()) {
    Entries().clear();
    host_reference::SetTraceOutputEnabled(false);
    host_reference::SetTraceSink(&RecordTrace, this);
}

TranscriptTest::~TranscriptTest() {
    host_reference::SetTraceSink(nullptr, nullptr);
    // Here and not in TearDown: the fixture's own members are gone by now.
    EXPECT_EQ(LiveFake::Count(), livingAtStart_) << "a fake was not released";
}

Lines TranscriptTest::TakeTranscript() {
    return std::exchange(Entries(), {});
}

Lines TranscriptTest::TakeTraceLines() {
    Lines lines = TakeTranscript();
    std::erase_if(lines, [](const std::string& line) { return !line.starts_with('['); });
    return lines;
}

} // namespace test_support
