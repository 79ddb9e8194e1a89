// A message box tells nobody its window, so a hook looks out for it.
#include "error_box.h"

#include <memory>
#include <string>
#include <type_traits>

#include "testbed/chromium/text.h"

namespace legacy_control {
namespace {

using Hook = std::unique_ptr<std::remove_pointer_t<HHOOK>, decltype(&UnhookWindowsHookEx)>;

const LPCWSTR kDialogClass = MAKEINTRESOURCEW(32770);

/// Whose box is about to be made on this thread.
thread_local ErrorBox* awaited = nullptr;

std::wstring TextOf(const ScriptError& error) {
    return testbed::chromium::ToUtf16("An error has occurred in the script on this page.\n\nLine:\t" +
                                      std::to_string(error.line) + "\nChar:\t" +
                                      std::to_string(error.character) + "\nError:\t" + error.message +
                                      "\nCode:\t" + std::to_string(error.code) + "\nURL:\t" + error.url);
}

} // namespace

void ErrorBox::Show(const ScriptError& error, HWND owner) {
    awaited = this;
    const Hook hook(SetWindowsHookExW(WH_CBT, &OnHook, nullptr, GetCurrentThreadId()), &UnhookWindowsHookEx);
    MessageBoxW(owner, TextOf(error).c_str(), L"Script Error", MB_OK | MB_ICONWARNING);
    awaited = nullptr;
    box_ = nullptr;
}

LRESULT CALLBACK ErrorBox::OnHook(int code, WPARAM wParam, LPARAM lParam) noexcept {
    if (code == HCBT_CREATEWND && awaited != nullptr &&
        reinterpret_cast<const CBT_CREATEWNDW*>(lParam)->lpcs->lpszClass == kDialogClass) {
        awaited->box_ = reinterpret_cast<HWND>(wParam);
        awaited = nullptr;
    }
    return CallNextHookEx(nullptr, code, wParam, lParam);
}

void ErrorBox::Close() {
    if (box_ != nullptr) {
        EndDialog(box_, IDOK);
    }
}

} // namespace legacy_control
