// The tool that the comparison with the tables rests on tells what it is asked.
#include "tests/unit/webview2/vtable.h"

#include <gtest/gtest.h>

namespace {

using webview2_test::SlotOf;
using webview2_test::SlotsOf;

struct First {
    virtual void Zero() = 0;
    virtual void One() = 0;
    void Ordinary() {}
};

struct Second : First {
    virtual void Two() = 0;
};

struct Other {
    virtual void Elsewhere() = 0;
};

struct Both : First, Other {};

TEST(Vtable, SlotsAreCountedInTheOrderOfDeclaration) {
    EXPECT_EQ(SlotOf(&First::Zero), 0u);
    EXPECT_EQ(SlotOf(&First::One), 1u);
    EXPECT_EQ(SlotOf(&Second::Two), 2u);
    EXPECT_EQ(SlotsOf<First>(), 2u);
    EXPECT_EQ(SlotsOf<Second>(), 3u);
}

TEST(Vtable, AnOrdinaryMethodHasNoSlot) {
    EXPECT_FALSE(SlotOf(&First::Ordinary).has_value());
}

TEST(Vtable, AMethodOfAnotherPartHasNoSlotInTheFirstTable) {
    EXPECT_FALSE(SlotOf(static_cast<void (Both::*)()>(&Other::Elsewhere)).has_value());
}

} // namespace
