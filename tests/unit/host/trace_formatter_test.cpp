// What each type prints as, which types do not print at all, and what a formatter leaves alone.
#include "dp/merido_tracer.h"

#include <windows.h>

#include <oleauto.h>

#include <gtest/gtest.h>

#include <concepts>
#include <cstdint>
#include <limits>
#include <stdexcept>

#include "trace_capture.h"

namespace {

using namespace std::string_literals;
using namespace std::string_view_literals;

using host_test::CapturedLine;
using host_test::TraceCapture;
using host_test::Traced;

template <typename T>
concept Streamable = requires(dp::TraceFormatter& formatter, T value) {
    { formatter << value } -> std::same_as<dp::TraceFormatter&>;
};

static_assert(Streamable<const void*> && Streamable<void*> && Streamable<char*> && Streamable<wchar_t*>);
static_assert(!Streamable<HWND> && !Streamable<IUnknown*> && !Streamable<int*>);
static_assert(!Streamable<const char8_t*> && !Streamable<const char16_t*> && !Streamable<const BYTE*>);
static_assert(!Streamable<int (*)()>);

TEST(TraceFormatter, NarrowTextPrintsAsItIs) {
    char buffer[] = "buffer";
    char* pointer = buffer;
    const char* constPointer = buffer;
    EXPECT_EQ(Traced("literal ", buffer, " ", pointer, " ", constPointer), "literal buffer buffer buffer");
    EXPECT_EQ(Traced("view "sv, "string"s), "view string");
    EXPECT_EQ(Traced("gr\xc3\xbc\xc3\x9f"), "gr\xc3\xbc\xc3\x9f");
}

TEST(TraceFormatter, WidePointersPrintTheirText) {
    wchar_t buffer[] = L"gr\u00fc\u00df";
    LPWSTR pointer = buffer;
    LPCWSTR constPointer = buffer;
    BSTR basicString = buffer;
    for (const std::string& text : {Traced(L"gr\u00fc\u00df"), Traced(buffer), Traced(pointer),
                                    Traced(constPointer), Traced(basicString)}) {
        EXPECT_EQ(text, "gr\xc3\xbc\xc3\x9f");
    }
}

TEST(TraceFormatter, WideTextPrintsAsUtf8) {
    EXPECT_EQ(Traced(L"view \u4e2d "sv, L"string \U0001f511"s), "view \xe4\xb8\xad string \xf0\x9f\x94\x91");
    EXPECT_EQ(Traced(std::wstring{L'a', 0xd83d}), "a\xef\xbf\xbd");
}

TEST(TraceFormatter, NullTextPrintsAsNull) {
    EXPECT_EQ(Traced(static_cast<const char*>(nullptr)), "(null)");
    EXPECT_EQ(Traced(static_cast<const wchar_t*>(nullptr)), "(null)");
    EXPECT_EQ(Traced(static_cast<char*>(nullptr)), "(null)");
    EXPECT_EQ(Traced(LPWSTR{nullptr}), "(null)");
}

TEST(TraceFormatter, EmptyTextPrintsNothing) {
    EXPECT_EQ(Traced("", L"", std::string_view(), std::wstring_view(), ""s, L""s), "");
}

TEST(TraceFormatter, CharactersPrintAsCharacters) {
    EXPECT_EQ(Traced('a', L'b', L'\u00fc'), "ab\xc3\xbc");
}

TEST(TraceFormatter, BooleansPrintAsWords) {
    EXPECT_EQ(Traced(true, " ", false), "true false");
}

TEST(TraceFormatter, PlatformNumbersPrintAsNumbers) {
    EXPECT_EQ(Traced(HRESULT{E_ABORT}), "-2147467260");
    EXPECT_EQ(Traced(DWORD{0xffffffff}), "4294967295");
    EXPECT_EQ(Traced(BOOL{TRUE}, " ", BOOLEAN{FALSE}), "1 0");
    EXPECT_EQ(Traced(VARIANT_BOOL{VARIANT_TRUE}), "-1");
    EXPECT_EQ(Traced(BYTE{65}, " ", WORD{65535}), "65 65535");
    EXPECT_EQ(Traced(UINT64{18446744073709551615U}), "18446744073709551615");
    EXPECT_EQ(Traced(LPARAM{-1}, " ", WPARAM{1}), "-1 1");
}

TEST(TraceFormatter, SizedNumbersPrintAsNumbers) {
    EXPECT_EQ(Traced(std::int8_t{-65}, " ", std::uint8_t{65}), "-65 65");
    EXPECT_EQ(Traced(std::int16_t{-32768}, " ", std::uint16_t{65535}), "-32768 65535");
    EXPECT_EQ(Traced(std::int32_t{-7}, " ", std::uint32_t{7}), "-7 7");
    EXPECT_EQ(Traced(std::int64_t{-8}, " ", std::uint64_t{8}), "-8 8");
    EXPECT_EQ(Traced(std::size_t{9}, " ", std::ptrdiff_t{-9}), "9 -9");
}

TEST(TraceFormatter, ExtremeNumbersPrintWhole) {
    EXPECT_EQ(Traced(std::numeric_limits<int>::min()), "-2147483648");
    EXPECT_EQ(Traced(std::numeric_limits<unsigned int>::max()), "4294967295");
    EXPECT_EQ(Traced(std::numeric_limits<long>::min()), "-2147483648");
    EXPECT_EQ(Traced(std::numeric_limits<unsigned long>::max()), "4294967295");
    EXPECT_EQ(Traced(std::numeric_limits<long long>::min()), "-9223372036854775808");
    EXPECT_EQ(Traced(std::numeric_limits<unsigned long long>::max()), "18446744073709551615");
}

enum Unscoped { kUnscopedValue = 5 };

TEST(TraceFormatter, UnscopedEnumeratorsPrintAsNumbers) {
    EXPECT_EQ(Traced(kUnscopedValue), "5");
}

TEST(TraceFormatter, FloatingPointNumbersPrintTheirShortestDigits) {
    EXPECT_EQ(Traced(0.1, " ", 1.0, " ", -2.5), "0.1 1 -2.5");
    EXPECT_EQ(Traced(0.1 + 0.2), "0.30000000000000004");
    EXPECT_EQ(Traced(1e300), "1e+300");
    EXPECT_EQ(Traced(std::numeric_limits<double>::lowest()), "-1.7976931348623157e+308");
    EXPECT_EQ(Traced(0.5F), "0.5");
}

TEST(TraceFormatter, AddressesPrintInHexadecimal) {
    EXPECT_EQ(Traced(reinterpret_cast<const void*>(std::uintptr_t{0xABCDEF0123})), "0xabcdef0123");
    EXPECT_EQ(Traced(reinterpret_cast<void*>(std::uintptr_t{0x10})), "0x10");
    EXPECT_EQ(Traced(static_cast<const void*>(nullptr), " ", nullptr), "0x0 0x0");
    EXPECT_EQ(Traced(reinterpret_cast<const void*>(~std::uintptr_t{0})), "0xffffffffffffffff");
}

TEST(TraceFormatter, WideTextPrintsAsAnAddressOnlyWhereThatIsSaid) {
    const wchar_t* text = L"text";
    const std::string address = Traced(static_cast<const void*>(text));
    EXPECT_TRUE(address.starts_with("0x")) << address;
    EXPECT_EQ(std::stoull(address, nullptr, 16), reinterpret_cast<std::uintptr_t>(text));
}

TEST(TraceFormatter, WritesItsLineWhenItDies) {
    const TraceCapture capture;
    {
        dp::TraceFormatter formatter("module", "component", dp::TraceType::Failure);
        formatter << "one " << 2;
        EXPECT_TRUE(capture.Lines().empty());
    }
    EXPECT_EQ(capture.Lines(),
              (std::vector<CapturedLine>{{"module", "component", dp::TraceType::Failure, "one 2"}}));
}

TEST(TraceFormatter, LineWithoutTextIsALine) {
    EXPECT_EQ(Traced(), "");
}

TEST(TraceFormatter, MissingModuleAndComponentReadNull) {
    const TraceCapture capture;
    dp::TraceFormatter(nullptr, nullptr, dp::TraceType::Information) << "text";
    EXPECT_EQ(capture.Lines(),
              (std::vector<CapturedLine>{{"(null)", "(null)", dp::TraceType::Information, "text"}}));
}

void ChangeLastErrorFromSink(void*, const char*, const char*, dp::TraceType, const char*) {
    SetLastError(ERROR_INVALID_DATA);
}

TEST(TraceFormatter, KeepsTheThreadsLastError) {
    host_reference::SetTraceOutputEnabled(false);
    host_reference::SetTraceSink(&ChangeLastErrorFromSink, nullptr);
    SetLastError(ERROR_CANCELLED);
    dp::TraceFormatter("module", "component", dp::TraceType::Failure) << "narrow " << L"wide " << 1 << 0.5;
    const DWORD error = GetLastError();
    host_reference::SetTraceSink(nullptr, nullptr);
    host_reference::SetTraceOutputEnabled(true);
    EXPECT_EQ(error, DWORD{ERROR_CANCELLED});
}

void ThrowFromSink(void* context, const char*, const char*, dp::TraceType, const char*) {
    ++*static_cast<int*>(context);
    throw std::runtime_error("sink");
}

TEST(TraceFormatter, DestructionSwallowsWhatASinkThrows) {
    int calls = 0;
    host_reference::SetTraceOutputEnabled(false);
    host_reference::SetTraceSink(&ThrowFromSink, &calls);
    EXPECT_NO_THROW(dp::TraceFormatter("module", "component", dp::TraceType::Failure) << "first");
    EXPECT_NO_THROW(dp::TraceFormatter("module", "component", dp::TraceType::Failure) << "second");
    host_reference::SetTraceSink(nullptr, nullptr);
    host_reference::SetTraceOutputEnabled(true);
    EXPECT_EQ(calls, 2) << "a sink that threw is called again";
}

TEST(MeridoTracer, MakesLinesOfItsModuleAndComponent) {
    const TraceCapture capture;
    const dp::MeridoTracer tracer("kelda", "Component");
    tracer(dp::TraceType::Information) << "first";
    tracer(dp::TraceType::Failure) << "second " << L"line";
    EXPECT_EQ(capture.Lines(), (std::vector<CapturedLine>{
                                   {"kelda", "Component", dp::TraceType::Information, "first"},
                                   {"kelda", "Component", dp::TraceType::Failure, "second line"},
                               }));
}

TEST(MeridoTracer, WithoutNamesIsTolerated) {
    const TraceCapture capture;
    dp::MeridoTracer(nullptr, nullptr)(dp::TraceType::Information) << "text";
    ASSERT_EQ(capture.Lines().size(), 1U);
    EXPECT_EQ(capture.Lines()[0].module, "(null)");
}

} // namespace
