// Answers message boxes of a title while a test runs. Boxes have message loops of their own, so a timer of this thread does it.
#pragma once

#include <functional>
#include <string>
#include <utility>

#include <windows.h>

namespace webview2_runtime_test {

/// There is one at a time.
class MessageBoxes {
  public:
    /// @param button that each box is answered with.
    /// @param onBox called once for each box, before it is answered.
    MessageBoxes(
        const wchar_t* title, WPARAM button, std::function<void(HWND box)> onBox = [](HWND) {})
        : title_(title), button_(button), onBox_(std::move(onBox)) {
        current = this;
        timer_ =
            SetTimer(nullptr, 0, USER_TIMER_MINIMUM, [](HWND, UINT, UINT_PTR, DWORD) { current->OnTimer(); });
    }
    ~MessageBoxes() { KillTimer(nullptr, timer_); }
    MessageBoxes(const MessageBoxes&) = delete;
    MessageBoxes& operator=(const MessageBoxes&) = delete;

    /// How many there were.
    int Count() const { return count_; }

    /// This process's box of that title, or null. Others may be on the same display.
    static HWND Find(const std::wstring& title) {
        HWND box = nullptr;
        DWORD process = 0;
        do {
            box = FindWindowExW(nullptr, box, MAKEINTRESOURCEW(32770), title.c_str());
            GetWindowThreadProcessId(box, &process);
        } while (box != nullptr && process != GetCurrentProcessId());
        return box;
    }

    /// What a box says.
    static std::wstring TextOf(HWND box) {
        std::wstring all;
        for (HWND child = GetWindow(box, GW_CHILD); child != nullptr; child = GetWindow(child, GW_HWNDNEXT)) {
            std::wstring name(32, L'\0');
            name.resize(
                static_cast<std::size_t>(GetClassNameW(child, name.data(), static_cast<int>(name.size()))));
            if (name == L"Static") {
                std::wstring text(static_cast<std::size_t>(GetWindowTextLengthW(child)) + 1, L'\0');
                text.resize(static_cast<std::size_t>(
                    GetWindowTextW(child, text.data(), static_cast<int>(text.size()))));
                all += text;
            }
        }
        return all;
    }

  private:
    void OnTimer() {
        const HWND box = Find(title_);
        if (box == nullptr) {
            return;
        }
        if (box != std::exchange(seen_, box)) {
            ++count_;
            onBox_(box);
        }
        // Again, if it has not gone since: a box may come up with its loop not yet running.
        PostMessageW(box, WM_COMMAND, button_, 0);
    }

    static inline MessageBoxes* current = nullptr;
    std::wstring title_;
    WPARAM button_;
    std::function<void(HWND)> onBox_;
    UINT_PTR timer_ = 0;
    HWND seen_ = nullptr; // the last one
    int count_ = 0;
};

} // namespace webview2_runtime_test
