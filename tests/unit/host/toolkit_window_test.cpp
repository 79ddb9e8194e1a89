// The window of a dialog: how it looks, where its components lie, its attributes and its actions.
#include <windows.h>

#include <functional>
#include <string>

#include <gtest/gtest.h>

#include "toolkit_scene.h"

namespace {

using host_test::Entries;
using host_test::kDialog;

constexpr int kAnyExtent = 300;

class DialogWindow : public host_test::ToolkitTest {
  protected:
    static RECT ClientOf(HWND window) {
        RECT client = {};
        GetClientRect(window, &client);
        return client;
    }

    /// "left,top right,bottom" of a component in the dialog's client area.
    std::string PlaceOf(const char* component) const {
        RECT place = {};
        GetWindowRect(NativeWindow(kDialog, component), &place);
        MapWindowPoints(nullptr, dialog, reinterpret_cast<POINT*>(&place), 2);
        return std::to_string(place.left) + "," + std::to_string(place.top) + " " +
               std::to_string(place.right) + "," + std::to_string(place.bottom);
    }

    /// Gives the dialog a client area of that size.
    void SetClient(int width, int height) const {
        RECT outer = {};
        GetWindowRect(dialog, &outer);
        const RECT client = ClientOf(dialog);
        ASSERT_EQ(ui_modify(kDialog, kDialog, kUiAttributeWidth,
                            outer.right - outer.left - client.right + width, kUiAttributeHeight,
                            outer.bottom - outer.top - client.bottom + height, 0),
                  0);
        ASSERT_EQ(ClientOf(dialog).right, width);
        ASSERT_EQ(ClientOf(dialog).bottom, height);
    }

    static std::string SizeOf(HWND window) {
        RECT area = {};
        GetWindowRect(window, &area);
        return std::to_string(area.right - area.left) + "x" + std::to_string(area.bottom - area.top);
    }

    static std::wstring TitleOf(HWND window) {
        std::wstring title(200, L'\0');
        title.resize(static_cast<std::size_t>(GetWindowTextW(window, title.data(), 200)));
        return title;
    }

    static LONG_PTR StyleOf(HWND window) { return GetWindowLongPtrW(window, GWL_STYLE); }
    static LONG_PTR ExtendedStyleOf(HWND window) { return GetWindowLongPtrW(window, GWL_EXSTYLE); }
};

/// A dialog without a page, with these attributes.
std::string Bare(const std::string& attributes) {
    return "(Dialog Dialog (Resources " + attributes + "(.Layout (Grid (Rows 1) (Cols 1)))))";
}

/// A dialog of two windows in a grid of one row.
std::string TwoWindows(const std::string& attributes) {
    return "(Dialog Dialog (Components (NakedWindow A) (NakedWindow B)) (Resources " + attributes +
           "(.Layout (Grid (Rows 1) (Cols 2) A B))))";
}

TEST_F(DialogWindow, IsMadeWhenTheDeviceIsManagedAndNotShownYet) {
    Create();
    EXPECT_EQ(NativeWindow(kDialog), nullptr);
    EXPECT_EQ(NativeWindow(kDialog, "NakedWindow"), nullptr);
    EXPECT_EQ(ui_manage_device(kDialog), 0);
    EXPECT_TRUE(IsWindow(NativeWindow(kDialog)));
    EXPECT_FALSE(IsWindowVisible(NativeWindow(kDialog)));
    EXPECT_EQ(GetParent(NativeWindow(kDialog, "NakedWindow")), NativeWindow(kDialog));
}

TEST_F(DialogWindow, HasATitleBarAndAFrameToResizeIt) {
    Manage();
    EXPECT_EQ(StyleOf(dialog) & WS_CAPTION, WS_CAPTION);
    EXPECT_NE(StyleOf(dialog) & WS_THICKFRAME, 0);
    EXPECT_NE(StyleOf(dialog) & WS_SYSMENU, 0);
    EXPECT_NE(StyleOf(dialog) & WS_CLIPCHILDREN, 0);
}

TEST_F(DialogWindow, StaysOnTopOnlyIfItIsDescribedSo) {
    Manage();
    EXPECT_NE(ExtendedStyleOf(dialog) & WS_EX_TOPMOST, 0);
    ui_destroy_device(kDialog);
    Manage(Bare("").c_str());
    EXPECT_EQ(ExtendedStyleOf(dialog) & WS_EX_TOPMOST, 0);
}

TEST_F(DialogWindow, HasTheSystemMenuAndTheCloseButtonThatAreDescribed) {
    struct Row {
        const char* attributes;
        bool menu;
        bool icon;
        bool closes;
    };
    const Row rows[] = {
        {"(.SystemMenuButton True) (.CloseButton True)", true, true, true},
        {"(.SystemMenuButton True) (.CloseButton False)", true, true, false},
        {"(.SystemMenuButton False) (.CloseButton True)", true, false, true},
        {"", false, false, false},
    };
    for (const Row& row : rows) {
        Manage(Bare(row.attributes).c_str());
        EXPECT_EQ((StyleOf(dialog) & WS_SYSMENU) != 0, row.menu) << row.attributes;
        EXPECT_EQ(SendMessageW(dialog, WM_GETICON, ICON_SMALL, 0) != 0, row.icon) << row.attributes;
        SendMessageW(dialog, WM_SYSCOMMAND, SC_CLOSE, 0);
        EXPECT_EQ(NativeWindow(kDialog) == nullptr, row.closes) << row.attributes;
        ui_destroy_device(kDialog);
    }
}

TEST_F(DialogWindow, HasTheAttributesThatWereSetBeforeItWasMade) {
    Create();
    EXPECT_EQ(ui_modify(kDialog, kDialog, kUiAttributeTitle, L"Gr\u00fc\u00df \u4e2d", 0), 0);
    EXPECT_EQ(ui_modify(kDialog, kDialog, kUiAttributeWidth, 500, kUiAttributeHeight, 510, 0), 0);
    EXPECT_EQ(ui_manage_device(kDialog), 0);
    EXPECT_EQ(TitleOf(NativeWindow(kDialog)), L"Gr\u00fc\u00df \u4e2d");
    EXPECT_EQ(SizeOf(NativeWindow(kDialog)), "500x510");
}

TEST_F(DialogWindow, TakesAttributesAfterwardsToo) {
    Manage();
    EXPECT_EQ(ui_modify(kDialog, kDialog, kUiAttributeTitle, L"Later", kUiAttributeHeight, 321, 0), 0);
    EXPECT_EQ(TitleOf(dialog), L"Later");
    EXPECT_EQ(SizeOf(dialog), "400x321");
    EXPECT_EQ(ui_modify(kDialog, kDialog, kUiAttributeWidth, 456, 0), 0);
    EXPECT_EQ(SizeOf(dialog), "456x321");
    EXPECT_EQ(ui_modify(kDialog, kDialog, 0), 0);
    EXPECT_EQ(SizeOf(dialog), "456x321");
}

TEST_F(DialogWindow, ChangesNothingWhereOneOfItsAttributesIsWrong) {
    Manage();
    const std::string size = SizeOf(dialog);
    EXPECT_NE(ui_modify(kDialog, kDialog, kUiAttributeWidth, kAnyExtent, kUiAttributeHeight, 0, 0), 0);
    EXPECT_NE(ui_modify(kDialog, kDialog, kUiAttributeWidth, kAnyExtent, kUiAttributeHeight, -1, 0), 0);
    EXPECT_NE(ui_modify(kDialog, kDialog, kUiAttributeWidth, kAnyExtent, kUiAttributeHeight, 32768, 0), 0);
    EXPECT_NE(ui_modify(kDialog, kDialog, kUiAttributeWidth, kAnyExtent, 72, 1, 0), 0);
    EXPECT_NE(ui_modify(kDialog, kDialog, kUiAttributeWidth, kAnyExtent, kUiAttributeTitle,
                        static_cast<const wchar_t*>(nullptr), 0),
              0);
    EXPECT_EQ(SizeOf(dialog), size);
}

TEST_F(DialogWindow, IsFilledByItsPageButForThreePixels) {
    Manage();
    SetClient(400, 300);
    EXPECT_EQ(PlaceOf("NakedWindow"), "3,3 397,297");
}

TEST_F(DialogWindow, SharesItsGridOutInEqualCells) {
    Manage("(Dialog Dialog (Components (NakedWindow A) (NakedWindow B) (SubLayout L))"
           "(Resources (A.AttachLeft True) (A.AttachRight True) (A.AttachTop True) (A.AttachBottom True)"
           "(B.AttachLeft True) (B.AttachRight True) (B.AttachTop True) (B.AttachBottom True)"
           "(.Layout (Grid (Rows 2) (Cols 2) A B L))))"
           "(Layout L (Components (NakedWindow C) (NakedWindow D)) (Resources"
           "(.AttachLeft True) (.AttachRight True) (.AttachTop True) (.AttachBottom True) (.LeftOffset 10)"
           "(C.AttachLeft True) (C.AttachRight True) (C.AttachTop True) (C.AttachBottom True)"
           "(D.AttachLeft True) (D.AttachRight True) (D.AttachTop True) (D.AttachBottom True) (D.TopOffset 5)"
           "(.Layout (Grid (Rows 2) (Cols 1) C D))))");
    SetClient(401, 300);
    EXPECT_EQ(PlaceOf("A"), "0,0 200,150");
    EXPECT_EQ(PlaceOf("B"), "200,0 401,150");
    EXPECT_EQ(PlaceOf("C"), "10,150 200,225");
    EXPECT_EQ(PlaceOf("D"), "10,230 200,300");
}

TEST_F(DialogWindow, KeepsComponentsAtTheSidesThatTheyAreAttachedTo) {
    struct Row {
        const char* attributes;
        const char* place;
    };
    const Row rows[] = {
        {"", "200,0 300,100"},
        {"(B.LeftOffset 5) (B.TopOffset 6)", "200,0 300,100"},
        {"(B.AttachLeft True) (B.LeftOffset 5)", "205,0 305,100"},
        {"(B.AttachRight True) (B.RightOffset 5)", "295,0 395,100"},
        {"(B.AttachTop True) (B.TopOffset 6)", "200,6 300,106"},
        {"(B.AttachBottom True) (B.BottomOffset 6)", "200,194 300,294"},
        {"(B.AttachLeft True) (B.AttachRight True) (B.LeftOffset -5)", "195,0 400,100"},
        {"(B.AttachLeft True) (B.AttachRight True) (B.LeftOffset 300)", "500,0 500,100"},
        {"(B.AttachTop True) (B.AttachBottom True) (B.BottomOffset 6)", "200,0 300,294"},
    };
    for (const Row& row : rows) {
        Manage(TwoWindows(row.attributes).c_str());
        SetClient(400, 300);
        EXPECT_EQ(PlaceOf("B"), row.place) << row.attributes;
        ui_destroy_device(kDialog);
    }
}

TEST_F(DialogWindow, HasBareWhiteChildWindows) {
    Manage();
    HWND window = NativeWindow(kDialog, "NakedWindow");
    EXPECT_EQ(StyleOf(window) & (WS_CHILD | WS_VISIBLE | WS_CLIPCHILDREN),
              WS_CHILD | WS_VISIBLE | WS_CLIPCHILDREN);
    EXPECT_EQ(StyleOf(window) & (WS_BORDER | WS_THICKFRAME), 0);
    EXPECT_EQ(GetClassLongPtrW(window, GCLP_HBRBACKGROUND),
              reinterpret_cast<ULONG_PTR>(GetStockObject(WHITE_BRUSH)));
}

TEST_F(DialogWindow, DoesNotGiveOutAComponentThatSomebodyHasDestroyed) {
    Manage();
    DestroyWindow(NativeWindow(kDialog, "NakedWindow"));
    HWND window = dialog;
    EXPECT_NE(ui_do_operation(kDialog, "NakedWindow", kUiOperationGetNativeWindow, 0, &window, 0), 0);
    EXPECT_EQ(window, dialog) << "written on success only";
    SetClient(200, 200);
}

TEST_F(DialogWindow, OfOneDeviceDoesNotStandInTheWayOfAnothers) {
    Manage();
    ASSERT_EQ(ui_create_device_from_string("Second", "Dialog", host_test::kLoginDescription), 0);
    EXPECT_EQ(ui_manage_device("Second"), 0);
    HWND second = NativeWindow("Second", "NakedWindow");
    EXPECT_NE(second, NativeWindow(kDialog, "NakedWindow"));
    EXPECT_EQ(ui_destroy_device("Second"), 0);
    EXPECT_FALSE(IsWindow(second));
    EXPECT_TRUE(IsWindow(dialog));
}

using Action = DialogWindow;

TEST_F(Action, OfResizingComesAfterTheComponentsHaveTheirNewSize) {
    Manage();
    On(kUiActionResize, [this] { Log(PlaceOf("NakedWindow")); });
    SetClient(400, 200);
    SetClient(300, 200);
    EXPECT_EQ(log, (Entries{"3,3 397,197", "3,3 297,197"}));
}

TEST_F(Action, OfResizingComesForChangesOfTheClientAreaOnly) {
    Create();
    On(kUiActionResize, [this] { Log("resized"); });
    ui_modify(kDialog, kDialog, kUiAttributeWidth, kAnyExtent, 0);
    ui_manage_device(kDialog);
    dialog = NativeWindow(kDialog);
    ui_modify(kDialog, kDialog, kUiAttributeWidth, kAnyExtent, 0);
    SetWindowPos(dialog, nullptr, 50, 60, 0, 0, SWP_NOSIZE);
    SendMessageW(dialog, WM_SIZE, SIZE_RESTORED, MAKELPARAM(1, 1)); // told of a size that it has not
    ActivateAnd([] {});
    EXPECT_EQ(log, Entries{});
}

TEST_F(Action, OfResizingDoesNotComeForADialogThatIsMinimizedAndRestored) {
    Manage();
    On(kUiActionResize, [this] { Log("resized"); });
    ActivateAnd([this] {
        const std::string place = PlaceOf("NakedWindow");
        const std::string size = SizeOf(NativeWindow(kDialog, "NakedWindow"));
        ShowWindow(dialog, SW_MINIMIZE);
        EXPECT_TRUE(IsIconic(dialog));
        EXPECT_EQ(ClientOf(dialog).bottom, 0);
        EXPECT_EQ(SizeOf(NativeWindow(kDialog, "NakedWindow")), size);
        ShowWindow(dialog, SW_RESTORE);
        EXPECT_EQ(PlaceOf("NakedWindow"), place);
    });
    EXPECT_EQ(log, Entries{});
}

TEST_F(Action, OfClosingIsTheOnlyThingThatHappensWhenItHasAHandler) {
    Manage();
    On(kUiActionClose, [this] { Log("first"); });
    On(kUiActionClose, [this] { Log("second"); });
    SendMessageW(dialog, WM_CLOSE, 0, 0);
    EXPECT_EQ(log, (Entries{"first", "second"}));
    EXPECT_TRUE(IsWindow(dialog));
}

TEST_F(Action, OfClosingComesFromTheSystemMenuAndFromItsKeys) {
    Manage();
    On(kUiActionClose, [this] { Log("close"); });
    SendMessageW(dialog, WM_SYSCOMMAND, SC_CLOSE, 0);
    EXPECT_EQ(log, Entries{"close"});
    // Altogether as from the keyboard: the system command is posted.
    constexpr LPARAM kAltIsDown = 1 << 29;
    ActivateAnd([this] {
        SendMessageW(dialog, WM_SYSKEYDOWN, VK_F4, kAltIsDown);
        MSG message = {};
        while (PeekMessageW(&message, dialog, 0, 0, PM_REMOVE) != FALSE) {
            DispatchMessageW(&message);
        }
    });
    EXPECT_EQ(log, (Entries{"close", "close"}));
}

TEST_F(Action, OfClosingWithoutHandlerDestroysTheDevice) {
    Manage();
    On(kUiActionDestroy, [this] { Log("destroy"); });
    SendMessageW(dialog, WM_CLOSE, 0, 0);
    EXPECT_EQ(log, Entries{"destroy"});
    EXPECT_FALSE(IsWindow(dialog));
    EXPECT_NE(ui_destroy_device(kDialog), 0);
}

TEST_F(Action, SetReplacesAllHandlers) {
    Manage();
    On(kUiActionClose, [this] { Log("first"); });
    On(kUiActionClose, [this] { Log("second"); });
    SetOn(kUiActionClose, [this] { Log("only"); });
    On(kUiActionClose, [this] { Log("added"); });
    SendMessageW(dialog, WM_CLOSE, 0, 0);
    EXPECT_EQ(log, (Entries{"only", "added"}));
}

TEST_F(Action, HandlersMayChangeTheHandlersForTheNextTime) {
    Manage();
    On(kUiActionClose, [this] {
        Log("first");
        SetOn(kUiActionClose, [this] { Log("set"); });
    });
    On(kUiActionClose, [this] { Log("second"); });
    SendMessageW(dialog, WM_CLOSE, 0, 0);
    SendMessageW(dialog, WM_CLOSE, 0, 0);
    EXPECT_EQ(log, (Entries{"first", "second", "set"}));
}

TEST_F(Action, AHandlerThatDestroysTheDeviceIsTheLast) {
    Manage();
    On(kUiActionClose, [this] {
        Log("first");
        ui_destroy_device(kDialog);
    });
    On(kUiActionClose, [this] { Log("second"); });
    SendMessageW(dialog, WM_CLOSE, 0, 0);
    EXPECT_EQ(log, Entries{"first"});
}

TEST_F(Action, OfDestructionComesBeforeAnyWindowIsDestroyedAndOnce) {
    struct Way {
        const char* name;
        std::function<void()> destroy;
    };
    const Way ways[] = {
        {"by the toolkit", [] { ui_destroy_device(kDialog); }},
        {"from outside", [this] { DestroyWindow(dialog); }},
        {"closed", [this] { SendMessageW(dialog, WM_CLOSE, 0, 0); }},
    };
    for (const Way& way : ways) {
        log.clear();
        Manage();
        HWND window = NativeWindow(kDialog, "NakedWindow");
        On(kUiActionDestroy, [&] {
            Log("first");
            EXPECT_TRUE(IsWindow(dialog)) << way.name;
            EXPECT_TRUE(IsWindow(window)) << way.name;
            EXPECT_EQ(NativeWindow(kDialog, "NakedWindow"), window) << way.name;
            EXPECT_EQ(ui_destroy_device(kDialog), 0) << way.name;
            EXPECT_TRUE(IsWindow(window)) << way.name;
        });
        On(kUiActionDestroy, [&] { Log("second"); });
        way.destroy();
        EXPECT_EQ(log, (Entries{"first", "second"})) << way.name;
        EXPECT_FALSE(IsWindow(window)) << way.name;
        EXPECT_NE(ui_destroy_device(kDialog), 0) << way.name;
    }
}

TEST_F(Action, OfDestructionComesWithoutAnyWindowToo) {
    Create();
    On(kUiActionDestroy, [this] { Log("destroy"); });
    EXPECT_EQ(ui_destroy_device(kDialog), 0);
    EXPECT_EQ(log, Entries{"destroy"});
}

TEST_F(Action, OfDestructionMayDestroyTheWindowItself) {
    Manage();
    On(kUiActionDestroy, [this] {
        Log("destroy");
        DestroyWindow(dialog);
    });
    EXPECT_EQ(ui_destroy_device(kDialog), 0);
    EXPECT_EQ(log, Entries{"destroy"});
    EXPECT_FALSE(IsWindow(dialog));
    Create();
}

TEST_F(Action, OfDestructionDoesNotComeToAHandlerThatIsAddedDuringIt) {
    Manage();
    On(kUiActionDestroy, [this] {
        Log("destroy");
        On(kUiActionDestroy, [this] { Log("again"); });
    });
    EXPECT_EQ(ui_destroy_device(kDialog), 0);
    EXPECT_EQ(log, Entries{"destroy"});
}

} // namespace
