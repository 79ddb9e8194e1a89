// Where lines go, and that each stays one line whatever its text holds.
#include <windows.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <functional>
#include <map>
#include <regex>
#include <thread>

#include "testbed/support/import_patch.h"
#include "trace_capture.h"

namespace {

using namespace std::string_view_literals;

using host_test::LinesOf;
using host_test::ScratchFile;
using host_test::TraceCapture;
using host_test::Traced;
using ::testing::ElementsAre;
using ::testing::EndsWith;

void Trace(std::string_view text, dp::TraceType type = dp::TraceType::Information) {
    dp::TraceFormatter("kelda", "Component", type) << text;
}

/// Lines go to a file of the test's own until it dies.
class TracedFile {
  public:
    TracedFile() { opened_ = host_reference::SetTraceFile(file_.Path()); }
    ~TracedFile() { host_reference::SetTraceFile(nullptr); }
    TracedFile(const TracedFile&) = delete;
    TracedFile& operator=(const TracedFile&) = delete;

    bool Opened() const { return opened_; }
    const wchar_t* Path() const { return file_.Path(); }
    std::vector<std::string> Lines() const { return LinesOf(file_.Content()); }

  private:
    ScratchFile file_;
    bool opened_ = false;
};

/// The read end of a pipe that the process's stderr leads into; stderr is as before when it dies.
class StderrPipe {
  public:
    StderrPipe() : previous_(GetStdHandle(STD_ERROR_HANDLE)) {
        CreatePipe(&read_, &write_, nullptr, 0);
        SetStdHandle(STD_ERROR_HANDLE, write_);
    }
    ~StderrPipe() {
        SetStdHandle(STD_ERROR_HANDLE, previous_);
        CloseHandle(read_);
        CloseHandle(write_);
    }
    StderrPipe(const StderrPipe&) = delete;
    StderrPipe& operator=(const StderrPipe&) = delete;

    /// What has been written so far; never waits.
    std::string Written() const {
        DWORD available = 0;
        PeekNamedPipe(read_, nullptr, 0, nullptr, &available, nullptr);
        std::string text(available, '\0');
        DWORD length = 0;
        if (available != 0) {
            ReadFile(read_, text.data(), available, &length, nullptr);
        }
        text.resize(length);
        return text;
    }

  private:
    HANDLE previous_;
    HANDLE read_ = nullptr;
    HANDLE write_ = nullptr;
};

void WINAPI AnswerEarlyMorning(SYSTEMTIME* time) {
    *time = {};
    time->wHour = 3;
    time->wMinute = 4;
    time->wSecond = 5;
    time->wMilliseconds = 6;
}

/// Replaces the local time that the library gets from the system; fails the test where it does not ask for it.
class EarlyMorning {
  public:
    EarlyMorning() : original_(Patch(reinterpret_cast<void*>(&AnswerEarlyMorning))) {
        EXPECT_NE(original_, nullptr);
    }
    ~EarlyMorning() { Patch(original_); }
    EarlyMorning(const EarlyMorning&) = delete;
    EarlyMorning& operator=(const EarlyMorning&) = delete;

  private:
    static void* Patch(void* function) {
        return testbed::PatchImport(GetModuleHandleW(L"host_utility.dll"), "KERNEL32.dll", "GetLocalTime",
                                    function);
    }

    void* original_;
};

TEST(TraceOutput, LineHasTimeModuleComponentTypeAndText) {
    const TracedFile file;
    ASSERT_TRUE(file.Opened());
    Trace("some text");
    Trace("failed", dp::TraceType::Failure);
    const std::string time = "[0-9]{2}:[0-9]{2}:[0-9]{2}\\.[0-9]{3}";
    const std::vector<std::string> lines = file.Lines();
    ASSERT_EQ(lines.size(), 2U);
    EXPECT_TRUE(std::regex_match(lines[0], std::regex(time + " kelda Component 0 some text"))) << lines[0];
    EXPECT_TRUE(std::regex_match(lines[1], std::regex(time + " kelda Component 3 failed"))) << lines[1];
}

TEST(TraceOutput, TimeIsTheLocalTimeWithLeadingZeros) {
    const EarlyMorning time;
    const TracedFile file;
    Trace("text");
    EXPECT_THAT(file.Lines(), ElementsAre("03:04:05.006 kelda Component 0 text"));
}

TEST(TraceOutput, LinesGoToStderrAtFirst) {
    const StderrPipe pipe;
    Trace("to stderr");
    EXPECT_THAT(LinesOf(pipe.Written()), ElementsAre(EndsWith(" kelda Component 0 to stderr")));
}

TEST(TraceOutput, LinesGoToTheFileInsteadOfStderr) {
    const StderrPipe pipe;
    const TracedFile file;
    Trace("to the file");
    EXPECT_EQ(pipe.Written(), "");
    EXPECT_THAT(file.Lines(), ElementsAre(EndsWith(" to the file")));
}

TEST(TraceOutput, NoFileMeansStderrAgain) {
    for (const wchar_t* none : {static_cast<const wchar_t*>(nullptr), L""}) {
        const StderrPipe pipe;
        const TracedFile file;
        EXPECT_TRUE(host_reference::SetTraceFile(none));
        Trace("to stderr");
        EXPECT_THAT(LinesOf(pipe.Written()), ElementsAre(EndsWith(" to stderr")));
        EXPECT_EQ(file.Lines().size(), 0U);
        EXPECT_TRUE(DeleteFileW(file.Path())) << "the file is still open";
    }
}

TEST(TraceOutput, FileIsAppendedTo) {
    const ScratchFile file;
    ASSERT_TRUE(host_reference::SetTraceFile(file.Path()));
    Trace("first");
    host_reference::SetTraceFile(nullptr);
    ASSERT_TRUE(host_reference::SetTraceFile(file.Path()));
    Trace("second");
    host_reference::SetTraceFile(nullptr);
    EXPECT_THAT(LinesOf(file.Content()), ElementsAre(EndsWith(" first"), EndsWith(" second")));
}

TEST(TraceOutput, LinesAreInTheFileAtOnce) {
    const TracedFile file;
    Trace("first");
    EXPECT_EQ(file.Lines().size(), 1U);
    Trace("second");
    EXPECT_EQ(file.Lines().size(), 2U);
}

TEST(TraceOutput, OthersMayReadTheFileButNotWriteIt) {
    const TracedFile file;
    ASSERT_TRUE(file.Opened());
    HANDLE other = CreateFileW(file.Path(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                               OPEN_EXISTING, 0, nullptr);
    if (other != INVALID_HANDLE_VALUE) {
        CloseHandle(other);
        FAIL() << "the file could be opened for writing";
    }
    EXPECT_EQ(GetLastError(), DWORD{ERROR_SHARING_VIOLATION});
}

TEST(TraceOutput, FileThatCannotBeOpenedLeavesLinesAsTheyWere) {
    const TracedFile file;
    EXPECT_FALSE(host_reference::SetTraceFile(L"Z:\\no such directory\\trace.txt"));
    Trace("still here");
    EXPECT_THAT(file.Lines(), ElementsAre(EndsWith(" still here")));
}

TEST(TraceOutput, SwitchedOffWritesNothing) {
    const StderrPipe pipe;
    const TracedFile file;
    host_reference::SetTraceOutputEnabled(false);
    Trace("not written");
    host_reference::SetTraceOutputEnabled(true);
    Trace("written");
    EXPECT_THAT(file.Lines(), ElementsAre(EndsWith(" written")));
    EXPECT_EQ(pipe.Written(), "");
}

TEST(TraceOutput, ProgramWithoutStderrLosesTheLineOnly) {
    HANDLE previous = GetStdHandle(STD_ERROR_HANDLE);
    SetStdHandle(STD_ERROR_HANDLE, nullptr);
    EXPECT_NO_THROW(Trace("nowhere"));
    SetStdHandle(STD_ERROR_HANDLE, previous);
    const TracedFile file;
    Trace("somewhere");
    EXPECT_EQ(file.Lines().size(), 1U);
}

TEST(TraceOutput, SinkIsToldLinesThatAreWrittenToo) {
    const TracedFile file;
    const TraceCapture capture;
    host_reference::SetTraceOutputEnabled(true);
    Trace("both");
    EXPECT_THAT(file.Lines(), ElementsAre(EndsWith(" both")));
    ASSERT_EQ(capture.Lines().size(), 1U);
    EXPECT_EQ(capture.Lines()[0].text, "both");
}

TEST(TraceOutput, NewSinkReplacesTheOldOne) {
    const TraceCapture first;
    {
        const TraceCapture second;
        Trace("for the second");
        EXPECT_EQ(second.Lines().size(), 1U);
    }
    host_reference::SetTraceOutputEnabled(false);
    Trace("for none");
    EXPECT_EQ(first.Lines().size(), 0U);
}

struct Escape {
    std::string_view text;
    std::string_view shown;
};

constexpr Escape kEscapes[] = {
    {"a\rb", R"(a\rb)"},
    {"a\nb", R"(a\nb)"},
    {"a\tb", R"(a\tb)"},
    {"\x1b[31m", R"(\x1b[31m)"},
    {"a\0b"sv, R"(a\x00b)"},
    {"\x01\x1f\x7f", R"(\x01\x1f\x7f)"},
    {"\xc2\x85", R"(\xc2\x85)"},                 // next line
    {"\xc2\x80\xc2\x9f", R"(\xc2\x80\xc2\x9f)"}, // first and last of the C1 controls
    {"\xe2\x80\xa8", R"(\xe2\x80\xa8)"},         // line separator
    {"\xe2\x80\xa9", R"(\xe2\x80\xa9)"},         // paragraph separator
};

constexpr std::string_view kPlain[] = {
    " !~",          R"(C:\new\table)", "\xc2\xa0",         "\xc3\x85",
    "\xe2\x80\xa7", "\xe2\x80\xaf",    "\xf0\x9f\x94\x91", // beside the two separators, and four bytes long
};

TEST(TraceEscape, ControlCharactersAreShown) {
    for (const Escape& escape : kEscapes) {
        EXPECT_EQ(Traced(escape.text), escape.shown);
    }
}

TEST(TraceEscape, OtherTextStaysAsItIs) {
    for (const std::string_view text : kPlain) {
        EXPECT_EQ(Traced(text), text);
    }
}

TEST(TraceEscape, BytesThatAreNoUtf8AreShown) {
    EXPECT_EQ(Traced("caf\xe9 au lait"), R"(caf\xe9 au lait)");
    EXPECT_EQ(Traced("\xff\xc3"), R"(\xff\xc3)");
    EXPECT_EQ(Traced("\xe2\x80"), R"(\xe2\x80)") << "cut short at the end of the text";
    EXPECT_EQ(Traced("\xc3\x28"), R"(\xc3()") << "only the byte that is wrong";
    EXPECT_EQ(Traced("\xed\xa0\x80"), R"(\xed\xa0\x80)") << "a surrogate is no character";
}

TEST(TraceEscape, EveryControlByteIsEscaped) {
    for (int value = 0; value < 0x20; ++value) {
        const std::string shown = Traced(static_cast<char>(value));
        EXPECT_EQ(shown.front(), '\\') << value;
        EXPECT_GE(shown.size(), 2U) << value;
    }
}

TEST(TraceEscape, WideTextIsEscapedToo) {
    EXPECT_EQ(Traced(L"a\r\n\u0085b", L'\n'), R"(a\r\n\xc2\x85b\n)");
}

TEST(TraceEscape, TextFromOutsideCannotForgeALine) {
    const TracedFile file;
    Trace("value\r\n12:00:00.000 kelda Component 0 forged");
    EXPECT_THAT(file.Lines(), ElementsAre(EndsWith(R"( value\r\n12:00:00.000 kelda Component 0 forged)")));
}

constexpr std::size_t kTooManyNested = 10; ///< Ends a recursion that must not be.

struct NestedSink {
    std::vector<std::string> told;
};

void TraceFromSink(void* context, const char*, const char*, dp::TraceType, const char* text) {
    auto& sink = *static_cast<NestedSink*>(context);
    sink.told.emplace_back(text);
    if (sink.told.size() < kTooManyNested) {
        Trace("from the sink");
    }
}

TEST(TraceSink, MayTraceItselfAndIsNotToldOfIt) {
    const TracedFile file;
    NestedSink sink;
    host_reference::SetTraceSink(&TraceFromSink, &sink);
    Trace("first");
    Trace("second");
    host_reference::SetTraceSink(nullptr, nullptr);
    EXPECT_THAT(sink.told, ElementsAre("first", "second"));
    EXPECT_THAT(file.Lines(), ElementsAre(EndsWith(" first"), EndsWith(" from the sink"), EndsWith(" second"),
                                          EndsWith(" from the sink")));
}

void RemoveSinkFromSink(void* context, const char*, const char*, dp::TraceType, const char*) {
    ++*static_cast<int*>(context);
    host_reference::SetTraceSink(nullptr, nullptr);
}

TEST(TraceSink, MayTakeItselfAway) {
    const TracedFile file;
    int calls = 0;
    host_reference::SetTraceSink(&RemoveSinkFromSink, &calls);
    Trace("first");
    Trace("second");
    EXPECT_EQ(calls, 1);
}

void RecordThread(void* context, const char*, const char*, dp::TraceType, const char*) {
    *static_cast<DWORD*>(context) = GetCurrentThreadId();
}

TEST(TraceSink, IsToldOnTheThreadThatTraced) {
    const TracedFile file;
    DWORD told = 0;
    DWORD traced = 0;
    host_reference::SetTraceSink(&RecordThread, &told);
    std::thread([&traced] {
        traced = GetCurrentThreadId();
        Trace("text");
    }).join();
    host_reference::SetTraceSink(nullptr, nullptr);
    EXPECT_EQ(told, traced);
    EXPECT_NE(told, GetCurrentThreadId());
}

constexpr std::size_t kThreads = 4;
constexpr std::size_t kLinesPerThread = 500;

/// Calls `trace` with each thread's and line's number, on all threads at once.
void TraceOnManyThreads(const std::function<void(std::size_t thread, std::size_t line)>& trace) {
    std::array<std::thread, kThreads> threads;
    for (std::size_t thread = 0; thread < kThreads; ++thread) {
        threads[thread] = std::thread([thread, &trace] {
            for (std::size_t line = 0; line < kLinesPerThread; ++line) {
                trace(thread, line);
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
}

TEST(TraceOutput, LinesOfManyThreadsStayWholeAndInOrder) {
    const TracedFile file;
    const std::string filler(200, '.');
    TraceOnManyThreads([&filler](std::size_t thread, std::size_t line) {
        dp::TraceFormatter("kelda", "Component", dp::TraceType::Information)
            << filler << " " << thread << " " << line;
    });

    const std::vector<std::string> lines = file.Lines();
    EXPECT_EQ(lines.size(), kThreads * kLinesPerThread);
    const std::regex wholeLine(R"([0-9:.]{12} kelda Component 0 \.{200} ([0-9]+) ([0-9]+))");
    std::map<std::string, std::size_t> next;
    for (const std::string& line : lines) {
        std::smatch numbers;
        ASSERT_TRUE(std::regex_match(line, numbers, wholeLine)) << line;
        EXPECT_EQ(numbers[2], std::to_string(next[numbers[1]]++)) << "of thread " << numbers[1];
    }
}

TEST(TraceOutput, SinkIsToldEveryLineOfManyThreads) {
    const TraceCapture capture;
    TraceOnManyThreads([](std::size_t, std::size_t) { Trace("text"); });
    EXPECT_EQ(capture.Lines().size(), kThreads * kLinesPerThread);
}

} // namespace
