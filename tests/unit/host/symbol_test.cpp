// du::Symbol: value semantics and a text that is never null.
#include "du/symbol.h"

#include <gtest/gtest.h>

#include <utility>

namespace {

TEST(Symbol, IsEmptyWhenMadeOfNothing) {
    EXPECT_STREQ(du::Symbol().safe_c_str(), "");
    EXPECT_STREQ(du::Symbol(nullptr).safe_c_str(), "");
}

TEST(Symbol, KeepsItsOwnCopyOfTheText) {
    char text[] = "https://server";
    const du::Symbol symbol(text);
    text[0] = 'X';
    EXPECT_STREQ(symbol.safe_c_str(), "https://server");
}

TEST(Symbol, CopiesAreIndependent) {
    du::Symbol original("first");
    const du::Symbol copy = original;
    original = du::Symbol("second, and too long for any small buffer inside");
    EXPECT_STREQ(copy.safe_c_str(), "first");
    EXPECT_STREQ(original.safe_c_str(), "second, and too long for any small buffer inside");
}

TEST(Symbol, MovesItsText) {
    du::Symbol original("https://server/with/a/path/that/is/long");
    const du::Symbol moved = std::move(original);
    EXPECT_STREQ(moved.safe_c_str(), "https://server/with/a/path/that/is/long");
}

} // namespace
