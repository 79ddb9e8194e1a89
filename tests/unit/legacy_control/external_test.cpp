// window.external: what pages call and hosts hear.
#include <exdispid.h>

#include <utility>

#include "tests/unit/legacy_control/control_test.h"

namespace legacy_control_test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class ExternalTest : public ControlTest {
  protected:
    void SetUp() override {
        ControlTest::SetUp();
        ASSERT_NO_FATAL_FAILURE(CreateAndActivate());
        host.calls.clear();
    }

    bool LoadScript(const std::string& script) {
        pages.Add("/", "<script>" + script + "</script>");
        return Load(pages.Url("/"));
    }
};

TEST_F(ExternalTest, ACallReachesTheHostsObject) {
    ASSERT_TRUE(LoadScript("window.external.norv()"));
    ASSERT_EQ(host.scriptCalls.size(), 1U);
    EXPECT_EQ(host.scriptCalls[0].member, 888111888);
    EXPECT_EQ(host.scriptCalls[0].flags, DISPATCH_METHOD);
    EXPECT_THAT(host.scriptCalls[0].kinds, IsEmpty());
    EXPECT_THAT(host.calls, ElementsAre("GetExternal", "external"));
    EXPECT_EQ(host.external.References(), 0);
}

TEST_F(ExternalTest, TheObjectIsAskedForWithEachCall) {
    ASSERT_TRUE(LoadScript("window.external.norv(); external.norv()"));
    EXPECT_THAT(host.calls, ElementsAre("GetExternal", "external", "GetExternal", "external"));
}

TEST_F(ExternalTest, ReadingAMemberDoesNothing) {
    ASSERT_TRUE(LoadScript("window.external.norv; (async () => { await window.external.norv; "
                           "await window.external; external.say('end'); })()"));
    EXPECT_TRUE(PumpUntil([&] { return !host.scriptCalls.empty(); }));
    EXPECT_EQ(host.scriptCalls.size(), 1U);
    EXPECT_EQ(host.scriptCalls[0].member, 7);
}

TEST_F(ExternalTest, AMemberThatWasReadCanBeCalled) {
    ASSERT_TRUE(LoadScript("(async () => { (await window.external.norv)(); })()"));
    EXPECT_TRUE(PumpUntil([&] { return !host.scriptCalls.empty(); }));
    EXPECT_EQ(host.scriptCalls[0].member, 888111888);
}

TEST_F(ExternalTest, UnknownMembersDoNothing) {
    ASSERT_TRUE(LoadScript("external.unknown(); external.norv()"));
    EXPECT_EQ(host.scriptCalls.size(), 1U);
    EXPECT_EQ(host.scriptCalls[0].member, 888111888);
}

TEST_F(ExternalTest, ArgumentsKeepTheirKinds) {
    ASSERT_TRUE(LoadScript("external.several('text', 5, 2.5, true, null, {})"));
    ASSERT_EQ(host.scriptCalls.size(), 1U);
    EXPECT_THAT(host.scriptCalls[0].kinds, ElementsAre("text", "number", "real", "truth", "null", "null"));
    EXPECT_THAT(host.scriptCalls[0].values, ElementsAre("text", "5", "2.5", "True", "", ""));
}

TEST_F(ExternalTest, FramesCallTheSameObject) {
    pages.Add("/inner", "<script>window.external.norv()</script>");
    pages.Add("/", "<iframe src=/inner></iframe>");
    ASSERT_TRUE(Load(pages.Url("/")));
    EXPECT_EQ(host.scriptCalls.size(), 1U);
}

TEST_F(ExternalTest, ACallOfALoadingPageComesBeforeItIsComplete) {
    bool complete = true;
    host.onCall = [&](const std::string& call) {
        if (call == "external") {
            complete = host.Count(DISPID_DOCUMENTCOMPLETE) != 0;
            EXPECT_EQ(host.Count(DISPID_NAVIGATECOMPLETE2), 1U);
        }
    };
    ASSERT_TRUE(LoadScript("window.external.norv()"));
    EXPECT_FALSE(complete);
}

TEST_F(ExternalTest, TheHostMayCloseTheControlInACall) {
    pages.Add("/", "<script>external.norv(); external.norv(); oops()</script>");
    host.onCall = [&](const std::string& call) {
        if (call == "external") {
            Close();
        }
    };
    EXPECT_EQ(Navigate(pages.Url("/")), S_OK);
    EXPECT_TRUE(PumpUntil([&] { return !host.scriptCalls.empty(); }));
    PumpWaiting();
    EXPECT_EQ(host.scriptCalls.size(), 1U);
    EXPECT_THAT(host.scriptErrors, IsEmpty());
    EXPECT_EQ(host.Count(DISPID_DOCUMENTCOMPLETE), 0U);
}

TEST_F(ExternalTest, TheHostMayLoadAnotherPageInACall) {
    pages.Add("/next", "next");
    bool first = true;
    host.onCall = [&](const std::string& call) {
        if (call == "external" && std::exchange(first, false)) {
            EXPECT_EQ(Navigate(pages.Url("/next")), S_OK);
        }
    };
    pages.Add("/", "<script>external.norv()</script>");
    EXPECT_EQ(Navigate(pages.Url("/")), S_OK);
    EXPECT_TRUE(PumpUntil([&] {
        return host.Count(DISPID_DOCUMENTCOMPLETE) != 0 &&
               host.events.back().values.back() == pages.Url("/next");
    }));
}

} // namespace
} // namespace legacy_control_test
