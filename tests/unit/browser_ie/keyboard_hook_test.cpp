// Keys on their way through the thread's message queue, with the platform's own hook.
#include <algorithm>
#include <initializer_list>
#include <memory>
#include <set>
#include <string>

#include <gtest/gtest.h>

#include <windows.h>

#include <exdispid.h>

#include "ie_browser_test.h"
#include "tests/support/message_pump.h"

using test_support::Lines;

namespace kelda {
namespace {

constexpr const char* kInstalls = "SetWindowsHookExA 3 for this thread";
constexpr const char* kRemoves = "UnhookWindowsHookEx";

/// A control that is handed a key.
Lines Handed(UINT message, WPARAM key, const std::string& prefix = "") {
    return {prefix + "control.QueryInterface IOleInPlaceActiveObject",
            prefix + "activeObject.TranslateAccelerator " + test_support::Hexadecimal(message) + " " +
                std::to_string(key),
            prefix + "activeObject gone"};
}

class KeyboardHook : public IEBrowserTest {
  protected:
    KeyboardHook() {
        realHooks = true;
        window = CreateWindowExW(0, L"STATIC", L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr,
                                 GetModuleHandleW(nullptr), nullptr);
        test_support::PumpWaiting();
    }
    ~KeyboardHook() override { DestroyWindow(window); }
    KeyboardHook(const KeyboardHook&) = delete;
    KeyboardHook& operator=(const KeyboardHook&) = delete;

    /// A browser whose login page has loaded.
    void BringUpPage() {
        BringUp();
        CompletePage();
        TakeTranscript();
    }
    void CompletePage() const { EXPECT_EQ(control.Raise(DISPID_DOCUMENTCOMPLETE), S_OK); }

    /// Posts a message and looks at the queue.
    /// @return what a message loop gets.
    MSG Get(UINT kind, WPARAM key, UINT removal = PM_REMOVE) const {
        PostMessageW(window, kind, key, kLater);
        MSG message{};
        message.message = WM_NULL;
        EXPECT_TRUE(PeekMessageW(&message, window, 0, 0, removal)) << "nothing was posted";
        return message;
    }

    /// Whether a message loop gets it as it was posted.
    bool Arrives(UINT kind, WPARAM key) const {
        const MSG message = Get(kind, key);
        return message.hwnd == window && message.message == kind && message.wParam == key &&
               message.lParam == kLater;
    }

    static bool IsBlank(const MSG& message) {
        return message.hwnd == nullptr && message.message == 0 && message.wParam == 0 &&
               message.lParam == 0 && message.time == 0 && message.pt.x == 0 && message.pt.y == 0;
    }

    static constexpr LPARAM kLater = 0x000F0001;
    HWND window = nullptr;
};

TEST_F(KeyboardHook, IsInstalledByTheFirstCompletedLoginPage) {
    BringUp();
    EXPECT_TRUE(Arrives(WM_KEYDOWN, VK_DELETE));
    EXPECT_EQ(TakeTranscript(), Lines{});
    CompletePage();
    EXPECT_EQ(TakeTranscript(), (Lines{kInstalls, "OnNavigationCompleted"}));
    CompletePage();
    EXPECT_EQ(TakeTranscript(), Lines{"OnNavigationCompleted"});
}

TEST_F(KeyboardHook, IsNotInstalledForTheCheck) {
    BringUp(1);
    CompletePage();
    EXPECT_EQ(TakeTranscript(), kReport);
}

TEST_F(KeyboardHook, HandsTheControlItsKeysAndNoOthers) {
    BringUpPage();
    const std::set<WPARAM> served = {9, 17, 38, 40, 41, 46, 67, 86, 90};
    for (WPARAM key = 0; key < 256; ++key) {
        Get(WM_KEYDOWN, key);
        EXPECT_EQ(TakeTranscript(), served.contains(key) ? Handed(WM_KEYDOWN, key) : Lines{}) << key;
    }
}

TEST_F(KeyboardHook, LeavesKeysOtherThanTabToTheLoop) {
    BringUpPage();
    for (const WPARAM key : std::initializer_list<WPARAM>{VK_CONTROL, VK_UP, VK_DOWN, VK_SELECT, VK_DELETE,
                                                          'C', 'V', 'Z', VK_RETURN, VK_ESCAPE, 'A'}) {
        EXPECT_TRUE(Arrives(WM_KEYDOWN, key)) << key;
        EXPECT_TRUE(Arrives(WM_KEYUP, key)) << key;
    }
}

TEST_F(KeyboardHook, TabIsBlankedForTheLoop) {
    BringUpPage();
    for (const UINT kind :
         std::initializer_list<UINT>{WM_KEYDOWN, WM_CHAR, WM_KEYUP, WM_SYSKEYDOWN, WM_SYSKEYUP}) {
        EXPECT_TRUE(IsBlank(Get(kind, VK_TAB))) << kind;
        EXPECT_EQ(TakeTranscript(), Handed(kind, VK_TAB));
    }
}

TEST_F(KeyboardHook, TabIsBlankedAlsoWhenTheControlDoesNotWantIt) {
    BringUpPage();
    control.script.answers["activeObject.TranslateAccelerator"] = S_FALSE;
    EXPECT_TRUE(IsBlank(Get(WM_KEYDOWN, VK_TAB)));
    control.script.answers["activeObject.TranslateAccelerator"] = E_FAIL;
    EXPECT_TRUE(IsBlank(Get(WM_KEYDOWN, VK_TAB)));
}

TEST_F(KeyboardHook, AMessageThatIsOnlyLookedAtIsNotHandedOver) {
    BringUpPage();
    const MSG seen = Get(WM_KEYDOWN, VK_TAB, PM_NOREMOVE);
    EXPECT_EQ(seen.message, UINT{WM_KEYDOWN});
    EXPECT_EQ(seen.wParam, WPARAM{VK_TAB});
    EXPECT_EQ(TakeTranscript(), Lines{});
    MSG taken{};
    EXPECT_TRUE(PeekMessageW(&taken, window, 0, 0, PM_REMOVE));
    EXPECT_TRUE(IsBlank(taken));
    EXPECT_EQ(TakeTranscript(), Handed(WM_KEYDOWN, VK_TAB));
}

TEST_F(KeyboardHook, AMessageIsTakenWhateverElseTheSystemSaysOfIt) {
    BringUpPage();
    MSG message{window, WM_KEYDOWN, VK_DELETE, 0, 0, {}};
    hookProcedure(HC_ACTION, PM_REMOVE | PM_NOYIELD, reinterpret_cast<LPARAM>(&message));
    EXPECT_EQ(TakeTranscript(), Handed(WM_KEYDOWN, VK_DELETE));
    hookProcedure(HC_ACTION, PM_NOREMOVE | PM_NOYIELD, reinterpret_cast<LPARAM>(&message));
    EXPECT_EQ(TakeTranscript(), Lines{});
}

TEST_F(KeyboardHook, AMessageWithANegativeCodeIsOnlyPassedOn) {
    BringUpPage();
    MSG message{window, WM_KEYDOWN, VK_TAB, 0, 0, {}};
    hookProcedure(-1, PM_REMOVE, reinterpret_cast<LPARAM>(&message));
    EXPECT_EQ(TakeTranscript(), Lines{});
    EXPECT_EQ(message.wParam, WPARAM{VK_TAB});
}

TEST_F(KeyboardHook, EveryMessageIsPassedOnAndTheAnswerIsTheNextHooks) {
    BringUpPage();
    MSG message{window, WM_TIMER, VK_TAB, 0, 0, {}};
    const LPARAM address = reinterpret_cast<LPARAM>(&message);
    int calls = 0;
    const test_support::ReplacedImport<struct Next, decltype(CallNextHookEx)> next(
        "user32.dll", "CallNextHookEx", [&](HHOOK hook, int code, WPARAM removal, LPARAM data) -> LRESULT {
            EXPECT_EQ(hook, hookHandle);
            EXPECT_EQ(data, address);
            ++calls;
            return code * 100 + static_cast<LRESULT>(removal);
        });
    EXPECT_EQ(hookProcedure(-1, PM_REMOVE, address), -99);
    EXPECT_EQ(hookProcedure(HC_ACTION, PM_NOREMOVE, address), 0);
    EXPECT_EQ(hookProcedure(HC_ACTION, PM_REMOVE, address), 1);
    EXPECT_EQ(calls, 3);
}

TEST_F(KeyboardHook, OtherMessagesWithTheNumberOfAKeyArriveUntouched) {
    BringUpPage();
    for (const UINT kind : std::initializer_list<UINT>{WM_TIMER, WM_COMMAND, WM_USER, WM_MOUSEMOVE}) {
        EXPECT_TRUE(Arrives(kind, VK_TAB)) << kind;
    }
    EXPECT_EQ(TakeTranscript(), Lines{});
}

TEST_F(KeyboardHook, AControlThatIsNotActiveGetsNoKeys) {
    BringUpPage();
    control.script.answers["control.QueryInterface IOleInPlaceActiveObject"] = E_NOINTERFACE;
    for (const WPARAM key : std::initializer_list<WPARAM>{VK_DELETE, VK_TAB}) {
        EXPECT_TRUE(Arrives(WM_KEYDOWN, key)) << key;
        EXPECT_EQ(TakeTranscript(), Lines{"control.QueryInterface IOleInPlaceActiveObject"});
    }
}

TEST_F(KeyboardHook, AfterTheTeardownItServesNobody) {
    BringUpPage();
    browser->Destroy();
    TakeTranscript();
    EXPECT_TRUE(Arrives(WM_KEYDOWN, VK_TAB));
    EXPECT_TRUE(Arrives(WM_KEYDOWN, VK_DELETE));
    EXPECT_EQ(TakeTranscript(), Lines{});
}

TEST_F(KeyboardHook, ABrowserThatIsCreatedAgainIsServedAgain) {
    BringUpPage();
    browser->Destroy();
    Create();
    TakeTranscript();
    EXPECT_TRUE(IsBlank(Get(WM_KEYDOWN, VK_TAB)));
    EXPECT_EQ(TakeTranscript(), Handed(WM_KEYDOWN, VK_TAB));
}

TEST_F(KeyboardHook, GoesWithTheBrowser) {
    BringUpPage();
    browser->Destroy();
    TakeTranscript();
    browser.reset();
    EXPECT_EQ(TakeTranscript(), (Lines{kRemoves, "CoUninitialize"}));
    EXPECT_TRUE(Arrives(WM_KEYDOWN, VK_TAB));
}

TEST_F(KeyboardHook, ThatWasNotInstalledIsNotRemoved) {
    BringUp();
    browser->Destroy();
    TakeTranscript();
    browser.reset();
    EXPECT_EQ(TakeTranscript(), Lines{"CoUninitialize"});
}

TEST_F(KeyboardHook, ThatCannotBeInstalledIsTracedAndThePageReportedAllTheSame) {
    hookFails = true;
    BringUp();
    CompletePage();
    EXPECT_EQ(TakeTranscript(), (Lines{kInstalls, "[3] Failed to install hook5", "OnNavigationCompleted"}));
    EXPECT_TRUE(Arrives(WM_KEYDOWN, VK_TAB));
}

TEST_F(KeyboardHook, ThatCouldNotBeInstalledIsTriedAgainByTheNextPage) {
    hookFails = true;
    BringUp();
    CompletePage();
    TakeTranscript();
    hookFails = false;
    CompletePage();
    EXPECT_EQ(TakeTranscript(), (Lines{kInstalls, "OnNavigationCompleted"}));
    Drop();
    const Lines end = TakeTranscript();
    EXPECT_EQ(std::count(end.begin(), end.end(), kRemoves), 1);
}

TEST_F(KeyboardHook, ABrowserThatGetsNoControlTakesNoKeys) {
    BringUpPage();
    control.script.answers["OleCreate"] = E_FAIL;
    ZanWebBrowserIE other("http://server", 0);
    other.Create(&owner, parent);
    TakeTranscript();
    Get(WM_KEYDOWN, VK_TAB);
    EXPECT_EQ(TakeTranscript(), Handed(WM_KEYDOWN, VK_TAB));
}

class TwoBrowsers : public KeyboardHook {
  protected:
    TwoBrowsers() {
        BringUpPage();
        control.prefix = "second ";
        second = std::make_unique<ZanWebBrowserIE>("http://server", 0);
        second->Create(&owner, parent);
        TakeTranscript();
    }
    ~TwoBrowsers() override {
        second->Destroy();
        second.reset();
    }
    TwoBrowsers(const TwoBrowsers&) = delete;
    TwoBrowsers& operator=(const TwoBrowsers&) = delete;

    std::unique_ptr<ZanWebBrowserIE> second;
};

TEST_F(TwoBrowsers, ShareOneHook) {
    CompletePage();
    EXPECT_EQ(TakeTranscript(), Lines{"OnNavigationCompleted"});
}

TEST_F(TwoBrowsers, TheLastOneGetsTheKeys) {
    Get(WM_KEYDOWN, VK_TAB);
    EXPECT_EQ(TakeTranscript(), Handed(WM_KEYDOWN, VK_TAB, "second "));
}

TEST_F(TwoBrowsers, TheHookAndItsServiceGoWithTheFirstThatGoes) {
    browser->Destroy();
    browser.reset();
    TakeTranscript();
    EXPECT_TRUE(Arrives(WM_KEYDOWN, VK_TAB));
    CompletePage();
    EXPECT_EQ(TakeTranscript(), (Lines{kInstalls, "OnNavigationCompleted"}));
    EXPECT_TRUE(Arrives(WM_KEYDOWN, VK_TAB)); // there is a hook again, but nobody that it serves
    EXPECT_EQ(TakeTranscript(), Lines{});
}

TEST_F(KeyboardHook, AControlMayLetItsOwnerTakeItDownInsideItsKey) {
    BringUpPage();
    control.script.during["activeObject.TranslateAccelerator"] = [this] { browser->Destroy(); };
    EXPECT_TRUE(IsBlank(Get(WM_KEYDOWN, VK_TAB)));
    EXPECT_EQ(TakeTranscript().back(), "activeObject gone");
    EXPECT_TRUE(Arrives(WM_KEYDOWN, VK_TAB));
    EXPECT_EQ(TakeTranscript(), Lines{});
}

} // namespace
} // namespace kelda
