// Whether the WebView2 backend can be used at all.
#pragma once

namespace kelda {

/// True when a WebView2 runtime of major version 115 or later is found; traced either way.
///
/// Empties the three standard WebView2 variables of this process, for good: the runtime is not to see values that were
/// set outside the library.
/// Throws std::invalid_argument or std::out_of_range where the runtime's version is no number.
bool IsWebView2Available();

} // namespace kelda
