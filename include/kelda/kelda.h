/// kelda gets a host application authenticated against a document server, so that what the host then downloads
/// through the system's own HTTP stack (URL monikers, WinINet) is served.
///
/// This is the only header that a host includes. Link `kelda.lib` (`libkelda.dll.a` with mingw-w64) and ship
/// `kelda.dll` beside the host's own modules.
#pragma once

#include <cstdint>
#include <string>

#include "kelda/api.h"
#include "kelda/zan_web_browser.h"
#include "kelda/zan_web_browser_edge.h"
#include "kelda/zan_web_browser_ie.h"

namespace kelda {

/// What one probe of the server has found out. The values are fixed: hosts compare and store them.
enum class AuthenticationStatus : std::int32_t {
    None = 0,              ///< Nothing was decided: the request could not be set up, or ended without a word.
    FormBasedRequired = 1, ///< HTTP 200 without a challenge: the server authenticates by a web login form.
    Authenticated = 2,     ///< Credentials were given at the prompt, and the server then answered HTTP 200.
    Failed = 3,            ///< The request failed, or was answered with a status other than 200 and 401.
    Cancelled = 4,         ///< The user cancelled the credential prompt.
    Unauthorized = 5,      ///< The server's final answer was HTTP 401.
};

/// Gets the calling process authenticated against a server, asking the user where it must.
///
/// Probes `serverUrl` + `urlPath` with an HTTP GET. A server that challenges for Basic credentials gets what the
/// user enters at the system's credential prompt. A server that answers without a challenge has a web login form: it is
/// shown in a modal dialog, which closes as soon as the form's page reports the session.
///
/// @param promptText   First line of the credential prompt's message, and first part of the dialog's title.
/// @param captionText  Caption of the credential prompt.
/// @param ownerDevice  Name (UTF-8) of the host UI toolkit's device that owns the operation. Must not be null. A name
///                     that the toolkit does not know is no error: the desktop's window takes the device's place.
///                     Nothing owns the prompt; what owns the dialog is the toolkit's choice.
/// @param serverUrl    Address of the server, UTF-8. Must not be null. Also the name under which the user's answer is
///                     kept in the Windows credential store, character by character: the same server with and without
///                     a trailing slash are two entries. The login page is looked for below it, whatever `urlPath` is;
///                     the dialog's title shows it without a trailing slash.
/// @param urlPath      Appended to `serverUrl` as it is, UTF-8, no separator added; null means nothing is appended.
///
/// @return true when the user gave credentials and the server accepted them, or logged in at the login dialog. Else
///         false: the request failed, the user cancelled the prompt or closed the dialog, the server refused the
///         credentials, or there was no dialog to be had. The trace, module "kelda", tells more.
///
/// An answer without a challenge is also what a process gets that is authenticated already, as the system then sends
/// the credentials by itself: a second call for a server with Basic authentication opens a login dialog. Call it once.
///
/// Threading: call it on the host's UI thread, with COM initialised there as a single-threaded apartment. It returns
/// when all is decided. Prompts and the dialog pump window messages meanwhile. A call from there, or from another thread,
/// answers false at once, with a line in the trace, and leaves the first one alone.
/// Ownership: all arguments stay the caller's and are not kept. The browser of a dialog lives until the next dialog
/// closes.
/// Errors: failing system calls never throw. Exceptions of the standard library, `std::bad_alloc` above all, leave it.
KELDA_API bool AuthenticateServer(const std::wstring& promptText, const std::wstring& captionText,
                                  const char* ownerDevice, const char* serverUrl, const char* urlPath);

/// Runs only the probe of `AuthenticateServer`, the credential prompt included, and tells what came of it.
///
/// Arguments, threading, ownership and errors are those of `AuthenticateServer`; an empty `urlPath` appends nothing. Nothing
/// keeps it from being called while another call is running.
///
/// @return What the server's answers amount to. The trace tells more.
KELDA_API AuthenticationStatus ApplyBasicAuthentication(const std::wstring& promptText,
                                                        const std::wstring& captionText,
                                                        const std::string& ownerDevice,
                                                        const std::string& serverUrl,
                                                        const std::string& urlPath);

} // namespace kelda
