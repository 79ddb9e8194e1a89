// Message boxes for alert, confirm, prompt and the question before leaving. A message box tells nobody its window, so a hook
// looks out for it.
#include "testbed/chromium/script_dialog.h"

#include <memory>
#include <string>
#include <type_traits>

#include "testbed/chromium/text.h"

namespace testbed::chromium {
namespace {

using Hook = std::unique_ptr<std::remove_pointer_t<HHOOK>, decltype(&UnhookWindowsHookEx)>;

const LPCWSTR kDialogClass = MAKEINTRESOURCEW(32770);

/// Whose box is about to be made on this thread.
thread_local ScriptDialog* awaited = nullptr;

} // namespace

Json ScriptDialog::Show(const Json& opening, HWND owner) {
    const auto type = opening.at("type").get<std::string>();
    const bool leaving = type == "beforeunload";
    const std::wstring message = leaving ? L"Leave this page?" : ToUtf16(opening.value("message", ""));
    const int answer = ShowBox(owner, message, ToUtf16(opening.value("url", "")),
                               (type == "alert" ? MB_OK : MB_OKCANCEL) |
                                   (leaving || type == "confirm" ? MB_ICONQUESTION : MB_ICONINFORMATION));
    return {{"accept", answer == IDOK}, {"promptText", opening.value("defaultPrompt", "")}};
}

int ScriptDialog::ShowBox(HWND owner, const std::wstring& message, const std::wstring& title, UINT kind) {
    awaited = this;
    const Hook hook(SetWindowsHookExW(WH_CBT, &OnHook, nullptr, GetCurrentThreadId()), &UnhookWindowsHookEx);
    const int answer = MessageBoxW(owner, message.c_str(), title.c_str(), kind);
    awaited = nullptr;
    box_ = nullptr;
    return answer;
}

LRESULT CALLBACK ScriptDialog::OnHook(int code, WPARAM wParam, LPARAM lParam) noexcept {
    if (code == HCBT_CREATEWND && awaited != nullptr &&
        reinterpret_cast<const CBT_CREATEWNDW*>(lParam)->lpcs->lpszClass == kDialogClass) {
        awaited->box_ = reinterpret_cast<HWND>(wParam);
        awaited = nullptr;
    }
    return CallNextHookEx(nullptr, code, wParam, lParam);
}

void ScriptDialog::Close() {
    if (box_ != nullptr) {
        EndDialog(box_, IDCANCEL);
    }
}

Json ScriptDialog::Dismissal(const Json& opening) {
    return {{"accept", opening.at("type") == "beforeunload"}};
}

} // namespace testbed::chromium
