// How the WebView2 backend and the cookie code trace a failed call, and all parts an exception.
#pragma once

#include <windows.h>

namespace kelda {

/// Traces a failed call.
/// @param operation  What was tried.
/// @return whether the call succeeded.
bool Succeeded(HRESULT result, const char* operation);

// Each traces an exception that ends at a COM callback as a failed call, in the trace of its part of the library. None throws.
void TraceException(const char* text, HRESULT code) noexcept;
void TraceProbeException(const char* text, HRESULT code) noexcept;
void TraceLegacyException(const char* text, HRESULT code) noexcept;

} // namespace kelda
