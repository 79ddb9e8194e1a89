// Conversions between UTF-8 and UTF-16, well-formed and not, and splitting.
#include "du/string_utilities.h"

#include <gtest/gtest.h>

#include <climits>
#include <stdexcept>

namespace {

using namespace std::string_literals;
using namespace std::string_view_literals;

using Pieces = std::vector<std::string>;

struct Pair {
    std::string_view narrow;
    std::wstring_view wide;
};

constexpr Pair kWellFormed[] = {
    {"", L""},
    {"plain ASCII", L"plain ASCII"},
    {"gr\xc3\xbc\xc3\x9f", L"gr\u00fc\u00df"},
    {"\xe4\xb8\xad\xe6\x96\x87", L"\u4e2d\u6587"},
    {"\xf0\x9f\x94\x91 key", L"\U0001f511 key"},
    {"\xef\xbb\xbf", L"\ufeff"},
    {"a\0b\0"sv, L"a\0b\0"sv},
    {"\0"sv, L"\0"sv},
};

TEST(Conversion, WellFormedTextConvertsBothWays) {
    for (const Pair& pair : kWellFormed) {
        EXPECT_EQ(du::Utf8ToWideStr(pair.narrow), pair.wide);
        EXPECT_EQ(du::WideStrToUtf8(pair.wide), pair.narrow);
    }
}

TEST(Conversion, ViewWithoutTextIsEmpty) {
    EXPECT_EQ(du::Utf8ToWideStr(std::string_view()), L"");
    EXPECT_EQ(du::WideStrToUtf8(std::wstring_view()), "");
}

TEST(Conversion, OnlyTheViewedPartIsConverted) {
    EXPECT_EQ(du::Utf8ToWideStr("headertail"sv.substr(0, 6)), L"header");
    EXPECT_EQ(du::WideStrToUtf8(L"headertail"sv.substr(0, 6)), "header");
}

TEST(Conversion, LongTextKeepsItsLength) {
    const std::string narrow(1'000'000, 'n');
    const std::wstring wide = du::Utf8ToWideStr(narrow);
    EXPECT_EQ(wide, std::wstring(narrow.size(), L'n'));
    EXPECT_EQ(du::WideStrToUtf8(wide), narrow);
}

TEST(Conversion, InvalidUtf8BecomesReplacementCharacters) {
    EXPECT_EQ(du::Utf8ToWideStr("a\xff"
                                "b"),
              L"a\ufffdb");
    EXPECT_EQ(du::Utf8ToWideStr("a\xc3"), L"a\ufffd");
    EXPECT_EQ(du::Utf8ToWideStr("a\x80z"), L"a\ufffdz");
}

// How many characters a longer malformed sequence becomes is the system's choice.
TEST(Conversion, MalformedSequencesLetNothingElseThrough) {
    constexpr std::string_view kMalformed[] = {
        "\xc0\xaf",         // a slash in two bytes
        "\xe0\x80\xaf",     // a slash in three bytes
        "\xed\xa0\x80",     // a surrogate
        "\xf4\x90\x80\x80", // beyond the last code point
        "\xf0\x9f\x94",     // cut short
    };
    for (const std::string_view sequence : kMalformed) {
        const std::wstring wide = du::Utf8ToWideStr("<" + std::string(sequence) + ">");
        ASSERT_GE(wide.size(), 3U);
        EXPECT_EQ(wide.substr(1, wide.size() - 2), std::wstring(wide.size() - 2, L'\ufffd'));
        EXPECT_EQ(wide.front(), L'<');
        EXPECT_EQ(wide.back(), L'>');
    }
}

TEST(Conversion, LoneSurrogatesBecomeReplacementCharacters) {
    constexpr wchar_t kHigh = 0xd83d;
    constexpr wchar_t kLow = 0xdd11;
    EXPECT_EQ(du::WideStrToUtf8(std::wstring{L'a', kHigh, L'b'}), "a\xef\xbf\xbd"
                                                                  "b");
    EXPECT_EQ(du::WideStrToUtf8(std::wstring{L'a', kLow, L'b'}), "a\xef\xbf\xbd"
                                                                 "b");
    EXPECT_EQ(du::WideStrToUtf8(std::wstring{L'a', kHigh}), "a\xef\xbf\xbd");
    EXPECT_EQ(du::WideStrToUtf8(std::wstring{kLow, kHigh}), "\xef\xbf\xbd\xef\xbf\xbd");
}

// The length is refused before the text is looked at.
TEST(Conversion, TextLongerThanAnIntIsRefused) {
    constexpr std::size_t kTooLong = std::size_t{INT_MAX} + 1;
    EXPECT_THROW(du::Utf8ToWideStr(std::string_view("", kTooLong)), std::length_error);
    EXPECT_THROW(du::WideStrToUtf8(std::wstring_view(L"", kTooLong)), std::length_error);
}

TEST(StringSplit, GivesThePiecesInOrder) {
    EXPECT_EQ(du::StringSplit("one;two;three", ";"), (Pieces{"one", "two", "three"}));
    EXPECT_EQ(du::StringSplit("one\r\ntwo", "\r\n"), (Pieces{"one", "two"}));
}

TEST(StringSplit, LeavesOutEmptyPieces) {
    EXPECT_EQ(du::StringSplit(";one;;two;", ";"), (Pieces{"one", "two"}));
    EXPECT_EQ(du::StringSplit(";;;", ";"), Pieces{});
    EXPECT_EQ(du::StringSplit("", ";"), Pieces{});
}

TEST(StringSplit, TextWithoutSeparatorIsOnePiece) {
    EXPECT_EQ(du::StringSplit("one", ";"), Pieces{"one"});
    EXPECT_EQ(du::StringSplit("one\rtwo", "\r\n"), Pieces{"one\rtwo"});
}

TEST(StringSplit, EmptySeparatorGivesTheWholeText) {
    EXPECT_EQ(du::StringSplit("one;two", ""), Pieces{"one;two"});
    EXPECT_EQ(du::StringSplit("", ""), Pieces{});
}

TEST(StringSplit, SeparatorsDoNotOverlap) {
    EXPECT_EQ(du::StringSplit("a---b", "--"), (Pieces{"a", "-b"}));
}

TEST(StringSplit, KeepsEmbeddedNuls) {
    EXPECT_EQ(du::StringSplit("a\0b;c"sv, ";"), (Pieces{"a\0b"s, "c"}));
}

} // namespace
