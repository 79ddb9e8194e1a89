// Texts to numbers, with error texts of our own.
#include "support/number.h"

#include <cstdint>
#include <limits>
#include <stdexcept>
#include <string>
#include <utility>

#include <gtest/gtest.h>

namespace kelda {
namespace {

TEST(Number, TakesTheDecimalDigitsAtTheStart) {
    const std::pair<const wchar_t*, int> texts[] = {
        {L"120.0.2210.91", 120},
        {L"7", 7},
        {L"  42 beta", 42},
        {L"+5", 5},
        {L"-3", -3},
        {L"0x10", 0},
        {L"2147483647", 2147483647},
        {L"-2147483648", -2147483647 - 1},
        {L"0000000000000000000000002147483647", 2147483647},
        {L"0115", 115},
        {L"\t\n 9", 9},
    };
    for (const auto& [text, number] : texts) {
        EXPECT_EQ(ToInt(text), number);
    }
}

TEST(Number, MayHave64Bits) {
    const std::pair<const wchar_t*, std::int64_t> texts[] = {
        {L"60abc", 60},
        {L" -3", -3},
        {L"2147483648", 2147483648},
        {L"9223372036854775807", std::numeric_limits<std::int64_t>::max()},
        {L"-9223372036854775808", std::numeric_limits<std::int64_t>::min()},
    };
    for (const auto& [text, number] : texts) {
        EXPECT_EQ(ToInt64(text), number);
    }
}

template <typename Exception, typename Number>
void ExpectError(Number (*convert)(const std::wstring&), const wchar_t* text, const char* what) {
    try {
        convert(text);
        ADD_FAILURE() << what << " was expected";
    } catch (const Exception& exception) {
        EXPECT_STREQ(exception.what(), what);
    }
}

TEST(Number, WithoutADigitIsAnInvalidArgument) {
    for (const wchar_t* text : {L"", L" ", L"x1", L".5", L"-", L"+", L"--1", L"+-1", L"- 1", L"/", L":"}) {
        ExpectError<std::invalid_argument>(&ToInt, text, "invalid stoi argument");
        ExpectError<std::invalid_argument>(&ToInt64, text, "invalid stoll argument");
    }
}

TEST(Number, BeyondTheRangeIsOutOfRange) {
    for (const wchar_t* text : {L"2147483648", L"-2147483649", L"2147483650", L"-2147483650",
                                L"9223372036854775807", L"99999999999999999999"}) {
        ExpectError<std::out_of_range>(&ToInt, text, "stoi argument out of range");
    }
    for (const wchar_t* text :
         {L"9223372036854775808", L"-9223372036854775809", L"9223372036854775810", L"99999999999999999999"}) {
        ExpectError<std::out_of_range>(&ToInt64, text, "stoll argument out of range");
    }
}

TEST(Number, DigitsOfOtherScriptsAreNone) {
    for (const wchar_t digit : {L'\u0661', L'\u0967', L'\uFF11', L'\u00B9'}) {
        ExpectError<std::invalid_argument>(&ToInt, std::wstring(1, digit).c_str(), "invalid stoi argument");
        EXPECT_EQ(ToInt(std::wstring(L"-1") + digit), -1);
    }
}

TEST(Number, WhiteSpaceIsThatOfAscii) {
    EXPECT_EQ(ToInt(L" \t\n\v\f\r1"), 1);
    for (const wchar_t* text : {L"\u00A01", L"\u20031", L"\u30001", L"\b1", L"\x0E\x31"}) {
        ExpectError<std::invalid_argument>(&ToInt, text, "invalid stoi argument");
    }
}

TEST(Number, EndsAtANullCharacter) {
    EXPECT_EQ(ToInt(std::wstring(L"1\0002", 3)), 1);
    EXPECT_THROW(ToInt(std::wstring(L"\0002", 2)), std::invalid_argument);
}

} // namespace
} // namespace kelda
