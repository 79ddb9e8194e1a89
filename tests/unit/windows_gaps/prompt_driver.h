// Plays the person in front of a credential prompt, from within the prompt's own message loop.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include <windows.h>

namespace windows_gaps_test {

/// Does the steps one after another, once a dialog of the caption is there. A step that answers false is tried again. When
/// nothing comes of it within ten seconds, the dialog is cancelled and `Done` stays false. One driver at a time.
class PromptDriver {
  public:
    using Step = std::function<bool(HWND dialog)>;

    PromptDriver(std::wstring caption, std::vector<Step> steps);
    ~PromptDriver();
    PromptDriver(const PromptDriver&) = delete;
    PromptDriver& operator=(const PromptDriver&) = delete;

    bool Done() const { return next_ == steps_.size(); }

  private:
    static void CALLBACK OnTimer(HWND window, UINT message, UINT_PTR id, DWORD time);
    void Continue();

    static inline PromptDriver* current = nullptr;
    std::wstring caption_;
    std::vector<Step> steps_;
    std::size_t next_ = 0;
    ULONGLONG deadline_;
    UINT_PTR timer_;
};

} // namespace windows_gaps_test
