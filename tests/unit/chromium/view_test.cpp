// The view: its pictures, its size, its input and its focus.
#include "tests/unit/chromium/chromium_test.h"

namespace chromium_test {
namespace {

constexpr COLORREF kRed = RGB(255, 0, 0);
constexpr COLORREF kBlue = RGB(0, 0, 255);

class View : public ChromiumTest {
  protected:
    View() {
        site_.Add("/red", "<body style='background: red'>");
        site_.Add(
            "/corner",
            "<body style='background: red; margin: 0'><div style='position: fixed; right: 0; bottom: 0; "
            "width: 8px; height: 8px; background: blue'>");
        site_.Add(
            "/input",
            "<body style='background: red; margin: 0'><form action='/sent'><input id=i name=i autofocus "
            "style='width: 100px; height: 40px'><input id=j><button></button>");
        site_.Add("/sent", "sent");
        site_.Add("/scroll", "<body style='background: red'><div style='height: 5000px'>");
        parent_ = CreateWindowExW(WS_EX_TOOLWINDOW, L"STATIC", L"view test", WS_POPUP | WS_VISIBLE, 0, 0, 400,
                                  300, nullptr, nullptr, nullptr, nullptr);
    }
    ~View() override {
        view_.reset();
        DestroyWindow(parent_);
    }

    void Show(const std::string& path) {
        view_ = std::make_unique<PageView>(*page_, parent_);
        view_->SetBounds({10, 10, 210, 110});
        view_->SetVisible(true);
        ASSERT_TRUE(Visit(*page_, client_, site_.Url(path)).success);
        ASSERT_TRUE(PumpUntil([&] { return Pixel(170, 90) == kRed; }));
    }
    COLORREF Pixel(int x, int y) const {
        HDC context = GetDC(view_->Window());
        const COLORREF pixel = GetPixel(context, x, y);
        ReleaseDC(view_->Window(), context);
        return pixel;
    }
    /// What another window on top would leave.
    void Fill(COLORREF color) const {
        RECT client{};
        GetClientRect(view_->Window(), &client);
        HDC context = GetDC(view_->Window());
        HBRUSH brush = CreateSolidBrush(color);
        FillRect(context, &client, brush);
        DeleteObject(brush);
        ReleaseDC(view_->Window(), context);
    }
    void Press(WPARAM key) const {
        PostMessageW(view_->Window(), WM_KEYDOWN, key, 1);
        PostMessageW(view_->Window(), WM_KEYUP, key, static_cast<LPARAM>(0xC0000001));
    }
    void Type(const std::wstring& text) const {
        for (const wchar_t unit : text) {
            PostMessageW(view_->Window(), WM_CHAR, unit, 1);
        }
    }
    void Mouse(UINT message, WPARAM buttons, int x, int y) const {
        PostMessageW(view_->Window(), message, buttons, MAKELPARAM(x, y));
    }
    bool Comes(const std::string& expression, const std::string& value) {
        return PumpUntil([&] { return Evaluate(*page_, expression) == value; });
    }

    static inline std::function<void()> onParentFocus;
    HWND parent_;
    std::unique_ptr<PageView> view_;
};

TEST_F(View, PaintsThePage) {
    Show("/red");
    EXPECT_EQ(Pixel(0, 0), kRed);
    EXPECT_EQ(Pixel(199, 99), kRed);
}

TEST_F(View, FollowsItsSize) {
    Show("/corner");
    EXPECT_TRUE(PumpUntil([&] { return Pixel(195, 95) == kBlue; }));
    view_->SetBounds({0, 0, 300, 200});
    EXPECT_TRUE(PumpUntil([&] { return Pixel(295, 195) == kBlue && Pixel(195, 95) == kRed; }));
    EXPECT_EQ(Evaluate(*page_, "[innerWidth, innerHeight]"), "[300,200]");
}

TEST_F(View, KeepsItsPictureWhenItIsPaintedAnew) {
    Show("/red");
    page_->Close();
    Fill(kBlue);
    ASSERT_EQ(Pixel(100, 50), kBlue);
    RedrawWindow(view_->Window(), nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW);
    EXPECT_EQ(Pixel(100, 50), kRed);
}

TEST_F(View, ShowsWhatHasChangedWhileItWasHidden) {
    Show("/red");
    view_->SetVisible(false);
    EXPECT_FALSE(IsWindowVisible(view_->Window()));
    Evaluate(*page_, "document.body.style.background = 'blue'");
    view_->SetVisible(true);
    EXPECT_TRUE(PumpUntil([&] { return Pixel(100, 50) == kBlue; }));
}

TEST_F(View, ShowsTheLastPictureOfAPageThatChangedWhileTheThreadWasBusy) {
    Show("/red");
    Evaluate(
        *page_,
        "let left = 30; const step = () => { document.body.style.background = left % 2 ? 'red' : 'green';"
        "if (left--) requestAnimationFrame(step); else document.body.style.background = 'blue' };"
        "requestAnimationFrame(step); 0");
    Sleep(1500);
    EXPECT_TRUE(PumpUntil([&] { return Pixel(100, 50) == kBlue; }));
}

TEST_F(View, TypesIntoTheField) {
    Show("/input");
    view_->Focus();
    ASSERT_TRUE(Comes("document.activeElement.id", "\"i\""));
    Type(L"ab\u00e4\u20ac\U0001F600x");
    EXPECT_TRUE(Comes("i.value", "\"ab\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80x\""));
    Press(VK_BACK);
    Press(VK_HOME);
    Press(VK_DELETE);
    EXPECT_TRUE(Comes("i.value", "\"b\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80\""));
}

TEST_F(View, MovesTheFocusByTabAndSendsTheFormByEnter) {
    Show("/input");
    view_->Focus();
    ASSERT_TRUE(Comes("document.activeElement.id", "\"i\""));
    Press(VK_TAB);
    EXPECT_TRUE(Comes("document.activeElement.id", "\"j\""));
    // A real key: its character is made by the message loop.
    Press(VK_RETURN);
    EXPECT_TRUE(PumpUntil([&] { return !site_.Requests("/sent?i=").empty(); }));
}

TEST_F(View, ClicksAndTakesTheFocus) {
    Show("/input");
    Evaluate(*page_,
             "i.blur(); document.onmousedown = (e) => { window.at = [e.clientX, e.clientY, e.button] }");
    Mouse(WM_LBUTTONDOWN, MK_LBUTTON, 20, 20);
    Mouse(WM_LBUTTONUP, 0, 20, 20);
    EXPECT_TRUE(Comes("window.at || null", "[20,20,0]"));
    EXPECT_TRUE(Comes("document.activeElement.id", "\"i\""));
    EXPECT_EQ(GetFocus(), view_->Window());
}

TEST_F(View, PassesDoubleClicksOn) {
    Show("/input");
    // Without it Windows makes no such messages.
    EXPECT_NE(GetClassLongPtrW(view_->Window(), GCL_STYLE) & CS_DBLCLKS, 0U);
    Evaluate(*page_, "window.seen = []; document.ondblclick = () => seen.push('left');"
                     "document.onmousedown = (e) => { if (e.detail === 2) seen.push('press ' + e.button) }");
    Mouse(WM_LBUTTONDOWN, MK_LBUTTON, 20, 20);
    Mouse(WM_LBUTTONUP, 0, 20, 20);
    Mouse(WM_LBUTTONDBLCLK, MK_LBUTTON, 20, 20);
    ASSERT_TRUE(PumpUntil([&] { return GetCapture() == view_->Window(); }));
    Mouse(WM_LBUTTONUP, 0, 20, 20);
    Mouse(WM_MBUTTONDOWN, MK_MBUTTON, 60, 70);
    Mouse(WM_MBUTTONUP, 0, 60, 70);
    Mouse(WM_MBUTTONDBLCLK, MK_MBUTTON, 60, 70);
    Mouse(WM_MBUTTONUP, 0, 60, 70);
    EXPECT_TRUE(Comes("window.seen", R"(["press 0","left","press 1"])"));
}

TEST_F(View, ScrollsByTheWheel) {
    Show("/scroll");
    POINT point = {50, 50};
    ClientToScreen(view_->Window(), &point);
    PostMessageW(view_->Window(), WM_MOUSEWHEEL, MAKEWPARAM(0, -WHEEL_DELTA), MAKELPARAM(point.x, point.y));
    EXPECT_TRUE(Comes("scrollY > 0", "true"));
}

TEST_F(View, PaintsAgainAfterACrashOfThePage) {
    Show("/red");
    page_->Navigate("chrome://crash");
    ASSERT_TRUE(PumpUntil([&] { return !client_.crashes.empty(); }));
    ASSERT_TRUE(Visit(*page_, client_, site_.Url("/corner")).success);
    EXPECT_TRUE(PumpUntil([&] { return Pixel(195, 95) == kBlue; }));
}

TEST_F(View, MayBeDestroyedByTheWindowThatGetsItsFocus) {
    ASSERT_NO_FATAL_FAILURE(UseBrowserOfItsOwn());
    Show("/red");
    view_->Focus();
    ASSERT_EQ(GetFocus(), view_->Window());
    onParentFocus = [&] {
        view_.reset();
        page_.reset();
        browser_.reset();
    };
    SetWindowLongPtrW(
        parent_, GWLP_WNDPROC,
        reinterpret_cast<LONG_PTR>(+[](HWND window, UINT message, WPARAM wParam, LPARAM lParam) -> LRESULT {
            if (message == WM_SETFOCUS && onParentFocus) {
                std::exchange(onParentFocus, nullptr)();
            }
            return DefWindowProcW(window, message, wParam, lParam);
        }));
    view_->SetVisible(false);
    EXPECT_EQ(view_, nullptr);
    EXPECT_EQ(browser_, nullptr);
}

TEST_F(View, OutlivesItsParentAndItsPage) {
    ASSERT_NO_FATAL_FAILURE(UseBrowserOfItsOwn());
    Show("/red");
    DestroyWindow(parent_);
    EXPECT_EQ(view_->Window(), nullptr);
    view_->SetBounds({0, 0, 10, 10});
    view_->SetVisible(false);
    view_->Focus();
    page_.reset();
    browser_.reset();
    view_->SetVisible(true);
}

} // namespace
} // namespace chromium_test
