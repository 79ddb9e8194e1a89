// A timer of the thread, which every message loop serves.
#include "prompt_driver.h"

#include <utility>

namespace windows_gaps_test {

PromptDriver::PromptDriver(std::wstring caption, std::vector<Step> steps)
    : caption_(std::move(caption)),
      steps_(std::move(steps)),
      deadline_(GetTickCount64() + 10'000),
      timer_(SetTimer(nullptr, 0, USER_TIMER_MINIMUM, &OnTimer)) {
    current = this;
}

PromptDriver::~PromptDriver() {
    current = nullptr;
    KillTimer(nullptr, timer_);
}

void CALLBACK PromptDriver::OnTimer(HWND /*window*/, UINT /*message*/, UINT_PTR /*id*/, DWORD /*time*/) {
    if (current != nullptr) {
        current->Continue();
    }
}

void PromptDriver::Continue() {
    HWND dialog = FindWindowW(MAKEINTRESOURCEW(32770), caption_.c_str());
    if (dialog == nullptr || Done()) {
        return;
    }
    if (GetTickCount64() >= deadline_) {
        PostMessageW(dialog, WM_COMMAND, IDCANCEL, 0);
    } else if (steps_[next_](dialog)) {
        ++next_;
    }
}

} // namespace windows_gaps_test
