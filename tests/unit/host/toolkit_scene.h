// A dialog of the reference toolkit with an owner, and a way to act from inside its modal loop.
#pragma once

#include <windows.h>

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "host_reference/device.h"

namespace host_test {

inline constexpr const char* kDialog = "Dialog";
inline constexpr const char* kInner = "Inner"; ///< A second dialog.
inline constexpr const char* kOwner = "Owner";

/// The description of a login dialog: one bare window that fills the page but for three pixels.
inline constexpr const char* kLoginDescription = R"(
(Dialog Dialog
    (Components
        (SubLayout                      Layout)
    )

    (Resources
        (.Bitmap                        "merido32.png")
        (.TitleBarImage                 "merido.png")
        (.AlwaysOnTop                   True)
        (.SystemMenuButton              True)
        (.CloseButton                   True)
        (.Layout
            (Grid (Rows 1) (Cols 1)
                Layout
            )
        )
    )
)

(Layout Layout
    (Components
        (NakedWindow                    NakedWindow)
    )

    (Resources
        (NakedWindow.AttachLeft         True)
        (NakedWindow.AttachRight        True)
        (NakedWindow.AttachTop          True)
        (NakedWindow.AttachBottom       True)
        (NakedWindow.KeyboardInput      True)
        (NakedWindow.TopOffset          0)
        (NakedWindow.BottomOffset       0)
        (NakedWindow.LeftOffset         0)
        (NakedWindow.RightOffset        0)
        (.AttachLeft                    True)
        (.AttachRight                   True)
        (.AttachTop                     True)
        (.AttachBottom                  True)
        (.TopOffset                     3)
        (.BottomOffset                  3)
        (.LeftOffset                    3)
        (.RightOffset                   3)
        (.Layout
            (Grid (Rows 1) (Cols 1)
                NakedWindow
            )
        )
    )
)

)";

/// A function of the test as a toolkit callback, with what it is called with.
class Callback {
  public:
    explicit Callback(std::function<void()> function) : function_(std::move(function)) {}

    static int Call(void* self) {
        // The function may destroy the object that it belongs to.
        const std::function<void()> function = static_cast<Callback*>(self)->function_;
        function();
        return 0;
    }

  private:
    std::function<void()> function_;
};

/// Replaces the window procedure of one window: the function sees each message first, and answers whether it is done with.
class WindowWatch {
  public:
    using Watch = std::function<bool(UINT message, WPARAM wParam, LPARAM lParam)>;

    WindowWatch(HWND window, Watch watch) : window_(window), watch_(std::move(watch)) {
        SetPropW(window, kProperty, this);
        previous_ = reinterpret_cast<WNDPROC>(
            SetWindowLongPtrW(window, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&Procedure)));
    }
    ~WindowWatch() {
        if (window_ != nullptr) {
            SetWindowLongPtrW(window_, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(previous_));
            RemovePropW(window_, kProperty);
        }
    }
    WindowWatch(const WindowWatch&) = delete;
    WindowWatch& operator=(const WindowWatch&) = delete;

  private:
    static constexpr const wchar_t* kProperty = L"ToolkitTestWatch";

    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
        auto* const self = static_cast<WindowWatch*>(GetPropW(window, kProperty));
        WNDPROC previous = self->previous_;
        const Watch watch = self->watch_;
        if (message == WM_NCDESTROY) {
            self->window_ = nullptr;
            RemovePropW(window, kProperty);
        }
        return watch(message, wParam, lParam) ? 0
                                              : CallWindowProcW(previous, window, message, wParam, lParam);
    }

    HWND window_;
    Watch watch_;
    WNDPROC previous_ = nullptr;
};

/// Has an owner device at first, and neither owner nor dialog afterwards.
class ToolkitTest : public ::testing::Test {
  protected:
    void SetUp() override {
        ASSERT_EQ(host_reference::CreateOwnerDevice(kOwner, L"Owner"), 0);
        owner = NativeWindow(kOwner);
        messages =
            CreateWindowExW(0, L"Static", nullptr, 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr);
        watch = std::make_unique<WindowWatch>(messages, [](UINT message, WPARAM, LPARAM parameter) {
            if (message == WM_APP) {
                const std::unique_ptr<std::function<void()>> function(
                    reinterpret_cast<std::function<void()>*>(parameter));
                (*function)();
            }
            return message == WM_APP;
        });
    }

    void TearDown() override {
        ui_destroy_device(kInner);
        ui_destroy_device(kDialog);
        host_reference::DestroyOwnerDevice(kOwner);
        watch.reset();
        DestroyWindow(messages);
    }

    static HWND NativeWindow(const char* device, const char* component) {
        HWND window = nullptr;
        ui_do_operation(device, component, kUiOperationGetNativeWindow, 0, &window, 0);
        return window;
    }
    static HWND NativeWindow(const char* device) { return NativeWindow(device, device); }

    static void Create(const char* description = kLoginDescription) {
        ASSERT_EQ(ui_create_device_from_string(kDialog, "Dialog", description), 0);
    }

    /// Creates and manages the dialog.
    void Manage(const char* description = kLoginDescription) {
        Create(description);
        ASSERT_EQ(ui_manage_device(kDialog), 0);
        dialog = NativeWindow(kDialog);
        ASSERT_NE(dialog, nullptr);
    }

    void ManageInner() {
        ASSERT_EQ(ui_create_device_from_string(kInner, "Dialog", kLoginDescription), 0);
        ASSERT_EQ(ui_manage_device(kInner), 0);
        inner = NativeWindow(kInner);
    }

    /// Lets a message loop call a function.
    void Post(std::function<void()> function) const {
        auto posted = std::make_unique<std::function<void()>>(std::move(function));
        PostMessageW(messages, WM_APP, 0, reinterpret_cast<LPARAM>(posted.release()));
    }

    void On(int action, std::function<void()> function, const char* device = kDialog) {
        ASSERT_EQ(ui_add_action(device, device, action, &Callback::Call, Keep(std::move(function)), 0), 0);
    }
    void SetOn(int action, std::function<void()> function) {
        ASSERT_EQ(ui_set_action(kDialog, kDialog, action, &Callback::Call, Keep(std::move(function)), 0), 0);
    }

    Callback* Keep(std::function<void()> function) {
        callbacks.push_back(std::make_unique<Callback>(std::move(function)));
        return callbacks.back().get();
    }

    void Log(std::string entry) { log.push_back(std::move(entry)); }

    /// Runs the dialog modally; one that nobody ends fails the test at a deadline.
    static void Activate(const char* device = kDialog) {
        constexpr UINT kMilliseconds = 20'000;
        const UINT_PTR deadline = SetTimer(nullptr, 0, kMilliseconds, [](HWND, UINT, UINT_PTR, DWORD) {
            ADD_FAILURE() << "the dialog has not been ended";
            PostQuitMessage(0);
        });
        EXPECT_EQ(ui_activate_device(device), 0);
        KillTimer(nullptr, deadline);
    }

    /// Shows the dialog, lets `function` act in its loop, and ends it.
    void ActivateAnd(std::function<void()> function) {
        Post([function = std::move(function)] {
            function();
            ui_exit_device(kDialog, 0);
        });
        Activate();
    }

    HWND owner = nullptr;
    HWND dialog = nullptr;
    HWND inner = nullptr;
    HWND messages = nullptr;
    std::unique_ptr<WindowWatch> watch;
    std::vector<std::unique_ptr<Callback>> callbacks;
    std::vector<std::string> log;
};

using Entries = std::vector<std::string>;

} // namespace host_test
