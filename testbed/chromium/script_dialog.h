// The boxes that scripts open.
#pragma once

#include <windows.h>

#include "testbed/chromium/connection.h"

namespace testbed::chromium {

/// One box at a time. Belongs to the thread that shows it.
class ScriptDialog {
  public:
    ScriptDialog() = default;
    ScriptDialog(const ScriptDialog&) = delete;
    ScriptDialog& operator=(const ScriptDialog&) = delete;

    /// Shows a dialog of Page.javascriptDialogOpening and waits for the answer in a message loop.
    ///
    /// @param owner may be null.
    /// @return parameters of Page.handleJavaScriptDialog. A prompt is answered with what the page proposes.
    Json Show(const Json& opening, HWND owner);

    /// Takes the box away, if there is one: it is answered as if dismissed.
    void Close();

    /// The answer where no dialog may be shown.
    static Json Dismissal(const Json& opening);

  private:
    int ShowBox(HWND owner, const std::wstring& message, const std::wstring& title, UINT kind);
    static LRESULT CALLBACK OnHook(int code, WPARAM wParam, LPARAM lParam) noexcept;

    HWND box_ = nullptr;
};

} // namespace testbed::chromium
