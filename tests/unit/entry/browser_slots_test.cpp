// The order of the virtual functions, which hosts that were built earlier with the same compiler rely on.
#include <cstring>
#include <vector>

#include <gtest/gtest.h>

#include "kelda/kelda.h"

namespace kelda {
namespace {

/// The vtable slot of a virtual member function. This compiler keeps 1 + the slot's offset in the pointer's first word.
template <typename Member>
size_t SlotOf(Member member) {
    size_t word = 0;
    std::memcpy(&word, &member, sizeof(word));
    EXPECT_EQ(word % 2, 1U) << "not a virtual function";
    return (word - 1) / sizeof(void*);
}

// This compiler gives a virtual destructor two slots, where the platform's own gives it one: the first.
constexpr size_t kDestructorSlots = 2;

TEST(BrowserSlots, OfTheBrowserFollowItsDestructorInOrder) {
    EXPECT_EQ(SlotOf(&ZanWebBrowser::InitializeCom), kDestructorSlots + 0);
    EXPECT_EQ(SlotOf(&ZanWebBrowser::Create), kDestructorSlots + 1);
    EXPECT_EQ(SlotOf(&ZanWebBrowser::Destroy), kDestructorSlots + 2);
    EXPECT_EQ(SlotOf(&ZanWebBrowser::Resize), kDestructorSlots + 3);
    EXPECT_EQ(SlotOf(&ZanWebBrowser::GetWindowHandle), kDestructorSlots + 4);
}

TEST(BrowserSlots, OfTheOwnersCallbackStartAtZero) {
    EXPECT_EQ(SlotOf(&ZanWebBrowser::Callback::OnNavigationCompleted), 0U);
    EXPECT_EQ(SlotOf(&ZanWebBrowser::Callback::OnSessionAuthenticated), 1U);
    EXPECT_EQ(SlotOf(&ZanWebBrowser::Callback::OnSessionAuthenticatedFailed), 2U);
}

} // namespace
} // namespace kelda
