// One list of what happened in a test, in order: calls of fakes and replaced system functions, and trace lines.
#pragma once

#include <functional>
#include <initializer_list>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "dp/merido_tracer.h"

namespace test_support {

using Lines = std::vector<std::string>;

/// Adds an entry to the running test's transcript.
void Record(std::string entry);

/// All lines of the parts, in their order.
Lines InTurn(std::initializer_list<Lines> parts);

/// "0x" and eight hexadecimal digits.
std::string Hexadecimal(unsigned long value);

/// Counts the fakes that are alive; each fake holds one.
class LiveFake {
  public:
    LiveFake() { ++count; }
    ~LiveFake() { --count; }
    LiveFake(const LiveFake&) = delete;
    LiveFake& operator=(const LiveFake&) = delete;
    static int Count() { return count; }

  private:
    static inline int count = 0;
};

/// Starts with an empty transcript, to which trace lines go as "[type] text", and fails a test that leaves a fake
/// alive. Lines that do not come from the library's `component` are marked with where they come from.
class TranscriptTest : public ::testing::Test {
  protected:
    explicit TranscriptTest(const char* component = "ZanBasicAuthentication");
    ~TranscriptTest() override;
    TranscriptTest(const TranscriptTest&) = delete;
    TranscriptTest& operator=(const TranscriptTest&) = delete;

    /// What has been recorded since the test began, or since the last call.
    static Lines TakeTranscript();

    /// Only the trace lines of it.
    static Lines TakeTraceLines();

    /// Has a function called once, from inside the next trace line with this text, as a host's sink may do.
    void InsideTraceLine(std::string text, std::function<void()> act);

  private:
    static void RecordTrace(void* self, const char* module, const char* component, dp::TraceType type,
                            const char* text);

    const char* component_;
    int livingAtStart_;
    std::string awaitedText_;
    std::function<void()> insideTraceLine_;
};

} // namespace test_support
