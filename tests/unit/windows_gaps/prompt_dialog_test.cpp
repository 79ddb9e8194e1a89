// The credential prompt as a person meets it.
#include <algorithm>
#include <array>
#include <cstdlib>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <objbase.h>

#include "freed_by_library.h"
#include "prompt_call.h"
#include "prompt_driver.h"
#include "testbed/windows_gaps/prompt_dialog_ids.h"
#include "tests/support/memory_search.h"

namespace windows_gaps_test {
namespace {

using Step = PromptDriver::Step;

std::wstring TextOf(HWND dialog, int control) {
    std::array<wchar_t, 1024> text{};
    GetDlgItemTextW(dialog, control, text.data(), static_cast<int>(text.size()));
    return text.data();
}

RECT PlaceOf(HWND dialog, int control) {
    RECT place{};
    GetWindowRect(GetDlgItem(dialog, control), &place);
    return place;
}

int FocusedControl() {
    return GetDlgCtrlID(GetFocus());
}

Step Press(WORD key) {
    return [key](HWND) { return PostMessageW(GetFocus(), WM_KEYDOWN, key, 0) != FALSE; };
}

Step WaitForFocus(int control) {
    return [control](HWND) { return FocusedControl() == control; };
}

Step Type(int control, const wchar_t* text) {
    return [=](HWND dialog) { return SetDlgItemTextW(dialog, control, text) != FALSE; };
}

Step Click(int control) {
    return
        [control](HWND dialog) { return PostMessageW(GetDlgItem(dialog, control), BM_CLICK, 0, 0) != FALSE; };
}

Step Check(std::function<void(HWND dialog)> check) {
    return [check = std::move(check)](HWND dialog) {
        check(dialog);
        return true;
    };
}

class PromptDialog : public PromptTest {
  protected:
    void Run(std::vector<Step> steps) {
        const PromptDriver person(call_.caption, std::move(steps));
        call_.Run();
        EXPECT_TRUE(person.Done());
    }

    PromptCall call_;
};

TEST_F(PromptDialog, ShowsCaptionMessageAndEmptyFields) {
    call_.message = L"Sign in & go on\nhttp://server.example/";
    Run({Check([&](HWND dialog) {
             EXPECT_EQ(TextOf(dialog, IDC_PROMPT_MESSAGE), call_.message);
             EXPECT_EQ(TextOf(dialog, IDC_PROMPT_USER), L"");
             EXPECT_EQ(TextOf(dialog, IDC_PROMPT_PASSWORD), L"");
             EXPECT_EQ(IsDlgButtonChecked(dialog, IDC_PROMPT_SAVE), static_cast<UINT>(BST_UNCHECKED));
             EXPECT_EQ(FocusedControl(), IDC_PROMPT_USER);
             EXPECT_EQ(GetForegroundWindow(), dialog);
             HWND password = GetDlgItem(dialog, IDC_PROMPT_PASSWORD);
             EXPECT_NE(GetWindowLongW(password, GWL_STYLE) & ES_PASSWORD, 0);
         }),
         Click(IDCANCEL)});

    EXPECT_EQ(call_.error, static_cast<DWORD>(ERROR_CANCELLED));
    EXPECT_FALSE(call_.handedOut);
}

TEST_F(PromptDialog, HandsOutWhatIsEntered) {
    Run({Type(IDC_PROMPT_USER, L"DOM\\j\u00f6rg"), Type(IDC_PROMPT_PASSWORD, L"p:@ss \u20ac"),
         Click(IDC_PROMPT_SAVE), Click(IDOK)});

    EXPECT_EQ(call_.error, 0U);
    EXPECT_EQ(call_.userName, L"DOM\\j\u00f6rg");
    EXPECT_EQ(call_.password, L"p:@ss \u20ac");
    EXPECT_EQ(call_.save, TRUE);
}

TEST_F(PromptDialog, IsPrefilledAndWaitsForThePassword) {
    call_.Prefill(L"ann", L"secret");
    call_.save = TRUE;
    Run({Check([](HWND dialog) {
             EXPECT_EQ(TextOf(dialog, IDC_PROMPT_USER), L"ann");
             EXPECT_EQ(TextOf(dialog, IDC_PROMPT_PASSWORD), L"secret");
             EXPECT_EQ(IsDlgButtonChecked(dialog, IDC_PROMPT_SAVE), static_cast<UINT>(BST_CHECKED));
             EXPECT_EQ(FocusedControl(), IDC_PROMPT_PASSWORD);
         }),
         Click(IDC_PROMPT_SAVE), Click(IDOK)});

    EXPECT_EQ(call_.userName, L"ann");
    EXPECT_EQ(call_.password, L"secret");
    EXPECT_EQ(call_.save, FALSE);
}

TEST_F(PromptDialog, IsAcceptedByEnter) {
    call_.Prefill(L"ann", L"secret");
    Run({Press(VK_RETURN)});

    EXPECT_EQ(call_.error, 0U);
    EXPECT_EQ(call_.password, L"secret");
}

TEST_F(PromptDialog, IsCancelledByEscapeAndLeavesTheBoxAsItWas) {
    call_.Prefill(L"ann", L"secret");
    Run({Click(IDC_PROMPT_SAVE), Press(VK_ESCAPE)});

    EXPECT_EQ(call_.error, static_cast<DWORD>(ERROR_CANCELLED));
    EXPECT_EQ(call_.save, FALSE);
    EXPECT_FALSE(call_.handedOut);
}

TEST_F(PromptDialog, IsCancelledByItsCloseButton) {
    Run({[](HWND dialog) { return PostMessageW(dialog, WM_SYSCOMMAND, SC_CLOSE, 0) != FALSE; }});

    EXPECT_EQ(call_.error, static_cast<DWORD>(ERROR_CANCELLED));
}

TEST_F(PromptDialog, IsWalkedThroughByTab) {
    std::vector<Step> steps;
    for (const int control :
         {IDC_PROMPT_USER, IDC_PROMPT_PASSWORD, IDC_PROMPT_SAVE, IDOK, IDCANCEL, IDC_PROMPT_USER}) {
        steps.push_back(WaitForFocus(control));
        steps.push_back(Press(VK_TAB));
    }
    steps.push_back(Click(IDCANCEL));
    Run(std::move(steps));
}

TEST_F(PromptDialog, HasNoBoxWhereNoneIsAskedFor) {
    call_.flags = CREDUIWIN_GENERIC;
    call_.save = TRUE;
    Run({Check([](HWND dialog) { EXPECT_EQ(GetDlgItem(dialog, IDC_PROMPT_SAVE), nullptr); }), Click(IDOK)});

    EXPECT_EQ(call_.error, 0U);
    EXPECT_EQ(call_.save, TRUE);
}

TEST_F(PromptDialog, StandsInTheMiddleOfTheScreenWithoutAParent) {
    Run({Check([](HWND dialog) {
             RECT frame{};
             GetWindowRect(dialog, &frame);
             RECT screen{};
             SystemParametersInfoW(SPI_GETWORKAREA, 0, &screen, 0);
             EXPECT_LE(std::abs((frame.left + frame.right) - (screen.left + screen.right)), 2);
             EXPECT_LE(std::abs((frame.top + frame.bottom) - (screen.top + screen.bottom)), 2);
             EXPECT_EQ(GetWindow(dialog, GW_OWNER), nullptr);
         }),
         Click(IDCANCEL)});
}

TEST_F(PromptDialog, HoldsItsParentMeanwhile) {
    HWND parent = CreateWindowExW(0, L"STATIC", L"parent", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 10, 10, 600, 400,
                                  nullptr, nullptr, nullptr, nullptr);
    ASSERT_NE(parent, nullptr);
    call_.parent = parent;
    Run({Check([&](HWND dialog) {
             EXPECT_EQ(GetWindow(dialog, GW_OWNER), parent);
             EXPECT_FALSE(IsWindowEnabled(parent));
             RECT frame{};
             GetWindowRect(dialog, &frame);
             EXPECT_LE(std::abs((frame.left + frame.right) / 2 - 310), 2);
         }),
         Click(IDCANCEL)});

    EXPECT_TRUE(IsWindowEnabled(parent));
    DestroyWindow(parent);
}

TEST_F(PromptDialog, OfAParentThatIsNoneIsAFailureAndNoAnswer) {
    call_.Prefill(L"ann", L"secret");
    call_.parent = reinterpret_cast<HWND>(static_cast<INT_PTR>(0x1234567));
    call_.Run();

    EXPECT_EQ(call_.error, static_cast<DWORD>(ERROR_INVALID_WINDOW_HANDLE));
    EXPECT_FALSE(call_.handedOut);
}

/// Nothing lies outside of the dialog, over something else, or in another order than from top to bottom.
void ExpectTidy(HWND dialog) {
    RECT inside{};
    GetClientRect(dialog, &inside);
    MapWindowPoints(dialog, HWND_DESKTOP, reinterpret_cast<POINT*>(&inside), 2);
    LONG above = inside.top;
    for (const int control :
         {IDC_PROMPT_MESSAGE, IDC_PROMPT_USER, IDC_PROMPT_PASSWORD, IDC_PROMPT_SAVE, IDOK}) {
        if (GetDlgItem(dialog, control) == nullptr) {
            continue;
        }
        const RECT place = PlaceOf(dialog, control);
        EXPECT_GT(place.top, above) << control;
        EXPECT_GT(place.left, inside.left) << control;
        EXPECT_LT(place.right, inside.right) << control;
        above = place.bottom;
    }
    EXPECT_LT(above, inside.bottom);
    EXPECT_LT(inside.bottom - above, 40);
    EXPECT_EQ(PlaceOf(dialog, IDOK).top, PlaceOf(dialog, IDCANCEL).top);
    EXPECT_LT(PlaceOf(dialog, IDOK).right, PlaceOf(dialog, IDCANCEL).left);
}

/// The height that the message takes when it is drawn as the label draws it.
LONG DrawnHeight(HWND label, const std::wstring& message) {
    RECT place{};
    GetClientRect(label, &place);
    HDC context = GetDC(label);
    SelectObject(context, reinterpret_cast<HFONT>(SendMessageW(label, WM_GETFONT, 0, 0)));
    DrawTextW(context, message.c_str(), -1, &place, DT_CALCRECT | DT_WORDBREAK | DT_EXPANDTABS | DT_NOPREFIX);
    ReleaseDC(label, context);
    return place.bottom;
}

TEST_F(PromptDialog, FitsMessagesOfAnyLengthWithAndWithoutABox) {
    std::wstring longMessage = L"https://a-server.example.com:8443/with/a/long/pa...";
    for (int word = 0; word < 80; ++word) {
        longMessage += L" and more";
    }
    const std::pair<std::wstring, DWORD> cases[] = {
        {L"", CREDUIWIN_CHECKBOX},         {L"One line", 0},
        {L"One\nTwo", CREDUIWIN_CHECKBOX}, {L"One\nTwo\nThree\nFour\nFive", 0},
        {longMessage, CREDUIWIN_CHECKBOX},
    };
    for (const auto& [message, box] : cases) {
        call_.message = message;
        call_.flags = CREDUIWIN_GENERIC | box;
        Run({Check([&](HWND dialog) {
                 ExpectTidy(dialog);
                 const RECT place = PlaceOf(dialog, IDC_PROMPT_MESSAGE);
                 EXPECT_EQ(place.bottom - place.top,
                           DrawnHeight(GetDlgItem(dialog, IDC_PROMPT_MESSAGE), call_.message));
             }),
             Click(IDCANCEL)});
    }
}

/// What the password field holds at its very end.
class LastPasswordText {
  public:
    static void Watch(HWND field) {
        text.clear();
        original = reinterpret_cast<WNDPROC>(
            SetWindowLongPtrW(field, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&OnMessage)));
    }
    static inline std::wstring text;

  private:
    static LRESULT CALLBACK OnMessage(HWND window, UINT message, WPARAM first, LPARAM second) {
        if (message == WM_DESTROY) {
            text = TextOf(GetParent(window), IDC_PROMPT_PASSWORD);
        }
        return CallWindowProcW(original, window, message, first, second);
    }
    static inline WNDPROC original = nullptr;
};

TEST_F(PromptDialog, OverwritesThePasswordHoweverItEnds) {
    for (const int button : {IDOK, IDCANCEL}) {
        Run({Type(IDC_PROMPT_PASSWORD, L"secret"),
             Check([](HWND dialog) { LastPasswordText::Watch(GetDlgItem(dialog, IDC_PROMPT_PASSWORD)); }),
             Click(button)});

        EXPECT_EQ(LastPasswordText::text, L"******");
    }
}

TEST_F(PromptDialog, LeavesThePasswordNowhereButInItsAnswer) {
    const test_support::HiddenText password(24, 1);
    const PromptDriver person(L"A caption", {[&](HWND dialog) {
                                                 std::array<wchar_t, 25> text{};
                                                 password.PutInto(text.data());
                                                 SetDlgItemTextW(dialog, IDC_PROMPT_PASSWORD, text.data());
                                                 SecureZeroMemory(text.data(), sizeof(text));
                                                 return true;
                                             },
                                             Click(IDOK)});
    const FreedByLibrary freed(password);
    CREDUI_INFOW info = {sizeof(info), nullptr, L"A message", L"A caption", nullptr};
    ULONG package = 0;
    void* packed = nullptr;
    ULONG size = 0;

    ASSERT_EQ(CredUIPromptForWindowsCredentialsW(&info, 0, &package, nullptr, 0, &packed, &size, nullptr,
                                                 CREDUIWIN_GENERIC),
              0U);

    EXPECT_EQ(test_support::CountInBlock(password, packed, size), 1U);
    EXPECT_EQ(test_support::CountInMemory(password), 1U);
    EXPECT_EQ(FreedByLibrary::Found(), 0U);
    SecureZeroMemory(packed, size);
    CoTaskMemFree(packed);
}

} // namespace
} // namespace windows_gaps_test
