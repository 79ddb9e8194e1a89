// Fills the dialog template, fits it to its message, and reads the answer. Everything here runs on the dialog's thread.
#include "prompt_dialog.h"

#include <algorithm>
#include <new>
#include <string>

#include <wincred.h>

#include "prompt_dialog_ids.h"

namespace windows_gaps {
namespace {

RECT RectangleOf(HWND dialog, HWND control) {
    RECT rectangle{};
    GetWindowRect(control, &rectangle);
    MapWindowPoints(HWND_DESKTOP, dialog, reinterpret_cast<POINT*>(&rectangle), 2);
    return rectangle;
}

/// Moves every control below `top` by `distance` pixels, and the dialog's lower border with them.
void MoveLowerPart(HWND dialog, LONG top, LONG distance) {
    for (HWND control = GetWindow(dialog, GW_CHILD); control != nullptr;
         control = GetWindow(control, GW_HWNDNEXT)) {
        const RECT place = RectangleOf(dialog, control);
        if (place.top >= top) {
            SetWindowPos(control, nullptr, place.left, place.top + distance, 0, 0, SWP_NOSIZE | SWP_NOZORDER);
        }
    }
    RECT frame{};
    GetWindowRect(dialog, &frame);
    SetWindowPos(dialog, nullptr, 0, 0, frame.right - frame.left, frame.bottom - frame.top + distance,
                 SWP_NOMOVE | SWP_NOZORDER);
}

/// Gives the message the height that its lines take.
void FitMessage(HWND dialog, const std::wstring& message) {
    HWND label = GetDlgItem(dialog, IDC_PROMPT_MESSAGE);
    const RECT place = RectangleOf(dialog, label);
    RECT needed = {0, 0, place.right - place.left, 0};
    HDC context = GetDC(label);
    void* const formerFont =
        SelectObject(context, reinterpret_cast<HFONT>(SendMessageW(label, WM_GETFONT, 0, 0)));
    DrawTextW(context, message.c_str(), -1, &needed,
              DT_CALCRECT | DT_WORDBREAK | DT_EXPANDTABS | DT_NOPREFIX);
    SelectObject(context, formerFont);
    ReleaseDC(label, context);

    SetWindowPos(label, nullptr, 0, 0, place.right - place.left, needed.bottom, SWP_NOMOVE | SWP_NOZORDER);
    MoveLowerPart(dialog, place.bottom, needed.bottom - (place.bottom - place.top));
}

/// Takes the box away and closes the gap up to the buttons.
void RemoveSaveBox(HWND dialog) {
    HWND box = GetDlgItem(dialog, IDC_PROMPT_SAVE);
    const RECT place = RectangleOf(dialog, box);
    DestroyWindow(box);
    MoveLowerPart(dialog, place.top, place.top - place.bottom);
}

/// The middle of the parent, or of the screen's free area.
void Centre(HWND dialog, HWND parent) {
    RECT around{};
    if (parent == nullptr || GetWindowRect(parent, &around) == 0) {
        SystemParametersInfoW(SPI_GETWORKAREA, 0, &around, 0);
    }
    RECT frame{};
    GetWindowRect(dialog, &frame);
    SetWindowPos(dialog, nullptr, std::max(0L, (around.left + around.right - (frame.right - frame.left)) / 2),
                 std::max(0L, (around.top + around.bottom - (frame.bottom - frame.top)) / 2), 0, 0,
                 SWP_NOSIZE | SWP_NOZORDER);
}

void FillField(HWND dialog, int field, const SecretText& text, WPARAM longest) {
    SendDlgItemMessageW(dialog, field, EM_LIMITTEXT, longest, 0);
    SetDlgItemTextW(dialog, field, text.CStr());
}

void Initialise(HWND dialog, const PromptDialogContent& content) {
    SetWindowTextW(dialog, content.caption.c_str());
    SetDlgItemTextW(dialog, IDC_PROMPT_MESSAGE, content.message.c_str());
    FillField(dialog, IDC_PROMPT_USER, content.credentials.userName, CREDUI_MAX_USERNAME_LENGTH);
    FillField(dialog, IDC_PROMPT_PASSWORD, content.credentials.password, CREDUI_MAX_PASSWORD_LENGTH);
    CheckDlgButton(dialog, IDC_PROMPT_SAVE, content.save ? BST_CHECKED : BST_UNCHECKED);
    FitMessage(dialog, content.message);
    if (!content.offersSave) {
        RemoveSaveBox(dialog);
    }
    Centre(dialog, content.parent);

    SetForegroundWindow(dialog);
    HWND first = GetDlgItem(dialog, content.credentials.userName.View().empty() ? IDC_PROMPT_USER
                                                                                : IDC_PROMPT_PASSWORD);
    SendMessageW(first, EM_SETSEL, 0, -1);
    SetFocus(first);
}

SecretText ReadField(HWND dialog, int field) {
    HWND edit = GetDlgItem(dialog, field);
    SecretText text(static_cast<std::size_t>(GetWindowTextLengthW(edit)));
    GetWindowTextW(edit, text.Data(), static_cast<int>(text.Size()));
    return text;
}

/// Leaves nothing of the password in the edit control's memory.
void OverwriteField(HWND dialog, int field) {
    HWND edit = GetDlgItem(dialog, field);
    std::wstring filler(static_cast<std::size_t>(GetWindowTextLengthW(edit)), L'*');
    SetWindowTextW(edit, filler.c_str());
    SendMessageW(edit, EM_EMPTYUNDOBUFFER, 0, 0);
}

void TakeAnswer(HWND dialog, PromptDialogContent& content) {
    content.credentials.userName = ReadField(dialog, IDC_PROMPT_USER);
    content.credentials.password = ReadField(dialog, IDC_PROMPT_PASSWORD);
    if (content.offersSave) {
        content.save = IsDlgButtonChecked(dialog, IDC_PROMPT_SAVE) == BST_CHECKED;
    }
}

INT_PTR OnCommand(HWND dialog, WORD control) {
    switch (control) {
    case IDOK:
        TakeAnswer(dialog, *reinterpret_cast<PromptDialogContent*>(GetWindowLongPtrW(dialog, DWLP_USER)));
        EndDialog(dialog, IDOK);
        return TRUE;
    case IDCANCEL:
        EndDialog(dialog, IDCANCEL);
        return TRUE;
    default:
        return FALSE;
    }
}

INT_PTR CALLBACK OnMessage(HWND dialog, UINT message, WPARAM first, LPARAM second) try {
    switch (message) {
    case WM_INITDIALOG:
        SetWindowLongPtrW(dialog, DWLP_USER, second);
        Initialise(dialog, *reinterpret_cast<const PromptDialogContent*>(second));
        return FALSE; // the focus is set
    case WM_COMMAND:
        return OnCommand(dialog, LOWORD(first));
    case WM_DESTROY:
        OverwriteField(dialog, IDC_PROMPT_PASSWORD);
        return TRUE;
    default:
        return FALSE;
    }
} catch (const std::bad_alloc&) {
    EndDialog(dialog, IDABORT);
    return TRUE;
}

HINSTANCE ThisModule() {
    HMODULE module = nullptr;
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                       reinterpret_cast<LPCWSTR>(&ThisModule), &module);
    return module;
}

} // namespace

DWORD ShowPromptDialog(PromptDialogContent& content) {
    const INT_PTR result = DialogBoxParamW(ThisModule(), MAKEINTRESOURCEW(IDD_CREDENTIAL_PROMPT),
                                           content.parent, &OnMessage, reinterpret_cast<LPARAM>(&content));
    switch (result) {
    case IDOK:
        return ERROR_SUCCESS;
    case IDCANCEL:
        return ERROR_CANCELLED;
    case IDABORT:
        return ERROR_NOT_ENOUGH_MEMORY;
    default: // 0 for a parent that is none, -1 for everything else
        return GetLastError() == ERROR_SUCCESS ? ERROR_GEN_FAILURE : GetLastError();
    }
}

} // namespace windows_gaps
