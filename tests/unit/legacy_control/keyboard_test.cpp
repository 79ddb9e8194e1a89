// Keys: which of them the page gets by messages, and which by TranslateAccelerator.
#include <array>

#include <exdispid.h>

#include "tests/unit/legacy_control/control_test.h"

namespace legacy_control_test {
namespace {

using testing::Contains;

class KeyboardTest : public ControlTest {
  protected:
    void SetUp() override {
        ControlTest::SetUp();
        pages.Add("/", "<input id=one><input id=two><script>"
                       "addEventListener('keydown', (event) => external.say(event.key));"
                       "</script>");
        ASSERT_NO_FATAL_FAILURE(CreateAndActivate());
        ASSERT_TRUE(Load(pages.Url("/")));
        ASSERT_EQ(control->DoVerb(OLEIVERB_UIACTIVATE, nullptr, &host, 0, host.window, nullptr), S_OK);
        ASSERT_TRUE(PumpUntil([&] { return IsChild(ControlWindow(), GetFocus()) != FALSE; }));
        ASSERT_EQ(Evaluate("(one.focus(), document.activeElement.id)"), "one");
        host.scriptCalls.clear();
    }

    static MSG KeyDown(WPARAM key) {
        MSG message{};
        message.hwnd = GetFocus();
        message.message = WM_KEYDOWN;
        message.wParam = key;
        message.lParam = 1;
        return message;
    }

    HRESULT Translate(const MSG& message) const {
        MSG copy = message;
        return Control<IOleInPlaceActiveObject>()->TranslateAccelerator(&copy);
    }

    /// The keys that the page has seen go down, after everything before has arrived there.
    std::string KeysSeen() {
        EXPECT_EQ(Evaluate("'end'"), "end");
        std::string keys;
        for (const RecordedCall& call : host.scriptCalls) {
            keys += call.values.at(0) == "end" ? "" : call.values.at(0) + " ";
        }
        return keys;
    }
};

/// Holds the control key down, as far as this thread sees.
class ControlKey {
  public:
    ControlKey() { Set(0x80); }
    ~ControlKey() { Set(0); }
    ControlKey(const ControlKey&) = delete;
    ControlKey& operator=(const ControlKey&) = delete;

  private:
    static void Set(BYTE state) {
        std::array<BYTE, 256> keys{};
        GetKeyboardState(keys.data());
        keys[VK_CONTROL] = state;
        SetKeyboardState(keys.data());
    }
};

TEST_F(KeyboardTest, ActivatingItTellsTheSite) {
    EXPECT_THAT(host.calls, Contains("OnUIActivate"));
    EXPECT_EQ(Control<IOleInPlaceObject>()->UIDeactivate(), S_OK);
    EXPECT_EQ(host.calls.back(), "OnUIDeactivate");
}

TEST_F(KeyboardTest, CharactersComeByMessages) {
    SendMessageW(GetFocus(), WM_CHAR, L'h', 1);
    SendMessageW(GetFocus(), WM_CHAR, L'i', 1);
    EXPECT_TRUE(PumpUntil([&] { return Evaluate("one.value") == "hi"; }));
}

TEST_F(KeyboardTest, SoDoEnterAndBackspace) {
    for (const WPARAM key : std::initializer_list<WPARAM>{VK_RETURN, VK_BACK}) {
        EXPECT_EQ(Translate(KeyDown(key)), S_FALSE);
        SendMessageW(GetFocus(), WM_KEYDOWN, key, 1);
    }
    EXPECT_TRUE(PumpUntil([&] { return host.scriptCalls.size() == 2; }));
    EXPECT_EQ(KeysSeen(), "Enter Backspace ");
}

TEST_F(KeyboardTest, TabMovesTheFocusByTranslationOnly) {
    SendMessageW(GetFocus(), WM_KEYDOWN, VK_TAB, 1);
    EXPECT_EQ(Evaluate("document.activeElement.id"), "one");
    EXPECT_EQ(Translate(KeyDown(VK_TAB)), S_OK);
    EXPECT_TRUE(PumpUntil([&] { return Evaluate("document.activeElement.id") == "two"; }));
}

TEST_F(KeyboardTest, EveryAcceleratorIsTakenOnce) {
    for (const WPARAM key :
         std::initializer_list<WPARAM>{VK_UP, VK_DOWN, VK_LEFT, VK_RIGHT, VK_DELETE, VK_HOME, VK_END}) {
        const MSG message = KeyDown(key);
        EXPECT_EQ(Translate(message), S_OK);
        DispatchMessageW(&message);
    }
    EXPECT_EQ(Translate(KeyDown(VK_SELECT)), S_OK);
    EXPECT_TRUE(PumpUntil([&] { return host.scriptCalls.size() >= 8; }));
    EXPECT_THAT(KeysSeen(), testing::StartsWith("ArrowUp ArrowDown ArrowLeft ArrowRight Delete Home End "));
}

TEST_F(KeyboardTest, WithControlLettersAreCommands) {
    SendMessageW(GetFocus(), WM_CHAR, L'x', 1);
    EXPECT_TRUE(PumpUntil([&] { return Evaluate("one.value") == "x"; }));
    {
        const ControlKey down;
        for (const WPARAM key : {WPARAM{'A'}, WPARAM{'C'}, WPARAM{'V'}, WPARAM{'V'}}) {
            const MSG message = KeyDown(key);
            EXPECT_EQ(Translate(message), S_OK);
            DispatchMessageW(&message);
        }
    }
    EXPECT_TRUE(PumpUntil([&] { return Evaluate("one.value") == "xx"; }));
}

TEST_F(KeyboardTest, WithControlLettersDoNothingByMessages) {
    const ControlKey down;
    SendMessageW(GetFocus(), WM_KEYDOWN, 'A', 1);
    EXPECT_EQ(KeysSeen(), "");
}

TEST_F(KeyboardTest, LettersAloneAreNoAccelerators) {
    EXPECT_EQ(Translate(KeyDown('A')), S_FALSE);
    SendMessageW(GetFocus(), WM_KEYDOWN, 'A', 1);
    EXPECT_TRUE(PumpUntil([&] { return !host.scriptCalls.empty(); }));
    EXPECT_EQ(KeysSeen(), "a ");
}

TEST_F(KeyboardTest, OtherMessagesAndWindowsAreNotTaken) {
    MSG message = KeyDown(VK_TAB);
    message.message = WM_CHAR;
    EXPECT_EQ(Translate(message), S_FALSE);
    message = KeyDown(VK_TAB);
    message.hwnd = host.window;
    EXPECT_EQ(Translate(message), S_FALSE);
    EXPECT_EQ(KeysSeen(), "");
}

} // namespace
} // namespace legacy_control_test
