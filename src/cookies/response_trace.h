// What is made of the responses that the login page gets: lines in the trace, and cookies in WinINet. A getter of the
// runtime that fails ends the headers that it was to give, without a word.
#pragma once

#include <string>

#include <wrl/client.h>

#include "WebView2.h"

namespace kelda {

/// Reads a response and its request, with all their headers.
/// @param trace  Whether to trace what is read; the runtime is asked in any case.
void TraceResponse(ICoreWebView2WebResourceResponseReceivedEventArgs* args, bool trace);

/// Writes the cookie of each Set-Cookie header into WinINet, as a cookie of `uri`, in the order of the headers. One that
/// WinINet refuses is traced and does not stop the others.
/// @param headers  May be empty.
/// @param trace  Whether to trace each cookie.
/// Throws as ParseSetCookie does; the cookies of the headers before that one are written.
void CaptureSetCookies(const std::wstring& uri,
                       const Microsoft::WRL::ComPtr<ICoreWebView2HttpResponseHeaders>& headers, bool trace);

} // namespace kelda
