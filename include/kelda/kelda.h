/// kelda gets a host application authenticated against a document server, so that what the host then downloads
/// through the system's own HTTP stack (URL monikers, WinINet) is served.
///
/// This is the only header that a host includes. Link `kelda.lib` (`libkelda.dll.a` with mingw-w64) and ship
/// `kelda.dll` beside the host's own modules.
#pragma once

#include <cstdint>
#include <string>

#if defined(KELDA_BUILDING_LIBRARY)
#define KELDA_API __declspec(dllexport)
#else
#define KELDA_API __declspec(dllimport)
#endif

namespace kelda {

/// What one probe of the server has found out. The values are fixed: hosts compare and store them.
enum class AuthenticationStatus : std::int32_t {
    None = 0,              ///< Nothing was decided: the request never got as far as an HTTP answer.
    FormBasedRequired = 1, ///< HTTP 200 without a challenge: the server authenticates by a web login form.
    Authenticated = 2,     ///< Credentials were given at the prompt, and the server then answered HTTP 200.
    Failed = 3,            ///< The request failed, or was answered with a status other than 200 and 401.
    Cancelled = 4,         ///< The user cancelled the credential prompt.
    Unauthorized = 5,      ///< The server's final answer was HTTP 401.
};

/// Gets the calling process authenticated against a server, asking the user where it must.
///
/// Probes `serverUrl` + `urlPath` with one HTTP GET. A server that challenges for Basic credentials gets what the
/// user enters at the system's credential prompt.
///
/// @param promptText   First line of the credential prompt's message.
/// @param captionText  Caption of the credential prompt.
/// @param ownerDevice  Name of the host UI toolkit's device that owns the operation. Must not be null.
/// @param serverUrl    Address of the server, UTF-8. Must not be null. Also the name under which the user's answer is
///                     kept in the Windows credential store, character by character: the same server with and without
///                     a trailing slash are two entries.
/// @param urlPath      Appended to `serverUrl` as it is, UTF-8, no separator added; null means nothing is appended.
///
/// @return true when the server accepts the user. false means that it does not: the request failed, the user
///         cancelled, the server refused the credentials, or it wants its web login form filled in, which this
///         version does not show yet. The reason is in the host's trace, module "kelda".
///
/// Threading: call it on the host's UI thread, with COM initialised there as a single-threaded apartment. It returns
/// when all is decided; prompts pump window messages meanwhile.
/// Ownership: all arguments stay the caller's and are not kept.
/// Errors: failing system calls never throw. `std::bad_alloc` leaves it when memory runs out.
KELDA_API bool AuthenticateServer(const std::wstring& promptText, const std::wstring& captionText,
                                  const char* ownerDevice, const char* serverUrl, const char* urlPath);

/// Runs only the probe of `AuthenticateServer`, the credential prompt included, and tells what came of it.
///
/// Arguments, threading, ownership and errors are those of `AuthenticateServer`; an empty `urlPath` appends nothing.
///
/// @return What the server's answers amount to. `None` and `Failed` differ in how far the request got; the trace
///         says more.
KELDA_API AuthenticationStatus ApplyBasicAuthentication(const std::wstring& promptText,
                                                        const std::wstring& captionText,
                                                        const std::string& ownerDevice,
                                                        const std::string& serverUrl,
                                                        const std::string& urlPath);

} // namespace kelda
