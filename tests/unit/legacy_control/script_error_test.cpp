// Errors of scripts: told to the host, and shown where it does not take them.
#include "tests/unit/legacy_control/control_test.h"
#include "tests/unit/webview2_runtime/message_boxes.h"

namespace legacy_control_test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using webview2_runtime_test::MessageBoxes;

class ScriptErrorTest : public ControlTest {
  protected:
    /// A page whose script fails in its third line.
    void AddFailingPage() { pages.Add("/", "<html>\n<script>\n  missing();\n</script></html>"); }
};

TEST_F(ScriptErrorTest, TheHostReadsItFromTheDocumentsEvent) {
    AddFailingPage();
    CreateAndActivate();
    const MessageBoxes boxes(L"Script Error", IDOK);
    ASSERT_TRUE(Load(pages.Url("/")));
    EXPECT_THAT(host.scriptErrors,
                ElementsAre("errorUrl=text " + pages.Url("/") +
                            ", errorMessage=text Uncaught ReferenceError: missing is not defined, "
                            "errorCode=number 0, errorLine=number 3, errorCharacter=number 3"));
    EXPECT_EQ(boxes.Count(), 0);
}

TEST_F(ScriptErrorTest, WhatTheHostDoesNotTakeIsShown) {
    AddFailingPage();
    CreateAndActivate();
    host.commandOutput = false;
    std::wstring text;
    HWND owner = nullptr;
    const MessageBoxes boxes(L"Script Error", IDOK, [&](HWND box) {
        text = MessageBoxes::TextOf(box);
        owner = GetWindow(box, GW_OWNER);
    });
    ASSERT_TRUE(Load(pages.Url("/")));
    EXPECT_EQ(boxes.Count(), 1);
    EXPECT_THAT(std::string(text.begin(), text.end()), HasSubstr("missing is not defined"));
    EXPECT_EQ(owner, host.window);
}

TEST_F(ScriptErrorTest, AHostThatFailsHasNotTakenIt) {
    AddFailingPage();
    CreateAndActivate();
    host.commandResult = OLECMDERR_E_NOTSUPPORTED;
    const MessageBoxes boxes(L"Script Error", IDOK);
    ASSERT_TRUE(Load(pages.Url("/")));
    EXPECT_EQ(boxes.Count(), 1);
}

TEST_F(ScriptErrorTest, AHostWithoutCommandsIsShownAllErrors) {
    host.hasCommands = false;
    AddFailingPage();
    CreateAndActivate();
    const MessageBoxes boxes(L"Script Error", IDOK);
    ASSERT_TRUE(Load(pages.Url("/")));
    EXPECT_EQ(boxes.Count(), 1);
    EXPECT_THAT(host.scriptErrors, IsEmpty());
}

TEST_F(ScriptErrorTest, AHandlerOfThePageSettlesIt) {
    pages.Add("/", "<script>onerror = () => true;</script><script>missing()</script>"
                   "<script>onerror = undefined; worse()</script>");
    CreateAndActivate();
    ASSERT_TRUE(Load(pages.Url("/")));
    EXPECT_TRUE(PumpUntil([&] { return !host.scriptErrors.empty(); }));
    EXPECT_EQ(Evaluate("1"), "1");
    ASSERT_EQ(host.scriptErrors.size(), 1U);
    EXPECT_THAT(host.scriptErrors[0], HasSubstr("worse is not defined"));
}

TEST_F(ScriptErrorTest, WhatCannotBeLoadedIsNoScriptError) {
    pages.Add("/", "<img src=/missing.png>");
    CreateAndActivate();
    ASSERT_TRUE(Load(pages.Url("/")));
    EXPECT_THAT(host.scriptErrors, IsEmpty());
}

TEST_F(ScriptErrorTest, TheBoxGoesWithTheControl) {
    AddFailingPage();
    CreateAndActivate();
    host.hasCommands = false;
    host.commandResult = E_NOTIMPL;
    bool closed = false;
    const MessageBoxes boxes(L"Script Error", IDNO, [&](HWND box) {
        Close();
        closed = true;
        EXPECT_EQ(IsWindowVisible(box), FALSE);
    });
    EXPECT_EQ(Navigate(pages.Url("/")), S_OK);
    EXPECT_TRUE(PumpUntil([&] { return closed; }));
    EXPECT_EQ(MessageBoxes::Find(L"Script Error"), nullptr);
}

TEST_F(ScriptErrorTest, TheHostMayCloseTheControlInsteadOfAnswering) {
    AddFailingPage();
    CreateAndActivate();
    host.commandResult = E_FAIL;
    host.onCall = [&](const std::string& call) {
        if (call == "Exec") {
            Close();
        }
    };
    const MessageBoxes boxes(L"Script Error", IDOK);
    EXPECT_EQ(Navigate(pages.Url("/")), S_OK);
    EXPECT_TRUE(PumpUntil([&] { return !host.scriptErrors.empty(); }));
    EXPECT_EQ(boxes.Count(), 0);
}

} // namespace
} // namespace legacy_control_test
