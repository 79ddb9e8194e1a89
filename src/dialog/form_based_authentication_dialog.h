// The modal login dialog: a window of the host's UI toolkit whose only content is a browser with the server's login page.
#pragma once

#include <memory>
#include <string>

#include "du/symbol.h"
#include "kelda/zan_web_browser.h"

namespace kelda {

/// Opens the login dialog and returns when it has been closed. Runs on the host's UI thread and pumps its messages.
///
/// @param promptText  First part of the dialog's title.
/// @param serverUrl   Address of the server, UTF-8, not null.
/// @return whether the page reported an authenticated session. Throws `std::bad_alloc`; no window is left then.
bool RunFormBasedAuthentication(const std::wstring& promptText, const char* serverUrl);

/// One login dialog. The toolkit and the browser call it back while `Run` is running; it must stay until the toolkit has
/// destroyed the device. There can be one at a time, as the device has a fixed name.
class FormBasedAuthenticationDialog final : public ZanWebBrowser::Callback {
  public:
    /// Takes copies, and makes the browser of the server's login page.
    FormBasedAuthenticationDialog(const std::wstring& promptText, const du::Symbol& serverUrl);
    ~FormBasedAuthenticationDialog();
    FormBasedAuthenticationDialog(const FormBasedAuthenticationDialog&) = delete;
    FormBasedAuthenticationDialog& operator=(const FormBasedAuthenticationDialog&) = delete;

    /// Opens the dialog, once, and returns when the modal loop has ended, at once where there is no device to be had.
    void Run();

    /// The dialog's result.
    bool Authenticated() const { return state_.authenticated; }

    // ZanWebBrowser::Callback
    void OnNavigationCompleted() override {}
    void OnSessionAuthenticated() override;
    void OnSessionAuthenticatedFailed() override;

  private:
    /// Both change at once when the page reports the session: there is no moment at which only one of them tells it.
    struct State {
        bool authenticated = false;
        bool deviceActive = false; // the device exists and has not been exited
    };

    // What the toolkit calls, with the dialog as context. OnDestoy is spelled as its trace line is, on purpose.
    static int OnCloseDialog(void* dialog) noexcept;
    static int OnDestoy(void* dialog) noexcept;
    static int OnResize(void* dialog) noexcept;

    void SetUpDevice();
    void EmbedBrowser();
    void CloseDevice() noexcept;

    std::wstring promptText_;
    du::Symbol serverUrl_;
    std::shared_ptr<ZanWebBrowser> browser_;
    State state_;
};

} // namespace kelda
