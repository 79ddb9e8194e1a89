// The modal login dialog.
//
// Of the toolkit's answers two are looked at: whether there is a device, and whether there is a window for the browser. No
// other is. Where the device gets no windows, for want of memory, the question for the browser's fails as well and is traced,
// and activation returns at once, so that the result is false. To exit or destroy a device that is gone already is as good as
// success.
#include "dialog/form_based_authentication_dialog.h"

#include <exception>

#include <windows.h>

#include "dialog/dialog_description.h"
#include "du/string_utilities.h"
#include "support/trace.h"
#include "support/url_display.h"
#include "ui/ui.h"

namespace kelda {
namespace {

constexpr const char* kDevice = "FormBasedAuthenticationDialog";
constexpr const char* kBrowserWindow = "NakedWindow";
constexpr int kWidth = 500;
constexpr int kHeight = 500;
constexpr int kLoginPage = 0;
constexpr int kEnd = 0; // of an argument list

/// Runs one step of a callback. Neither toolkit nor browser can handle an exception, and the steps that follow have to be
/// taken all the same: the dialog would stay open without them.
template <typename Step>
void Attempt(Step&& step) noexcept {
    try {
        step();
    } catch (const std::exception& exception) {
        try {
            kFormBasedAuthenticationTrace.Failure() << "Failed: " << exception.what();
        } catch (...) {
            return; // no memory for the line either
        }
    } catch (...) {
        return; // it does not say what it is
    }
}

void TraceCallback(const char* text) noexcept {
    Attempt([text] { kFormBasedAuthenticationTrace.Info() << text; });
}

/// The browser of the dialog that was destroyed last. A login is reported from inside the browser's own code, and its page
/// may hold objects of the browser's a while longer: it stays until the next dialog is destroyed. The pointer itself is
/// never destroyed: that would be while the DLL is being unloaded, too late to release objects of COM.
std::shared_ptr<ZanWebBrowser>& RetainedBrowser() {
    static auto* const retained = new std::shared_ptr<ZanWebBrowser>();
    return *retained;
}

} // namespace

bool RunFormBasedAuthentication(const std::wstring& promptText, const char* serverUrl) {
    const auto dialog = std::make_unique<FormBasedAuthenticationDialog>(promptText, du::Symbol(serverUrl));
    dialog->Run();
    return dialog->Authenticated(); // what is reported while the dialog is destroyed does not count
}

// NOLINTNEXTLINE(modernize-pass-by-value): the caller keeps its text, so that a copy is made once either way
FormBasedAuthenticationDialog::FormBasedAuthenticationDialog(const std::wstring& promptText,
                                                             const du::Symbol& serverUrl)
    : promptText_(promptText),
      serverUrl_(serverUrl),
      browser_(ZanWebBrowser::Factory(serverUrl, kLoginPage)) {
    browser_->InitializeCom();
}

FormBasedAuthenticationDialog::~FormBasedAuthenticationDialog() {
    if (state_.deviceActive) {
        CloseDevice();
    }
}

void FormBasedAuthenticationDialog::Run() {
    if (ui_create_device_from_string(kDevice, kDevice, kDialogDescription) != 0) {
        return;
    }
    try {
        SetUpDevice();
        EmbedBrowser();
    } catch (...) {
        CloseDevice(); // its handlers must not outlive this dialog
        throw;
    }
    state_.deviceActive = true;
    ui_activate_device(kDevice);
}

void FormBasedAuthenticationDialog::SetUpDevice() {
    const std::wstring title =
        promptText_ + L": " + du::Utf8ToWideStr(TrimUrlForDisplay(serverUrl_.safe_c_str(), 0));
    ui_modify(kDevice, kDevice, kUiAttributeTitle, title.c_str(), kEnd);
    ui_modify(kDevice, kDevice, kUiAttributeWidth, kWidth, kUiAttributeHeight, kHeight, kEnd);
    ui_add_action(kDevice, kDevice, kUiActionClose, &OnCloseDialog, this, kEnd);
    ui_set_action(kDevice, kDevice, kUiActionDestroy, &OnDestoy, this, kEnd);
    ui_add_action(kDevice, kDevice, kUiActionResize, &OnResize, this, kEnd);
    ui_manage_device(kDevice);
}

void FormBasedAuthenticationDialog::EmbedBrowser() {
    HWND window = nullptr;
    if (ui_do_operation(kDevice, kBrowserWindow, kUiOperationGetNativeWindow, 0, &window, kEnd) != 0) {
        kFormBasedAuthenticationTrace.Failure() << "Failed to get Window handle to embed the browser in";
        return;
    }
    browser_->Create(this, window);
}

void FormBasedAuthenticationDialog::CloseDevice() noexcept {
    state_.deviceActive = false;
    ui_exit_device(kDevice, 0);
    ui_destroy_device(kDevice);
}

// `Destroy` is called on the browser in here; the dialog, then `RetainedBrowser`, keeps the object.
void FormBasedAuthenticationDialog::OnSessionAuthenticated() {
    TraceCallback("OnSessionAuthenticated");
    state_ = {.authenticated = true, .deviceActive = false};
    ui_exit_device(kDevice, 0);
    ui_destroy_device(kDevice);
}

void FormBasedAuthenticationDialog::OnSessionAuthenticatedFailed() {
    TraceCallback("OnSessionAuthenticatedFailed");
    CloseDevice();
}

int FormBasedAuthenticationDialog::OnCloseDialog(void* dialog) noexcept {
    static_cast<FormBasedAuthenticationDialog*>(dialog)->CloseDevice();
    return 0;
}

int FormBasedAuthenticationDialog::OnDestoy(void* dialog) noexcept {
    const auto& browser = static_cast<FormBasedAuthenticationDialog*>(dialog)->browser_;
    TraceCallback("OnDestoy()");
    Attempt([&] { browser->Destroy(); });
    Attempt([&] { RetainedBrowser() = browser; });
    return 0;
}

int FormBasedAuthenticationDialog::OnResize(void* dialog) noexcept {
    Attempt([dialog] { static_cast<FormBasedAuthenticationDialog*>(dialog)->browser_->Resize(); });
    return 0;
}

} // namespace kelda
