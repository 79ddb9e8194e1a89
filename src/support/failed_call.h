// How the WebView2 backend and the cookie code trace a failed call.
#pragma once

#include <windows.h>

namespace kelda {

/// Traces a failed call.
/// @param operation  What was tried.
/// @return whether the call succeeded.
bool Succeeded(HRESULT result, const char* operation);

/// Traces an exception that ends at a COM callback as a failed call; never throws.
void TraceException(const char* text, HRESULT code) noexcept;

} // namespace kelda
