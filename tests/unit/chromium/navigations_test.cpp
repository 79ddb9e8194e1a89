// The bookkeeping of navigations alone: orders of events that a real Chromium only now and then has.
#include <gtest/gtest.h>

#include "testbed/chromium/navigations.h"

namespace testbed::chromium {
namespace {

TEST(Navigations, EndWithTheLoadEventThoughNothingSaidThatTheyWereCommitted) {
    Navigations navigations;
    const NavigationStart start = navigations.Start("one", "http://host.test/", false);
    const auto ended = navigations.Load("one");
    ASSERT_EQ(ended.size(), 1U);
    EXPECT_EQ(ended[0].id, start.id);
    EXPECT_TRUE(ended[0].success);
    EXPECT_FALSE(navigations.Underway());
    EXPECT_TRUE(navigations.Commit("one").empty());
}

TEST(Navigations, EndWhatStillLoadedBeforeThemAlsoIfOnlyTheirLoadEventIsSeen) {
    Navigations navigations;
    const NavigationStart first = navigations.Start("one", "http://host.test/1", false);
    navigations.Commit("one");
    const NavigationStart second = navigations.Start("two", "http://host.test/2", false);
    const auto ended = navigations.Load("two");
    ASSERT_EQ(ended.size(), 2U);
    EXPECT_EQ(ended[0].id, first.id);
    EXPECT_EQ(ended[0].error, NavigationError::Aborted);
    EXPECT_EQ(ended[1].id, second.id);
    EXPECT_TRUE(ended[1].success);
}

TEST(Navigations, AreNotEndedByTheLoadEventOfAnother) {
    Navigations navigations;
    navigations.Start("one", "http://host.test/1", false);
    EXPECT_TRUE(navigations.Load("frame").empty());
    navigations.Commit("one");
    EXPECT_TRUE(navigations.Load("frame").empty());
    EXPECT_EQ(navigations.Load("one").size(), 1U);
}

} // namespace
} // namespace testbed::chromium
