// Windows that pages open: nobody would show them, so they do not stay.
#include "tests/unit/chromium/chromium_test.h"

namespace chromium_test {
namespace {

class NewWindows : public ChromiumTest {
  protected:
    NewWindows() {
        site_.Add("/page", "<a href='/new' target='named' rel=opener>link</a>"
                           "<form action='/new' method=post target='named'><input name=field value=1></form>"
                           "<a id=strange href='/new' target=_blank>link</a>");
        site_.Add("/new", "new");
        site_.Add("/other", "<title>other</title>");
    }
    void SetUp() override {
        ASSERT_NO_FATAL_FAILURE(ChromiumTest::SetUp());
        ASSERT_TRUE(Visit(*page_, client_, site_.Url("/page")).success);
    }
    void UseBrowserOfItsOwn() {
        ASSERT_NO_FATAL_FAILURE(ChromiumTest::UseBrowserOfItsOwn());
        client_.starts.clear();
        client_.outcomes.clear();
        ASSERT_TRUE(Visit(*page_, client_, site_.Url("/page")).success);
    }

    /// The window that `window.opened` is, or the one with that name, goes; and the page goes on as if nothing had been.
    void ExpectClosed() {
        EXPECT_TRUE(PumpUntil([&] { return Evaluate(*page_, "opened.closed") == "true"; }));
        EXPECT_TRUE(Visit(*page_, client_, site_.Url("/other")).success);
        EXPECT_EQ(Evaluate(*page_, "document.title"), "\"other\"");
        EXPECT_EQ(client_.starts.size(), 2U);
        EXPECT_EQ(client_.outcomes.size(), 2U);
    }
};

TEST_F(NewWindows, OfScriptsAreClosed) {
    EXPECT_EQ(Evaluate(*page_, "window.opened = window.open('/new'); opened !== null"), "true");
    ExpectClosed();
}

TEST_F(NewWindows, OfLinksAreClosed) {
    Evaluate(*page_, "document.querySelector('a').click()");
    Evaluate(*page_, "window.opened = window.open('', 'named'); 0");
    ExpectClosed();
}

TEST_F(NewWindows, OfFormsAreClosed) {
    Evaluate(*page_, "document.querySelector('form').submit()");
    Evaluate(*page_, "window.opened = window.open('', 'named'); 0");
    ExpectClosed();
}

// With a browser of its own: nothing is said of how long the window stays, and the next case is to find none.
TEST_F(NewWindows, ThatDoNotKnowTheirOpenerDoNotDisturbIt) {
    ASSERT_NO_FATAL_FAILURE(UseBrowserOfItsOwn());
    Evaluate(*page_, "document.getElementById('strange').click()");
    EXPECT_TRUE(Visit(*page_, client_, site_.Url("/other")).success);
    EXPECT_EQ(client_.starts.size(), 2U);
}

TEST_F(NewWindows, LeaveNoProcessBehind) {
    ASSERT_NO_FATAL_FAILURE(UseBrowserOfItsOwn());
    Evaluate(*page_, "window.opened = window.open('/new'); document.getElementById('strange').click()");
    page_.reset();
    browser_.reset();
    EXPECT_TRUE(PumpUntil([&] { return folder_.Processes().empty(); }));
}

} // namespace
} // namespace chromium_test
