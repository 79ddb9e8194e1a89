// Names of the URL-moniker errors, as the trace tells them.
#pragma once

#include <windows.h>

namespace kelda {

/// The name of a URL-moniker error, or null for a code that is none. The text is static.
const char* FindBindErrorName(HRESULT code) noexcept;

} // namespace kelda
