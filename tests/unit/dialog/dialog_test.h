// What the tests of the login dialog share: the toolkit and the browser, both played, with their calls in one transcript.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <windows.h>

#include "dialog/form_based_authentication_dialog.h"
#include "kelda/zan_web_browser.h"
#include "tests/support/fake_toolkit.h"
#include "tests/support/transcript.h"

namespace kelda {

/// What a test's first dialog begins with, as far as the question for the browser's window.
inline const test_support::Lines kSetUp = {
    "Factory http://server 0",
    "browser 1 InitializeCom",
    "ui_create_device_from_string device device",
    "ui_modify device device 2=\"Log in: http://server\" 0",
    "ui_modify device device 70=500 71=500 0",
    "ui_add_action device device 5",
    "ui_set_action device device 43",
    "ui_add_action device device 6",
    "ui_manage_device device",
    "ui_do_operation device NakedWindow 2092 0 0",
};

/// What it ends with when it is closed.
inline const test_support::Lines kClosed = {"ui_exit_device device 0", "ui_destroy_device device",
                                            "[0] OnDestoy()", "browser 1 Destroy"};

/// A browser that shows nothing. Browsers are numbered in each test.
class RecordingBrowser final : public ZanWebBrowser {
  public:
    explicit RecordingBrowser(int number) : name_("browser " + std::to_string(number)) {}
    ~RecordingBrowser() override {
        if (programEnds) {
            std::_Exit(EXIT_FAILURE); // too late for a test to fail
        }
        Happen("gone");
    }
    RecordingBrowser(const RecordingBrowser&) = delete;
    RecordingBrowser& operator=(const RecordingBrowser&) = delete;

    void InitializeCom() override { Happen("InitializeCom"); }
    void Create(Callback* callback, HWND parent) override {
        owner = callback;
        Happen("Create",
               parent == reinterpret_cast<HWND>(0x4711) ? " in the toolkit's window" : " elsewhere");
    }
    void Destroy() override { Happen("Destroy"); }
    void Resize() override { Happen("Resize"); }
    HWND GetWindowHandle() override { return nullptr; }

    Callback* owner = nullptr;

    /// What happens inside a function, by its name, as when the browser pumps messages there; it may throw.
    std::map<std::string, std::function<void()>> during;

    /// Switched on when the test is over that made the browser: it may be retained for longer.
    bool quiet = false;

    /// Switched on when static objects are being destroyed, after which no browser may go.
    static inline bool programEnds = false;

  private:
    void Happen(const std::string& function, const std::string& argument = {}) {
        if (quiet) {
            return;
        }
        test_support::Record(name_ + " " + function + argument);
        if (const auto happening = during.find(function); happening != during.end()) {
            happening->second();
        }
    }

    std::string name_;
};

/// Stands where the choice of the browser would.
class DialogTest : public test_support::TranscriptTest {
  protected:
    DialogTest() : TranscriptTest("ZanFormBasedAuthentication") { current = this; }
    ~DialogTest() override {
        for (const auto& made : browsers) {
            if (const auto browser = made.lock()) {
                browser->quiet = true;
                browser->during.clear();
            }
        }
        current = nullptr;
    }
    DialogTest(const DialogTest&) = delete;
    DialogTest& operator=(const DialogTest&) = delete;

    static bool RunDialog() { return RunFormBasedAuthentication(L"Log in", "http://server"); }

    /// Runs a dialog of whose time before and after the modal loop nothing is recorded.
    bool RunWhileActive(std::function<void()> happening) {
        toolkit.during["ui_activate_device"] = [happening = std::move(happening)] {
            TakeTranscript();
            happening();
        };
        return RunDialog();
    }

    /// What follows the set-up that every dialog begins with.
    static test_support::Lines TakeTranscriptAfterSetUp() {
        test_support::Lines lines = TakeTranscript();
        EXPECT_GE(lines.size(), kSetUp.size());
        const size_t length = std::min(lines.size(), kSetUp.size());
        lines.erase(lines.begin(), lines.begin() + static_cast<std::ptrdiff_t>(length));
        return lines;
    }

    std::shared_ptr<RecordingBrowser> Browser(size_t number) const { return browsers.at(number - 1).lock(); }
    std::shared_ptr<RecordingBrowser> LastBrowser() const { return browsers.back().lock(); }

    /// What the page and the user do.
    void Report() const { LastBrowser()->owner->OnSessionAuthenticated(); }
    void ReportFailure() const { LastBrowser()->owner->OnSessionAuthenticatedFailed(); }
    void Close() { toolkit.Raise(kUiActionClose); }

    test_support::FakeToolkit toolkit;
    std::vector<std::weak_ptr<RecordingBrowser>> browsers;

    /// What a browser is prepared with before the dialog gets it.
    std::function<void(RecordingBrowser&)> prepare;

  private:
    friend class ZanWebBrowser;

    std::shared_ptr<ZanWebBrowser> Make(const du::Symbol& serverUrl, int checkMode) {
        test_support::Record(std::string("Factory ") + serverUrl.safe_c_str() + " " +
                             std::to_string(checkMode));
        auto browser = std::make_shared<RecordingBrowser>(static_cast<int>(browsers.size()) + 1);
        browsers.push_back(browser);
        if (prepare) {
            prepare(*browser);
        }
        return browser;
    }

    static inline DialogTest* current = nullptr;
};

} // namespace kelda
