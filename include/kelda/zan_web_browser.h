// The web browser that the login dialog embeds, as an abstract class with two backends. Included by kelda.h.
#pragma once

#include <memory>

#include <windows.h>

#include "du/symbol.h"
#include "kelda/api.h"

namespace kelda {

/// A browser in a window of the caller's, on its way to one address of a document server.
///
/// Threading: one thread, the host's UI thread; everything arrives from its message loop.
/// Lifetime: `InitializeCom`, then `Create` once, `Destroy` once, then release it. Not without `Destroy`: pages may
/// still hold objects of the browser's.
/// Errors: failing system calls are traced (module "kelda") and never thrown. `std::bad_alloc` may leave any function.
class KELDA_API ZanWebBrowser {
  public:
    /// What the owner is told. It is called on the browser's thread and must stay until `Destroy`.
    class Callback {
      public:
        /// A login page has loaded; comes again for each page, until the session is authenticated.
        virtual void OnNavigationCompleted() = 0;

        /// The page has reported a session, or the check's file has loaded. Called once: by a timer from the message
        /// loop, or from inside the call by which the browser learned of it. The owner may call `Destroy` from here,
        /// but must not let go of the browser: that call may still be running.
        virtual void OnSessionAuthenticated() = 0;

        /// Neither backend calls it: a page that failed stays in sight.
        virtual void OnSessionAuthenticatedFailed() = 0;

      protected:
        Callback() = default;
        ~Callback() = default;
        Callback(const Callback&) = default;
        Callback& operator=(const Callback&) = default;
    };

    virtual ~ZanWebBrowser();
    ZanWebBrowser(const ZanWebBrowser&) = delete;
    ZanWebBrowser& operator=(const ZanWebBrowser&) = delete;

    /// Initialises COM on the calling thread as a single-threaded apartment and traces the outcome.
    virtual void InitializeCom() = 0;

    /// Makes the browser a child of `parent` and lets it load its address. Returns at once.
    /// @param callback  Not owned; null is allowed.
    virtual void Create(Callback* callback, HWND parent) = 0;

    /// Takes the browser down. May be called in any state, and again.
    virtual void Destroy() = 0;

    /// Fits the browser to the client rectangle of its parent.
    virtual void Resize() = 0;

    /// The window that the backend keeps for its browser; null where it keeps none.
    virtual HWND GetWindowHandle() = 0;

    /// Chooses the backend: the legacy browser where the variable MERIDO_ZANWEBBROWSER_IMPLEMENTATION contains "ie",
    /// else WebView2 where a runtime of version 115 or later is there, else the legacy browser. Looking for the runtime
    /// empties the three standard WEBVIEW2_ variables of the process. From the first call on this module stays loaded until
    /// the process ends: `FreeLibrary` does not unload it any more.
    ///
    /// @param serverUrl  Address of the server, UTF-8. The path of the page is appended to it as it is.
    /// @param checkMode  0: the login page. Else: the file that only an authenticated session may fetch.
    /// @return never null. Throws `std::bad_alloc` only.
    static std::shared_ptr<ZanWebBrowser> Factory(const du::Symbol& serverUrl, int checkMode);

  protected:
    ZanWebBrowser() = default;
};

} // namespace kelda
